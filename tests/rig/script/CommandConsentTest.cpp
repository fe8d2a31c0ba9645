#include "support/VirtualRig.h"

#include <gmock/gmock.h>

#include <algorithm>

namespace zenka::test {

namespace {

constexpr char lights[] = "COMMAND,MAX,-,00:20, , , , , , , , ,Lights;lights off\n";
constexpr char siren[] = "COMMAND,MAX,-,00:10, , , , , , , , ,Siren;siren on\n";

class CommandConsentTest : public testing::Test {
protected:
    std::vector<std::string> waiting(VirtualRig& rig) {
        std::vector<std::string> shells;
        for (const auto& command : rig.model.consent().waiting().get())
            shells.push_back(command.shell);
        return shells;
    }
    void open(VirtualRig& rig, const std::string& text) {
        rig.files.contents["/home/got.zenka"] = text;
        rig.model.script().openFile("/home/got.zenka",
                                    [](const std::string& fault) { EXPECT_EQ(fault, ""); });
        rig.run(1);
    }
    void rehearse(VirtualRig& rig) {
        rig.playFrom(rig.model.site().contactTHours().at("MAX") * 3600 - 30);
        rig.run(35);
        rig.model.transport().togglePlay();
    }
    static bool ran(VirtualRig& rig, const std::string& shell) {
        return std::ranges::any_of(rig.children.starts, [&](const auto& start) {
            return !start.arguments.empty() && start.arguments.back() == shell;
        });
    }
};

TEST_F(CommandConsentTest, whatCameWithAFileIsRunOnlyOnceItWasAllowedAndThenIsNotAskedForAgain) {
    VirtualRig rig;
    int asked = 0;
    rig.model.consent().asked().connect([&] { ++asked; });
    open(rig, std::string(lights) + siren);
    EXPECT_EQ(asked, 1);
    EXPECT_THAT(waiting(rig), testing::ElementsAre("lights off", "siren on"));
    rehearse(rig);
    EXPECT_FALSE(ran(rig, "lights off"));
    EXPECT_TRUE(rig.logged("the command “Lights” was not run"));

    rig.model.consent().allow();
    rehearse(rig);
    EXPECT_TRUE(ran(rig, "lights off"));
    open(rig, lights);
    EXPECT_EQ(asked, 1) << "the very same words have leave";
    open(rig, "COMMAND,MAX,-,00:20, , , , , , , , ,Lights;lights  off\n");
    EXPECT_EQ(asked, 2) << "other words have none";
}

TEST_F(CommandConsentTest, whatTheUserTypesNeedsNoLeaveAndNothingIsAskedForWhatHeSavedHimself) {
    VirtualRig rig;
    int asked = 0;
    rig.model.consent().asked().connect([&] { ++asked; });
    open(rig, lights);
    rig.model.script().setScriptText(std::string(lights) + siren);
    rig.run(1);
    EXPECT_THAT(waiting(rig), testing::ElementsAre("lights off"));
    rehearse(rig);
    EXPECT_TRUE(ran(rig, "siren on"));
    EXPECT_FALSE(ran(rig, "lights off"));

    rig.model.script().saveFile("/home/own.zenka", [](const std::string&) {});
    rig.run(1);
    open(rig, siren);
    EXPECT_EQ(asked, 1);
    rig.model.script().openFile("/home/own.zenka", [](const std::string&) {});
    rig.run(1);
    EXPECT_EQ(asked, 2) << "a save is no leave for what came with another file";
}

TEST_F(CommandConsentTest, anEndOfTheProgramGivesNoLeave) {
    VirtualRig rig;
    open(rig, lights);
    rig.model.script().setScriptText(std::string(lights) + siren);
    rig.run(1);
    rig.model.handleAppWillTerminate();

    VirtualRig next;
    next.machine.settings = rig.machine.settings;
    int asked = 0;
    next.model.consent().asked().connect([&] { ++asked; });
    next.model.bootstrap();
    next.run(1);
    EXPECT_THAT(waiting(next), testing::Contains("lights off"));
    EXPECT_EQ(asked, 0) << "nothing opens at the start";
    EXPECT_TRUE(next.logged("came with its file"));
    next.model.preflight().runPreflight([] {});
    next.run(1);
    EXPECT_TRUE(std::ranges::any_of(next.model.preflight().checks(), [](const auto& check) {
        return check.title == "Commands" && check.status == rig::PreflightStatus::warn;
    }));
}

TEST_F(CommandConsentTest, neitherTheScriptToBeginWithNorARunThatIsResumedGivesLeave) {
    VirtualRig rig;
    rig.files.contents["/home/got.zenka"] = lights;
    rig.model.script().setDefaultScript("/home/got.zenka");
    rig.model.bootstrap();
    rig.run(1);
    EXPECT_THAT(waiting(rig), testing::ElementsAre("lights off"));
    const double maximum = rig.model.site().contactTHours().at("MAX") * 3600;
    rig.machine.time.setWall(rig.model.site().wallAt(maximum - 120));
    rig.model.transport().armRealEclipseTiming(false);
    rig.run(60);

    VirtualRig next; // the one before was killed
    next.files.contents = rig.files.contents;
    next.machine.time.setWall(rig.machine.time.now());
    next.model.bootstrap();
    next.model.keeper().resumeRun();
    ASSERT_TRUE(next.model.transport().live());
    next.run(120);
    EXPECT_GT(next.model.transport().clock(), maximum);
    EXPECT_FALSE(ran(next, "lights off"));
    EXPECT_TRUE(next.logged("the command “Lights” was not run"));
}

} // namespace
} // namespace zenka::test

#include "support/VirtualRig.h"

#include <gtest/gtest.h>

using namespace zenka;

namespace {

struct WizardDesk : testing::Test {
    test::VirtualRig rig;
    rig::ScriptDesk& desk = rig.model.script();

    void SetUp() override { rig.model.bootstrap(); }
};

} // namespace

TEST_F(WizardDesk, aScriptIsCompiledNamedAndToldOf) {
    ASSERT_TRUE(rig.model.wizard().applyWizardScript(rig.frameAt(10), "Mine"));
    EXPECT_EQ(desk.captures().size(), 1U);
    EXPECT_EQ(desk.currentScriptName().get(), "Mine");
    EXPECT_EQ(desk.scriptFile().get(), "");
    EXPECT_FALSE(desk.edited().get());
    EXPECT_TRUE(rig.logged("Loaded “Mine” from the Script Wizard — press play to simulate."));
}

TEST_F(WizardDesk, aScriptThatWasWrittenToAFileBelongsToIt) {
    ASSERT_TRUE(rig.model.wizard().applyWizardScript("# a\n", "a.zenka", "/scripts/a.zenka"));
    EXPECT_EQ(desk.scriptFile().get(), "/scripts/a.zenka");
    EXPECT_FALSE(desk.edited().get());
    EXPECT_EQ(desk.recentScripts(), std::vector<std::string>{"/scripts/a.zenka"});
    desk.setScriptText("# b\n");
    EXPECT_TRUE(desk.edited().get());
    desk.saveFile("/scripts/a.zenka", [](const std::string& fault) { EXPECT_EQ(fault, ""); });
    rig.run(1);
    EXPECT_EQ(rig.files.read("/scripts/a.zenka"), "# b\n");
}

TEST_F(WizardDesk, textInNoFileIsPutAside) {
    desk.setScriptText("# mine\n");
    ASSERT_TRUE(rig.model.wizard().applyWizardScript("# wizard\n", "Wizard"));
    EXPECT_EQ(desk.unsavedText(), "# mine\n");
}

TEST_F(WizardDesk, aLiveRunKeepsItsScriptUntilItIsLeft) {
    rig.load(rig.frameAt(10));
    const std::string armed = desk.scriptText().get();
    rig.model.transport().armRealEclipseTiming(true);
    ASSERT_TRUE(rig.model.transport().live());
    EXPECT_FALSE(rig.model.wizard().applyWizardScript("# wizard\n", "Wizard"));
    EXPECT_EQ(desk.scriptText().get(), armed);
    EXPECT_TRUE(rig.logged("The wizard's script was not taken. A live run is on"));
    rig.model.transport().useSimulatedTiming();
    EXPECT_TRUE(rig.model.wizard().applyWizardScript("# wizard\n", "Wizard"));
}

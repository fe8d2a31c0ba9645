#include "platform/LinuxKeepAwake.h"

#include "platform/BusHandshake.h"
#include "platform/TestBus.h"
#include "platform/Waiting.h"

#include <gmock/gmock.h>

#include <mutex>

namespace zenka::platform {
namespace {

using test::serveUntil;
using test::SilentBus;
using test::TestBus;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr const char* screenSaver = "org.freedesktop.ScreenSaver";
constexpr const char* counting = "self.held = getattr(self, 'held', 6) + 1; ret = self.held";

/// Collects the reports of the bus threads.
class Reports {
public:
    Report report() {
        return [this](std::string line) {
            const std::lock_guard lock(mutex_);
            lines_.push_back(std::move(line));
        };
    }
    std::vector<std::string> lines() {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

TEST(LinuxKeepAwake, aHoldIsTakenOnBothBusesReplacedAndReleased) {
    TestBus bus;
    bus.addLogind();
    bus.addScreenSaver(counting);
    Reports reports;
    LinuxKeepAwake keepAwake(reports.report(), {.system = bus.address(), .session = bus.address()});
    keepAwake.hold("run armed");
    ASSERT_TRUE(serveUntil([&] { return !bus.inhibitors().empty() && !bus.calls(screenSaver).empty(); }));
    EXPECT_THAT(bus.inhibitors(), ElementsAre("idle:sleep Zenka run armed block"));
    EXPECT_THAT(bus.calls(screenSaver), ElementsAre("Inhibit Zenka run armed"));

    keepAwake.hold("live run");
    ASSERT_TRUE(serveUntil([&] { return bus.calls(screenSaver).size() == 3; }));
    EXPECT_THAT(bus.calls(screenSaver),
                ElementsAre("Inhibit Zenka run armed", "Inhibit Zenka live run", "UnInhibit 7"));
    EXPECT_TRUE(serveUntil(
        [&] { return bus.inhibitors() == std::vector<std::string>{"idle:sleep Zenka live run block"}; }));

    keepAwake.release();
    EXPECT_TRUE(serveUntil([&] { return bus.inhibitors().empty() && bus.calls(screenSaver).size() == 4; }));
    EXPECT_EQ(bus.calls(screenSaver).back(), "UnInhibit 8");

    // and once more, on a connection made anew
    keepAwake.hold("again");
    EXPECT_TRUE(
        serveUntil([&] { return bus.inhibitors().size() == 1 && bus.calls(screenSaver).size() == 5; }));
    EXPECT_THAT(reports.lines(), IsEmpty());
}

TEST(LinuxKeepAwake, aHoldReleasedBeforeItsAnswerIsUndoneWhenItComes) {
    TestBus bus;
    bus.addScreenSaver("import time; time.sleep(0.4); ret = 7");
    LinuxKeepAwake keepAwake({}, {.system = bus.address(), .session = bus.address()});
    keepAwake.hold("a short thought");
    // the mock notes a call before it runs it
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    keepAwake.release();
    EXPECT_TRUE(serveUntil([&] { return bus.calls(screenSaver).size() == 2; }));
    EXPECT_THAT(bus.calls(screenSaver), ElementsAre("Inhibit Zenka a short thought", "UnInhibit 7"));
}

TEST(LinuxKeepAwake, destroyingTheObjectReleases) {
    TestBus bus;
    bus.addLogind();
    bus.addScreenSaver(counting);
    {
        LinuxKeepAwake keepAwake({}, {.system = bus.address(), .session = bus.address()});
        keepAwake.hold("run");
        ASSERT_TRUE(serveUntil([&] { return !bus.inhibitors().empty() && !bus.calls(screenSaver).empty(); }));
    }
    EXPECT_TRUE(serveUntil([&] { return bus.inhibitors().empty() && bus.calls(screenSaver).size() == 2; }));
}

TEST(LinuxKeepAwake, noServiceAndNoBusAreToldAndNoError) {
    TestBus empty;
    Reports reports;
    LinuxKeepAwake keepAwake(reports.report(),
                             {.system = empty.address(), .session = "unix:path=/nowhere/at all"});
    keepAwake.hold("run");
    EXPECT_TRUE(serveUntil([&] { return reports.lines().size() == 2; }));
    EXPECT_THAT(reports.lines(), testing::UnorderedElementsAre(HasSubstr("no lock against sleep: "),
                                                               HasSubstr("blanking of the display: ")));
    keepAwake.release();
}

TEST(LinuxKeepAwake, aBusThatNeverAnswersKeepsNobodyWaiting) {
    const SilentBus bus;
    const auto begin = std::chrono::steady_clock::now();
    {
        LinuxKeepAwake keepAwake({}, {.system = bus.address(), .session = bus.address()});
        keepAwake.hold("run");
        keepAwake.release();
        keepAwake.hold("run");
        EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(3));
    }
    // the bus library itself waits 25 s
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10));
}

TEST(LinuxKeepAwake, theProgramEndsEvenWhereTheBusNeverSpoke) {
    const SilentBus bus;
    test::Child child(test::childJob({"hold-and-leave", bus.address()}));
    EXPECT_EQ(child.wait(), 0); // the run of all tests has a time limit
}

TEST(BusHandshake, addressesNameTheirSocket) {
    EXPECT_EQ(socketOfBus("unix:path=/run/user/1000/bus"), "/run/user/1000/bus");
    EXPECT_EQ(socketOfBus("unix:guid=12,path=/tmp/a%20b;unix:path=/x"), "/tmp/a b");
    EXPECT_EQ(socketOfBus("unix:abstract=/tmp/dbus-1,guid=2"), std::string("\0/tmp/dbus-1", 12));
    EXPECT_FALSE(socketOfBus("tcp:host=localhost,port=1"));
    EXPECT_FALSE(socketOfBus(""));
}

TEST(LinuxKeepAwake, theProgramEndsWellWhileAServiceStillOwesItsAnswer) {
    TestBus bus;
    bus.addLogind();
    bus.addScreenSaver("import time; time.sleep(2); ret = 7");
    test::Child child(test::childJob({"hold-and-leave", bus.address()}));
    EXPECT_EQ(child.wait(), 0);
    EXPECT_TRUE(serveUntil([&] { return bus.inhibitors().empty(); }));
}

} // namespace
} // namespace zenka::platform

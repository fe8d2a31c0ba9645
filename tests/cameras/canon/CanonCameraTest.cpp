#include "cameras/canon/CanonEDSDKCamera.h"
#include "cameras/canon/MainThreadCalls.h"
#include "platform/virtual/VirtualPorts.h"
#include "support/Drivers.h"
#include "support/MemoryFiles.h"
#include "support/ScriptedUsb.h"
#include "support/fake_edsdk/EdsdkLibrary.h"

#include <gmock/gmock.h>

#include <thread>

using namespace zenka;
using namespace zenka::cameras;
using base::Seconds;
using testing::Contains;
using testing::IsEmpty;
using testing::Pair;

namespace {

struct CanonCamera : testing::Test {
    test::MemoryFiles files;
    test::MemoryFolders folders;
    platform::VirtualPorts ports{base::Instant{1786557600}, folders, files};
    test::ScriptedUsbBus bus;
    test::ScriptedProcessTable processes;
    CameraDaemons daemons{processes, ports.queues};
    DriverMachine driver = test::driversOn(ports);
    test::EdsdkLibrary library;
    test::FakeEdsdk& fake = library.fake();
    CanonEDSDK sdk{test::canonOn(driver, library, bus, processes, daemons)};
    std::vector<DriverMachine::Fields> reports;
    std::vector<CaptureOutcome> outcomes;

    CanonCamera() {
        fake.bodies = {{.model = "EOS R5", .serial = "0123", .serialRefusals = 1}};
        driver.report = [this](const std::string& event, const DriverMachine::Fields& fields) {
            EXPECT_EQ(event, "error");
            reports.push_back(fields);
        };
    }

    std::unique_ptr<CanonEDSDKCamera> body() {
        const auto found = sdk.enumerate();
        const auto session = sdk.connect(found.at(0).index);
        EXPECT_EQ(session.serial, "0123") << "though the body needed two tries";
        auto camera =
            std::make_unique<CanonEDSDKCamera>(sdk, CanonEDSDKCamera::Body{.id = "canon-1",
                                                                           .model = found[0].model,
                                                                           .serial = session.serial,
                                                                           .handle = session.handle});
        fake.calls.clear();
        return camera;
    }
    void fire(CanonEDSDKCamera& camera) {
        camera.capture({.iso = 400, .aperture = 8, .shutterSec = 0.005},
                       [this](const CaptureOutcome& outcome) { outcomes.push_back(outcome); });
    }
};

} // namespace

TEST_F(CanonCamera, aBusyBodyIsTriedAgainWhileTheMainThreadDoesOtherThings) {
    const auto camera = body();
    fake.results["fire"] = {0x81, 0x81};
    fire(*camera);
    EXPECT_THAT(outcomes, IsEmpty());
    EXPECT_TRUE(camera->busy());
    fire(*camera);
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].note, "dropped, camera busy");
    EXPECT_TRUE(outcomes[0].responded);
    ports.time.runFor(Seconds{0.5});
    ASSERT_EQ(outcomes.size(), 2U);
    EXPECT_TRUE(outcomes[1].ok);
    EXPECT_NEAR(outcomes[1].latencyMs, 200, 1e-6) << "two pauses of five rounds";
    EXPECT_EQ(camera->shotCount(), 1);
    EXPECT_FALSE(camera->busy());
}

TEST_F(CanonCamera, aStaleSessionIsRebuiltWithinTheShotThreeTimesAndNoMore) {
    const auto camera = body();
    fire(*camera);
    for (int rebuild = 1; rebuild <= 3; ++rebuild) {
        fake.calls.clear();
        fake.results["fire"] = {97};
        fire(*camera);
        EXPECT_TRUE(outcomes.back().ok) << rebuild;
        EXPECT_THAT(fake.calls, Contains("set 402=58")) << "a new session has to be told all";
        EXPECT_THAT(reports.back(), Contains(Pair("attempt", std::to_string(rebuild))));
        EXPECT_THAT(reports.back(), Contains(Pair("recovered", "yes")));
    }
    fake.results["fire"] = {97};
    fire(*camera);
    EXPECT_EQ(outcomes.back().note, "EDSDK capture failed: invalid handle (stale camera session) (0x61)");
    EXPECT_FALSE(outcomes.back().responded);
    EXPECT_TRUE(camera->connected());
}

TEST_F(CanonCamera, aSecondAttemptThatFailsIsTheShotsFailure) {
    const auto camera = body();
    fake.results["fire"] = {97, 97};
    fire(*camera);
    EXPECT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes.back().ok);
    EXPECT_THAT(reports.at(0), Contains(Pair("recovered", "no")));
    fake.results["fire"] = {97};
    fake.results["open"] = {0xC0};
    fire(*camera);
    EXPECT_THAT(reports.back(), Contains(Pair("recovered", "session-rebuild-failed")));
    EXPECT_FALSE(camera->connected());
    EXPECT_EQ(fake.sessions(), 0);
}

TEST_F(CanonCamera, aPulledBodySaysWhatToDoAndEachNewFaultIsReportedOnce) {
    processes.processes->push_back({.id = 7, .name = "gvfsd-gphoto2", .mine = true});
    const auto camera = body();
    for (const std::uint32_t code : {132U, 132U, 141U}) {
        fake.results["fire"] = {code};
        fire(*camera);
    }
    EXPECT_EQ(outcomes.back().note, "EDSDK capture failed: shutter not released (0x8d)");
    ports.time.runFor(Seconds{1});
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_THAT(reports[0], Contains(Pair("name", "card full")));
    EXPECT_THAT(reports[0], Contains(Pair("code", "0x0084")));
    EXPECT_THAT(reports[0], Contains(Pair("procs", "gvfsd-gphoto2")));
    EXPECT_THAT(reports[0], Contains(Pair("holders", "none")));

    fake.events = {{0x301, "EOS R5"}};
    fire(*camera);
    EXPECT_EQ(outcomes.back().note,
              "EDSDK capture failed: the camera ended the USB link. On the body: Wi-Fi OFF, and Choose USB "
              "connection app set to Photo Import/Remote Control (0xe0000002)");
    EXPECT_FALSE(camera->connected());
}

TEST_F(CanonCamera, aShotIsCompletedOnceWhenTheCameraGoesInItsMidst) {
    auto camera = body();
    fake.results["fire"] = std::deque<std::uint32_t>(7, 0x81);
    fire(*camera);
    camera->disconnect();
    EXPECT_EQ(fake.sessions(), 1) << "only the owner closes it";
    camera.reset();
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_FALSE(outcomes[0].ok);
    ports.time.runFor(Seconds{2});
    EXPECT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(fake.sessions(), 0);
}

TEST(MainThreadCalls, aCallFromAnotherThreadWaitsAndNobodyWaitsOnceTheyAreClosed) {
    // The main thread is this one; what is posted runs where the test says so.
    struct Loop final : ports::MainLoop {
        std::mutex mutex;
        std::condition_variable posted;
        std::vector<Function> functions;
        const std::thread::id main = std::this_thread::get_id();

        void post(Function function) override {
            const std::lock_guard lock(mutex);
            functions.push_back(std::move(function));
            posted.notify_all();
        }
        TimerId after(Seconds, Function) override { return TimerId::none; }
        TimerId every(Seconds, Function) override { return TimerId::none; }
        void cancel(TimerId) override {}
        bool onMainThread() const override { return std::this_thread::get_id() == main; }

        Function next() {
            std::unique_lock lock(mutex);
            posted.wait(lock, [this] { return !functions.empty(); });
            Function function = std::move(functions.front());
            functions.erase(functions.begin());
            return function;
        }
    } loop;
    MainThreadCalls calls(loop);
    std::thread::id ranOn;
    const auto note = [&ranOn] { ranOn = std::this_thread::get_id(); };
    EXPECT_TRUE(calls.run(note));

    bool answered = false;
    std::jthread first([&] { answered = calls.run(note); });
    loop.next()();
    first.join();
    EXPECT_TRUE(answered);
    EXPECT_EQ(ranOn, loop.main);

    std::jthread second([&] { answered = calls.run([] { FAIL() << "nobody waits for it"; }); });
    const auto late = loop.next();
    calls.close();
    second.join();
    EXPECT_FALSE(answered);
    late();
}

#include "cameras/lumix/ICCLumixCamera.h"

#include "cameras/lumix/LumixEncode.h"
#include "platform/virtual/VirtualPorts.h"
#include "support/MemoryFiles.h"

#include <gmock/gmock.h>

#include <deque>

using namespace zenka;
using namespace zenka::cameras;
using base::Seconds;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/// A device of the system whose answers a test gives.
struct ToldLink final : ports::PtpLink {
    explicit ToldLink(ports::MainLoop& mainLoop) : loop(mainLoop) {}

    ports::MainLoop& loop;
    std::string serial = "S1";
    std::vector<Bytes> commands;
    std::vector<Bytes> payloads;
    std::deque<std::uint16_t> codes; ///< of the next answers; 0 for none; success when there are no more
    std::vector<std::function<void(bool)>> opening;
    bool opensAtOnce = true;
    int closed = 0;

    std::string serialNumber() const override { return serial; }
    std::string uuid() const override { return "U-1"; }
    void requestOpenSession(std::function<void(bool)> done) override {
        opening.push_back(done);
        if (opensAtOnce)
            loop.post([done] { done(true); });
    }
    void requestCloseSession() override { ++closed; }
    void requestSendCommand(const Bytes& command, const Bytes& data,
                            std::function<void(const Answer&)> done) override {
        commands.push_back(command);
        payloads.push_back(data);
        std::uint16_t code = LumixPTP::success;
        if (!codes.empty()) {
            code = codes.front();
            codes.pop_front();
        }
        Answer answer;
        if (code != 0)
            answer.response = {
                12, 0, 0, 0, 3, 0, static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(code >> 8),
                0,  0, 0, 0};
        loop.after(Seconds{0.05}, [done, answer] { done(answer); });
    }
};

struct ToldBrowser final : ports::PtpBrowser {
    Told added;
    Told removed;
    void start(Told addedThen, Told removedThen) override {
        added = std::move(addedThen);
        removed = std::move(removedThen);
    }
    void stop() override { added = removed = {}; }
};

struct IccLumix : testing::Test {
    test::MemoryFiles files;
    test::MemoryFolders folders;
    platform::VirtualPorts ports{base::Instant{1786557600}, folders, files};
    ToldBrowser browser;
    std::shared_ptr<ICCManager> manager = std::make_shared<ICCManager>(browser, ports.loop);
    std::shared_ptr<ToldLink> link = std::make_shared<ToldLink>(ports.loop);
    std::unique_ptr<ICCLumixCamera> camera;

    void SetUp() override {
        manager->start();
        browser.added(link);
        camera = std::make_unique<ICCLumixCamera>(
            DriverMachine{.queues = ports.queues, .loop = ports.loop, .clock = ports.time}, manager,
            ICCLumixCamera::Body{.id = "i1", .model = "LUMIX DC-GH7", .serial = "S1"});
    }
    std::vector<CaptureOutcome> shoot(const Shot& shot, double seconds = 1) {
        std::vector<CaptureOutcome> outcomes;
        camera->capture(shot, [&](const CaptureOutcome& outcome) { outcomes.push_back(outcome); });
        EXPECT_THAT(outcomes, IsEmpty());
        ports.time.runFor(Seconds{seconds});
        return outcomes;
    }
};

} // namespace

TEST_F(IccLumix, aFrameIsTheSettingsInOrderAndThenTheTrigger) {
    const auto outcomes = shoot({.iso = 1600, .aperture = 8, .shutterSec = 0.004});
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_EQ(outcomes[0].note, "");
    EXPECT_TRUE(outcomes[0].ok && outcomes[0].responded);
    EXPECT_NEAR(outcomes[0].latencyMs, 50, 1e-6) << "of the trigger alone";
    EXPECT_THAT(link->commands, ElementsAre(LumixPTP::ptpCommand(0x9403, {0x02000021}),
                                            LumixPTP::ptpCommand(0x9403, {0x02000041}),
                                            LumixPTP::ptpCommand(0x9403, {0x02000031}),
                                            LumixPTP::ptpCommand(0x9404, {0x03000011})));
    EXPECT_THAT(link->payloads, ElementsAre(LumixPTP::setPayload(0x02000021, 0x640, false),
                                            LumixPTP::setPayload(0x02000041, 80, true),
                                            LumixPTP::setPayload(0x02000031, 250000, false), IsEmpty()));
    EXPECT_EQ(camera->shotCount(), 1);
    EXPECT_EQ(camera->confirmedFrames(), std::nullopt);
}

TEST_F(IccLumix, aRefusedSettingDoesNotStopTheShotAndEachFailureHasItsNote) {
    link->codes = {0x2006};
    auto outcome = shoot({.shutterSec = 0.004}).at(0);
    EXPECT_TRUE(outcome.ok);
    EXPECT_EQ(outcome.note, "settings rejected (mode?)");
    EXPECT_EQ(link->commands.size(), 3U);

    link->codes = {0x2001, 0x2019};
    outcome = shoot({}).at(0);
    EXPECT_EQ(outcome.note, "resp 0x2019");
    EXPECT_TRUE(!outcome.ok && outcome.responded);
    link->codes = {0x2001, 0};
    outcome = shoot({}).at(0);
    EXPECT_EQ(outcome.note, "no response");
    EXPECT_FALSE(outcome.responded);
    link->codes = {0x2001, 0x2002};
    EXPECT_EQ(shoot({.shutterSec = 2, .bulb = true}).at(0).note, "bulb start failed");

    browser.removed(link);
    outcome = shoot({}).at(0);
    EXPECT_EQ(outcome.note, "no session");
    EXPECT_FALSE(outcome.responded);
}

TEST_F(IccLumix, aBulbIsHeldForItsTimeAndStoppedThoughTheCameraHasGone) {
    std::vector<CaptureOutcome> outcomes;
    camera->capture({.shutterSec = 4, .bulb = true},
                    [&](const CaptureOutcome& outcome) { outcomes.push_back(outcome); });
    ports.time.runFor(Seconds{4});
    EXPECT_EQ(link->commands.back(), LumixPTP::ptpCommand(0x9404, {0x03000012}));
    camera.reset();
    ports.time.runFor(Seconds{1});
    EXPECT_EQ(link->commands.back(), LumixPTP::ptpCommand(0x9404, {0x03000013}));
    ASSERT_EQ(outcomes.size(), 1U);
    EXPECT_TRUE(outcomes[0].ok);
}

TEST_F(IccLumix, aSecondFrameIsRefusedWhileTheFirstIsUnderWay) {
    std::vector<std::string> notes;
    const auto note = [&](const CaptureOutcome& outcome) {
        notes.push_back(outcome.note + (outcome.responded ? "" : " silent"));
    };
    camera->capture({}, note);
    camera->capture({}, note);
    ports.time.runFor(Seconds{1});
    EXPECT_THAT(notes, ElementsAre("dropped (couldn't keep up)", ""));
    camera->disconnect();
    EXPECT_EQ(link->closed, 1);
    camera->capture({}, note);
    ports.time.runFor(Seconds{1});
    EXPECT_EQ(notes.back(), "no session silent");
}

TEST_F(IccLumix, aSecondWaiterStartsNoSecondOpenRequest) {
    link->opensAtOnce = false;
    std::vector<bool> told;
    for (int i = 0; i < 2; ++i)
        manager->ensureSession("S1", [&](bool open) { told.push_back(open); });
    ASSERT_EQ(link->opening.size(), 1U);
    link->opening[0](true);
    EXPECT_THAT(told, ElementsAre(true, true));
    manager->ensureSession("S1", [&](bool open) { told.push_back(open); });
    ports.time.runFor(Seconds{0});
    EXPECT_EQ(told.size(), 3U);
    EXPECT_EQ(link->opening.size(), 1U);
}

TEST_F(IccLumix, whoWaitsForASessionHearsThatTheDeviceWentOrTheManager) {
    link->opensAtOnce = false;
    std::vector<bool> told;
    const auto note = [&](bool open) { told.push_back(open); };
    manager->ensureSession("S1", note);
    browser.removed(link);
    EXPECT_THAT(told, ElementsAre(false));
    const auto again = std::make_shared<ToldLink>(ports.loop);
    again->opensAtOnce = false;
    browser.added(again);
    link->opening[0](true); // of the time before
    EXPECT_FALSE(manager->hasSession("S1"));
    manager->ensureSession("S1", note);
    camera.reset();
    manager.reset();
    ports.time.runFor(Seconds{0});
    EXPECT_THAT(told, ElementsAre(false, false));
    EXPECT_FALSE(browser.added);
}

TEST_F(IccLumix, aDeviceWithoutASerialIsKnownByItsUuid) {
    const auto other = std::make_shared<ToldLink>(ports.loop);
    other->serial.clear();
    browser.added(other);
    EXPECT_THAT(manager->serials(), ElementsAre("S1", "U-1"));
    browser.removed(other);
    EXPECT_THAT(manager->serials(), ElementsAre("S1"));
}

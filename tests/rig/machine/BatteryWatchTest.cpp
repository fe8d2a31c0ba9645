#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using testing::ElementsAre;
using testing::IsEmpty;

namespace {

class BatteryWatchTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::BatteryWatch& watch = rig.model.batteries();
    std::shared_ptr<ScriptedCamera> body = rig.addBody("CAM1");

    void tell(int percent) {
        body->status.batteryPercent = percent;
        rig.model.modes().recheckModes();
    }
    std::vector<std::string> heard() {
        rig.run(60);
        return rig.speech.texts();
    }
    void machine(int percent, bool mains = false) {
        rig.sensors.now.onACPower = mains;
        rig.sensors.now.batteryPercent = percent;
        rig.model.health().sampleHealth();
        rig.run(0.1);
    }
};

TEST_F(BatteryWatchTest, aLowBodyIsToldOnceUntilItWasCharged) {
    tell(21);
    EXPECT_FALSE(rig.logged("🔋"));
    tell(20);
    tell(18);
    tell(24);
    tell(19);
    EXPECT_EQ(rig.countLines("🔋 LOW BATTERY: CAM1 at 20% (threshold 20%)"), 1);
    EXPECT_EQ(rig.countLines("🔋"), 1) << "24 % is not charged yet";
    EXPECT_THAT(watch.lowBatteryNames().get(), ElementsAre("CAM1"));
    tell(26);
    EXPECT_THAT(watch.lowBatteryNames().get(), IsEmpty());
    tell(18);
    EXPECT_EQ(rig.countLines("🔋"), 2);
    EXPECT_THAT(heard(), ElementsAre("Camera CAM1 battery at 20 percent. Swap soon.",
                                     "Camera CAM1 battery at 18 percent. Swap soon."));
}

TEST_F(BatteryWatchTest, aBodyThatIsAboutToStopIsToldLoudly) {
    tell(9);
    EXPECT_TRUE(rig.logged("‼️ CRITICAL BATTERY: CAM1 at 9%."));
    EXPECT_TRUE(rig.logged("🔋 LOW BATTERY: CAM1 at 9%"));
    EXPECT_EQ(watch.criticalBatteryName().get(), "CAM1");
    EXPECT_EQ(rig.sounds.heard.size(), 1U);
    EXPECT_THAT(heard(), ElementsAre("Camera CAM1 battery critically low. 9 percent. Swap now."));
    const auto other = rig.addBody("CAM2");
    watch.checkLowBattery(*other, 5);
    tell(15);
    EXPECT_EQ(watch.criticalBatteryName().get(), "CAM2");
    tell(16);
    tell(8);
    EXPECT_EQ(rig.countLines("‼️ CRITICAL BATTERY: CAM1"), 2);
    rig.model.roster().removeCamera(body->id());
    EXPECT_EQ(watch.criticalBatteryName().get(), "CAM2") << "who is still there";
    EXPECT_THAT(watch.lowBatteryNames().get(), ElementsAre("CAM2"));
}

TEST_F(BatteryWatchTest, theUserSetsTheLimitAndWhatIsSpoken) {
    watch.setLowBatteryThreshold(40);
    watch.setLowBatteryAudio(false);
    watch.setCriticalBatteryAudio(false);
    tell(40);
    tell(5);
    EXPECT_EQ(rig.countLines("🔋"), 1);
    EXPECT_THAT(heard(), IsEmpty());
    watch.setLowBatteryThreshold(0);
    EXPECT_EQ(watch.lowBatteryThreshold(), 20);
}

TEST_F(BatteryWatchTest, bodiesBehindAHelperAreAskedInTheHeartbeat) {
    rig.model.roster().setCameraMode(rig::CameraMode::live);
    watch.startBatteryHeartbeat();
    body->isPolled = true;
    body->reply = {.answered = true, .battery = 55.9};
    rig.run(91);
    EXPECT_EQ(body->polls, 2);
    EXPECT_EQ(rig.countLines("CAM1 battery 55%"), 1) << "news only";
    body->reply->battery = 999;
    rig.run(45);
    EXPECT_EQ(rig.model.modes().of(body->id()).batteryPercent, 55);
    body->isBusy = true;
    rig.run(45);
    EXPECT_EQ(body->polls, 3) << "one that fires is left alone";
    body->isBusy = false;

    body->reply = cameras::PollReply{};
    rig.run(45);
    EXPECT_FALSE(rig.model.roster().isDisconnected(body->id()));
    rig.run(45);
    EXPECT_TRUE(rig.model.roster().isDisconnected(body->id())) << "twice no answer";
}

TEST_F(BatteryWatchTest, aSilentBodyIsLeftToItsShotsInARunAndGoneWhenItsLinkHasEnded) {
    rig.model.roster().setCameraMode(rig::CameraMode::live);
    rig.load(rig.frameAt(3000));
    body->isPolled = true;
    body->reply = {.linkEnded = true};
    rig.playFrom(0);
    watch.pollBattery();
    EXPECT_FALSE(rig.model.roster().isDisconnected(body->id()));
    rig.model.transport().togglePlay();
    watch.pollBattery();
    EXPECT_TRUE(rig.model.roster().isDisconnected(body->id()));

    const auto stuck = rig.addBody("CAM2");
    stuck->isPolled = true;
    for (int i = 0; i < 10; ++i)
        watch.pollBattery();
    EXPECT_EQ(stuck->polls, 1) << "no second question before the first is answered";
}

TEST_F(BatteryWatchTest, theComputersBatteryIsToldWithHysteresis) {
    machine(25);
    EXPECT_FALSE(rig.logged("🔋"));
    machine(20);
    EXPECT_EQ(rig.countLines("🔋 COMPUTER ON BATTERY: 20%."), 1);
    machine(10);
    EXPECT_TRUE(rig.logged("‼️ COMPUTER BATTERY CRITICAL: 10% on battery."));
    EXPECT_TRUE(watch.macBatteryEmergency().get());
    machine(15);
    EXPECT_TRUE(watch.macBatteryEmergency().get());
    machine(16);
    EXPECT_FALSE(watch.macBatteryEmergency().get());
    machine(25);
    EXPECT_TRUE(watch.macBatteryLow().get());
    machine(26);
    EXPECT_FALSE(watch.macBatteryLow().get());
    machine(9);
    EXPECT_TRUE(watch.macBatteryLow().get());
    EXPECT_EQ(rig.countLines("🔋 COMPUTER"), 1) << "the louder warning says it all";
    machine(9, true);
    EXPECT_TRUE(rig.logged("🔌 On wall power. Computer battery 9%, charging. All clear."));
    EXPECT_FALSE(watch.macBatteryLow().get());
    EXPECT_EQ(rig.sounds.heard.size(), 2U);
    EXPECT_THAT(
        heard(),
        ElementsAre("Your computer is running low on battery. 20 percent. Plug in soon.",
                    "Warning. Your computer battery is critically low at 10 percent. Plug in now or the "
                    "whole rig will stop.",
                    "Warning. Your computer battery is critically low at 9 percent. Plug in now or the "
                    "whole rig will stop."));
}

} // namespace

} // namespace zenka::test

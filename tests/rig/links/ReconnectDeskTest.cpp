#include "rig/links/ReconnectDesk.h"

#include "support/ScriptedFamily.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <random>

using namespace zenka;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

struct Reconnect : testing::Test {
    std::shared_ptr<test::ScriptedFamily> family = std::make_shared<test::ScriptedFamily>();
    test::VirtualRig rig{{family}};
    rig::ReconnectDesk& desk = rig.model.reconnect();
    rig::CameraRoster& roster = rig.model.roster();
    std::vector<std::string> spoken;
    bool sounding = false;

    void SetUp() override {
        desk.spoken().connect([this](const std::string& words) { spoken.push_back(words); });
        desk.alarmSounds().connect([this](bool on) { sounding = on; });
    }

    /// Bodies under the labels CAM1, CAM2, … with a frame each per second, in a run.
    void run(int bodies, int frames = 4000) {
        for (int i = 1; i <= bodies; ++i)
            family->plugIn("N" + std::to_string(i));
        rig.model.detector().detectCameras();
        rig.run(5);
        rig.model.batteries().startBatteryHeartbeat();
        std::string script;
        for (int i = 1; i <= bodies; ++i)
            roster.setLabelOfSerial("N" + std::to_string(i), "CAM" + std::to_string(i));
        for (int second = 0; second < frames; ++second) {
            for (int i = 1; i <= bodies; ++i)
                script += rig.frameAt(second, "CAM" + std::to_string(i));
        }
        rig.load(script);
        rig.playFrom(-0.5);
    }
    std::shared_ptr<test::ScriptedCamera> body(int number) {
        return family->made.at("N" + std::to_string(number));
    }
    void pull(int number) {
        family->pull("N" + std::to_string(number));
        body(number)->outcomes.assign(100, test::silence());
        body(number)->status = {};
    }
    void flag(int number) { desk.flagDisconnect(roster.camerasFor("CAM" + std::to_string(number)).at(0)); }
};

} // namespace

TEST_F(Reconnect, aPulledBodyRaisesTheAlarmComesBackAndSendsAllItsSettings) {
    run(2);
    rig.run(10);
    const int other = body(2)->shotCount();
    const auto lost = body(1);
    pull(1);
    rig.run(3.2);
    EXPECT_TRUE(desk.showDisconnectAlarm().get());
    EXPECT_TRUE(sounding);
    EXPECT_THAT(spoken, IsEmpty()) << "another one may drop at once, and then they are spoken of together";
    rig.run(1);
    EXPECT_THAT(desk.disconnectedNames().get(), ElementsAre("CAM1"));
    EXPECT_TRUE(rig.logged("🛑 CAMERA DISCONNECTED: CAM1"));
    EXPECT_THAT(spoken, ElementsAre("Warning. Camera CAM1 disconnected."));
    const int shots = lost->shotCount();
    rig.run(20);
    EXPECT_EQ(lost->shotCount(), shots) << "it is not addressed while it is down";
    EXPECT_EQ(body(2)->shotCount(), other + 24) << "the others go on";

    family->plugIn("N1", "Z8", "usb:003,009");
    rig.run(2.2);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1; resuming captures automatically"));
    EXPECT_TRUE(rig.logged("All cameras reconnected; run continues."));
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_FALSE(sounding);
    EXPECT_NE(body(1), lost);
    const int shotsSince = body(1)->shotCount();
    EXPECT_LE(shotsSince, 2) << "missed frames are not fired again";
    EXPECT_EQ(body(1)->fullExposures, shotsSince + 1) << "once more than the frames of the script ask";
    EXPECT_EQ(roster.labelFor(*body(1)), "CAM1");
    rig.run(5);
    EXPECT_EQ(body(1)->shotCount(), shotsSince + 5);
    EXPECT_EQ(family->count("release N2"), 0) << "a healthy body is never rebuilt";
    const int scans = family->count("rebind");
    rig.run(60);
    EXPECT_EQ(family->count("rebind"), scans) << "nobody is looked for any more";
    EXPECT_EQ(family->holds, 0);
}

TEST_F(Reconnect, adviceComesOnceAfterThirtySeconds) {
    run(1);
    pull(1);
    rig.run(3.2);
    rig.run(29);
    EXPECT_FALSE(rig.logged("reconnected after 30s"));
    rig.run(2);
    EXPECT_EQ(rig.countLines("CAM1 has not reconnected after 30s. A camera can drop into a stuck USB state"),
              1);
    EXPECT_TRUE(desk.cameraRecoveryHint().get().has_value());
    EXPECT_EQ(spoken.back(), "CAM1 appears stuck. Power-cycle the camera to recover it.");
    rig.run(120);
    EXPECT_EQ(rig.countLines("reconnected after 30s"), 1);
    family->plugIn("N1");
    rig.run(2.2);
    EXPECT_FALSE(desk.cameraRecoveryHint().get().has_value());
    pull(1);
    rig.run(40);
    EXPECT_EQ(rig.countLines("reconnected after 30s"), 2) << "the next loss is another one";
}

TEST_F(Reconnect, aDriverThatGaveUpByItselfLetsGoOfItsSession) {
    run(1);
    rig.run(5);
    const auto lost = body(1);
    lost->disconnect(); // while its session stands, nobody can have another one with the body
    family->pull("N1");
    rig.run(10);
    EXPECT_TRUE(lost->suspended);
}

TEST_F(Reconnect, aBodyThatAnswersItsProbeIsNeverRebuilt) {
    run(1);
    const auto camera = body(1);
    camera->status.batteryPercent = 80;
    camera->outcomes.assign(3, test::silence());
    rig.run(3.2);
    EXPECT_TRUE(desk.showDisconnectAlarm().get());
    rig.run(2);
    EXPECT_TRUE(rig.logged("CAM1: answered on its existing connection — it never actually left. False alarm; "
                           "standing down."));
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_FALSE(sounding);
    EXPECT_EQ(desk.falseAlarms(), 1);
    EXPECT_EQ(family->count("rebind"), 0);
    EXPECT_EQ(body(1), camera);
    const int shots = camera->shotCount();
    rig.run(5);
    EXPECT_EQ(camera->shotCount(), shots + 5);
}

TEST_F(Reconnect, aProbeHasThreeSecondsThenTheBodyIsLookedFor) {
    run(1);
    const int probes = body(1)->probes;
    body(1)->outcomes.assign(3, test::silence());
    rig.run(3.2); // flagged at 2 s of the clock; asked 2 s later; the body is still on the bus
    rig.run(1.5);
    EXPECT_EQ(body(1)->probes, probes + 1);
    EXPECT_EQ(family->count("rebind"), 0);
    rig.run(4);
    EXPECT_EQ(family->count("rebind"), 1);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1"));
}

TEST_F(Reconnect, aBodyThatDropsSoonAfterEachRebindGetsTheSlowLane) {
    run(1);
    flag(1);
    for (int strike = 1; strike <= 3; ++strike) {
        rig.run(8); // asked, waited for, rebound
        ASSERT_EQ(rig.countLines("RECONNECTED"), strike);
        rig.run(4);
        flag(1);
        EXPECT_EQ(rig.logged("keeps reconnecting then dropping (flapping)"), strike == 3) << strike;
        rig.run(1);
    }
    EXPECT_EQ(rig.countLines("RECONNECTED"), 3);
    rig.run(20);
    EXPECT_EQ(rig.countLines("RECONNECTED"), 3) << "looked for every 30 s only";
    rig.run(12);
    EXPECT_EQ(rig.countLines("RECONNECTED"), 4);
    EXPECT_TRUE(
        std::ranges::count(spoken, "CAM1 is flapping. Power-cycle it. I will rebind it automatically."));
}

TEST_F(Reconnect, theSlowLaneIsServedInAFamilyThatLooksOnEveryThirdPollOnly) {
    family->between = 3;
    run(1);
    flag(1);
    for (int strike = 1; strike <= 3; ++strike) {
        for (int second = 0; second < 20 && rig.countLines("RECONNECTED") < strike; ++second)
            rig.run(1);
        ASSERT_EQ(rig.countLines("RECONNECTED"), strike);
        rig.run(4);
        flag(1);
    }
    ASSERT_TRUE(rig.logged("keeps reconnecting then dropping (flapping)"));
    rig.run(28);
    EXPECT_EQ(rig.countLines("RECONNECTED"), 3);
    rig.run(8);
    EXPECT_EQ(rig.countLines("RECONNECTED"), 4);
}

TEST_F(Reconnect, bodiesThatDropTogetherGetOneMessageAboutPower) {
    run(3);
    desk.setHubs({{"N1", "1-4"}, {"N2", "1-4"}, {"N3", "2-1"}});
    flag(1);
    rig.run(0.2);
    flag(2);
    rig.run(5);
    EXPECT_TRUE(rig.logged("2 cameras dropped on the same hub/dongle within seconds"));
    EXPECT_THAT(spoken, ElementsAre("Multiple cameras dropped together. Check the power to your hub."));
    flag(3);
    EXPECT_TRUE(rig.logged("3 cameras dropped within seconds")) << "another hub";
    rig.run(60);
    spoken.clear();
    flag(1);
    rig.run(1);
    EXPECT_THAT(spoken, ElementsAre("Warning. Camera CAM1 disconnected."))
        << "long after, it is a single one";
}

TEST_F(Reconnect, aGoneDeviceIsLookedForAtOnceWithoutAnAlarm) {
    run(2);
    rig.run(2);
    family->pull("N1");
    body(1)->outcomes = {{.ok = false, .note = "no camera found", .deviceGone = true}};
    rig.run(1);
    EXPECT_TRUE(rig.logged("🔌 Reconnecting CAM1 (single camera; the others keep firing)…"));
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    family->plugIn("N1");
    desk.busChanged();
    rig.run(0.1);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1")) << "plugging in is noticed before the next poll";
}

TEST_F(Reconnect, aGoneDeviceThatIsNotBackWithinThreeFramesRaisesTheAlarm) {
    run(2);
    rig.run(2);
    pull(1);
    body(1)->outcomes = {{.ok = false, .note = "no camera found", .deviceGone = true}};
    rig.run(1);
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    rig.run(2);
    EXPECT_TRUE(desk.showDisconnectAlarm().get());
    EXPECT_TRUE(rig.logged("🛑 CAMERA DISCONNECTED: CAM1"));
    family->plugIn("N1");
    rig.run(2.2);
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_FALSE(sounding);
}

TEST_F(Reconnect, aLostBodyThatIsTakenOutIsLookedForNoLonger) {
    run(2);
    pull(1);
    rig.run(6);
    EXPECT_TRUE(desk.showDisconnectAlarm().get());
    roster.removeCamera(body(1)->id());
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_FALSE(sounding);
    EXPECT_EQ(family->holds, 0);
    family->plugIn("N1");
    rig.run(60);
    EXPECT_FALSE(rig.logged("RECONNECTED"));
    EXPECT_EQ(roster.cameras().size(), 1U);
}

TEST_F(Reconnect, anIdleBodyIsPingedAndMissedWhenItLeavesTheBus) {
    run(2, 100);
    rig.model.transport().togglePlay();
    body(1)->status = {.isManual = false, .modeName = "A", .batteryPercent = 80};
    rig.run(50);
    EXPECT_EQ(body(1)->pings, 1);
    EXPECT_EQ(rig.model.modes().of(body(1)->id()).batteryPercent, 80);
    EXPECT_TRUE(rig.logged("CAM1: the mode dial is on A, not M.")) << "it was turned after the detection";
    body(1)->status = {};
    family->pull("N1");
    rig.model.heldSessions().lookForGone();
    rig.run(0.1);
    EXPECT_EQ(rig.countLines("CAM1: no longer on the USB bus — reconnecting…"), 1);
    EXPECT_TRUE(rig.logged("🔌 Reconnecting CAM1"));
    const auto before = body(1);
    rig.run(50);
    EXPECT_EQ(before->pings, 1) << "one that is down is left alone";
    EXPECT_EQ(rig.countLines("CAM1: no longer on the USB bus"), 1);
    family->plugIn("N1", "Z8", "usb:003,009");
    rig.run(4);
    EXPECT_TRUE(rig.logged("✅ RECONNECTED CAM1"));
    rig.model.transport().togglePlay();
    const int pings = body(1)->pings + body(2)->pings;
    rig.run(90);
    EXPECT_EQ(body(1)->pings + body(2)->pings, pings) << "a frame is due within seconds all the time";
    EXPECT_EQ(rig.countLines("no longer on the USB bus"), 1) << "the new port is the right one";
}

TEST_F(Reconnect, aBodyWithoutASerialNumberIsToldOnceAndADetectClearsAll) {
    family->plugIn("");
    rig.model.detector().detectCameras();
    rig.run(5);
    const auto camera = roster.cameras().at(0);
    roster.setLabel(*camera, "CAM1");
    std::string script;
    for (int second = 0; second < 10; ++second)
        script += rig.frameAt(second);
    rig.load(script);
    rig.playFrom(-0.5);
    family->made.at("")->outcomes.assign(
        5, {.ok = false, .note = "no camera found", .responded = true, .deviceGone = true});
    rig.run(5);
    EXPECT_EQ(rig.countLines("can't be single-camera reconnected (no serial). Use Detect."), 1);
    family->pull("");
    rig.model.heldSessions().lookForGone();
    rig.run(0.1);
    EXPECT_TRUE(desk.showDisconnectAlarm().get());
    EXPECT_THAT(desk.cameraRecoveryHint().get().value_or(""), testing::HasSubstr("press Detect"));
    desk.clearDisconnectState();
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_THAT(desk.disconnectedNames().get(), IsEmpty());
    EXPECT_FALSE(roster.isDisconnected(camera->id()));
}

TEST_F(Reconnect, aStuckFamilyIsToldOnceAndItsScansAreKeptApart) {
    family->between = 3;
    family->stuck = "⚠️ The connection layer is stuck.";
    run(1);
    pull(1);
    rig.run(3.2);
    rig.run(40);
    EXPECT_EQ(rig.countLines("The connection layer is stuck."), 1);
    const int scans = family->count("rebind");
    EXPECT_GE(scans, 5);
    EXPECT_LE(scans, 7) << "every third poll";
}

TEST_F(Reconnect, aStormOfFaultsLeavesEveryFrameOneRowAndEveryBodyBack) {
    constexpr int bodies = 6;
    constexpr int frames = 340;
    int addressedWhileDown = 0;
    int healthyRebuilt = 0;
    family->onRelease = [&](const std::string& id) { healthyRebuilt += !desk.downCams().contains(id); };
    family->onCapture = [&](const test::ScriptedCamera& camera) {
        addressedWhileDown += roster.isDisconnected(camera.id()) || desk.downCams().contains(camera.id());
    };
    run(bodies, frames);
    std::mt19937 chance(20260812);
    const auto one = [&](int below) { return static_cast<int>(chance() % static_cast<unsigned>(below)); };
    std::map<int, int> comesBackAt;
    std::map<int, int> flaps;
    std::map<int, std::shared_ptr<test::ScriptedCamera>> drivers;
    int sentAll = 0;
    int rebuilt = 0;
    for (int second = 0; second < frames + 60; ++second) {
        if (second < frames && one(6) == 0) {
            const int number = 1 + one(bodies);
            switch (one(7)) {
            case 6: // it drops again as soon as it is back, some times
                flaps[number] += 1 + one(4);
                break;
            case 0: // gone, and back on another port, with a full battery
                if (!comesBackAt.contains(number)) {
                    pull(number);
                    comesBackAt[number] = second + 1 + one(30);
                }
                break;
            case 1:
                body(number)->outcomes.assign(static_cast<std::size_t>(1 + one(5)), test::silence());
                break;
            case 2:
                body(number)->outcomes.assign(static_cast<std::size_t>(1 + one(30)), test::refusal());
                break;
            case 3:
                body(number)->outcomes = {{.ok = false, .note = "no camera found", .deviceGone = true}};
                break;
            case 4: body(number)->status.batteryPercent = one(100); break;
            default: // two at once on one hub
                for (const int both : {1, 2}) {
                    if (!comesBackAt.contains(both)) {
                        pull(both);
                        comesBackAt[both] = second + 5;
                    }
                }
            }
        }
        for (auto back = comesBackAt.begin(); back != comesBackAt.end();) {
            if (back->second <= second) {
                family->plugIn("N" + std::to_string(back->first), "Z8", "usb:003," + std::to_string(second));
                back = comesBackAt.erase(back);
            } else {
                ++back;
            }
        }
        rig.run(1);
        for (int number = 1; number <= bodies; ++number) {
            if (std::exchange(drivers[number], body(number)) == body(number) || second == 0)
                continue;
            ++rebuilt;
            sentAll += body(number)->fullExposures == body(number)->shotCount() + 1;
            if (flaps[number] > 0) {
                --flaps[number];
                body(number)->outcomes.assign(5, test::silence());
            }
        }
    }
    EXPECT_EQ(addressedWhileDown, 0);
    EXPECT_EQ(healthyRebuilt, 0);
    EXPECT_EQ(sentAll, rebuilt) << "each that came back is asked to send all its settings";
    EXPECT_TRUE(rig.logged("(flapping)"));
    rig.run(60);
    EXPECT_THAT(desk.downCams(), IsEmpty());
    EXPECT_FALSE(desk.showDisconnectAlarm().get());
    EXPECT_FALSE(sounding);
    EXPECT_EQ(family->holds, 0);
    rig.model.logbook().drain(base::Seconds{1});
    std::map<std::pair<std::string, std::string>, int> rows; // token and offset
    for (const auto& row : rig.rows())
        ++rows[{row.at(4), row.at(2)}];
    EXPECT_EQ(rows.size(), static_cast<std::size_t>(bodies * frames)) << "each frame that was due";
    for (const auto& [frame, count] : rows)
        EXPECT_EQ(count, 1) << frame.first << " at " << frame.second;
    EXPECT_GT(rig.countLines("RECONNECTED"), 10) << "the storm was one";
}

#include "support/NmeaSentences.h"
#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using rig::PreflightStatus;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using enum PreflightStatus;

namespace {

class PreflightTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::Preflight& preflight = rig.model.preflight();
    std::shared_ptr<ScriptedCamera> body;
    int armed = 0;

    /// A rig with nothing wrong: a confirmed site in totality, a body with its dials right, a script for it.
    void SetUp() override {
        rig.model.site().confirmLocation(true);
        body = rig.addBody("CAM1");
        body->status = {.isManual = true, .modeName = "M", .batteryPercent = 80};
        body->autoIso = {.isAuto = false, .detail = std::nullopt};
        rig.model.modes().recheckModes();
        rig.load(rig.frameAt(maximum()) + rig.frameAt(maximum() + 10));
        rig.model.health().sampleHealth();
        rig.run(1);
    }
    double maximum() { return rig.model.site().contactTHours().at("MAX") * 3600; }

    void look() {
        rig.model.validator().look([] {});
        rig.run(0.1);
    }
    std::vector<std::string> titles() {
        std::vector<std::string> all;
        for (const auto& check : preflight.checks())
            all.push_back(check.title);
        return all;
    }
    /// The rows of a title, as "status: detail".
    std::vector<std::string> rows(const std::string& title) {
        std::vector<std::string> found;
        for (const auto& check : preflight.checks()) {
            const char* word = check.status == ok ? "ok: " : check.status == warn ? "warn: " : "fail: ";
            if (check.title == title)
                found.push_back(word + check.detail);
        }
        return found;
    }
    void machine(const std::function<void(ports::MachineReading&)>& change) {
        change(rig.sensors.now);
        rig.model.health().sampleHealth();
        rig.run(0.1);
    }
    void run() {
        preflight.runPreflight([this] { ++armed; });
        rig.run(0.1);
    }
};

TEST_F(PreflightTest, aRigWithNothingWrongGoesOnWithoutTheList) {
    run();
    EXPECT_EQ(armed, 1);
    EXPECT_FALSE(preflight.showPreflight().get());
    EXPECT_EQ(rig.http.waiting.size(), 1U) << "the clock is checked, and not waited for";
    EXPECT_THAT(titles(), ElementsAre("Location", "Cameras", "Manual mode", "Auto-ISO", "Screen brightness",
                                      "Script validation"));
    EXPECT_THAT(rows("Location"),
                ElementsAre(HasSubstr("ok: Zaragoza, ES · 41.650, -0.880 · totality here: 1:2")));
    EXPECT_THAT(rows("Script validation"), ElementsAre("ok: No timing or cadence issues."));
    EXPECT_THAT(rows("Screen brightness"), ElementsAre(HasSubstr("warn: Turn OFF “Automatically adjust")));
}

TEST_F(PreflightTest, whatIsWrongShowsTheListAndGoesOnFromThere) {
    body->status.batteryPercent = 15;
    rig.model.modes().recheckModes();
    run();
    EXPECT_EQ(armed, 0);
    EXPECT_TRUE(preflight.showPreflight().get());
    EXPECT_THAT(rows("Battery"), ElementsAre("warn: Low: CAM1. Consider a fresh battery."));
    preflight.proceedPreflight();
    EXPECT_EQ(armed, 1);
    EXPECT_FALSE(preflight.showPreflight().get());

    run();
    preflight.cancelPreflight();
    preflight.proceedPreflight();
    EXPECT_EQ(armed, 1) << "what was cancelled does not go on";
    preflight.openPreflight();
    EXPECT_FALSE(preflight.mayProceed());
}

TEST_F(PreflightTest, theShippedDefaultSiteIsNeverArmed) {
    rig.model.site().confirmLocation(false);
    bool wanted = false;
    preflight.locationWanted().connect([&] { wanted = true; });
    run();
    EXPECT_THAT(rows("Location not set"),
                ElementsAre(HasSubstr("fail: You are still on the shipped default")));
    preflight.proceedPreflight();
    EXPECT_EQ(armed, 0);
    EXPECT_TRUE(wanted);
    EXPECT_TRUE(rig.logged("⛔️ Cannot arm"));
    EXPECT_FALSE(preflight.showPreflight().get());
}

TEST_F(PreflightTest, thePlaceIsToldForWhatItIs) {
    rig.model.sites().moveTo(40.0, -30.0, 0, true);
    look();
    EXPECT_THAT(rows("Location"), ElementsAre(HasSubstr("warn:")));
    EXPECT_THAT(rows("Location"), ElementsAre(HasSubstr("NO totality at this site (partial only)")));
    EXPECT_THAT(rows("Time zone estimated"), ElementsAre(HasSubstr("warn: Etc/GMT+2 was guessed")));
    rig.model.sites().moveTo(-40.0, 150.0, 0, true);
    EXPECT_THAT(rows("Location"), ElementsAre(HasSubstr("fail:")));
    EXPECT_THAT(rows("Location"), ElementsAre(HasSubstr("no eclipse visible at this site")));
}

TEST_F(PreflightTest, dialsThatSpoilExposuresStopArming) {
    const auto second = rig.addBody("CAM2");
    second->status = {.isManual = false, .modeName = "A", .batteryPercent = 9};
    second->autoIso = {.isAuto = true, .detail = "Auto-ISO on"};
    rig.model.modes().recheckModes();
    const auto silent = rig.addBody("CAM3");
    EXPECT_THAT(rows("Cameras"), ElementsAre("ok: 3 live connected."));
    EXPECT_THAT(rows("Manual mode"),
                ElementsAre("fail: Not in Manual: CAM2. Set the dial to M or exposures won't apply."));
    EXPECT_THAT(rows("Auto-ISO"), ElementsAre(HasSubstr("fail: Auto-ISO is ON: CAM2.")));
    EXPECT_THAT(rows("Mode not readable"),
                ElementsAre(HasSubstr(
                    "on CAM3. That is not a failure, but it means the checks above cannot vouch for it,")));
    EXPECT_THAT(rows("Battery"), ElementsAre("fail: CAM2 critically low. Swap before you arm."));
    const auto problems = rig.model.modes().exposureProblems({body, second, silent});
    EXPECT_THAT(problems, ElementsAre(std::pair<std::string, std::string>("CAM2", "on A, not M")));

    rig.model.roster().setDisconnected(second->id(), true);
    EXPECT_THAT(rows("Disconnected camera"),
                ElementsAre(HasSubstr("fail: CAM2 dropped and hasn't reconnected.")));
    EXPECT_THAT(rows("Cameras"), ElementsAre("ok: 2 live connected."));
}

TEST_F(PreflightTest, drivesFocusHandshakeAndBusesAreToldByBody) {
    body->burst = true;
    EXPECT_THAT(rows("Drive dial"),
                ElementsAre(HasSubstr("warn: CAM1 on a BURST drive mode. Set the dial to Single —")));
    rig.load("TAKEPIC,MAX,+,0,CAM1,BULB,8.0,200,0.000,RAW,None,N,frame\n" + rig.frameAt(maximum() - 9));
    if (std::ranges::any_of(rig.model.script().captures(), &script::Capture::bulb)) {
        EXPECT_THAT(rows("Drive dial"),
                    ElementsAre(HasSubstr("fail: CAM1 on a BURST drive mode, and your script has long")));
    } else {
        ADD_FAILURE() << "the script has no bulb frame";
    }
    body->noSingleMode = true;
    EXPECT_THAT(rows("Drive dial"), ElementsAre(HasSubstr("fail: CAM1 on a continuous/BURST drive mode.")));
    body->manualFocus = false;
    body->handshake = false;
    EXPECT_THAT(rows("Focus mode"), ElementsAre(HasSubstr("warn: CAM1 in AUTOFOCUS.")));
    EXPECT_THAT(rows("Camera handshake"), ElementsAre(HasSubstr("so CAM1 can't fire.")));
    body->bus = 1;
    EXPECT_THAT(rows("USB bus"), IsEmpty());
    rig.addBody("CAM2")->bus = 1;
    EXPECT_THAT(rows("USB bus"), ElementsAre(HasSubstr("ok: 2 cameras share one USB bus.")));
    rig.addBody("CAM3")->bus = 1;
    EXPECT_THAT(rows("USB bus"),
                ElementsAre(HasSubstr(
                    "warn: 3 cameras share one USB bus. Zenka auto-staggers their writes, but 3 bodies")));
}

TEST_F(PreflightTest, theScriptIsHeldAgainstSkyAndBodies) {
    rig.load(rig.frameAt(maximum()) + rig.frameAt(maximum() + 1.5) + rig.frameAt(maximum() + 20, "CAM9") +
             rig.frameAt(maximum() + 4 * 3600) + rig.frameAt(maximum() + 5 * 3600) + "NONSENSE,1\n");
    EXPECT_THAT(rows("Script validation"), ElementsAre(HasSubstr("warn: Still being looked at.")));
    look();
    EXPECT_THAT(rows("Script validation"), ElementsAre(HasSubstr(" warning(s). First: ")));
    EXPECT_THAT(rows("Tail frames"), ElementsAre(HasSubstr("warn: 2 frames with the Sun below the horizon")));
    EXPECT_THAT(rows("Cadence (unprofiled)"),
                ElementsAre(HasSubstr("CAM1 has never been profiled. The script's tightest gap is 1.5s vs a "
                                      "1.3s floor, gphoto2's driver-wide guess")));
    EXPECT_THAT(rows("Script cameras"),
                ElementsAre("warn: CAM9 not connected (1 shot). Those shots only simulate."));
    const auto twin = std::make_shared<ScriptedCamera>("id-twin");
    twin->serialNumber = "other";
    rig.model.roster().add(twin);
    rig.model.roster().setLabelOfSerial("other", "CAM1");
    EXPECT_THAT(rows("Shared camera token"),
                ElementsAre(HasSubstr("2 cameras (CAM1, CAM1) all match script token “CAM1”.")));
    rig.load("");
    look();
    EXPECT_THAT(rows("Script"), ElementsAre(HasSubstr("warn: No shots in the loaded script.")));
}

TEST_F(PreflightTest, theComputerIsLookedAtToo) {
    machine([](auto& now) {
        now.onACPower = false;
        now.batteryPercent = 21;
        now.freeDiskGB = 4.9;
    });
    EXPECT_THAT(rows("Power"), ElementsAre(HasSubstr("warn: Running on battery (21%).")));
    EXPECT_THAT(rows("Disk space"), ElementsAre(HasSubstr("warn: Only 4.9 GB free.")));
    machine([](auto& now) {
        now.batteryPercent = 20;
        now.freeDiskGB = 0.9;
        now.thermal = ports::ThermalState::serious;
        now.lowPowerMode = true;
    });
    EXPECT_THAT(rows("Power"), ElementsAre(HasSubstr("fail:")));
    EXPECT_THAT(rows("Disk space"), ElementsAre(HasSubstr("fail:")));
    EXPECT_THAT(rows("Computer temperature"),
                ElementsAre("warn: Running serious. Move it into shade and give it airflow."));
    EXPECT_THAT(rows("Low Power Mode"), ElementsAre(HasSubstr("warn: Low Power Mode is ON.")));
    rig.audio.now.muted = true;
    rig.model.audio().refreshAudioOutput();
    EXPECT_THAT(rows("Audio"),
                ElementsAre("warn: Your computer is muted. You won't hear voice or battery cues."));
}

TEST_F(PreflightTest, aClockThatIsOffStopsArmingUntilAPuckCorrectsIt) {
    const auto clockIsOff = [&](double seconds) {
        const double whole = std::floor(rig.machine.time.now().epochSec); // the date's resolution
        rig.machine.time.setWall({whole + seconds});
        rig.model.time().checkClockSkew();
        rig.http.answer(200, "",
                        {{"date", base::formatTime("%a, %d %b %Y %H:%M:%S GMT", base::Instant{whole},
                                                   absl::UTCTimeZone())}});
    };
    run();
    rig.http.answer(200, "", {});
    clockIsOff(5.0);
    EXPECT_THAT(rows("Computer clock"), IsEmpty());
    clockIsOff(5.1);
    EXPECT_THAT(rows("Computer clock"),
                ElementsAre(HasSubstr("fail: Your computer clock is ~5 s ahead of real time. Every shot is "
                                      "contact-relative, so this fires the whole script 5 s early.")));
    clockIsOff(-120.5);
    EXPECT_THAT(rows("Computer clock"),
                ElementsAre(HasSubstr("~2 min behind real time. Every shot is contact-relative, so this "
                                      "fires the whole script 2 min late.")));
    rig.serialPorts.stream("/dev/ttyACM0",
                           [](base::Instant wall) { return nmea::second(wall + base::Seconds{120.5}); });
    rig.model.time().startGPS();
    rig.run(10);
    EXPECT_THAT(rows("Computer clock"), IsEmpty());
    EXPECT_THAT(rows("Clock source"), ElementsAre(HasSubstr("Computer clock is 120.")));
    EXPECT_THAT(rows("Clock source"),
                ElementsAre(HasSubstr("s behind; it will be corrected automatically.")));
}

} // namespace

} // namespace zenka::test

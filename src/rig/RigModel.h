#pragma once

#include "ports/Ports.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/BodyModes.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/LibraryDesk.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/cards/CardWatch.h"
#include "rig/cards/RunAnalyzer.h"
#include "rig/checks/CadenceAdvisor.h"
#include "rig/checks/Preflight.h"
#include "rig/checks/ScriptValidator.h"
#include "rig/fire/ExposureControl.h"
#include "rig/fire/FireClock.h"
#include "rig/fire/FireLoop.h"
#include "rig/fire/FireOutcomes.h"
#include "rig/fire/RenderPace.h"
#include "rig/links/CameraDetector.h"
#include "rig/links/HeldSessions.h"
#include "rig/links/ReconnectDesk.h"
#include "rig/machine/BatteryWatch.h"
#include "rig/machine/HealthMonitor.h"
#include "rig/machine/TimeSources.h"
#include "rig/run/RunKeeper.h"
#include "rig/run/SleepGuard.h"
#include "rig/run/Transport.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/script/CommandConsent.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/shots/CameraProfiler.h"
#include "rig/shots/ExposureCheck.h"
#include "rig/shots/GapProfiler.h"
#include "rig/shots/ManualFire.h"
#include "rig/shots/TestShots.h"
#include "rig/site/HorizonDesk.h"
#include "rig/site/SiteBook.h"
#include "rig/site/SiteDesk.h"
#include "rig/transfer/RigTransfer.h"
#include "rig/voice/AlarmSound.h"
#include "rig/voice/Announcer.h"
#include "rig/voice/MutedGuard.h"

#include <string>

namespace zenka::rig {

/// The run engine: makes its parts, ties them together and gives them out. One per process; all of it
/// belongs to the main thread. The ports outlive it.
class RigModel {
public:
    /// The families lead to real bodies; without them the rig has simulated ones alone.
    RigModel(const ports::Ports& ports, const std::string& appVersion,
             const CameraDetector::Families& families = {});
    RigModel(const RigModel&) = delete;
    RigModel& operator=(const RigModel&) = delete;

    /// Start-up: restores selection, site and script, computes, and starts the clock.
    void bootstrap();

    /// Computes the circumstances, puts the clock at their start and compiles the script.
    void recompute();

    /// Closes what must not be lost when the process ends.
    void handleAppWillTerminate();

    /// Seconds to the next capture or cue, infinite if there is none, never negative.
    double timeToNextEvent() const;

    RigLog& log() { return log_; }
    SiteDesk& site() { return site_; }
    SiteBook& sites() { return sites_; }
    HorizonDesk& horizons() { return horizons_; }
    ScriptDesk& script() { return script_; }
    CommandConsent& consent() { return consent_; }
    CameraRoster& roster() { return roster_; }
    RunLogbook& logbook() { return logbook_; }
    SleepGuard& sleepGuard() { return sleepGuard_; }
    Transport& transport() { return transport_; }
    RunKeeper& keeper() { return keeper_; }
    ExposureControl& exposure() { return exposure_; }
    FireOutcomes& outcomes() { return outcomes_; }
    FireLoop& fireLoop() { return fireLoop_; }
    ManualFire& manualFire() { return manualFire_; }
    TestShots& testShots() { return testShots_; }
    const BodiesInUse& inUse() const { return inUse_; }
    LibraryDesk& library() { return library_; }
    MeasuredFloors& floors() { return floors_; }
    ScriptValidator& validator() { return validator_; }
    CadenceAdvisor& cadence() { return cadence_; }
    GapProfiler& gapProfiler() { return gapProfiler_; }
    CameraProfiler& cameraProfiler() { return cameraProfiler_; }
    CardWatch& cards() { return cards_; }
    RunAnalyzer& analyzer() { return analyzer_; }
    BodyModes& modes() { return modes_; }
    CameraDetector& detector() { return detector_; }
    ReconnectDesk& reconnect() { return reconnect_; }
    HeldSessions& heldSessions() { return heldSessions_; }
    Announcer& announcer() { return announcer_; }
    MutedGuard& audio() { return audio_; }
    BatteryWatch& batteries() { return batteries_; }
    HealthMonitor& health() { return health_; }
    TimeSources& time() { return time_; }
    Preflight& preflight() { return preflight_; }
    ExposureCheck& exposureCheck() { return exposureCheck_; }
    RigTransfer& transfer() { return transfer_; }
    RenderPace& renderPace() { return renderPace_; }
    FireClock& fireClock() { return fireClock_; }

private:
    void connectCameras();
    void connectVoice();
    void connectWatches();
    void connectProfilers(const CameraDetector::Families& families);
    void advance(double dt);
    void resetFiredTracking();
    double nextDue() const;
    bool voiceWanted() const;

    const ports::Ports ports_;
    RigLog log_;
    SiteDesk site_;
    SiteBook sites_;
    HorizonDesk horizons_;
    ScriptDesk script_;
    CommandConsent consent_;
    CameraRoster roster_;
    RunLogbook logbook_;
    SleepGuard sleepGuard_;
    Transport transport_;
    RunKeeper keeper_;
    MeasuredFloors floors_;
    ExposureControl exposure_;
    FireOutcomes outcomes_;
    FireLoop fireLoop_;
    ManualFire manualFire_;
    BodiesInUse inUse_;
    TestShots testShots_;
    LibraryDesk library_;
    ScriptValidator validator_;
    CadenceAdvisor cadence_;
    GapProfiler gapProfiler_;
    CameraProfiler cameraProfiler_;
    CardWatch cards_;
    RunAnalyzer analyzer_;
    BodyModes modes_;
    CameraDetector detector_;
    ReconnectDesk reconnect_;
    HeldSessions heldSessions_;
    Announcer announcer_;
    AlarmSound alarmSound_;
    MutedGuard audio_;
    BatteryWatch batteries_;
    HealthMonitor health_;
    TimeSources time_;
    Preflight preflight_;
    ExposureCheck exposureCheck_;
    RigTransfer transfer_;
    RenderPace renderPace_;
    FireClock fireClock_;
};

} // namespace zenka::rig

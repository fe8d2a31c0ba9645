#include "rig/RigModel.h"

#include <algorithm>

namespace zenka::rig {

namespace {

constexpr base::Seconds exitLimit{2}; ///< for a body to be let go of at the end of the program

} // namespace

RigModel::RigModel(const ports::Ports& ports, const std::string& appVersion,
                   const CameraDetector::Families& families)
    : ports_(ports), log_(ports_.loop), site_(ports_, log_), sites_(ports_, log_, site_),
      horizons_(ports_, log_, site_), script_(ports_, log_, site_), consent_(ports_.settings, log_, script_),
      logbook_(ports_, log_, site_, roster_, appVersion), sleepGuard_(ports_.keepAwake, log_),
      transport_(ports_, log_, site_, script_, logbook_, sleepGuard_),
      keeper_(ports_, log_, site_, script_, roster_, transport_, appVersion), floors_(ports_.settings),
      exposure_(ports_, log_, site_, script_, roster_, floors_, logbook_),
      outcomes_(ports_, log_, site_, roster_, logbook_, transport_),
      fireLoop_(ports_, log_, script_, roster_, exposure_, logbook_, transport_, outcomes_),
      manualFire_(ports_, roster_, transport_, outcomes_, families),
      testShots_(log_, script_, roster_, transport_, outcomes_, manualFire_, inUse_),
      library_(ports_, log_, roster_), validator_(ports_, log_, site_, script_, roster_, floors_, horizons_),
      cadence_(log_, roster_, script_, floors_),
      gapProfiler_(ports_, log_, roster_, transport_, manualFire_, floors_, inUse_),
      cameraProfiler_(ports_, roster_, transport_, library_, inUse_), cards_(ports_),
      analyzer_(ports_, log_, script_, transport_, logbook_, cards_), modes_(log_, roster_),
      detector_(ports_, log_, roster_, transport_, families),
      reconnect_(ports_, log_, roster_, logbook_, transport_, families),
      heldSessions_(ports_, log_, roster_, fireLoop_, inUse_, families),
      announcer_(ports_, log_, script_, consent_), alarmSound_(ports_, log_),
      audio_(ports_, log_, [this] { return voiceWanted(); }),
      batteries_(ports_, log_, roster_, transport_, modes_), health_(ports_, log_), time_(ports_, log_),
      preflight_(ports_, log_,
                 {.site = site_,
                  .sites = sites_,
                  .horizons = horizons_,
                  .roster = roster_,
                  .modes = modes_,
                  .script = script_,
                  .consent = consent_,
                  .validator = validator_,
                  .cadence = cadence_,
                  .batteries = batteries_,
                  .health = health_,
                  .audio = audio_,
                  .time = time_},
                 time_, validator_, modes_),
      exposureCheck_(ports_, log_, roster_, transport_, modes_, manualFire_, inUse_),
      transfer_(ports_, log_,
                {.site = site_,
                 .sites = sites_,
                 .script = script_,
                 .library = library_,
                 .rules = exposure_.rules(),
                 .floors = floors_,
                 .horizons = horizons_,
                 .transport = transport_},
                appVersion),
      renderPace_(ports_.clock, transport_, [this] { return timeToNextEvent(); }),
      fireClock_(
          ports_, log_, transport_, [this](double dt) { advance(dt); }, [this] { return nextDue(); }) {
    site_.recomputed().connect([this] {
        transport_.followSite();
        script_.compile();
    });
    site_.movedAway().connect([this] {
        sites_.resolveTimeZone();
        sites_.lookUpElevation();
    });
    // A run under way keeps the site that it began with.
    sites_.elevationFound().connect([this](double metres) {
        if (!transport_.runActive())
            sites_.takeElevation(metres);
    });
    script_.compiled().connect([this] {
        outcomes_.clearResults();
        resetFiredTracking();
    });
    transport_.moved().connect([this] { resetFiredTracking(); });
    transport_.activityChanged().connect([this] { fireClock_.retuneTickRate(); });
    transport_.runBegan().connect([this](TimingMode mode) {
        outcomes_.clearResults();
        exposure_.resetForRun();
        consent_.runBegins();
        keeper_.saveRunState(mode == TimingMode::live ? RunState::ArmKind::real
                                                      : RunState::ArmKind::simulation);
    });
    transport_.runTicked().connect([this] { keeper_.heartbeatRunState(); });
    transport_.runOver().connect([this] { keeper_.clearRunState(); });
    transport_.shown().connect([this] { renderPace_.requestRender(true); });
    connectCameras();
    connectProfilers(families);
    connectVoice();
    connectWatches();
}

bool RigModel::voiceWanted() const {
    return announcer_.audioEnabled().get() || batteries_.lowBatteryAudio() ||
           batteries_.criticalBatteryAudio();
}

void RigModel::connectVoice() {
    const auto speak = [this](const std::string& words) { announcer_.speak(words); };
    reconnect_.spoken().connect(speak);
    batteries_.spoken().connect(speak);
    health_.spoken().connect(speak);
    exposure_.spoken().connect([this](const std::string& words) { announcer_.speakIfWanted(words); });
    reconnect_.alarmSounds().connect(
        [this](bool sounds) { sounds ? alarmSound_.startAlarmSound() : alarmSound_.stop(); });
    batteries_.alarmSound().connect([this] { alarmSound_.playOnce(); });
    transport_.runBegan().connect([this](TimingMode) { announcer_.warmUp(); });
}

void RigModel::connectWatches() {
    batteries_.heartbeat().connect([this] {
        heldSessions_.keepAliveHeldSessions();
        audio_.refreshAudioOutput();
        keeper_.eclipseDayLiveNudge();
    });
    batteries_.flagDisconnect().connect([this](const auto& camera) { reconnect_.flagDisconnect(camera); });
    roster_.removed().connect([this](const std::string& id) { batteries_.forget(id); });
    health_.sampled().connect([this] { batteries_.checkMacBattery(health_.health().get()); });
    health_.thermalState().changed().connect(
        [this](ports::ThermalState state) { renderPace_.setThermalState(state); });
    transport_.setClockOffset([this] { return time_.gpsOffsetSeconds().get(); });
}

void RigModel::connectProfilers(const CameraDetector::Families& families) {
    transport_.setArmCheck([this] { return cadence_.holdsArming(); });
    logbook_.setMoreFacts([this, families] {
        std::map<std::string, std::string> facts{{"thermal", wordOf(health_.thermalState().get())}};
        for (const auto& family : families)
            facts.merge(family->reportFacts());
        return facts;
    });
    // What explains the drops of a run is read before its card is asked for.
    cadence_.explained().connect([this] { analyzer_.runCompleted(); });
    logbook_.completed().connect([this](const std::vector<BodyTally>& bodies) {
        cadence_.explainDrops(bodies);
        if (!cadence_.dropExplainer().get())
            analyzer_.runCompleted();
    });
    roster_.changed().connect([this] { gapProfiler_.followRoster(); });
    transport_.activityChanged().connect([this] {
        gapProfiler_.followRun();
        analyzer_.followRun();
    });
    gapProfiler_.setCheckLink([families, queue = ports_.queues.serial("zenka.linkcheck"),
                               &loop = ports_.loop](const CameraRoster::Camera& camera, const auto& done) {
        queue->post([families, &loop, backend = camera->backend(), port = camera->port(), done] {
            bool alive = true;
            for (const auto& family : families) {
                if (family->backend() == backend)
                    alive = family->linkAlive(port).value_or(true);
            }
            loop.post([done, alive] { done({.alive = alive}); });
        });
    });
}

void RigModel::connectCameras() {
    using Camera = CameraRoster::Camera;
    outcomes_.flagDisconnect().connect([this](const Camera& camera) { reconnect_.flagDisconnect(camera); });
    outcomes_.requestReconnect().connect(
        [this](const Camera& camera) { reconnect_.requestReconnect(camera); });
    const auto carry = [this](const std::string& from, const std::string& to) {
        outcomes_.carry(from, to);
        modes_.carry(from, to);
        testShots_.carry(from, to);
        batteries_.carry(from, to);
    };
    heldSessions_.idle().connect([this](const Camera& camera) {
        // Questions to a body that is being got back would keep its port from being reset.
        if (reconnect_.downCams().contains(camera->id()))
            return;
        modes_.recheck(camera);
        camera->learnChoices();
    });
    heldSessions_.gone().connect([this](const Camera& camera) {
        reconnect_.requestReconnect(camera);
        // One that cannot be known again does not come back by itself.
        if (!reconnect_.downCams().contains(camera->id()))
            reconnect_.flagDisconnect(camera);
    });
    roster_.removed().connect([this](const std::string& id) { reconnect_.forget(id); });
    reconnect_.reconnected().connect(carry);
    detector_.carried().connect(carry);
    roster_.labelled().connect([this](const cameras::CameraControl& camera, const std::string& label) {
        library_.noteLabel(camera, label);
    });
    roster_.changed().connect([this] { manualFire_.followRoster(); });
    detector_.passBegan().connect([this] { reconnect_.clearDisconnectState(); });
    detector_.published().connect([this] {
        reconnect_.setHubs(detector_.hubs());
        modes_.recheckModes();
        heldSessions_.askSoon();
    });
    keeper_.rebindCameras().connect([this] {
        detector_.useRealCameras();
        detector_.detectCameras();
    });
}

void RigModel::bootstrap() {
    floors_.discardFabricatedCadenceMeasurements();
    floors_.discardOlympusTriggerEraMeasurements();
    site_.restore();
    sites_.restore();
    horizons_.restore();
    script_.restore();
    library_.restore();
    recompute();
    transport_.restoreSimClock();
    keeper_.checkForResumableRun();
    keeper_.checkEclipseDay();
    cards_.start();
    fireClock_.startClock();
    batteries_.startBatteryHeartbeat();
    time_.startGPS();
    health_.startHealthMonitor();
    audio_.refreshAudioOutput();
}

void RigModel::recompute() {
    site_.recompute();
}

void RigModel::handleAppWillTerminate() {
    script_.keep();
    fireLoop_.giveUpUnderWay();
    logbook_.closeForExit();
    keeper_.closeForExit();
    detector_.cancelDetect();
    announcer_.endCommands();
    for (const auto& camera : roster_.cameras())
        camera->shutDown(exitLimit);
}

void RigModel::advance(double dt) {
    if (!transport_.advance(dt))
        return;
    fireLoop_.scan();
    announcer_.announceDue(transport_.clock());
    renderPace_.requestRender(false);
}

void RigModel::resetFiredTracking() {
    fireLoop_.resetFiredTracking();
    announcer_.resetCursor(transport_.clock());
    fireClock_.wakeForNextDue();
}

double RigModel::nextDue() const {
    return std::min(fireLoop_.nextOffset(), announcer_.nextOffset());
}

double RigModel::timeToNextEvent() const {
    return std::max(nextDue() - transport_.clock(), 0.0);
}

} // namespace zenka::rig

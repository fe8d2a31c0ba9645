#include "rig/links/ReconnectDesk.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds pollPeriod{2.0};
constexpr double groupWindow = 8.0; // seconds in which drops count as one event
constexpr double flapLimit = 15.0;  // seconds that a rebind must hold
constexpr int strikesToSlowLane = 3;
constexpr int pollsToAdvice = 15; // 30 s
constexpr int slowLanePolls = 15;
constexpr base::Seconds standDownLimit{3.0};
/// A single body is spoken of after this, so that several at once are spoken of together.
constexpr base::Seconds speechGrace{1.0};

} // namespace

ReconnectDesk::ReconnectDesk(const ports::Ports& ports, RigLog& log, CameraRoster& roster,
                             RunLogbook& logbook, const Transport& transport, Families families)
    : ports_(ports), log_(log), roster_(roster), logbook_(logbook), transport_(transport),
      families_(std::move(families)), queue_(ports.queues.serial("reconnect")) {
}

CameraRoster::Camera ReconnectDesk::cameraOf(const std::string& id) const {
    const auto& cameras = roster_.cameras();
    const auto found = std::ranges::find(cameras, id, [](const auto& camera) { return camera->id(); });
    return found == cameras.end() ? nullptr : *found;
}

std::string ReconnectDesk::serialOf(const cameras::CameraControl& camera) const {
    return roster_.serialShared(camera.serial()) ? std::string() : camera.serial();
}

void ReconnectDesk::flagDisconnect(const CameraRoster::Camera& camera) {
    const std::string id = camera->id();
    if (!camera->isReal() || !alarmed_.insert(id).second)
        return;
    const std::string name = roster_.labelFor(*camera);
    recordDownCam(*camera, name);
    noteFlapping(id, name);
    if (!toldAsGroup(*camera))
        tellDisconnected(*camera, name);
    if (serialOf(*camera).empty())
        cameraRecoveryHint_.set(
            name + " has no serial number of its own to be known by, so it does not come back by "
                   "itself. Check cable and power, then press Detect when no run is on.");
    raiseAlarm();
    startReconnectLoop();
}

void ReconnectDesk::requestReconnect(const CameraRoster::Camera& camera) {
    const std::string name = roster_.labelFor(*camera);
    if (!camera->isReal() || downCams_.contains(camera->id()))
        return;
    if (serialOf(*camera).empty()) {
        if (noSerialTold_.insert(camera->id()).second)
            log_.pushLog(name + " can't be single-camera reconnected (no serial). Use Detect.");
        return;
    }
    log_.pushLog("🔌 Reconnecting " + name + " (single camera; the others keep firing)…");
    recordDownCam(*camera, name);
    startReconnectLoop();
}

void ReconnectDesk::recordDownCam(const cameras::CameraControl& camera, const std::string& name) {
    downCams_[camera.id()] = {.id = camera.id(),
                              .serial = serialOf(camera),
                              .model = camera.model(),
                              .label = name,
                              .backend = camera.backend()};
    roster_.setDisconnected(camera.id(), true);
}

void ReconnectDesk::noteFlapping(const std::string& id, const std::string& name) {
    const auto back = reconnectedAt_.find(id);
    if (back == reconnectedAt_.end() || now() - back->second >= flapLimit)
        return;
    if (++flapStrikes_[id] < strikesToSlowLane || !slowLaneCams_.insert(id).second)
        return;
    log_.pushLog(name + " keeps reconnecting then dropping (flapping). Power-cycle it (off, then on). I keep "
                        "checking for it every 30 seconds and will rebind automatically once it is healthy.");
    spoken_.emit(name + " is flapping. Power-cycle it. I will rebind it automatically.");
}

bool ReconnectDesk::toldAsGroup(const cameras::CameraControl& camera) {
    const auto hub = hubs_.find(camera.serial());
    recentDropEvents_.push_back({.at = now(), .hub = hub == hubs_.end() ? std::string() : hub->second});
    std::erase_if(recentDropEvents_, [&](const DropEvent& drop) { return now() - drop.at > groupWindow; });
    if (recentDropEvents_.size() < 2)
        return false;
    const std::string& first = recentDropEvents_.front().hub;
    const bool oneHub = !first.empty() && std::ranges::all_of(recentDropEvents_, [&](const DropEvent& drop) {
        return drop.hub == first;
    });
    ports_.loop.cancel(speech_);
    log_.pushLog(absl::StrFormat(
        "%d cameras dropped %swithin seconds — that pattern is almost always POWER, not USB. Check the power "
        "bank or hub feeding them (a dead dongle drops every camera on it together). I keep trying to rebind "
        "them automatically.",
        static_cast<int>(recentDropEvents_.size()), oneHub ? "on the same hub/dongle " : ""));
    spoken_.emit("Multiple cameras dropped together. Check the power to your hub.");
    return true;
}

void ReconnectDesk::tellDisconnected(const cameras::CameraControl& camera, const std::string& name) {
    log_.pushLog("🛑 CAMERA DISCONNECTED: " + name);
    const bool idle = !transport_.runActive() && !serialOf(camera).empty();
    const std::string words =
        "Warning. Camera " + name +
        (idle ? " disconnected (idle). Re-plug or power-cycle; I rebind it automatically."
              : " disconnected.");
    speech_ = ports_.loop.after(speechGrace, lifeline_.guard([this, words] { spoken_.emit(words); }));
}

void ReconnectDesk::raiseAlarm() {
    publishNames();
    showDisconnectAlarm_.set(true);
    alarmSounds_.emit(true);
}

void ReconnectDesk::acknowledgeAlarm() {
    alarmSounds_.emit(false);
    showDisconnectAlarm_.set(false);
}

void ReconnectDesk::startReconnectLoop() {
    if (reconnectTimer_ != ports::MainLoop::TimerId::none)
        return;
    reconnectTimer_ = ports_.loop.every(pollPeriod, lifeline_.guard([this] { attemptReconnect(); }));
}

void ReconnectDesk::stopReconnectLoop() {
    ports_.loop.cancel(reconnectTimer_);
    reconnectTimer_ = ports::MainLoop::TimerId::none;
    servicesOff_.clear();
}

void ReconnectDesk::busChanged() {
    if (reconnectTimer_ == ports::MainLoop::TimerId::none || reconnectInFlight_)
        return;
    askWhetherItEverLeft();
    scan(true);
}

void ReconnectDesk::attemptReconnect() {
    if (reconnectInFlight_)
        return;
    ++reconnectPolls_;
    giveAdvice();
    askWhetherItEverLeft();
    scan(false);
}

void ReconnectDesk::giveAdvice() {
    for (const auto& family : families_) {
        const std::string advice = family->stuckAdvice();
        if (!advice.empty() && stuckTold_.insert(family->backend()).second)
            log_.pushLog(advice);
    }
    if (reconnectPolls_ < pollsToAdvice || std::exchange(wedgeGuided_, true))
        return;
    const std::string names = namesDown();
    const std::string words =
        names + (downCams_.size() > 1 ? " have not" : " has not") +
        " reconnected after 30s. A camera can drop into a stuck USB state I can't clear in software. "
        "Power-cycle the camera (turn it off, then on) or unplug and replug its cable; I rebind "
        "automatically "
        "once it is back.";
    log_.pushLog(words);
    cameraRecoveryHint_.set(words);
    spoken_.emit(names + " appears stuck. Power-cycle the camera to recover it.");
}

void ReconnectDesk::askWhetherItEverLeft() {
    // One that answers but delivers nothing is asked in vain: only silence may be a false alarm.
    for (const std::string& id : alarmed_) {
        const auto camera = cameraOf(id);
        if (!camera || !camera->connected() || !askedWhetherItLeft_.insert(id).second)
            continue;
        standDownProbing_.insert(id);
        const auto answered =
            lifeline_.guard([this, id, generation = generation_](const cameras::CameraStatus& status) {
                const bool told = status.isManual || status.modeName || status.batteryPercent;
                if (told && generation == generation_ && standDownProbing_.erase(id) > 0)
                    standDown(id);
            });
        ports_.loop.after(standDownLimit, lifeline_.guard([this, id, generation = generation_] {
            if (generation == generation_)
                standDownProbing_.erase(id);
        }));
        // The answer may come at once, and then the list changes: not from within this loop.
        ports_.loop.post(lifeline_.guard([camera, answered] { camera->probe(answered); }));
    }
}

void ReconnectDesk::standDown(const std::string& id) {
    const auto found = downCams_.find(id);
    if (found == downCams_.end())
        return;
    const std::string words = found->second.label +
                              ": answered on its existing connection — it never actually left. False alarm; "
                              "standing down.";
    ++falseAlarms_;
    log_.pushLog(words);
    logbook_.noteEvent(words);
    reconnected_.emit(id, id);
    bodyIsBack(id);
}

void ReconnectDesk::scan(bool busHasChanged) {
    struct Look {
        std::shared_ptr<CameraFamily> family;
        std::vector<DownBody> bodies;
    };
    // A flapping cable changes the bus all the time, so that opens the slow lane to nobody.
    const bool slowLaneTurn = !busHasChanged && reconnectPolls_ % slowLanePolls == 0;
    std::vector<Look> looks;
    for (const auto& family : families_) {
        // The first poll of each round of so many.
        const int between = family->pollsBetweenScans();
        const bool itsTurn = busHasChanged || between <= 1 || reconnectPolls_ % between == 1;
        Look look{.family = family, .bodies = {}};
        for (const auto& [id, body] : downCams_) {
            const bool due = slowLaneCams_.contains(id) ? slowLaneTurn : itsTurn;
            if (body.backend == family->backend() && due && !standDownProbing_.contains(id) &&
                !body.serial.empty())
                look.bodies.push_back(body);
        }
        if (look.bodies.empty())
            continue;
        servicesOff_.try_emplace(family->backend(), family);
        looks.push_back(std::move(look));
    }
    if (looks.empty())
        return;
    // What another driver holds still must be let go of first.
    for (const Look& look : looks) {
        for (const DownBody& body : look.bodies) {
            const auto camera = cameraOf(body.id);
            if (camera && camera->connected())
                look.family->release(camera);
            else if (camera) // a driver that gave up by itself may still hold a session
                camera->suspend();
        }
    }
    reconnectInFlight_ = true;
    ports::MainLoop& loop = ports_.loop;
    const CameraFamily::Tell tell = [&loop, push = lifeline_.guard([this](const std::string& text) {
        log_.pushLog(text);
    })](std::string text) { loop.post([push, text = std::move(text)] { push(text); }); };
    const auto arrive =
        lifeline_.guard([this, generation = generation_](const std::vector<CameraFamily::Rebound>& results) {
            reconnectInFlight_ = false;
            if (generation == generation_)
                finishReconnect(results);
        });
    queue_->post([looks, tell, arrive, &loop] {
        std::vector<CameraFamily::Rebound> results;
        for (const Look& look : looks) {
            for (auto& result : look.family->rebind(look.bodies, tell))
                results.push_back(std::move(result));
        }
        loop.post([arrive, results] { arrive(results); });
    });
}

void ReconnectDesk::finishReconnect(const std::vector<CameraFamily::Rebound>& results) {
    for (const auto& [id, make] : results) {
        const auto found = downCams_.find(id);
        if (found == downCams_.end())
            continue; // it was taken out of the list meanwhile
        const CameraRoster::Camera camera = make();
        const std::string name = found->second.label;
        const std::string newId = camera->id();
        camera->forceFullExposureNextFrame();
        roster_.replace(id, camera);
        reconnected_.emit(id, newId);
        reconnectedAt_[newId] = now();
        if (newId != id) {
            flapStrikes_[newId] = flapStrikes_[id];
            flapStrikes_.erase(id);
        }
        log_.pushLog("✅ RECONNECTED " + name + "; resuming captures automatically");
        bodyIsBack(id);
        if (downCams_.empty())
            log_.pushLog("All cameras reconnected; run continues.");
    }
}

void ReconnectDesk::forget(const std::string& id) {
    if (downCams_.contains(id))
        bodyIsBack(id);
}

void ReconnectDesk::bodyIsBack(const std::string& id) {
    downCams_.erase(id);
    alarmed_.erase(id);
    slowLaneCams_.erase(id);
    askedWhetherItLeft_.erase(id);
    standDownProbing_.erase(id);
    roster_.setDisconnected(id, false);
    publishNames();
    if (alarmed_.empty()) {
        showDisconnectAlarm_.set(false);
        alarmSounds_.emit(false);
        ports_.loop.cancel(speech_);
    }
    if (!downCams_.empty())
        return;
    stopReconnectLoop();
    reconnectPolls_ = 0;
    wedgeGuided_ = false;
    cameraRecoveryHint_.set(std::nullopt);
}

void ReconnectDesk::clearDisconnectState() {
    stopReconnectLoop();
    ports_.loop.cancel(speech_);
    for (const auto& [id, body] : downCams_)
        roster_.setDisconnected(id, false);
    downCams_.clear();
    alarmed_.clear();
    reconnectedAt_.clear();
    flapStrikes_.clear();
    slowLaneCams_.clear();
    askedWhetherItLeft_.clear();
    standDownProbing_.clear();
    noSerialTold_.clear();
    stuckTold_.clear();
    recentDropEvents_.clear();
    reconnectPolls_ = 0;
    wedgeGuided_ = false;
    ++generation_;
    publishNames();
    cameraRecoveryHint_.set(std::nullopt);
    showDisconnectAlarm_.set(false);
    alarmSounds_.emit(false);
}

void ReconnectDesk::publishNames() {
    std::vector<std::string> names;
    for (const auto& [id, body] : downCams_) {
        if (alarmed_.contains(id))
            names.push_back(body.label);
    }
    disconnectedNames_.set(std::move(names));
}

std::string ReconnectDesk::namesDown() const {
    std::vector<std::string> names;
    names.reserve(downCams_.size());
    for (const auto& [id, body] : downCams_)
        names.push_back(body.label);
    return base::joined(names);
}

} // namespace zenka::rig

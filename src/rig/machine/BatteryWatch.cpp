#include "rig/machine/BatteryWatch.h"

#include "base/Text.h"
#include "rig/shared/PlatformWords.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds batteryPeriod{45.0};
constexpr int usualThreshold = 20;
/// Percents that a battery must gain before it may warn again, so that one at a limit does not flap.
constexpr int hysteresis = 5;
constexpr int critical = 10;      ///< below it a body is about to stop
constexpr int notCritical = 15;   ///< above it it no longer is
constexpr double noPercent = 998; ///< what bodies send beyond it stands for "unknown"
constexpr int macCritical = 11;
constexpr int macNotCritical = 16;
constexpr int macLow = 21;
constexpr int macNotLow = 26;

} // namespace

BatteryWatch::BatteryWatch(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                           const Transport& transport, BodyModes& modes)
    : ports_(ports), log_(log), roster_(roster), transport_(transport), modes_(modes) {
    modes.batteryTold().connect(
        [this](const cameras::CameraControl& camera, int percent) { checkLowBattery(camera, percent); });
}

void BatteryWatch::startBatteryHeartbeat() {
    ports_.loop.cancel(batteryTimer_);
    batteryTimer_ = ports_.loop.every(batteryPeriod, lifeline_.guard([this] {
        pollBattery();
        heartbeat_.emit();
    }));
}

// --- bodies

void BatteryWatch::pollBattery() {
    if (roster_.cameraMode().get() != CameraMode::live)
        return;
    for (const auto& camera : roster_.cameras()) {
        if (!camera->polled() || camera->busy() || roster_.isDisconnected(camera->id()) ||
            !asked_.insert(camera->id()).second)
            continue;
        camera->poll(
            lifeline_.guard([this, weak = std::weak_ptr(camera), id = camera->id()](const auto& reply) {
                asked_.erase(id);
                if (const auto body = weak.lock())
                    polled(body, reply);
            }));
    }
}

void BatteryWatch::polled(const CameraRoster::Camera& camera, const cameras::PollReply& reply) {
    if (!reply.answered)
        return noAnswer(camera, reply.linkEnded);
    consecutivePollFails_[camera->id()] = 0;
    if (!reply.battery || std::isnan(*reply.battery) || *reply.battery < 0 || *reply.battery > noPercent)
        return;
    const int percent = static_cast<int>(*reply.battery);
    if (modes_.noteBattery(*camera, percent))
        log_.pushLog(absl::StrFormat("%s battery %d%%", roster_.labelFor(*camera), percent));
    checkLowBattery(*camera, percent);
}

void BatteryWatch::noAnswer(const CameraRoster::Camera& camera, bool linkEnded) {
    // In a run it is the shots that tell whether a body is still there.
    if (transport_.runActive() || camera->busy())
        return;
    if (linkEnded || ++consecutivePollFails_[camera->id()] > 1)
        flagDisconnect_.emit(camera);
}

void BatteryWatch::checkLowBattery(const cameras::CameraControl& camera, int percent) {
    const int threshold = lowBatteryThreshold();
    const std::string& id = camera.id();
    const std::string label = roster_.labelFor(camera);
    if (percent > threshold + hysteresis && std::erase_if(low_, [&](const Low& low) { return low.id == id; }))
        nameTheLow();
    if (percent < critical && critical_.try_emplace(id, label).second) {
        criticalBatteryName_.set(label);
        log_.pushLog(absl::StrFormat(
            "‼️ CRITICAL BATTERY: %s at %d%%. Swap NOW or it will die mid-shoot.", label, percent));
        alarmSound_.emit();
        if (criticalBatteryAudio())
            spoken_.emit(
                absl::StrFormat("Camera %s battery critically low. %d percent. Swap now.", label, percent));
    }
    const bool warned = std::ranges::count(low_, id, &Low::id) > 0;
    if (percent <= threshold && !warned) {
        low_.push_back({.id = id, .label = label});
        nameTheLow();
        log_.pushLog(absl::StrFormat(
            "🔋 LOW BATTERY: %s at %d%% (threshold %d%%). Swap soon; Zenka auto-reconnects on swap.", label,
            percent, threshold));
        if (lowBatteryAudio() && percent >= critical)
            spoken_.emit(absl::StrFormat("Camera %s battery at %d percent. Swap soon.", label, percent));
    }
    if (percent > notCritical) {
        noLongerCritical(id);
    }
}

void BatteryWatch::carry(const std::string& fromId, const std::string& toId) {
    for (Low& low : low_) {
        if (low.id == fromId)
            low.id = toId;
    }
    if (auto known = critical_.extract(fromId); !known.empty()) {
        known.key() = toId;
        critical_.insert(std::move(known));
    }
    consecutivePollFails_.erase(fromId);
    asked_.erase(fromId);
}

void BatteryWatch::forget(const std::string& id) {
    if (std::erase_if(low_, [&](const Low& low) { return low.id == id; }))
        nameTheLow();
    noLongerCritical(id);
    consecutivePollFails_.erase(id);
    asked_.erase(id);
}

void BatteryWatch::noLongerCritical(const std::string& id) {
    const auto known = critical_.extract(id);
    if (known.empty() || criticalBatteryName_.get() != known.mapped())
        return;
    criticalBatteryName_.set(critical_.empty() ? std::nullopt : std::optional(critical_.begin()->second));
}

void BatteryWatch::nameTheLow() {
    std::vector<std::string> names;
    names.reserve(low_.size());
    for (const Low& low : low_)
        names.push_back(low.label);
    lowBatteryNames_.set(std::move(names));
}

// --- the computer

void BatteryWatch::checkMacBattery(const SystemHealth& health) {
    if (health.onACPower) {
        if (macBatteryLow_.get() || macBatteryEmergency_.get()) {
            const std::string percent =
                health.macBatteryPercent ? absl::StrFormat(" %d%%,", *health.macBatteryPercent) : "";
            log_.pushLog("🔌 On wall power. " + std::string(platformWords::computerAtStart) + " battery" +
                         percent + " charging. All clear.");
        }
        macBatteryLow_.set(false);
        macBatteryEmergency_.set(false);
        macBatteryLowWarned_ = macBatteryEmergencyWarned_ = false;
        return;
    }
    if (!health.hasInternalBattery || !health.macBatteryPercent)
        return;
    const int percent = *health.macBatteryPercent;
    if (percent < macCritical) {
        macBatteryLow_.set(true);
        macBatteryLowWarned_ = true; // the louder warning says it all
        macBatteryEmergency_.set(true);
        if (!std::exchange(macBatteryEmergencyWarned_, true)) {
            log_.pushLog(
                absl::StrFormat("‼️ %s BATTERY CRITICAL: %d%% on battery. Plug into wall power NOW "
                                "or the whole rig stops.",
                                base::uppered(platformWords::computer), percent));
            alarmSound_.emit();
            spoken_.emit(absl::StrFormat("Warning. Your %s battery is critically low at %d percent. Plug in "
                                         "now or the whole rig will stop.",
                                         platformWords::computer, percent));
        }
        return;
    }
    if (percent < macLow) {
        macBatteryLow_.set(true);
        if (!std::exchange(macBatteryLowWarned_, true)) {
            log_.pushLog(absl::StrFormat("🔋 %s ON BATTERY: %d%%. Plug in soon. This is not enough to finish "
                                         "a full eclipse run.",
                                         base::uppered(platformWords::computer), percent));
            spoken_.emit(absl::StrFormat("Your %s is running low on battery. %d percent. Plug in soon.",
                                         platformWords::computer, percent));
        }
    }
    if (percent >= macNotCritical) {
        macBatteryEmergency_.set(false);
        macBatteryEmergencyWarned_ = false;
    }
    if (percent >= macNotLow) {
        macBatteryLow_.set(false);
        macBatteryLowWarned_ = false;
    }
}

// --- settings

int BatteryWatch::lowBatteryThreshold() const {
    const double stored = ports_.settings.number(settingsKeys::lowBatteryThreshold).value_or(0);
    return stored >= 1 && stored <= 100 ? static_cast<int>(stored) : usualThreshold;
}

void BatteryWatch::setLowBatteryThreshold(int percent) {
    ports_.settings.setNumber(settingsKeys::lowBatteryThreshold, percent);
}

bool BatteryWatch::lowBatteryAudio() const {
    return ports_.settings.flag(settingsKeys::lowBatteryAudio).value_or(true);
}

void BatteryWatch::setLowBatteryAudio(bool on) {
    ports_.settings.setFlag(settingsKeys::lowBatteryAudio, on);
}

bool BatteryWatch::criticalBatteryAudio() const {
    return ports_.settings.flag(settingsKeys::criticalBatteryAudio).value_or(true);
}

void BatteryWatch::setCriticalBatteryAudio(bool on) {
    ports_.settings.setFlag(settingsKeys::criticalBatteryAudio, on);
}

} // namespace zenka::rig

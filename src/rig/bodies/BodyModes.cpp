#include "rig/bodies/BodyModes.h"

#include <utility>

namespace zenka::rig {

void BodyModes::recheckModes() {
    for (const auto& camera : roster_.cameras())
        recheck(camera);
}

void BodyModes::recheck(const CameraRoster::Camera& camera) {
    const std::string label = roster_.labelFor(*camera);
    camera->probe(lifeline_.guard([this, camera, label](const cameras::CameraStatus& status) {
        recheckApply(*camera, status, label);
    }));
    camera->probeAutoISO(lifeline_.guard([this, camera, label](const cameras::AutoIsoStatus& status) {
        applyAutoISO(*camera, status, label);
    }));
}

void BodyModes::recheckApply(const cameras::CameraControl& camera, const cameras::CameraStatus& status,
                             const std::string& label) {
    Mode& mode = modes_[camera.id()];
    if (status.isManual && *status.isManual != mode.isManual && !*status.isManual)
        log_.pushLog("⚠️ " + label + ": the mode dial is on " + status.modeName.value_or("another mode") +
                     ", not M. The camera will meter its own exposures. Turn the dial to M.");
    if (status.isManual)
        mode.isManual = status.isManual;
    if (status.modeName)
        mode.modeName = *status.modeName;
    changed_.emit();
    if (status.batteryPercent) {
        noteBattery(camera, *status.batteryPercent);
        batteryTold_.emit(camera, *status.batteryPercent);
    }
}

bool BodyModes::noteBattery(const cameras::CameraControl& camera, int percent) {
    if (std::exchange(modes_[camera.id()].batteryPercent, percent) == percent)
        return false;
    changed_.emit();
    return true;
}

void BodyModes::applyAutoISO(const cameras::CameraControl& camera, const cameras::AutoIsoStatus& status,
                             const std::string& label) {
    if (!status.isAuto)
        return;
    Mode& mode = modes_[camera.id()];
    if (*status.isAuto && mode.autoIso != true)
        log_.pushLog("⚠️ " + label + ": " + status.detail.value_or("Auto-ISO on") +
                     ". The camera may float the ISO away from the script's. Turn Auto-ISO off.");
    mode.autoIso = status.isAuto;
    mode.autoIsoDetail = status.detail.value_or("");
    changed_.emit();
}

BodyModes::Mode BodyModes::of(const std::string& cameraId) const {
    const auto found = modes_.find(cameraId);
    return found == modes_.end() ? Mode{} : found->second;
}

std::string BodyModes::warningOf(const std::string& cameraId) const {
    const Mode mode = of(cameraId);
    if (mode.isManual == false)
        return "The mode dial is on " + (mode.modeName.empty() ? "another mode" : mode.modeName) +
               ". Turn it to M.";
    if (mode.autoIso == true)
        return (mode.autoIsoDetail.empty() ? "Auto-ISO on" : mode.autoIsoDetail) + ". Turn Auto-ISO off.";
    return {};
}

std::vector<std::pair<std::string, std::string>>
BodyModes::exposureProblems(const std::vector<CameraRoster::Camera>& cameras) const {
    std::vector<std::pair<std::string, std::string>> problems;
    for (const auto& camera : cameras) {
        const Mode mode = of(camera->id());
        if (!mode.isManual.value_or(true))
            problems.emplace_back(roster_.labelFor(*camera),
                                  "on " + (mode.modeName.empty() ? "another mode" : mode.modeName) +
                                      ", not M");
        else if (mode.autoIso.value_or(false))
            problems.emplace_back(roster_.labelFor(*camera), "on Auto-ISO");
    }
    return problems;
}

void BodyModes::carry(const std::string& fromId, const std::string& toId) {
    if (const auto found = modes_.find(fromId); found != modes_.end() && fromId != toId) {
        modes_[toId] = found->second;
        modes_.erase(fromId);
    }
}

} // namespace zenka::rig

#include "rig/bodies/CameraRoster.h"

#include "base/Text.h"
#include "cameras/MockCamera.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace zenka::rig {

namespace {

bool containsText(std::string_view text, std::string_view part) {
    return !part.empty() && text.find(part) != text.npos;
}

} // namespace

void CameraRoster::add(Camera camera) {
    cameras_.push_back(std::move(camera));
    changed_.emit();
}

CameraRoster::Camera CameraRoster::addPlanningCamera(const std::string& model) {
    const auto camera =
        std::make_shared<cameras::MockCamera>("planning-" + std::to_string(++planned_), model);
    camera->connect();
    add(camera);
    return camera;
}

void CameraRoster::removeCamera(const std::string& id) {
    const auto found = std::ranges::find(cameras_, id, [](const Camera& camera) { return camera->id(); });
    if (found == cameras_.end())
        return;
    const std::string gone = (*found)->id(); // what was given may belong to the body
    (*found)->disconnect();
    cameras_.erase(found);
    disconnected_.erase(gone);
    removed_.emit(gone);
    changed_.emit();
}

void CameraRoster::bringBack(const Camera& camera) {
    const auto planned = std::dynamic_pointer_cast<cameras::MockCamera>(camera);
    if (!planned)
        return;
    planned->connect();
    add(planned);
}

void CameraRoster::setRealCameras(const std::vector<Camera>& cameras) {
    std::erase_if(cameras_, [](const Camera& camera) { return camera->isReal(); });
    cameras_.insert(cameras_.begin(), cameras.begin(), cameras.end());
    disconnected_.clear();
    changed_.emit();
}

void CameraRoster::replace(const std::string& id, Camera camera) {
    const auto found = std::ranges::find(cameras_, id, [](const Camera& other) { return other->id(); });
    if (found == cameras_.end())
        return;
    const std::string label = labelFor(**found);
    const bool named = labels_.contains(keyOf(**found));
    *found = std::move(camera);
    if (named)
        labels_[keyOf(**found)] = label;
    disconnected_.erase(id);
    changed_.emit();
}

void CameraRoster::setDisconnected(const std::string& id, bool gone) {
    if (gone ? disconnected_.insert(id).second : disconnected_.erase(id) > 0)
        changed_.emit();
}

std::string CameraRoster::keyOf(const cameras::CameraControl& camera) const {
    const std::string& serial = camera.serial();
    return serial.empty() || serialShared(serial) ? "id:" + camera.id() : "serial:" + serial;
}

void CameraRoster::setLabel(const cameras::CameraControl& camera, const std::string& label) {
    labels_[keyOf(camera)] = label;
    if (!camera.serial().empty())
        labelled_.emit(camera, label);
    changed_.emit();
}

void CameraRoster::setLabelOfSerial(const std::string& serial, const std::string& label) {
    labels_["serial:" + serial] = label;
    changed_.emit();
}

void CameraRoster::forgetLabelOfSerial(const std::string& serial) {
    if (labels_.erase("serial:" + serial) > 0)
        changed_.emit();
}

bool CameraRoster::serialShared(const std::string& serial) const {
    return std::ranges::count(cameras_, serial, [](const Camera& camera) { return camera->serial(); }) > 1;
}

std::string CameraRoster::labelFor(const cameras::CameraControl& camera) const {
    if (const auto label = labels_.find(keyOf(camera)); label != labels_.end())
        return label->second;
    return bareModel(camera.model());
}

std::string CameraRoster::bareModel(const std::string& model) {
    const std::string bare = base::replacedAll(base::replacedAll(model, "Panasonic ", ""), "DC-", "");
    return std::string(base::trimmed(bare));
}

bool CameraRoster::cameraMatches(const cameras::CameraControl& camera, std::string_view token) const {
    const std::string wanted = base::lowered(token);
    const std::string label = base::lowered(labelFor(camera));
    if (label == wanted)
        return true;
    const bool owned = std::ranges::any_of(
        cameras_, [&](const Camera& other) { return base::lowered(labelFor(*other)) == wanted; });
    if (owned)
        return false;
    const std::string model = base::lowered(camera.model());
    const std::string bare = base::replacedAll(base::replacedAll(model, "panasonic ", ""), "dc-", "");
    return containsText(label, wanted) || containsText(wanted, label) || containsText(model, wanted) ||
           containsText(wanted, bare);
}

std::vector<CameraRoster::Camera> CameraRoster::camerasFor(std::string_view token) const {
    std::vector<Camera> matching;
    std::ranges::copy_if(cameras_, std::back_inserter(matching),
                         [&](const Camera& camera) { return cameraMatches(*camera, token); });
    return matching;
}

std::vector<CameraRoster::RosterEntry>
CameraRoster::cameraRoster(const std::vector<std::string>& scriptTokens) const {
    std::vector<RosterEntry> entries;
    for (const Camera& camera : cameras_) {
        if (!camera->connected() || isDisconnected(camera->id()))
            continue;
        const auto token = std::ranges::find_if(
            scriptTokens, [&](const std::string& name) { return cameraMatches(*camera, name); });
        const std::string label = labelFor(*camera);
        entries.push_back({.id = camera->id(),
                           .token = token == scriptTokens.end() ? label : *token,
                           .connected = true,
                           .label = label,
                           .model = camera->model()});
    }
    const auto missing = missingCameras(scriptTokens);
    entries.insert(entries.end(), missing.begin(), missing.end());
    return entries;
}

std::vector<CameraRoster::RosterEntry>
CameraRoster::missingCameras(const std::vector<std::string>& scriptTokens) const {
    std::vector<RosterEntry> entries;
    for (const std::string& token : scriptTokens) {
        const bool answered = std::ranges::any_of(cameras_, [&](const Camera& camera) {
            return camera->connected() && !isDisconnected(camera->id()) && cameraMatches(*camera, token);
        });
        if (!answered)
            entries.push_back({.token = token, .label = token});
    }
    return entries;
}

std::vector<CameraRoster::Camera>
CameraRoster::unusedConnectedCameras(const std::vector<std::string>& scriptTokens) const {
    std::vector<Camera> unused;
    std::ranges::copy_if(cameras_, std::back_inserter(unused), [&](const Camera& camera) {
        return camera->connected() && std::ranges::none_of(scriptTokens, [&](const std::string& token) {
                   return cameraMatches(*camera, token);
               });
    });
    return unused;
}

} // namespace zenka::rig

#include "rig/CameraRoster.h"

#include "base/Text.h"
#include "cameras/MockCamera.h"

#include <algorithm>
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
    (*found)->disconnect();
    cameras_.erase(found);
    changed_.emit();
}

void CameraRoster::bringBack(const Camera& camera) {
    const auto planned = std::dynamic_pointer_cast<cameras::MockCamera>(camera);
    if (!planned)
        return;
    planned->connect();
    add(planned);
}

void CameraRoster::setLabel(const cameras::CameraControl& camera, const std::string& label) {
    labels_[camera.id()] = label;
    changed_.emit();
}

std::string CameraRoster::labelFor(const cameras::CameraControl& camera) const {
    if (const auto label = labels_.find(camera.id()); label != labels_.end())
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

} // namespace zenka::rig

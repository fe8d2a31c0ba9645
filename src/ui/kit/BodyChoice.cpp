#include "ui/kit/BodyChoice.h"

#include "rig/bodies/CameraRoster.h"

#include <algorithm>

namespace zenka::ui {

void BodyChoice::choose(const std::string& id) {
    id_ = id;
    const auto body = camera();
    serial_ = body ? body->serial() : std::string();
}

void BodyChoice::follow() {
    if (camera() || serial_.empty())
        return;
    const auto& cameras = roster_.cameras();
    const auto same = std::ranges::find(cameras, serial_, [](const auto& each) { return each->serial(); });
    if (same != cameras.end())
        choose((*same)->id());
}

void BodyChoice::settle() {
    follow();
    if (camera())
        return;
    const auto& cameras = roster_.cameras();
    const auto here = std::ranges::find_if(cameras, [this](const auto& each) {
        return each->connected() && !roster_.isDisconnected(each->id());
    });
    if (here != cameras.end())
        choose((*here)->id());
    else
        choose(cameras.empty() ? std::string() : cameras.front()->id());
}

std::shared_ptr<cameras::CameraControl> BodyChoice::camera() const {
    const auto& cameras = roster_.cameras();
    const auto found = std::ranges::find(cameras, id_, [](const auto& each) { return each->id(); });
    return found == cameras.end() ? nullptr : *found;
}

} // namespace zenka::ui

#pragma once

#include <memory>
#include <string>

namespace zenka::cameras {
class CameraControl;
}

namespace zenka::rig {
class CameraRoster;
}

namespace zenka::ui {

/// The body that a sheet is for. A body that has got another driver, and another id with it, is the same one.
class BodyChoice {
public:
    explicit BodyChoice(const rig::CameraRoster& roster) : roster_(roster) {}

    void choose(const std::string& id);
    /// Stays with the body if it is still there, else takes the first one that is connected.
    void settle();
    /// The roster has changed. A body that is not there at the moment stays the one.
    void follow();
    const std::string& id() const { return id_; }
    /// Null where it is not there any more.
    std::shared_ptr<cameras::CameraControl> camera() const;

private:
    const rig::CameraRoster& roster_;
    std::string id_;
    std::string serial_;
};

} // namespace zenka::ui

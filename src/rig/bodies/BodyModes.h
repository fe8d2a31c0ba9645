#pragma once

#include "base/Lifeline.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/shared/RigLog.h"

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// What the bodies say of their dials and batteries. What a body could not tell leaves what it said before.
/// Main thread.
class BodyModes {
public:
    struct Mode {
        std::optional<bool> isManual;
        std::string modeName;
        std::optional<int> batteryPercent;
        std::optional<bool> autoIso;
        std::string autoIsoDetail;

        friend bool operator==(const Mode&, const Mode&) = default;
    };

    BodyModes(RigLog& log, const CameraRoster& roster) : log_(log), roster_(roster) {}

    /// Asks every body; the answers come when they come.
    void recheckModes();
    void recheck(const CameraRoster::Camera& camera);

    void recheckApply(const cameras::CameraControl& camera, const cameras::CameraStatus& status,
                      const std::string& label);
    void applyAutoISO(const cameras::CameraControl& camera, const cameras::AutoIsoStatus& status,
                      const std::string& label);

    /// What a body said of its battery; true when it is news.
    bool noteBattery(const cameras::CameraControl& camera, int percent);

    /// Empty for a body that has said nothing.
    Mode of(const std::string& cameraId) const;
    /// What is wrong with a body's dials, for its card; empty for nothing.
    std::string warningOf(const std::string& cameraId) const;
    /// For the bodies whose dials keep the script's exposures from applying: label, and what is wrong.
    std::vector<std::pair<std::string, std::string>>
    exposureProblems(const std::vector<CameraRoster::Camera>& cameras) const;
    /// A body has got another driver.
    void carry(const std::string& fromId, const std::string& toId);

    sigc::signal<void()>& changed() { return changed_; }
    /// A body has been asked and told its battery, in percent.
    sigc::signal<void(const cameras::CameraControl&, int)>& batteryTold() { return batteryTold_; }

private:
    RigLog& log_;
    const CameraRoster& roster_;
    std::map<std::string, Mode> modes_; // by camera id
    sigc::signal<void()> changed_;
    sigc::signal<void(const cameras::CameraControl&, int)> batteryTold_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

#pragma once

#include "base/Published.h"
#include "cameras/CameraControl.h"

#include <map>
#include <memory>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::rig {

enum class CameraMode {
    simulated, ///< the roster holds planning bodies
    live,      ///< the roster holds real bodies
};

/// The bodies that the rig has, and which of them a script means by a token.
class CameraRoster {
public:
    using Camera = std::shared_ptr<cameras::CameraControl>;

    const std::vector<Camera>& cameras() const { return cameras_; }
    const base::Published<CameraMode>& cameraMode() const { return cameraMode_; }

    void add(Camera camera);
    /// Adds a simulated body of a model.
    Camera addPlanningCamera(const std::string& model);
    void removeCamera(const std::string& id);
    /// Real bodies take the place of those of an earlier detection; planning bodies stay.
    void setRealCameras(const std::vector<Camera>& cameras);
    /// Another driver for a body, at the same place.
    void replace(const std::string& id, Camera camera);
    /// Takes a simulated body that was removed back in, under its label; a real one must be detected.
    void bringBack(const Camera& camera);

    /// A label follows the body by its serial number, or belongs to the driver where there is none or two
    /// bodies have the same.
    void setLabel(const cameras::CameraControl& camera, const std::string& label);
    void setLabelOfSerial(const std::string& serial, const std::string& label);
    void forgetLabelOfSerial(const std::string& serial);
    /// Two bodies of the roster report this serial number, so it tells neither from the other.
    bool serialShared(const std::string& serial) const;
    void setCameraMode(CameraMode mode) { cameraMode_.set(mode); }

    /// A model without its maker's prefixes.
    static std::string bareModel(const std::string& model);

    /// The user's label, else the bare model.
    std::string labelFor(const cameras::CameraControl& camera) const;

    /// Whether a body answers to a token. An exact label takes the token for its body alone; else a
    /// label or model that contains it, or is contained in it, does.
    bool cameraMatches(const cameras::CameraControl& camera, std::string_view token) const;

    /// The bodies that answer to a token, in roster order.
    std::vector<Camera> camerasFor(std::string_view token) const;

    /// Bodies that are known to be gone at this moment. They are not addressed.
    bool isDisconnected(const std::string& id) const { return disconnected_.contains(id); }
    void setDisconnected(const std::string& id, bool gone);

    /// A body, or a name of the script that no body answers to.
    struct RosterEntry {
        std::string id; ///< empty for a name without a body
        std::string token;
        bool connected = false;
        std::string label;
        std::string model;

        friend bool operator==(const RosterEntry&, const RosterEntry&) = default;
    };
    /// Connected bodies first, then the names of the script without one.
    std::vector<RosterEntry> cameraRoster(const std::vector<std::string>& scriptTokens) const;
    std::vector<RosterEntry> missingCameras(const std::vector<std::string>& scriptTokens) const;
    std::vector<Camera> unusedConnectedCameras(const std::vector<std::string>& scriptTokens) const;

    /// A body with a serial number was given a label by the user.
    sigc::signal<void(const cameras::CameraControl&, const std::string&)>& labelled() { return labelled_; }
    /// A body was taken out, by its id.
    sigc::signal<void(const std::string&)>& removed() { return removed_; }
    /// A body came, went or changed its name.
    sigc::signal<void()>& changed() { return changed_; }

private:
    std::vector<Camera> cameras_;
    base::Published<CameraMode> cameraMode_{CameraMode::simulated};
    std::string keyOf(const cameras::CameraControl& camera) const;

    std::map<std::string, std::string> labels_; // by keyOf()
    std::set<std::string> disconnected_;        // camera ids
    int planned_ = 0;
    sigc::signal<void(const cameras::CameraControl&, const std::string&)> labelled_;
    sigc::signal<void(const std::string&)> removed_;
    sigc::signal<void()> changed_;
};

} // namespace zenka::rig

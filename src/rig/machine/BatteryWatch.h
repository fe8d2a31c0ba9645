#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "cameras/CameraControl.h"
#include "ports/Ports.h"
#include "rig/bodies/BodyModes.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/machine/SystemHealth.h"
#include "rig/run/Transport.h"
#include "rig/shared/RigLog.h"

#include <map>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::rig {

/// The batteries of bodies and computer: asks, warns, and does not warn again until one was charged. Main
/// thread.
class BatteryWatch {
public:
    BatteryWatch(const ports::Ports& ports, RigLog& log, const CameraRoster& roster,
                 const Transport& transport, BodyModes& modes);

    /// The beat of all that is looked after now and then: every 45 s.
    void startBatteryHeartbeat();
    sigc::signal<void()>& heartbeat() { return heartbeat_; }

    /// Asks the bodies that tell their battery only when they are asked for it.
    void pollBattery();
    void checkLowBattery(const cameras::CameraControl& camera, int percent);
    /// A new sample of the machine.
    void checkMacBattery(const SystemHealth& health);

    /// A body has got another driver.
    void carry(const std::string& fromId, const std::string& toId);
    /// A body was taken out.
    void forget(const std::string& id);

    /// Labels of the bodies that are low, in the order in which they got so.
    const base::Published<std::vector<std::string>>& lowBatteryNames() const { return lowBatteryNames_; }
    /// The label of the body that is about to stop; the last one of several.
    const base::Published<std::optional<std::string>>& criticalBatteryName() const {
        return criticalBatteryName_;
    }
    const base::Published<bool>& macBatteryLow() const { return macBatteryLow_; }
    const base::Published<bool>& macBatteryEmergency() const { return macBatteryEmergency_; }

    /// The user's settings.
    int lowBatteryThreshold() const; ///< percent
    void setLowBatteryThreshold(int percent);
    bool lowBatteryAudio() const;
    void setLowBatteryAudio(bool on);
    bool criticalBatteryAudio() const;
    void setCriticalBatteryAudio(bool on);

    /// A sentence to speak.
    sigc::signal<void(const std::string&)>& spoken() { return spoken_; }
    /// The alarm sound is to be heard once.
    sigc::signal<void()>& alarmSound() { return alarmSound_; }
    /// A body does not answer any more.
    sigc::signal<void(const CameraRoster::Camera&)>& flagDisconnect() { return flagDisconnect_; }

private:
    void polled(const CameraRoster::Camera& camera, const cameras::PollReply& reply);
    void noAnswer(const CameraRoster::Camera& camera, bool linkEnded);
    void nameTheLow();
    void noLongerCritical(const std::string& id);

    const ports::Ports& ports_;
    RigLog& log_;
    const CameraRoster& roster_;
    const Transport& transport_;
    BodyModes& modes_;
    ports::MainLoop::TimerId batteryTimer_ = ports::MainLoop::TimerId::none;

    struct Low {
        std::string id;
        std::string label;
    };
    std::vector<Low> low_;
    std::map<std::string, std::string> critical_;     // label by id
    std::map<std::string, int> consecutivePollFails_; // by id
    std::set<std::string> asked_;                     // ids whose answers have not come yet
    base::Published<std::vector<std::string>> lowBatteryNames_;
    base::Published<std::optional<std::string>> criticalBatteryName_;
    base::Published<bool> macBatteryLow_{false};
    base::Published<bool> macBatteryEmergency_{false};
    bool macBatteryLowWarned_ = false;
    bool macBatteryEmergencyWarned_ = false;
    sigc::signal<void()> heartbeat_;
    sigc::signal<void(const std::string&)> spoken_;
    sigc::signal<void()> alarmSound_;
    sigc::signal<void(const CameraRoster::Camera&)> flagDisconnect_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

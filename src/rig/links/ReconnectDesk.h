#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/links/CameraFamily.h"
#include "rig/run/Transport.h"
#include "rig/runlog/RunLogbook.h"
#include "rig/shared/RigLog.h"

#include <deque>
#include <map>
#include <memory>
#include <optional>
#include <set>
#include <string>
#include <vector>

namespace zenka::rig {

/// Bodies that have gone: raises the alarm, looks for them every 2 s, and gives the run new drivers for
/// those that come back, while the others go on firing. A body is known by its serial number, never by its
/// port. Main thread.
class ReconnectDesk {
public:
    using Families = std::vector<std::shared_ptr<CameraFamily>>;

    ReconnectDesk(const ports::Ports& ports, RigLog& log, CameraRoster& roster, RunLogbook& logbook,
                  const Transport& transport, Families families);

    /// A body no longer answers: alarm, and it is looked for.
    void flagDisconnect(const CameraRoster::Camera& camera);
    /// A body has left the bus or is wedged: it is looked for without an alarm.
    void requestReconnect(const CameraRoster::Camera& camera);
    /// A body was taken out of the rig: it is looked for no longer.
    void forget(const std::string& id);
    /// Forgets all of it, as a new detection does.
    void clearDisconnectState();
    /// The bus has changed: looks at once, if it looks for anybody.
    void busChanged();
    /// The operator has seen the alarm: it is silent until the next one.
    void acknowledgeAlarm();

    /// Hubs by serial number, as the last look at the bus found them.
    void setHubs(std::map<std::string, std::string> hubBySerial) { hubs_ = std::move(hubBySerial); }

    const base::Published<bool>& showDisconnectAlarm() const { return showDisconnectAlarm_; }
    const base::Published<std::vector<std::string>>& disconnectedNames() const { return disconnectedNames_; }
    const base::Published<std::optional<std::string>>& cameraRecoveryHint() const {
        return cameraRecoveryHint_;
    }
    const std::map<std::string, DownBody>& downCams() const { return downCams_; }
    int falseAlarms() const { return falseAlarms_; }

    /// A sentence to speak.
    sigc::signal<void(const std::string&)>& spoken() { return spoken_; }
    /// The alarm sound is to begin or to end.
    sigc::signal<void(bool)>& alarmSounds() { return alarmSounds_; }
    /// A body is back: from the id of its old driver to that of the new one.
    sigc::signal<void(const std::string&, const std::string&)>& reconnected() { return reconnected_; }

private:
    struct DropEvent {
        double at = 0; ///< continuous seconds
        std::string hub;
    };

    double now() const { return ports_.clock.continuousSeconds(); }
    CameraRoster::Camera cameraOf(const std::string& id) const;
    /// The serial number that a body is looked for by; empty also where two bodies have the same, as the one
    /// that is still there would be taken for the lost one.
    std::string serialOf(const cameras::CameraControl& camera) const;
    void recordDownCam(const cameras::CameraControl& camera, const std::string& name);
    void noteFlapping(const std::string& id, const std::string& name);
    /// True when it is one of several at once, which is told instead of the single one.
    bool toldAsGroup(const cameras::CameraControl& camera);
    void tellDisconnected(const cameras::CameraControl& camera, const std::string& name);
    void raiseAlarm();
    void startReconnectLoop();
    void stopReconnectLoop();
    void attemptReconnect();
    void giveAdvice();
    void askWhetherItEverLeft();
    void standDown(const std::string& id);
    void scan(bool busHasChanged);
    void finishReconnect(const std::vector<CameraFamily::Rebound>& results);
    void bodyIsBack(const std::string& id);
    void publishNames();
    std::string namesDown() const;

    const ports::Ports& ports_;
    RigLog& log_;
    CameraRoster& roster_;
    RunLogbook& logbook_;
    const Transport& transport_;
    const Families families_;
    std::shared_ptr<ports::WorkQueue> queue_;

    base::Published<bool> showDisconnectAlarm_{false};
    base::Published<std::vector<std::string>> disconnectedNames_;
    base::Published<std::optional<std::string>> cameraRecoveryHint_;
    std::set<std::string> alarmed_; // ids of the bodies in the banner
    std::map<std::string, DownBody> downCams_;
    std::map<std::string, double> reconnectedAt_; // continuous seconds, by id
    std::map<std::string, int> flapStrikes_;
    std::set<std::string> slowLaneCams_;
    std::set<std::string> askedWhetherItLeft_;
    std::set<std::string> standDownProbing_;
    std::set<std::string> noSerialTold_;
    std::set<std::string> stuckTold_; // backends
    std::deque<DropEvent> recentDropEvents_;
    std::map<std::string, std::string> hubs_;
    ports::MainLoop::TimerId reconnectTimer_ = ports::MainLoop::TimerId::none;
    ports::MainLoop::TimerId speech_ = ports::MainLoop::TimerId::none;
    int reconnectPolls_ = 0;
    bool wedgeGuided_ = false;
    bool reconnectInFlight_ = false;
    int generation_ = 0; // counts up when all is forgotten: an answer from before is void
    std::map<std::string, ServicesOff> servicesOff_; // by backend, from its first look on
    int falseAlarms_ = 0;

    sigc::signal<void(const std::string&)> spoken_;
    sigc::signal<void(bool)> alarmSounds_;
    sigc::signal<void(const std::string&, const std::string&)> reconnected_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

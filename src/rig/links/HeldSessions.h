#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/fire/FireLoop.h"
#include "rig/links/CameraFamily.h"
#include "rig/shared/RigLog.h"

#include <functional>
#include <memory>
#include <string>
#include <utility>
#include <vector>

namespace zenka::rig {

/// Bodies that are held open between their frames: keeps their links awake, and notices one that has left
/// the bus before the next frame finds out. Main thread.
class HeldSessions {
public:
    using Families = std::vector<std::shared_ptr<CameraFamily>>;

    HeldSessions(const ports::Ports& ports, RigLog& log, const CameraRoster& roster, const FireLoop& fireLoop,
                 const BodiesInUse& inUse, Families families);

    /// Asks each body for a sign of life and those with time for it what they are set to, and looks for
    /// bodies that have gone. One with a frame soon is left alone.
    void keepAliveHeldSessions();

    /// Bodies have just been found: they are asked how they are set soon and once more, as one may need some
    /// tries to be held.
    void askSoon();

    /// Looks which bodies are no longer on the bus.
    void lookForGone();

    /// A body has time to be asked how it is set and what its battery has.
    sigc::signal<void(const CameraRoster::Camera&)>& idle() { return idle_; }
    /// A body has left the bus.
    sigc::signal<void(const CameraRoster::Camera&)>& gone() { return gone_; }

private:
    void askTheIdle();
    bool held(const cameras::CameraControl& camera) const;
    /// One that nothing wants for so many seconds.
    bool idleFor(const cameras::CameraControl& camera, double seconds) const;
    void tellGone(const std::vector<std::string>& ids);

    const ports::Ports& ports_;
    RigLog& log_;
    const CameraRoster& roster_;
    const FireLoop& fireLoop_;
    const BodiesInUse& inUse_;
    const Families families_;
    std::shared_ptr<ports::WorkQueue> queue_;
    bool looking_ = false;
    bool lookAgain_ = false; // the bus has changed while it was looked at
    sigc::signal<void(const CameraRoster::Camera&)> idle_;
    sigc::signal<void(const CameraRoster::Camera&)> gone_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

#pragma once

#include "base/Lifeline.h"
#include "rig/bodies/BodiesInUse.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/fire/FireOutcomes.h"
#include "rig/run/Transport.h"
#include "rig/script/ScriptDesk.h"
#include "rig/shared/RigLog.h"
#include "rig/shots/ManualFire.h"

#include <map>
#include <optional>
#include <string>

namespace zenka::rig {

/// Test shots as the operator asks for them: refuses one that could cost a frame of a live run, and takes
/// each result to the body's card and to the log, whoever still looks on. They are no part of the run's
/// log. Main thread.
class TestShots {
public:
    TestShots(RigLog& log, const ScriptDesk& script, const CameraRoster& roster, const Transport& transport,
              FireOutcomes& outcomes, ManualFire& manualFire, BodiesInUse& inUse);

    struct Result {
        bool ok = false;
        std::string settings; ///< "ISO 100 f/8 1/500"
        double latencyMs = 0;
        std::string sentShutter;           ///< in the body's own words; empty where it is not known
        std::string phrase;                ///< of a failure, short
        std::optional<std::string> advice; ///< of a failure, what to do
        std::string note;                  ///< the driver's own

        friend bool operator==(const Result&, const Result&) = default;
    };

    /// The next frame that the script has for a body; nothing when none is left.
    std::optional<script::Capture> nextCapture(const cameras::CameraControl& camera) const;

    /// Fires. A shot that is refused gives the reason, a sentence; else the answer is empty.
    std::string fire(const CameraRoster::Camera& camera, const cameras::Shot& shot);

    bool firing(const std::string& id) const { return firing_.contains(id); }
    /// What came of the last one of a body.
    std::optional<Result> result(const std::string& id) const;

    /// A body has got another driver, and another id with it.
    void carry(const std::string& fromId, const std::string& toId);

    /// A shot began or ended.
    sigc::signal<void()>& changed() { return changed_; }

private:
    std::string refusal(const cameras::CameraControl& camera, const cameras::Shot& shot) const;
    void completed(const CameraRoster::Camera& camera, const cameras::Shot& shot,
                   const cameras::CaptureOutcome& outcome);

    RigLog& log_;
    const ScriptDesk& script_;
    const CameraRoster& roster_;
    const Transport& transport_;
    FireOutcomes& outcomes_;
    ManualFire& manualFire_;
    BodiesInUse& inUse_;
    std::map<std::string, BodiesInUse::Use> firing_; // by id
    std::map<std::string, Result> results_;
    sigc::signal<void()> changed_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

#pragma once

#include "base/Uuid.h"
#include "rig/bodies/BodyModes.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/checks/CadenceAdvisor.h"
#include "rig/checks/ScriptValidator.h"
#include "rig/machine/BatteryWatch.h"
#include "rig/machine/HealthMonitor.h"
#include "rig/machine/TimeSources.h"
#include "rig/script/CommandConsent.h"
#include "rig/script/ScriptDesk.h"
#include "rig/site/HorizonDesk.h"
#include "rig/site/SiteBook.h"
#include "rig/site/SiteDesk.h"
#include "rig/voice/MutedGuard.h"

#include <string>
#include <vector>

namespace zenka::rig {

enum class PreflightStatus { ok, warn, fail };

struct PreflightCheck {
    base::Uuid id;
    std::string title;
    std::string detail; ///< what is the matter, and what to do about it
    PreflightStatus status = PreflightStatus::ok;
    bool holdsArming = true; ///< false for a warning that stands in every list

    friend bool operator==(const PreflightCheck&, const PreflightCheck&) = default;
};

/// What the list is read from.
struct PreflightSources {
    const SiteDesk& site;
    const SiteBook& sites;
    const HorizonDesk& horizons;
    const CameraRoster& roster;
    const BodyModes& modes;
    const ScriptDesk& script;
    const CommandConsent& consent;
    const ScriptValidator& validator;
    const CadenceAdvisor& cadence;
    const BatteryWatch& batteries;
    const HealthMonitor& health;
    const MutedGuard& audio;
    const TimeSources& time;
};

/// Everything that could spoil a run, always in the same order. Reads what is known and asks nobody.
std::vector<PreflightCheck> preflightChecks(const PreflightSources& rig);

} // namespace zenka::rig

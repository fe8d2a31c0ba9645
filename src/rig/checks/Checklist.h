#pragma once

#include "base/Instant.h"
#include "base/PrintedList.h"
#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/FramingBook.h"
#include "rig/bodies/LibraryDesk.h"
#include "rig/bodies/MeasuredFloors.h"
#include "rig/checks/CadenceAdvisor.h"
#include "rig/script/ScriptDesk.h"
#include "rig/site/HorizonDesk.h"
#include "rig/site/SiteDesk.h"

#include <string>

namespace zenka::rig {

/// What the checklist is read from.
struct ChecklistSources {
    const SiteDesk& site;
    const HorizonDesk& horizons;
    const ScriptDesk& script;
    const CameraRoster& roster;
    const LibraryDesk& library;
    const FramingBook& framings;
    const CadenceAdvisor& cadence;
    const MeasuredFloors& floors;
    std::string appVersion;
    base::Instant now; ///< when it is made
};

/// What the photographer has to know and to do by hand, for paper: contacts, what is to be done when, bodies,
/// computer. Works with as little as a site.
base::PrintedList checklist(const ChecklistSources& rig);

/// "Zenka Checklist 2026-08-12 Zaragoza, ES", as the name of a file without a suffix.
std::string checklistName(const std::string& eclipseId, const std::string& site);

} // namespace zenka::rig

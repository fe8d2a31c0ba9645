#pragma once

#include "rig/bodies/CameraRoster.h"
#include "rig/bodies/LibraryDesk.h"
#include "rig/checks/CadenceAdvisor.h"
#include "rig/script/ScriptDesk.h"
#include "rig/site/SiteDesk.h"

#include <string>

namespace zenka::rig {

/// What the context is read from.
struct AssistantSources {
    const SiteDesk& site;
    const CameraRoster& roster;
    const CadenceAdvisor& cadence;
    const LibraryDesk& library;
    const ScriptDesk& script;
};

/// What the script assistant is told of the rig: labelled lines of plain text, always in the same order.
/// Long lists are cut. Reads what is known and asks nobody.
std::string assistantContext(const AssistantSources& rig);

} // namespace zenka::rig

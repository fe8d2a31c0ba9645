#pragma once

#include "rig/CadenceAdvisor.h"
#include "rig/CameraRoster.h"
#include "rig/LibraryDesk.h"
#include "rig/ScriptDesk.h"
#include "rig/SiteDesk.h"

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

#pragma once

#include "base/PrintedList.h"
#include "rig/checks/Checklist.h"

#include <vector>

namespace zenka::rig {

/// A section for each body, or name of the script without one.
std::vector<base::PrintedSection> checklistBodies(const ChecklistSources& rig);

} // namespace zenka::rig

#pragma once

#include "ui/wizard/WizardPreview.h"

#include <string_view>
#include <vector>

namespace zenka::ui {

/// What a generated script says in its comments of what it left out, took instead or could not do. What it
/// says of some of so many cameras has their names ahead.
std::vector<WizardRemark> scriptRemarks(std::string_view text, std::size_t cameras);

/// Issues of the script's frames. What comes of many pairs of frames of a camera for one reason is told once,
/// with the first pair and a count.
std::vector<WizardRemark> issueRemarks(const std::vector<script::ScriptDiag>& issues);

WizardRemark::Kind kindOf(const script::ScriptDiag& diagnostic);

/// Why a script has nothing to shoot; empty where it has.
std::string emptinessReason(const WizardRequest& request, int frames);

/// Collects remarks: what is said again counts up.
void addRemark(std::vector<WizardRemark>& remarks, WizardRemark remark);

} // namespace zenka::ui

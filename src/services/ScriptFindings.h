#pragma once

#include "rig/checks/ScriptValidator.h"
#include "script/CommandLines.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zenka::services {

/// What is known of a script before anybody takes it.
struct ScriptFindings {
    std::vector<script::ScriptDiag> issues; ///< as ScriptValidator::issues() has them
    std::size_t errors = 0;
    std::vector<script::CommandLine> commands;
    std::string tally;   ///< "Auto-validate: 2 errors, 1 warning"
    std::string summary; ///< what it does, in plain words, some lines

    friend bool operator==(const ScriptFindings&, const ScriptFindings&) = default;
};

/// Pure; takes as long as the script is long.
ScriptFindings findingsOf(const rig::ScriptValidator::Examined& examined);

/// What the assistant is asked to mend: the findings, errors first, as far as a message has room for them.
std::string repairRequest(const ScriptFindings& findings);

} // namespace zenka::services

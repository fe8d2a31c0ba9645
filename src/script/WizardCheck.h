#pragma once

#include "script/WizardChoices.h"

#include <string>
#include <vector>

namespace zenka::script::ScriptWizardGen {

/// Answers of which every one can be used, and a sentence for each that had to be replaced.
struct UsableChoices {
    WizardChoices choices;
    std::vector<std::string> remarks;
};

/// Shutters come out as standard shutters, numbers within their ranges. Answers that were usable stay, so
/// what comes out comes out of a second pass unchanged.
UsableChoices usable(const WizardChoices& choices);

/// A camera's name as a script can hold it: no comma, no control character, no line end; "CAM1" for none.
std::string usableCamera(std::string_view name);

/// Free text on one line of a remark, cut when it is long.
std::string onOneLine(std::string_view text);

} // namespace zenka::script::ScriptWizardGen

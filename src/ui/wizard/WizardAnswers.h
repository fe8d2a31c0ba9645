#pragma once

#include "script/WizardChoices.h"

#include <map>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::ui {

/// All that the wizard was told: which cameras, and one plan for all of them or one for each.
struct WizardAnswers {
    bool perCamera = false;
    std::vector<std::string> chosen; ///< names of cameras, in order; cues go by the first
    std::vector<std::string> typed;  ///< names that were typed by hand
    script::WizardChoices shared;
    std::map<std::string, script::WizardChoices> own; ///< by name of camera

    /// The plan of a camera: its own, or the one of all. One that has none yet begins with that of all.
    script::WizardChoices& planOf(const std::string& camera);
    /// The plans as the generator wants them.
    std::vector<script::WizardChoices> plans() const;

    friend bool operator==(const WizardAnswers&, const WizardAnswers&) = default;
};

/// As they are kept, in JSON. A text that is none gives the initial answers, a value that cannot be read its
/// own initial one.
std::string encodeWizardAnswers(const WizardAnswers& answers);
WizardAnswers decodeWizardAnswers(std::string_view text);

} // namespace zenka::ui

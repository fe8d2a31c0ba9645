#pragma once

#include <string>

namespace zenka::script::ScriptWizardGen {

/// The exposure of one frame, as it goes in a script: "1/500", "8.0", "200".
struct BracketFrame {
    std::string shutter;
    std::string aperture;
    std::string iso;

    friend bool operator==(const BracketFrame&, const BracketFrame&) = default;
};

} // namespace zenka::script::ScriptWizardGen

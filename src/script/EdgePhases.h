#pragma once

#include "script/BracketFrame.h"
#include "script/WizardChoices.h"

#include <array>
#include <string>
#include <string_view>

/// The phases around second and third contact, and where their answers stand.
namespace zenka::script::ScriptWizardGen {

struct EdgePhase {
    std::string_view name;
    bool inside = false; ///< behind C2 and before C3
    bool WizardChoices::*wanted;
    std::string WizardChoices::*shutter;
    std::string WizardChoices::*aperture;
    int WizardChoices::*iso;
    double WizardChoices::*from;
    double WizardChoices::*to;
    double WizardChoices::*every;

    BracketFrame frame(const WizardChoices& c) const {
        return {c.*shutter, c.*aperture, std::to_string(c.*iso)};
    }
};

inline constexpr std::array<EdgePhase, 3> edgePhases{{
    {"Diamond ring", false, &WizardChoices::diamondRings, &WizardChoices::diamondShutter,
     &WizardChoices::diamondAperture, &WizardChoices::diamondISO, &WizardChoices::diamondFrom,
     &WizardChoices::diamondTo, &WizardChoices::diamondEvery},
    {"Baily's beads", false, &WizardChoices::beads, &WizardChoices::beadsShutter,
     &WizardChoices::beadsAperture, &WizardChoices::beadsISO, &WizardChoices::beadsFrom,
     &WizardChoices::beadsTo, &WizardChoices::beadsEvery},
    {"Prominences", true, &WizardChoices::prominences, &WizardChoices::promShutter,
     &WizardChoices::promAperture, &WizardChoices::promISO, &WizardChoices::promFrom, &WizardChoices::promTo,
     &WizardChoices::promEvery},
}};

} // namespace zenka::script::ScriptWizardGen

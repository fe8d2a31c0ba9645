#pragma once

#include "script/BracketFrame.h"
#include "script/ScriptWizardGen.h"

#include <optional>
#include <string_view>

/// Longer exposures for a Sun that is dimmed by the air near the horizon. Altitudes are geometric, in
/// degrees; one below the horizon counts as 0.
namespace zenka::script::ScriptWizardGen {

/// A shutter is longer than a ceiling, in seconds, by more than its rounded label.
bool exceedsCeiling(std::string_view shutter, double ceilingSec);

/// F. Kasten and A. T. Young, Revised optical air mass tables and approximation formula, 1989.
double airmass(double altDeg);
/// What the Sun loses against the zenith, for an extinction of k magnitudes per airmass.
double lowSunMagnitudes(double altDeg, double k);
double lowSunStops(double altDeg, double k);
double lowSunFactor(double altDeg, double k);

/// The Sun's altitude at maximum where the answers ask to lengthen the frames of totality for it.
std::optional<double> totalityLowSun(const WizardChoices& c, const std::optional<HorizonCtx>& horizon);

struct LowSunFrame {
    BracketFrame frame;
    bool past = false; ///< both limits are reached and it is still short by over a third of a stop

    friend bool operator==(const LowSunFrame&, const LowSunFrame&) = default;
};

/// A frame with so many stops more light (none for 0 or less), from a shutter up to the ceiling and from ISO
/// up to lowSunMaxISO, in the order that lowSunTrade wants.
LowSunFrame lengthened(const BracketFrame& frame, double stops, double ceilingSec, const WizardChoices& c);

/// A frame of totality, for the Sun at an altitude: the table's exposures are for a high Sun.
LowSunFrame lowSunShiftFrame(const BracketFrame& frame, double altDeg, const WizardChoices& c);

/// A frame of the partial phases. Its exposure is right for the Sun at the anchor; none: high up.
LowSunFrame lowSunPartialFrame(const BracketFrame& frame, double altDeg, std::optional<double> anchorAltDeg,
                               const WizardChoices& c);

} // namespace zenka::script::ScriptWizardGen

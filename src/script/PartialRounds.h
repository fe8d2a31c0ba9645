#pragma once

#include "script/WizardPlan.h"

#include <optional>
#include <string_view>
#include <vector>

/// When the sets of a partial phase's timelapse are taken.
namespace zenka::script::ScriptWizardGen {

inline constexpr int mostTimelapseFrames = 8000;
/// The last percent of a timelapse, about 20 s before C2.
inline constexpr double lastPercent = 99.5;
/// No eclipse's magnitude grows by a percent in less: 0.7 Earth radii an hour over a shadow of 0.53.
inline constexpr double shortestPercentSec = 25;

/// One moment: a percent of magnitude, or seconds behind the reference contact.
struct Round {
    double value = 0;
    std::optional<double> atSec; ///< where the site is known
};

/// The part of an eclipse between first contact and totality, or behind it, or to and from maximum. Its ends
/// are known where the contacts are.
class PartialWindow {
public:
    PartialWindow(const Plan& plan, bool ingress) : plan_(plan), ingress_(ingress) {}

    std::optional<double> beginSec() const;
    std::optional<double> endSec() const;
    bool known() const { return beginSec() && endSec(); }
    /// Seconds between them, 0 when not known.
    double lengthSec() const;
    /// The contact that intervals are counted from.
    std::string_view reference() const;

    /// Each multiple of the step up to `last` percent, in the order of time, where a set of roundSec fits.
    std::vector<Round> byMagnitude(double step, double last, double roundSec) const;
    /// Each interval; only when known.
    std::vector<Round> byInterval(double step, double roundSec) const;

private:
    bool fits(double atSec, double roundSec) const;

    const Plan& plan_;
    const bool ingress_;
};

} // namespace zenka::script::ScriptWizardGen

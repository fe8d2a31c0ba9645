#include "script/LowSun.h"

#include "base/Text.h"

#include <algorithm>
#include <cmath>
#include <numbers>

namespace zenka::script::ScriptWizardGen {

namespace {

constexpr double zenithAirmass = 0.9997119918558381; ///< of the formula below
constexpr double stopsPerMagnitude = 0.4 * 3.321928094887362;
constexpr double lowestAltDeg = -0.83; ///< the Sun's upper limb, lifted by refraction, is on the horizon
constexpr double aThirdOfAStop = 1.0 / 3;

/// Moves the shutter by up to so many stops towards the ceiling; returns what it found.
double lengthenShutter(BracketFrame& frame, double stops, double ceilingSec) {
    const double seconds = shutterSeconds(frame.shutter);
    if (!(seconds > 0) || seconds >= ceilingSec || !(stops > 0))
        return 0;
    const double wanted = std::min(seconds * std::exp2(stops), ceilingSec);
    std::string_view best = snapToStandard(wanted);
    if (exceedsCeiling(best, ceilingSec)) {
        // ascending: the last that the ceiling allows
        for (const std::string_view row : exposure::standardShutters())
            if (!exceedsCeiling(row, ceilingSec))
                best = row;
    }
    if (shutterSeconds(best) <= seconds)
        return 0;
    frame.shutter = best;
    return std::log2(shutterSeconds(best) / seconds);
}

double raiseISO(BracketFrame& frame, double stops, const WizardChoices& c) {
    const double iso = base::readNumber(frame.iso).value_or(0);
    if (!(iso > 0) || iso >= c.lowSunMaxISO || !(stops > 0))
        return 0;
    int best = snapISO(std::min(iso * std::exp2(stops), 1.0 * c.lowSunMaxISO), c.wholeStopISO);
    if (best > c.lowSunMaxISO) {
        for (const int row : exposure::standardISOs(c.wholeStopISO))
            if (row <= c.lowSunMaxISO)
                best = row;
    }
    if (best > c.lowSunMaxISO || best <= iso)
        return 0;
    frame.iso = std::to_string(best);
    return std::log2(best / iso);
}

} // namespace

bool exceedsCeiling(std::string_view shutter, double ceilingSec) {
    constexpr double slack = 1.001; // "1/30" and 0.0333 are the same
    return shutterSeconds(shutter) > ceilingSec * slack;
}

double airmass(double altDeg) {
    const double h = std::min(std::max(0.0, altDeg), 90.0);
    return 1 / (std::sin(h * std::numbers::pi / 180) + 0.50572 * std::pow(h + 6.07995, -1.6364));
}

double lowSunMagnitudes(double altDeg, double k) {
    return k * (airmass(altDeg) - zenithAirmass);
}

double lowSunStops(double altDeg, double k) {
    return lowSunMagnitudes(altDeg, k) * stopsPerMagnitude;
}

double lowSunFactor(double altDeg, double k) {
    return std::pow(10, 0.4 * lowSunMagnitudes(altDeg, k));
}

std::optional<double> totalityLowSun(const WizardChoices& c, const std::optional<HorizonCtx>& horizon) {
    if (!c.lowSunComp || !c.lowSunTotality || !horizon)
        return std::nullopt;
    const auto max = horizon->contactTHours.find("MAX");
    if (max == horizon->contactTHours.end())
        return std::nullopt;
    const double altDeg =
        horizon->eclipse.geometry(max->second, {horizon->lat, horizon->lon, horizon->elev}).altDeg;
    return altDeg > lowestAltDeg ? std::optional(altDeg) : std::nullopt;
}

LowSunFrame lengthened(const BracketFrame& frame, double stops, double ceilingSec, const WizardChoices& c) {
    LowSunFrame result{frame};
    if (!(stops > 0))
        return result;
    double left = stops;
    const auto shutter = [&](double share) { left -= lengthenShutter(result.frame, share, ceilingSec); };
    const auto iso = [&](double share) { left -= raiseISO(result.frame, share, c); };
    // Snapping may leave or overshoot a third of a stop, which is not worth a move of the other setting.
    const auto rest = [&] { return left > aThirdOfAStop ? left : 0; };
    switch (c.lowSunTrade) {
    case WizardChoices::LowSunTrade::fastShutter:
        iso(stops);
        shutter(rest());
        break;
    case WizardChoices::LowSunTrade::lowISO:
        shutter(stops);
        iso(rest());
        break;
    case WizardChoices::LowSunTrade::balanced:
        shutter(stops / 2);
        iso(rest());
        shutter(rest());
        break;
    }
    result.past = left > aThirdOfAStop;
    return result;
}

LowSunFrame lowSunShiftFrame(const BracketFrame& frame, double altDeg, const WizardChoices& c) {
    return lengthened(frame, lowSunStops(altDeg, c.lowSunKCoeff), shutterSeconds(c.maxShutter), c);
}

LowSunFrame lowSunPartialFrame(const BracketFrame& frame, double altDeg, std::optional<double> anchorAltDeg,
                               const WizardChoices& c) {
    const double anchored = anchorAltDeg ? lowSunStops(*anchorAltDeg, c.lowSunKCoeff) : 0;
    return lengthened(frame, lowSunStops(altDeg, c.lowSunKCoeff) - anchored,
                      shutterSeconds(c.lowSunMinShutter), c);
}

} // namespace zenka::script::ScriptWizardGen

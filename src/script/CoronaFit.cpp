// How the bracket of the corona fits into totality.
#include "base/Text.h"
#include "script/LowSun.h"
#include "script/ScriptWizardGen.h"
#include "script/WizardCheck.h"
#include "script/WizardPlan.h"

#include <algorithm>
#include <cmath>

namespace zenka::script::ScriptWizardGen {

namespace {

constexpr double leastSpacing = 0.05; ///< seconds
constexpr double marginOfTotality = 0.05;
constexpr double longestTotality = 1000; ///< no central phase lasts longer, seconds
constexpr int mostFrames = 4000;

void lengthenAll(std::vector<BracketFrame>& frames, double altDeg, const WizardChoices& c, int& past) {
    for (BracketFrame& frame : frames) {
        const LowSunFrame shifted = lowSunShiftFrame(frame, altDeg, c);
        frame = shifted.frame;
        past += shifted.past ? 1 : 0;
    }
}

int setsBetween(double room, double setDur, double setGap, std::size_t frames) {
    if (!(room >= setDur))
        return 0;
    const double fitting = std::max(std::floor(room / (setDur + setGap)), 1.0);
    return static_cast<int>(std::min(fitting, 1.0 * mostFrames / static_cast<double>(frames)));
}

} // namespace

double occupancy(double shutterSec, bool lenr) {
    return lenr && shutterSec > 1 ? 2 * shutterSec : shutterSec;
}

std::vector<int> bracketOffsets(int count, BracketWeight weight) {
    const int n = std::max(count, 1);
    const int first = weight == BracketWeight::center ? -((n - 1) / 2)
                      : weight == BracketWeight::top  ? 1 - n
                                                      : 0;
    std::vector<int> offsets(static_cast<std::size_t>(n));
    for (int i = 0; i < n; ++i)
        offsets[static_cast<std::size_t>(i)] = first + i;
    return offsets;
}

std::vector<BracketFrame> bracketFrames(const BracketFrame& base, std::span<const int> offsets, double evStep,
                                        BracketVar var, bool wholeStopISO) {
    const double step = evStep > 0 && std::isfinite(evStep) ? evStep : 1;
    std::vector<BracketFrame> frames;
    frames.reserve(offsets.size());
    for (const int offset : offsets) {
        const double stops = offset * step;
        BracketFrame frame = base;
        switch (var) {
        case BracketVar::shutter:
            frame.shutter = snapToStandard(shutterSeconds(base.shutter) * std::exp2(stops));
            break;
        case BracketVar::aperture:
            frame.aperture =
                snapAperture(base::readNumber(base.aperture).value_or(0) * std::exp2(-stops / 2));
            break;
        case BracketVar::iso:
            frame.iso = std::to_string(
                snapISO(base::readNumber(base.iso).value_or(0) * std::exp2(stops), wholeStopISO));
            break;
        }
        frames.push_back(std::move(frame));
    }
    return frames;
}

int clampToCeiling(std::vector<BracketFrame>& frames, double ceilingSec) {
    return static_cast<int>(std::erase_if(
        frames, [&](const BracketFrame& frame) { return exceedsCeiling(frame.shutter, ceilingSec); }));
}

double setDuration(std::span<const BracketFrame> frames, double spacing, bool lenr) {
    double seconds = 0;
    for (const BracketFrame& frame : frames)
        seconds += occupancy(shutterSeconds(frame.shutter), lenr) + std::max(leastSpacing, spacing);
    return seconds;
}

CoronaFit coronaFit(const WizardChoices& choices, double totalitySeconds,
                    std::optional<double> lowSunAltDeg) {
    const WizardChoices c = usable(choices).choices;
    const double totality =
        totalitySeconds > 0 ? std::min(totalitySeconds, longestTotality) : 0; // no number is 0
    const double spacing = std::max(leastSpacing, c.minShotGap);
    CoronaFit fit;
    fit.coronaFrames = bracketFrames({c.coronaFastest, c.coronaAperture, std::to_string(c.coronaISO)},
                                     bracketOffsets(c.coronaExposures, c.coronaWeight), c.coronaEVStep,
                                     c.coronaBracketVar, c.wholeStopISO);
    if (c.earthshine)
        fit.earthFrames =
            bracketFrames({c.earthshineShutter, c.earthshineAperture, std::to_string(c.earthshineISO)},
                          bracketOffsets(c.earthshineBracket, c.earthshineWeight), c.earthshineEVStep,
                          c.earthshineBracketVar, c.wholeStopISO);
    if (!c.tracking) {
        fit.coronaDropped = clampToCeiling(fit.coronaFrames, shutterSeconds(c.maxShutter));
        fit.earthDropped = clampToCeiling(fit.earthFrames, shutterSeconds(c.maxShutter));
    }
    if (lowSunAltDeg) {
        lengthenAll(fit.coronaFrames, *lowSunAltDeg, c, fit.lowSunPast);
        lengthenAll(fit.earthFrames, *lowSunAltDeg, c, fit.lowSunPast);
    }
    fit.setDur = setDuration(fit.coronaFrames, spacing, c.lenrOn);
    fit.earthSlot = setDuration(fit.earthFrames, spacing, c.lenrOn);
    fit.endMargin = std::max(totality * marginOfTotality, spacing + fit.earthSlot);
    if (!fit.coronaFrames.empty())
        fit.sets =
            setsBetween(totality - 2 * fit.endMargin, fit.setDur, c.coronaSetGap, fit.coronaFrames.size());
    return fit;
}

} // namespace zenka::script::ScriptWizardGen

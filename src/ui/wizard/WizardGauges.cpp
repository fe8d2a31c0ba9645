#include "ui/wizard/WizardGauges.h"

#include "base/Text.h"
#include "script/ScriptWizardGen.h"

#include <absl/strings/str_format.h>

#include <vector>

namespace zenka::ui {

namespace {

namespace Guide = script::EspenakGuide;
using script::ScriptWizardGen::BracketFrame;

std::vector<double> qsOf(const std::vector<BracketFrame>& frames) {
    std::vector<double> qs;
    qs.reserve(frames.size());
    for (const BracketFrame& frame : frames)
        qs.push_back(Guide::q(frame));
    return qs;
}

/// Why there is no frame to judge.
std::string absence(const script::WizardChoices& c, bool clamped) {
    return clamped ? absl::StrFormat("No frame: all are longer than the longest shutter, %s", c.maxShutter)
                   : std::string("No frame in this totality");
}

} // namespace

WizardGauges wizardGauges(const script::WizardChoices& c, double totalitySec,
                          const std::set<Guide::Phase>& taken) {
    const auto fit = script::ScriptWizardGen::coronaFit(c, totalitySec, std::nullopt);
    WizardGauges gauges;
    const auto single = [&](std::size_t at, const char* name, const char* field, bool wanted,
                            Guide::Phase phase, double targetQ, const std::string& aperture, int iso,
                            const std::vector<BracketFrame>& frames) {
        const std::vector<double> qs = taken.contains(phase) ? qsOf(frames) : std::vector<double>();
        WizardGauge& gauge = gauges.singles[at];
        gauge = {.name = name, .shutterField = field, .planned = wanted};
        gauge.verdict = Guide::scoreSingle(targetQ, base::readNumber(aperture).value_or(0), iso, qs);
        if (qs.empty())
            gauge.verdict.text = absence(c, frames.empty());
    };
    const auto one = [](const std::string& shutter, const std::string& aperture, int iso) {
        return std::vector<BracketFrame>{{shutter, aperture, std::to_string(iso)}};
    };
    single(0, "Diamond ring", "diamondShutter", c.diamondRings, Guide::Phase::diamondRing,
           Guide::diamondRingQ, c.diamondAperture, c.diamondISO,
           one(c.diamondShutter, c.diamondAperture, c.diamondISO));
    single(1, "Baily's beads", "beadsShutter", c.beads, Guide::Phase::beads, Guide::beadsQ, c.beadsAperture,
           c.beadsISO, one(c.beadsShutter, c.beadsAperture, c.beadsISO));
    single(2, "Prominences", "promShutter", c.prominences, Guide::Phase::prominences, Guide::prominencesQ,
           c.promAperture, c.promISO, one(c.promShutter, c.promAperture, c.promISO));
    single(3, "Earthshine", "earthshineShutter", c.earthshine, Guide::Phase::earthshine, Guide::earthshineQ,
           c.earthshineAperture, c.earthshineISO, fit.earthFrames);

    const std::vector<double> qs =
        taken.contains(Guide::Phase::corona) ? qsOf(fit.coronaFrames) : std::vector<double>();
    gauges.corona = Guide::scoreCorona(qs, c.coronaEVStep);
    gauges.zones = Guide::coronaZones(qs, c.coronaEVStep);
    return gauges;
}

} // namespace zenka::ui

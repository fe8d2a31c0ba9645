#include "script/PartialRounds.h"

#include "script/MagnitudeSearch.h"

#include <algorithm>

namespace zenka::script::ScriptWizardGen {

namespace {

/// The filter is off from here before C2 to here behind C3.
constexpr double filterOffSec = 20;
/// Where the contacts are not known, the compiler looks for magnitudes so far from the reference instant.
constexpr double unknownContactSec = 7200;

} // namespace

std::optional<double> PartialWindow::beginSec() const {
    if (ingress_)
        return plan_.sky.contactSec("C1");
    if (plan_.central != CentralPhase::total)
        return plan_.sky.contactSec("MAX");
    const auto c3 = plan_.sky.contactSec("C3");
    return c3 ? std::optional(*c3 + filterOffSec) : c3;
}

std::optional<double> PartialWindow::endSec() const {
    if (!ingress_)
        return plan_.sky.contactSec("C4");
    if (plan_.central != CentralPhase::total)
        return plan_.sky.contactSec("MAX");
    const auto c2 = plan_.sky.contactSec("C2");
    return c2 ? std::optional(*c2 - filterOffSec) : c2;
}

double PartialWindow::lengthSec() const {
    const auto begin = beginSec();
    const auto end = endSec();
    return begin && end ? *end - *begin : 0;
}

std::string_view PartialWindow::reference() const {
    if (ingress_)
        return "C1";
    return plan_.central == CentralPhase::total ? "C3" : "MAX";
}

bool PartialWindow::fits(double atSec, double roundSec) const {
    const auto begin = beginSec();
    const auto end = endSec();
    return (!begin || atSec >= *begin) && (!end || atSec + roundSec <= *end);
}

std::vector<Round> PartialWindow::byMagnitude(double step, double last, double roundSec) const {
    std::optional<MagnitudeSearch> search;
    if (const auto& horizon = plan_.sky.horizon()) {
        const double max = plan_.sky.contactSec("MAX").value_or(0) / 3600;
        const double outer = ingress_ ? plan_.sky.contactSec("C1").value_or(-unknownContactSec) / 3600
                                      : plan_.sky.contactSec("C4").value_or(unknownContactSec) / 3600;
        search.emplace(horizon->eclipse, eclipse::Observer{horizon->lat, horizon->lon, horizon->elev},
                       ingress_ ? outer : max, ingress_ ? max : outer);
    }
    std::vector<Round> rounds;
    for (int k = 1; k * step <= last + 1e-9; ++k) {
        Round round{k * step, std::nullopt};
        if (search) {
            const auto hours = search->find(round.value / 100);
            if (!hours || !fits(*hours * 3600, roundSec))
                continue;
            round.atSec = *hours * 3600;
        }
        rounds.push_back(round);
    }
    if (!ingress_)
        std::reverse(rounds.begin(), rounds.end());
    return rounds;
}

std::vector<Round> PartialWindow::byInterval(double step, double roundSec) const {
    std::vector<Round> rounds;
    const auto referenceSec = plan_.sky.contactSec(reference());
    const auto begin = beginSec();
    if (!referenceSec || !begin)
        return rounds;
    // C1 itself has its contact frame.
    double value = ingress_ ? step : tenths(*begin - *referenceSec);
    for (int k = 0; k < mostTimelapseFrames && fits(*referenceSec + value + 1e-6, roundSec);
         ++k, value += step)
        rounds.push_back({value, *referenceSec + value});
    return rounds;
}

} // namespace zenka::script::ScriptWizardGen

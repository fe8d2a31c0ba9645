#include "script/EspenakGuide.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::script::EspenakGuide {

namespace {

/// Q of the corona at 0.1, 0.2, 0.5, 1, 2, 4 and 8 solar radii. F. Espenak, Solar Eclipse Exposure Guide.
constexpr std::array<double, 7> coronaZoneQs{7, 5, 3, 1, 0, -1, -3};

constexpr double fallbackAperture = 8;
constexpr int fallbackISO = 100;
/// A ladder with wider steps leaves zones between its rungs, so its step counts no more than this.
constexpr double widestStep = 2;

double exposureQ(double aperture, double shutterSec, double iso) {
    return std::log2(aperture * aperture / (shutterSec * iso));
}

double readAperture(double aperture) {
    return aperture > 0 && std::isfinite(aperture) ? aperture : fallbackAperture;
}

double captureQ(const Capture& capture) {
    return exposureQ(readAperture(capture.aperture), capture.shutterSec, capture.iso);
}

/// The mean step between the distinct exposures of a ladder, sorted; sets repeat the same ones.
double stepOf(const std::vector<double>& sorted) {
    constexpr double same = 0.05;
    int steps = 0;
    for (std::size_t i = 1; i < sorted.size(); ++i)
        if (sorted[i] - sorted[i - 1] > same)
            ++steps;
    return steps == 0 ? 1 : std::min((sorted.back() - sorted.front()) / steps, widestStep);
}

ScriptNote coronaNote(const Capture& first, std::vector<double> qs) {
    std::sort(qs.begin(), qs.end());
    const double step = stepOf(qs);
    const CoronaCoverage coverage = scoreCorona(qs, step);
    std::string text =
        absl::StrFormat("corona bracket reaches %d of %d brightness zones", coverage.covered, coverage.total);
    if (coverage.missing)
        text += ", missing the " + *coverage.missing;
    if (coverage.covered < coverage.total)
        text += ". Widen the bracket (more exposures or a bigger EV step) to cover the rest.";
    return {coverage.level, text, first.lineNo};
}

struct SinglePhase {
    Phase phase;
    std::string_view name;
    double targetQ;
    std::string_view remark;
};

constexpr std::array<SinglePhase, 4> singlePhases{
    {{Phase::diamondRing, "Diamond ring", diamondRingQ, "NASA scores the ring as corona 0.2 Rs (Q5)."},
     {Phase::beads, "Baily's beads", beadsQ,
      "Q12 wants a very fast shutter to freeze them, if your body can."},
     {Phase::prominences, "Prominences", prominencesQ, ""},
     {Phase::earthshine, "Earthshine", earthshineQ,
      "Earthshine sits past the NASA table, so treat this as a guide."}}};

ScriptNote singleNote(const SinglePhase& single, const Capture& first, std::span<const double> qs) {
    const Verdict verdict = scoreSingle(single.targetQ, readAperture(first.aperture), first.iso, qs);
    std::string text = absl::StrFormat("%s: %s NASA's ideal (near %s).", single.name, verdict.text,
                                       verdict.suggestedShutter);
    if (!single.remark.empty())
        text += absl::StrFormat(" %s", single.remark);
    return {verdict.level, text, first.lineNo};
}

} // namespace

double q(const ScriptWizardGen::BracketFrame& of) {
    const double shutterSec = exposure::shutterSeconds(of.shutter);
    const double iso = base::readNumber(of.iso).value_or(fallbackISO);
    return exposureQ(readAperture(base::readNumber(of.aperture).value_or(fallbackAperture)),
                     shutterSec > 0 ? shutterSec : exposure::shutterSeconds(exposure::snapToStandard(0)),
                     iso >= 1 ? iso : fallbackISO);
}

Verdict scoreSingle(double targetQ, double ap, int iso, std::span<const double> frameQs) {
    const bool usable = ap > 0 && std::isfinite(ap) && iso >= 1;
    Verdict verdict;
    verdict.suggestedShutter =
        usable ? exposure::snapToStandard(ap * ap / (std::exp2(targetQ) * iso)) : "1/500";
    if (frameQs.empty()) {
        verdict.text = "No frame";
        return verdict;
    }
    const double idealQ = exposureQ(readAperture(ap), exposure::shutterSeconds(verdict.suggestedShutter),
                                    iso >= 1 ? iso : fallbackISO);
    const auto farther = [idealQ](double left, double right) {
        return std::abs(left - idealQ) < std::abs(right - idealQ);
    };
    const double off = *std::min_element(frameQs.begin(), frameQs.end(), farther) - idealQ;
    if (std::abs(off) <= 0.5) {
        verdict.level = Level::good;
        verdict.text = frameQs.size() == 1 ? "On target" : "On target (bracketed)";
        return verdict;
    }
    verdict.level = std::abs(off) <= 1.5 ? Level::warn : Level::bad;
    verdict.text = absl::StrFormat("%.1f stop %s", std::abs(off), off > 0 ? "under" : "over");
    return verdict;
}

std::array<bool, 7> coronaZones(const std::vector<double>& qs, double evStep) {
    std::array<bool, 7> zones{};
    if (qs.empty())
        return zones;
    const auto [lowest, highest] = std::minmax_element(qs.begin(), qs.end());
    const double tolerance = std::max(evStep * 0.6, 0.75);
    for (std::size_t zone = 0; zone < zones.size(); ++zone)
        zones[zone] = coronaZoneQs[zone] >= *lowest - tolerance && coronaZoneQs[zone] <= *highest + tolerance;
    return zones;
}

CoronaCoverage scoreCorona(const std::vector<double>& qs, double evStep) {
    const auto zones = coronaZones(qs, evStep);
    CoronaCoverage coverage{.covered = static_cast<int>(std::count(zones.begin(), zones.end(), true)),
                            .total = static_cast<int>(zones.size())};
    if (qs.empty())
        return coverage;
    coverage.level = coverage.covered == coverage.total ? Level::good
                     : coverage.covered >= 5            ? Level::warn
                                                        : Level::bad;
    // The end of the longest exposures, the lowest Q, is the one that reaches the faint outer corona.
    if (coverage.covered < coverage.total)
        coverage.missing =
            *std::min_element(qs.begin(), qs.end()) > coronaZoneQs.back() ? "outer corona" : "inner corona";
    return coverage;
}

Phase phase(std::string_view comment) {
    const std::string text = base::lowered(comment);
    const auto says = [&](const char* word) { return text.find(word) != text.npos; };
    if (says("corona"))
        return Phase::corona;
    if (says("diamond"))
        return Phase::diamondRing;
    if (says("baily") || says("bead"))
        return Phase::beads;
    if (says("prominence"))
        return Phase::prominences;
    if (says("earthshine") || says("earthlit"))
        return Phase::earthshine;
    return Phase::other;
}

std::vector<ScriptNote> scriptNotes(std::span<const Capture> captures) {
    struct Group {
        const Capture* first = nullptr;
        std::vector<double> qs;
    };
    std::array<Group, 6> groups;
    for (const Capture& capture : captures) {
        if (!(capture.shutterSec > 0) || capture.iso < 1)
            continue;
        Group& group = groups[static_cast<std::size_t>(phase(capture.comment))];
        if (!group.first)
            group.first = &capture;
        group.qs.push_back(captureQ(capture));
    }
    std::vector<ScriptNote> notes;
    if (Group& corona = groups[static_cast<std::size_t>(Phase::corona)]; corona.first)
        notes.push_back(coronaNote(*corona.first, std::move(corona.qs)));
    for (const SinglePhase& single : singlePhases)
        if (const Group& group = groups[static_cast<std::size_t>(single.phase)]; group.first)
            notes.push_back(singleNote(single, *group.first, group.qs));
    return notes;
}

} // namespace zenka::script::EspenakGuide

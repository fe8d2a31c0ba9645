// What a camera's plan says of the low Sun.
#include "script/EdgePhases.h"
#include "script/WizardPlan.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::script::ScriptWizardGen {

namespace {

void appendPartialsNote(Lines& lines, const Plan& plan) {
    const WizardChoices& c = plan.c;
    const auto c1 = plan.sky.contactSec("C1");
    std::string anchor = "anchored at a high Sun, C1 not being known";
    if (c1) {
        const double altDeg = plan.sky.altDeg(*c1);
        anchor = altDeg > 0 ? absl::StrFormat("anchored at C1 alt %.1f°", altDeg)
                            : "anchored at a high Sun, for it is down at C1";
    }
    lines.push_back(
        absl::StrFormat("# LOW-SUN COMP ON: exposure lengthens with airmass as the Sun sinks (k=%g "
                        "mag/airmass, %s), shutter to "
                        "%s. Meter and bracket hard near the horizon; values below ~5° are approximate.",
                        c.lowSunKCoeff, anchor, c.lowSunMinShutter));
}

int edgesPast(const Plan& plan, double altDeg) {
    return static_cast<int>(std::ranges::count_if(edgePhases, [&](const EdgePhase& phase) {
        return plan.c.*phase.wanted && lowSunShiftFrame(phase.frame(plan.c), altDeg, plan.c).past;
    }));
}

void appendTotalityNote(Lines& lines, const Plan& plan, double altDeg) {
    const WizardChoices& c = plan.c;
    lines.push_back(
        absl::StrFormat("# LOW-SUN COMP ON (TOTALITY): the Sun is %.1f° up at MAX (airmass %.1f), about "
                        "%.1f stops dimmer than the exposure tables assume.",
                        altDeg, airmass(altDeg), lowSunStops(altDeg, c.lowSunKCoeff)));
    lines.push_back(absl::StrFormat("#   Diamond ring, beads, prominences, corona and earthshine are "
                                    "lengthened to match (k=%g mag/airmass, "
                                    "ISO to %d, shutters capped at the %s ceiling).",
                                    c.lowSunKCoeff, c.lowSunMaxISO, c.maxShutter));
    const int past = edgesPast(plan, altDeg) + coronaFit(c, plan.totalitySec, altDeg).lowSunPast;
    if (past > 0)
        lines.push_back(absl::StrFormat("#   %d of these exposures %s both limits and %s underexposed.", past,
                                        past == 1 ? "reaches" : "reach", past == 1 ? "stays" : "stay"));
}

} // namespace

void appendLowSunNotes(Lines& lines, const Plan& plan) {
    const WizardChoices& c = plan.c;
    if (!c.lowSunComp)
        return;
    if (!plan.sky.known()) {
        lines.emplace_back(
            "# Low-sun compensation needs the site and its contact times (none available here); "
            "exposures stay as chosen.");
        lines.emplace_back();
        return;
    }
    const std::size_t before = lines.size();
    if (c.partials && c.filter != WizardChoices::Filter::none)
        appendPartialsNote(lines, plan);
    if (plan.lowSunAltDeg)
        appendTotalityNote(lines, plan, *plan.lowSunAltDeg);
    if (lines.size() > before)
        lines.emplace_back();
}

} // namespace zenka::script::ScriptWizardGen

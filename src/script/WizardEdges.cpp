// The phases around second and third contact: diamond ring, beads, prominences.
#include "base/Text.h"
#include "script/EdgePhases.h"
#include "script/WizardPlan.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::script::ScriptWizardGen {

namespace {

/// The last frame may come so much behind the bound, for the times are summed up.
constexpr double boundSlack = 0.000001;

struct Steps {
    double ingress = 0;
    double egress = 0;
};

Steps stepsOf(const EdgePhase& phase, const BracketFrame& frame, const WizardChoices& c) {
    const double busy = occupancy(shutterSeconds(frame.shutter), c.lenrOn);
    const double gap = std::max(c.*phase.every, c.minShotGapSame);
    const double ingress = gap >= 0.1 ? gap + busy : busy + 0.1;
    return {ingress, ingress + std::max(c.egressDrainGap, 0.0)};
}

std::string heading(const EdgePhase& phase, const BracketFrame& frame, const Steps& steps, double lo,
                    double hi, const WizardChoices& c) {
    std::string text = absl::StrFormat("#### %s: %s f/%s ISO %s, every %gs", base::uppered(phase.name),
                                       frame.shutter, frame.aperture, frame.iso, steps.ingress);
    if (c.egressDrainGap > 0)
        text += absl::StrFormat(", egress every %gs (buffer drain)", steps.egress);
    text += absl::StrFormat(", C2%s%g..%gs (mirrored at C3)", phase.inside ? "+" : base::minusSign, lo, hi);
    if (const BracketFrame asked = phase.frame(c); frame != asked)
        text += absl::StrFormat(" [low-sun shift from %s ISO %s]", asked.shutter, asked.iso);
    return text;
}

void edgePhase(Lines& lines, const Plan& plan, const EdgePhase& phase) {
    const BracketFrame asked = phase.frame(plan.c);
    const BracketFrame frame =
        plan.lowSunAltDeg ? lowSunShiftFrame(asked, *plan.lowSunAltDeg, plan.c).frame : asked;
    const Steps steps = stepsOf(phase, frame, plan.c);
    const double lo = std::min(plan.c.*phase.from, plan.c.*phase.to);
    const double hi = std::max(plan.c.*phase.from, plan.c.*phase.to);
    lines.push_back(heading(phase, frame, steps, lo, hi, plan.c));

    int early = 0;
    int down = 0;
    int taken = 0;
    const auto run = [&](std::string_view contact, bool after, double step, std::string_view side) {
        // Inside totality each side keeps to its half.
        const double reach = phase.inside ? plan.totalitySec / 2 - step / 2 : hi;
        for (double t = lo; t <= hi + boundSlack; t += step) {
            if (t > reach + boundSlack) {
                ++early;
            } else if (!plan.sky.shows(contact, after ? tenths(t) : -tenths(t))) {
                ++down;
            } else {
                ++taken;
                lines.push_back(frameLine(contact, after ? '+' : '-', t, plan.camera, frame,
                                          absl::StrFormat("%s %s %.1fs", phase.name, side, t)));
            }
        }
    };
    run("C2", phase.inside, steps.ingress, "ingress");
    run("C3", !phase.inside, steps.egress, "egress");
    if (early > 0)
        lines.push_back(absl::StrFormat("# Totality lasts %.1f s here: %d %s beyond its middle omitted.",
                                        plan.totalitySec, early, early == 1 ? "frame" : "frames"));
    if (down > 0)
        lines.push_back(absl::StrFormat("# %d %s omitted: the Sun is below the horizon then.", down,
                                        down == 1 ? "frame" : "frames"));
    if (taken == 0 && early + down == 0)
        lines.emplace_back("# No frame falls between these bounds.");
    lines.emplace_back();
}

} // namespace

void appendEdgePhases(Lines& lines, const Plan& plan) {
    for (const EdgePhase& phase : edgePhases) {
        if (plan.c.*phase.wanted)
            edgePhase(lines, plan, phase);
    }
}

} // namespace zenka::script::ScriptWizardGen

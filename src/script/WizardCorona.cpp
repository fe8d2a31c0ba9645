// Sets of the corona bracket around maximum, and the earthshine frames at their seam.
#include "script/WizardPlan.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::script::ScriptWizardGen {

namespace {

/// Seconds from MAX, negative before it, at which the sets and the earthshine frames begin.
struct Placement {
    std::vector<double> sets;
    std::optional<double> earth;
};

/// The sets stand around MAX. Earthshine goes into the seam nearest to it, which is widened where it has to
/// be; where the sets would then leave their room, behind the last set, for which the margin has room.
Placement place(const CoronaFit& fit, double totalitySec, double setGap) {
    Placement placement;
    const bool earth = !fit.earthFrames.empty();
    if (fit.sets == 0) {
        if (earth && fit.earthSlot <= totalitySec - 2 * (fit.endMargin - fit.earthSlot))
            placement.earth = -fit.earthSlot / 2;
        return placement;
    }
    const double room = totalitySec - 2 * fit.endMargin;
    const double block = fit.sets * fit.setDur + (fit.sets - 1) * setGap;
    const double widening = earth ? std::max(fit.earthSlot - setGap, 0.0) : 0;
    const bool inSeam = earth && fit.sets > 1 && block + widening <= room + 1e-9;
    const int seam = fit.sets / 2; ///< before this set
    double at = -(block + (inSeam ? widening : 0)) / 2;
    for (int set = 0; set < fit.sets; ++set) {
        if (set > 0) {
            const double width = setGap + (inSeam && set == seam ? widening : 0);
            if (inSeam && set == seam)
                placement.earth = at + (width - fit.earthSlot) / 2;
            at += width;
        }
        placement.sets.push_back(at);
        at += fit.setDur;
    }
    if (earth && !inSeam)
        placement.earth = at;
    return placement;
}

class Totality {
public:
    Totality(Lines& lines, const Plan& plan, const CoronaFit& fit)
        : lines_(lines), plan_(plan), fit_(fit),
          placement_(place(fit, plan.totalitySec, plan.c.coronaSetGap)) {}

    void corona();
    void earthshine();

private:
    void frames(const std::vector<BracketFrame>& frames, double at, const std::string& note);
    void clampNote(const char* what, int dropped, std::size_t left);
    void downNote();
    void promNote();

    Lines& lines_;
    const Plan& plan_;
    const CoronaFit& fit_;
    const Placement placement_;
    int down_ = 0;
};

void Totality::frames(const std::vector<BracketFrame>& frames, double at, const std::string& note) {
    for (const BracketFrame& frame : frames) {
        if (plan_.sky.shows("MAX", tenths(at)))
            lines_.push_back(frameLine("MAX", at < 0 ? '-' : '+', std::abs(at), plan_.camera, frame, note));
        else
            ++down_;
        at += setDuration({&frame, 1}, plan_.c.minShotGap, plan_.c.lenrOn);
    }
}

void Totality::clampNote(const char* what, int dropped, std::size_t left) {
    if (dropped > 0)
        lines_.push_back(absl::StrFormat("# %s clamped to the %s ceiling: %d of %d frames dropped.", what,
                                         plan_.c.maxShutter, dropped,
                                         static_cast<std::size_t>(dropped) + left));
}

void Totality::downNote() {
    if (down_ > 0)
        lines_.push_back(absl::StrFormat("# %d %s omitted: the Sun is below the horizon then.", down_,
                                         down_ == 1 ? "frame" : "frames"));
    down_ = 0;
}

/// Prominences have the bounds they were given; where they meet the sets, the photographer should know.
void Totality::promNote() {
    const WizardChoices& c = plan_.c;
    if (!c.prominences || placement_.sets.empty())
        return;
    const double begin = plan_.totalitySec / 2 + placement_.sets.front();
    const double reach = std::min(std::max(c.promFrom, c.promTo), plan_.totalitySec / 2);
    if (reach > begin)
        lines_.push_back(
            absl::StrFormat("# Note: the first set begins %.1f s behind C2, and prominences reach to "
                            "%g s: frames may meet.",
                            begin, reach));
}

void Totality::corona() {
    const std::size_t count = fit_.coronaFrames.size();
    const std::string ladder = count == 0   ? std::string()
                               : count == 1 ? ", " + exposureWords(fit_.coronaFrames.front())
                                            : ", " + exposureWords(fit_.coronaFrames.front()) + " to " +
                                                  exposureWords(fit_.coronaFrames.back());
    lines_.push_back(absl::StrFormat(
        "#### CORONA HDR BRACKET: %d %s of %d %s%s, %.1f s each, in %s of totality, centered on MAX",
        fit_.sets, fit_.sets == 1 ? "set" : "sets", count, count == 1 ? "frame" : "frames", ladder,
        fit_.setDur, fmtDur(plan_.totalitySec)));
    clampNote("Corona ladder", fit_.coronaDropped, count);
    if (count == 0)
        lines_.emplace_back("# Corona omitted: no frame of the bracket is left.");
    else if (fit_.sets == 0)
        lines_.push_back(absl::StrFormat(
            "# Corona omitted: a set takes %.1f s, and totality leaves %.1f s between margins of "
            "%.1f s. Take fewer exposures or closer spacing.",
            fit_.setDur, std::max(plan_.totalitySec - 2 * fit_.endMargin, 0.0), fit_.endMargin));
    promNote();
    for (std::size_t set = 0; set < placement_.sets.size(); ++set)
        frames(fit_.coronaFrames, placement_.sets[set], absl::StrFormat("Corona set %d", set + 1));
    downNote();
    lines_.emplace_back();
}

void Totality::earthshine() {
    if (plan_.c.lenrOn)
        lines_.emplace_back(
            "# Note: frames over 1 s are spaced for ~2x their time in case Long-Exposure NR is on (it "
            "shoots a matching dark frame). Turn LENR off to pack tighter.");
    if (plan_.c.earthshine) {
        const std::size_t count = fit_.earthFrames.size();
        lines_.push_back("#### EARTHSHINE: " +
                         (count == 0   ? std::string("no frame")
                          : count == 1 ? exposureWords(fit_.earthFrames.front())
                                       : absl::StrFormat("%d frames, %s to %s", count,
                                                         exposureWords(fit_.earthFrames.front()),
                                                         exposureWords(fit_.earthFrames.back()))) +
                         ", at the seam of the sets nearest MAX");
        clampNote("Earthshine", fit_.earthDropped, count);
        if (placement_.earth)
            frames(fit_.earthFrames, *placement_.earth, "Earthshine + horizon");
        else if (count > 0)
            lines_.push_back(absl::StrFormat(
                "# Earthshine omitted: it takes %.1f s, too long for this totality.", fit_.earthSlot));
        downNote();
    }
    if (plan_.c.lenrOn || plan_.c.earthshine)
        lines_.emplace_back();
}

} // namespace

void appendCoronaAndEarthshine(Lines& lines, const Plan& plan) {
    const CoronaFit fit = coronaFit(plan.c, plan.totalitySec, plan.lowSunAltDeg);
    Totality totality(lines, plan, fit);
    totality.corona();
    totality.earthshine();
}

} // namespace zenka::script::ScriptWizardGen

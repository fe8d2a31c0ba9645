// The partial phases: contact frames, baselines, and the timelapse by magnitude or by interval.
#include "script/PartialRounds.h"
#include "script/WizardPlan.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::script::ScriptWizardGen {

namespace {

using Cadence = WizardChoices::PartialCadence;

struct TimedFrame {
    double after = 0; ///< seconds behind the moment of the round
    BracketFrame frame;
    std::string note;

    friend bool operator==(const TimedFrame&, const TimedFrame&) = default;
};

double upToTenths(double seconds) {
    return std::ceil(seconds * 10 - 1e-6) / 10;
}

/// One side of the eclipse, ingress or egress.
class Side {
public:
    Side(Lines& lines, const Plan& plan, bool ingress);

    void heading();
    void baseline();
    void contact();
    void timelapse();

private:
    double gap() const;
    double frameSec(double shutterSec) const { return occupancy(shutterSec, c_.lenrOn) + gap(); }
    LowSunFrame shifted(const BracketFrame& frame, std::optional<double> atSec) const;
    void single(std::string_view key, char sign, double seconds, const std::string& note);
    std::vector<TimedFrame> framesOf(std::optional<double> atSec) const;

    void emit(const std::vector<Round>& rounds);
    void emitLoop(double from, double step, double to, int count, const std::vector<TimedFrame>& frames);

    Lines& lines_;
    const Plan& plan_;
    const WizardChoices& c_;
    const bool ingress_;
    const PartialWindow window_;
    BracketFrame base_;
    std::vector<BracketFrame> bracket_;
    std::optional<double> anchorAltDeg_; ///< where the base exposure is metered
    double roundSec_ = 0;                ///< what one round takes at most, with the gap behind it
    Cadence cadence_;
    double step_ = 0; ///< percent or seconds
    bool widened_ = false;
};

Side::Side(Lines& lines, const Plan& plan, bool ingress)
    : lines_(lines), plan_(plan), c_(plan.c), ingress_(ingress),
      window_(plan, ingress), base_{c_.partialShutter(), c_.partialAperture, std::to_string(c_.partialISO)},
      bracket_(bracketFrames(base_, bracketOffsets(c_.partialBracket, c_.partialWeight), c_.partialEVStep,
                             c_.partialBracketVar, c_.wholeStopISO)),
      cadence_(c_.partialCadence) {
    if (const auto c1 = plan.sky.contactSec("C1"); c1 && plan.sky.altDeg(*c1) > 0)
        anchorAltDeg_ = plan.sky.altDeg(*c1);
    const double longest = c_.lowSunComp ? shutterSeconds(c_.lowSunMinShutter) : 0;
    for (const BracketFrame& frame : bracket_)
        roundSec_ += upToTenths(frameSec(std::max(shutterSeconds(frame.shutter), longest)));
    if (cadence_ == Cadence::interval && !window_.known())
        cadence_ = Cadence::magnitude;
    const double share = static_cast<double>(bracket_.size()) / mostTimelapseFrames;
    double wanted = 0;
    double least = 0;
    if (cadence_ == Cadence::magnitude) {
        wanted = std::round(c_.partialStepPct * 1e4) / 1e4;
        least = std::ceil(std::max(roundSec_ / shortestPercentSec, lastPercent * share) * 100 - 1e-6) / 100;
    } else {
        wanted = upToTenths(c_.partialIntervalSec);
        least = upToTenths(std::max(roundSec_, window_.lengthSec() * share));
    }
    step_ = std::max(wanted, least);
    widened_ = step_ > wanted;
}

/// Frames of one exposure may follow closer than those that change.
double Side::gap() const {
    return bracket_.size() > 1 || c_.lowSunComp ? std::max(c_.minShotGap, c_.minShotGapSame)
                                                : c_.minShotGapSame;
}

LowSunFrame Side::shifted(const BracketFrame& frame, std::optional<double> atSec) const {
    if (!c_.lowSunComp || !atSec || !plan_.sky.known())
        return {frame};
    return lowSunPartialFrame(frame, plan_.sky.altDeg(*atSec), anchorAltDeg_, c_);
}

void Side::heading() {
    std::string text = absl::StrFormat("#### PARTIAL %s: every %s, %s", ingress_ ? "INGRESS" : "EGRESS",
                                       cadence_ == Cadence::magnitude ? shortNumber(step_) + "% of magnitude"
                                                                      : fmtInterval(step_),
                                       exposureWords(base_));
    if (bracket_.size() > 1)
        text += absl::StrFormat(", bracket of %d frames, %g EV apart by %s", bracket_.size(),
                                c_.partialEVStep, bracketVarWord(c_.partialBracketVar));
    lines_.push_back(text);
    if (widened_)
        lines_.push_back(
            absl::StrFormat("# The cadence is wider than asked for: a set takes up to %.1f s.", roundSec_));
}

void Side::single(std::string_view key, char sign, double seconds, const std::string& note) {
    const double away = sign == '-' ? -seconds : seconds;
    std::optional<double> atSec = plan_.sky.contactSec(key);
    if (atSec)
        *atSec += away;
    if (!plan_.sky.shows(key, away)) {
        lines_.push_back("# " + note + " omitted: the Sun is below the horizon then.");
        return;
    }
    const LowSunFrame frame = shifted(base_, atSec);
    lines_.push_back(frameLine(key, sign, seconds, plan_.camera, frame.frame,
                               note + (frame.past ? "  [ISO ceiling hit — underexposed]" : "")));
}

void Side::baseline() {
    if (!c_.sunBaseline)
        return;
    const double least = upToTenths(frameSec(
        std::max(shutterSeconds(base_.shutter), c_.lowSunComp ? shutterSeconds(c_.lowSunMinShutter) : 0)));
    const double lead = std::max(c_.sunBaselineLeadSec, least);
    if (ingress_)
        single("C1", '-', lead, "Full Sun baseline (before first contact)");
    else
        single("C4", '+', lead, "Full Sun baseline (after last contact)");
}

void Side::contact() {
    if (c_.contactFrames)
        single(ingress_ ? "C1" : "C4", '+', 0, ingress_ ? "First contact (C1)" : "Last contact (C4)");
}

std::vector<TimedFrame> Side::framesOf(std::optional<double> atSec) const {
    std::vector<TimedFrame> frames;
    double after = 0;
    for (std::size_t i = 0; i < bracket_.size(); ++i) {
        const LowSunFrame frame = shifted(bracket_[i], atSec ? std::optional(*atSec + after) : atSec);
        std::string note = ingress_ ? "Partial ingress" : "Partial egress";
        if (bracket_.size() > 1)
            note += absl::StrFormat(" %d/%d", i + 1, bracket_.size());
        if (frame.past)
            note += "  [ISO ceiling hit — underexposed]";
        frames.push_back({after, frame.frame, note});
        after += upToTenths(frameSec(shutterSeconds(frame.frame.shutter)));
    }
    return frames;
}

void Side::timelapse() {
    if (c_.partialCadence == Cadence::interval && cadence_ == Cadence::magnitude)
        lines_.emplace_back(
            "# Interval cadence needs contact times (none available here); using magnitude steps instead.");
    if (cadence_ == Cadence::interval) {
        emit(window_.byInterval(step_, roundSec_));
        return;
    }
    // A long bracket has to be done before totality even where the contacts are not known.
    const double tail = bracket_.size() > 1 ? std::max(roundSec_ - 2, 0.0) / shortestPercentSec : 0;
    emit(window_.byMagnitude(step_, lastPercent - tail, roundSec_));
}

/// One loop for each run of neighbouring rounds with equal frames.
void Side::emit(const std::vector<Round>& rounds) {
    struct Run {
        double from = 0;
        double to = 0;
        int count = 0;
        std::vector<TimedFrame> frames;
    };
    std::vector<Run> runs;
    int down = 0;
    for (const Round& round : rounds) {
        std::vector<TimedFrame> frames = framesOf(round.atSec);
        const bool up =
            !round.atSec || std::all_of(frames.begin(), frames.end(), [&](const TimedFrame& timed) {
                return plan_.sky.shows(*round.atSec + timed.after);
            });
        if (!up) {
            ++down;
            continue;
        }
        const bool goesOn = !runs.empty() && runs.back().frames == frames &&
                            std::abs(round.value - runs.back().to) < step_ * 1.5;
        if (!goesOn)
            runs.push_back({round.value, round.value, 0, std::move(frames)});
        runs.back().to = round.value;
        ++runs.back().count;
    }
    if (runs.empty() && down > 0) {
        lines_.emplace_back(
            ingress_
                ? "# Ingress timelapse omitted: the Sun is below the horizon through first contact at your "
                  "site."
                : "# Egress timelapse omitted: the Sun is below the horizon by last contact at your site.");
        return;
    }
    if (runs.empty())
        lines_.push_back(absl::StrFormat("# %s timelapse omitted: no set fits into this partial phase.",
                                         ingress_ ? "Ingress" : "Egress"));
    if (down > 0)
        lines_.push_back(
            absl::StrFormat("# %d %s of the timelapse omitted: the Sun is below the horizon then.", down,
                            down == 1 ? "set" : "sets"));
    const bool descending = cadence_ == Cadence::magnitude && !ingress_;
    for (const Run& run : runs)
        emitLoop(run.from, descending ? -step_ : step_, run.to, run.count, run.frames);
}

void Side::emitLoop(double from, double step, double to, int count, const std::vector<TimedFrame>& frames) {
    std::string reference(window_.reference());
    if (cadence_ == Cadence::magnitude) {
        reference = ingress_ ? "MAGPRE (VAR)" : "MAGPOST (VAR)";
        lines_.push_back(
            absl::StrFormat("FOR,(VAR),%s,%s,%s", shortNumber(from), shortNumber(step), shortNumber(to)));
    } else {
        lines_.push_back(
            absl::StrFormat("FOR,(INTERVALOMETER),%s,%s,%d", shortNumber(from), shortNumber(step), count));
    }
    for (const TimedFrame& timed : frames)
        lines_.push_back(frameLine(reference, '+', timed.after, plan_.camera, timed.frame, timed.note));
    lines_.emplace_back("ENDFOR");
}

bool wanted(const Plan& plan) {
    return plan.c.partials && plan.c.filter != WizardChoices::Filter::none;
}

} // namespace

void appendPartialIngress(Lines& lines, const Plan& plan) {
    if (plan.c.partials && plan.c.filter == WizardChoices::Filter::none) {
        lines.emplace_back(
            "# Partials requested but no filter selected; partial-phase frames skipped (unsafe to "
            "shoot the partial Sun).");
        lines.emplace_back();
    }
    if (!wanted(plan))
        return;
    Side side(lines, plan, true);
    side.heading();
    side.baseline();
    side.contact();
    side.timelapse();
    lines.emplace_back();
}

void appendPartialEgress(Lines& lines, const Plan& plan) {
    if (!wanted(plan))
        return;
    Side side(lines, plan, false);
    side.heading();
    side.timelapse();
    side.contact();
    side.baseline();
    lines.emplace_back();
}

} // namespace zenka::script::ScriptWizardGen

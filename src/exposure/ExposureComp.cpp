#include "exposure/ExposureComp.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::exposure {

std::string_view label(CompVariable variable) {
    switch (variable) {
    case CompVariable::shutter: return "shutter";
    case CompVariable::iso: return "ISO";
    case CompVariable::aperture: return "aperture";
    }
    return "";
}

namespace ExposureComp {

namespace {

/// A third of a stop: what snapping to standard values may shift without counting as a shortfall.
constexpr double toleranceStops = 0.34;
constexpr double tinyStops = 1e-9;
constexpr double tinySec = 1e-9;
constexpr int mostStops = 6;

double clamped(double value, double low, double high) {
    return std::min(std::max(value, low), high); // holds for crossed limits too, which rules may have
}

/// One frame being shifted.
class Shift {
public:
    Shift(const CompFrame& frame, int stops, const CompRules& rules, std::optional<double> room)
        : old_(frame), new_(frame), brighter_(stops > 0), wanted_(std::abs(stops)), rules_(rules),
          room_(room) {}

    void run() {
        allocate();
        // Always in this order, whatever the priorities were.
        if (allocated(CompVariable::shutter) > tinyStops)
            moveShutter();
        if (allocated(CompVariable::iso) > tinyStops)
            moveIso();
        if (allocated(CompVariable::aperture) > tinyStops)
            moveAperture();
    }

    const CompFrame& frame() const { return new_; }
    double applied() const { return applied_; }

    std::string note() const {
        const std::string_view sign = brighter_ ? "+" : base::minusSign;
        const std::vector<std::string> limits = limitsMet();
        if (moves_.empty())
            return absl::StrFormat("0 of %s%d: %s", sign, wanted_,
                                   limits.empty() ? "nothing enabled can move" : base::joined(limits));
        if (std::abs(std::abs(applied_) - wanted_) <= toleranceStops)
            return absl::StrFormat("%s%d: %s", sign, wanted_, base::joined(moves_));
        return absl::StrFormat("%s%.1f of %s%d: %s%s", sign, applied_, sign, wanted_, base::joined(moves_),
                               limits.empty() ? "" : " · " + base::joined(limits));
    }

private:
    double direction() const { return brighter_ ? 1 : -1; }
    double& allocated(CompVariable variable) { return allocation_[static_cast<std::size_t>(variable)]; }
    bool enabled(CompVariable variable) const {
        return std::ranges::find(rules_.enabled, variable) != rules_.enabled.end();
    }
    /// The longest shutter that the rules and the next frame leave.
    double shutterCeiling() const {
        return room_ ? std::min(*room_, rules_.shutterSlowestSec) : rules_.shutterSlowestSec;
    }

    /// What may move, in order of priority. Darker frames spend ISO and aperture first, a shorter shutter
    /// last.
    std::vector<CompVariable> candidates() const {
        std::vector<CompVariable> list;
        std::ranges::copy_if(rules_.order, std::back_inserter(list),
                             [this](CompVariable variable) { return enabled(variable); });
        if (!brighter_)
            std::ranges::stable_partition(
                list, [](CompVariable variable) { return variable != CompVariable::shutter; });
        return list;
    }

    /// Stops that a variable can give within the rules, never below 0.
    double capacity(CompVariable variable) const {
        double stops = 0;
        switch (variable) {
        case CompVariable::shutter: {
            const double shutter = old_.shutterSec;
            const double fastest = std::max(rules_.shutterFastestSec, 0.0);
            if (brighter_ && shutter < shutterCeiling())
                stops = std::log2(shutterCeiling() / shutter);
            else if (!brighter_ && fastest < shutter)
                stops = std::log2(shutter / fastest);
            break;
        }
        case CompVariable::iso:
            if (brighter_ && old_.iso < rules_.isoMax)
                stops = std::log2(static_cast<double>(rules_.isoMax) / old_.iso);
            else if (!brighter_ && rules_.isoMin >= 1 && rules_.isoMin < old_.iso)
                stops = std::log2(static_cast<double>(old_.iso) / rules_.isoMin);
            break;
        case CompVariable::aperture:
            if (!(old_.aperture > 0))
                break;
            if (brighter_ && rules_.apertureWidest > 0 && rules_.apertureWidest < old_.aperture)
                stops = 2 * std::log2(old_.aperture / rules_.apertureWidest);
            else if (!brighter_ && rules_.apertureNarrowest > old_.aperture)
                stops = 2 * std::log2(rules_.apertureNarrowest / old_.aperture);
            break;
        }
        return std::max(stops, 0.0);
    }

    void allocate() {
        const std::vector<CompVariable> list = candidates();
        remaining_ = wanted_;
        const auto take = [this](CompVariable variable, double most) {
            const double stops = std::min(capacity(variable) - allocated(variable), most);
            if (stops > 0) {
                allocated(variable) += stops;
                remaining_ -= stops;
            }
        };
        if (rules_.balanced && list.size() >= 2)
            for (const CompVariable variable : list)
                take(variable, wanted_ / static_cast<double>(list.size()));
        for (const CompVariable variable : list)
            if (remaining_ > tinyStops)
                take(variable, remaining_);
    }

    void moveShutter() {
        const double before = old_.shutterSec;
        const auto snapped = [](double seconds) { return shutterSeconds(snapToStandard(seconds)); };
        double after = snapped(before * std::exp2(direction() * allocated(CompVariable::shutter)));
        const double ceiling = shutterCeiling();
        if (!brighter_) {
            if (after < rules_.shutterFastestSec - tinySec)
                after = rules_.shutterFastestSec;
        } else if (after > ceiling + tinySec) {
            after = ceiling;
            // A time that the next frame leaves is seldom a standard one; the slowest allowed is set on
            // purpose.
            if (room_ && snapped(ceiling) <= ceiling + tinySec)
                after = snapped(ceiling);
        }
        new_.shutterSec = after;
        delivered(direction() * std::log2(after / before), shutterLabel(before) + "→" + shutterLabel(after));
    }

    void moveIso() {
        const int before = old_.iso;
        const int standard = snapISO(before * std::exp2(direction() * allocated(CompVariable::iso)));
        const int after = std::min(std::max(standard, rules_.isoMin), rules_.isoMax);
        new_.iso = after;
        delivered(direction() * std::log2(static_cast<double>(after) / before),
                  absl::StrFormat("ISO %d→%d", before, after));
    }

    void moveAperture() {
        const double before = old_.aperture;
        const double exact = before * std::exp2(-direction() * allocated(CompVariable::aperture) / 2);
        const double after =
            clamped(shutterSeconds(snapAperture(exact)), rules_.apertureWidest, rules_.apertureNarrowest);
        new_.aperture = after;
        delivered(direction() * 2 * std::log2(before / after), absl::StrFormat("f/%g→f/%g", before, after));
    }

    void delivered(double stops, std::string move) {
        applied_ += stops;
        moves_.push_back(std::move(move));
    }

    /// What stood in the way when more than a third of a stop could not be found.
    std::vector<std::string> limitsMet() const {
        std::vector<std::string> limits;
        if (remaining_ <= toleranceStops)
            return limits;
        for (const CompVariable variable : rules_.order) {
            if (!enabled(variable))
                continue;
            if (variable == CompVariable::aperture)
                limits.emplace_back("aperture limit");
            else if (variable == CompVariable::iso)
                limits.emplace_back(brighter_ ? "ISO ceiling" : "ISO floor");
            else if (brighter_ && room_ && *room_ < rules_.shutterSlowestSec)
                limits.emplace_back("no gap for a slower shutter");
            else
                limits.emplace_back(brighter_ ? "shutter ceiling" : "shutter floor");
        }
        return limits;
    }

    const CompFrame old_;
    CompFrame new_;
    const bool brighter_;
    const int wanted_;
    const CompRules& rules_;
    const std::optional<double> room_;
    std::array<double, 3> allocation_{};
    double remaining_ = 0;
    double applied_ = 0;
    std::vector<std::string> moves_;
};

} // namespace

CompResult apply(const CompFrame& frame, int stops, const CompRules& rules, const CompGaps& gaps,
                 std::optional<double> spacingToNext, bool nextSameSettings) {
    const int request = std::clamp(stops, -mostStops, mostStops);
    if (stops == 0 || frame.bulb || !(frame.shutterSec > 0) || frame.iso < 1)
        return {.frame = frame, .requestedStops = request, .appliedStops = 0, .note = {}};
    std::optional<double> room;
    if (spacingToNext)
        room = *spacingToNext - (nextSameSettings ? gaps.same : gaps.change);
    Shift shift(frame, request, rules, room);
    shift.run();
    return {.frame = shift.frame(),
            .requestedStops = request,
            .appliedStops = shift.applied(),
            .note = shift.note()};
}

std::string signedStops(int stops) {
    return (stops > 0 ? "+" : "") + std::to_string(stops);
}

std::string summary(const std::string& name, const CompOffsets& offsets) {
    const std::string partials = name + " " + signedStops(offsets.partials);
    const int totality = offsets.inTotality();
    return totality == offsets.partials ? partials : partials + "/" + signedStops(totality);
}

std::map<std::string, std::string> parseCamsetPairs(const std::vector<std::string_view>& fields) {
    std::map<std::string, std::string> pairs;
    for (const std::string_view field : fields) {
        const auto cut = field.find('=');
        if (cut == field.npos)
            continue;
        const std::string_view key = base::trimmed(field.substr(0, cut));
        const std::string_view value = base::trimmed(field.substr(cut + 1));
        if (!key.empty() && !value.empty())
            pairs[base::lowered(key)] = value;
    }
    return pairs;
}

std::optional<CompGaps> gapsFromCamset(const std::map<std::string, std::string>& settings) {
    const auto seconds = [&settings](const char* key) {
        const auto found = settings.find(key);
        return found == settings.end() ? 0 : base::readNumber(found->second).value_or(0);
    };
    const double same = seconds("gap_same");
    const double change = seconds("gap_change");
    if (!(same > 0) || !(change > 0))
        return std::nullopt;
    return CompGaps{.same = same, .change = change, .source = "script"};
}

} // namespace ExposureComp

} // namespace zenka::exposure

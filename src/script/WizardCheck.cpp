#include "script/WizardCheck.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"
#include "script/EdgePhases.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>

namespace zenka::script::ScriptWizardGen {

namespace {

constexpr std::size_t longestName = 64; ///< bytes

class Check {
public:
    explicit Check(UsableChoices& result) : result_(result) {}

    /// Out of range goes to the end of the range, no number at all to the initial value.
    void number(std::string_view name, double& value, double initial, double lo, double hi) {
        if (!std::isfinite(value)) {
            say(name, std::isnan(value) ? "no number" : "an infinite number", absl::StrFormat("%g", initial));
            value = initial;
        } else if (value < lo || value > hi) {
            const double taken = std::clamp(value, lo, hi);
            say(name, absl::StrFormat("%g", value), absl::StrFormat("%g", taken));
            value = taken;
        }
    }

    /// The same, where 0 and less make no sense and give the initial value.
    void positive(std::string_view name, double& value, double initial, double lo, double hi) {
        if (value <= 0) {
            say(name, absl::StrFormat("%g", value), absl::StrFormat("%g", initial));
            value = initial;
        }
        number(name, value, initial, lo, hi);
    }

    void count(std::string_view name, int& value, int lo, int hi) {
        const int taken = std::clamp(value, lo, hi);
        if (taken != value)
            say(name, std::to_string(value), std::to_string(taken));
        value = taken;
    }

    void iso(std::string_view name, int& value, int initial) {
        const int taken = value <= 0 ? initial : std::min(value, 102400);
        if (taken != value)
            say(name, std::to_string(value), std::to_string(taken));
        value = taken;
    }

    void shutter(std::string_view name, std::string& text, const std::string& initial) {
        const std::string typed(base::trimmed(text));
        const double seconds = exposure::shutterSeconds(typed);
        const std::string taken(seconds > 0 ? std::string(exposure::snapToStandard(seconds)) : initial);
        const double takenSec = exposure::shutterSeconds(taken);
        if (std::abs(seconds - takenSec) > 0.001 * takenSec)
            say(name, onOneLine(text), taken.empty() ? "the filter's" : taken);
        text = taken;
    }

    /// A limit need not be a standard shutter.
    void limit(std::string_view name, std::string& text, const std::string& initial) {
        const std::string typed(base::trimmed(text));
        if (exposure::shutterSeconds(typed) > 0 && typed.size() <= longestName) {
            text = typed;
            return;
        }
        say(name, onOneLine(text), initial);
        text = initial;
    }

    void aperture(std::string_view name, std::string& text, const std::string& initial) {
        const std::string typed(base::trimmed(text));
        const double value = base::readNumber(typed).value_or(0);
        if (value >= 0.5 && value <= 128 && typed.size() <= 8) {
            text = typed;
            return;
        }
        say(name, onOneLine(text), initial);
        text = initial;
    }

private:
    void say(std::string_view name, const std::string& given, const std::string& taken) {
        result_.remarks.push_back(absl::StrFormat("%s: %s cannot be used, %s is taken.", name, given, taken));
    }

    UsableChoices& result_;
};

void checkPartials(Check& check, WizardChoices& c) {
    check.positive("Partial step", c.partialStepPct, 0.5, 0.01, 50);
    check.number("Sun baseline lead", c.sunBaselineLeadSec, 60, 0, 3600);
    check.count("Partial bracket", c.partialBracket, 1, 15);
    check.positive("Partial interval", c.partialIntervalSec, 60, 1, 3600);
    check.positive("Partial EV step", c.partialEVStep, 1, 0.1, 10);
    check.aperture("Partial aperture", c.partialAperture, "8.0");
    check.iso("Partial ISO", c.partialISO, 100);
    if (!base::trimmed(c.partialBaseShutter).empty())
        check.shutter("Partial shutter", c.partialBaseShutter, "");
    check.number("Extinction k", c.lowSunKCoeff, 0.15, 0, 2);
    check.limit("Low-Sun shutter", c.lowSunMinShutter, "1/10");
    check.iso("Low-Sun ISO", c.lowSunMaxISO, 1600);
}

void checkEdges(Check& check, WizardChoices& c) {
    constexpr double furthest = 180;
    const WizardChoices initial;
    for (const EdgePhase& edge : edgePhases) {
        const auto name = [&](const char* what) { return absl::StrFormat("%s %s", edge.name, what); };
        check.shutter(name("shutter"), c.*edge.shutter, initial.*edge.shutter);
        check.aperture(name("aperture"), c.*edge.aperture, initial.*edge.aperture);
        check.iso(name("ISO"), c.*edge.iso, initial.*edge.iso);
        check.number(name("from"), c.*edge.from, initial.*edge.from, 0, furthest);
        check.number(name("to"), c.*edge.to, initial.*edge.to, 0, furthest);
        check.number(name("every"), c.*edge.every, initial.*edge.every, 0, 60);
    }
    if (c.egressDrainGap < 0)
        c.egressDrainGap = 0; // a negative one is as good as none
    check.number("Egress drain gap", c.egressDrainGap, 0, 0, 60);
}

void checkTotality(Check& check, WizardChoices& c) {
    check.shutter("Corona fastest", c.coronaFastest, "1/1000");
    check.count("Corona exposures", c.coronaExposures, 1, 25);
    check.positive("Corona EV step", c.coronaEVStep, 1, 0.1, 10);
    check.number("Corona set gap", c.coronaSetGap, 3, 0, 600);
    check.aperture("Corona aperture", c.coronaAperture, "8.0");
    check.iso("Corona ISO", c.coronaISO, 200);
    check.limit("Longest shutter", c.maxShutter, "1/4");
    check.shutter("Earthshine shutter", c.earthshineShutter, "1");
    check.aperture("Earthshine aperture", c.earthshineAperture, "4.0");
    check.iso("Earthshine ISO", c.earthshineISO, 3200);
    check.count("Earthshine bracket", c.earthshineBracket, 1, 15);
    check.positive("Earthshine EV step", c.earthshineEVStep, 1, 0.1, 10);
}

/// The longest beginning of a text of at most so many bytes that cuts no UTF-8 character.
std::string_view cut(std::string_view text, std::size_t bytes) {
    if (text.size() <= bytes)
        return text;
    while (bytes > 0 && (static_cast<unsigned char>(text[bytes]) & 0xC0) == 0x80)
        --bytes;
    return text.substr(0, bytes);
}

std::string withoutLineEnds(std::string_view text) {
    std::string line(text);
    for (const char* end : {"\u0085", "\u2028", "\u2029"})
        line = base::replacedAll(line, end, " ");
    for (char& c : line)
        if (static_cast<unsigned char>(c) < 0x20 || c == 0x7f)
            c = ' ';
    return line;
}

} // namespace

UsableChoices usable(const WizardChoices& choices) {
    UsableChoices result{choices, {}};
    WizardChoices& c = result.choices;
    Check check(result);
    check.number("Spacing", c.minShotGap, 1, 0, 60);
    check.number("Spacing of equal frames", c.minShotGapSame, 0.5, 0, 60);
    checkPartials(check, c);
    checkEdges(check, c);
    checkTotality(check, c);
    return result;
}

std::string usableCamera(std::string_view name) {
    const std::string line = base::replacedAll(withoutLineEnds(name), ",", " ");
    const std::string usable(base::trimmed(cut(base::trimmed(line), longestName)));
    return usable.empty() ? "CAM1" : usable;
}

std::string onOneLine(std::string_view text) {
    const std::string line = withoutLineEnds(text);
    const std::string_view shown = cut(line, longestName);
    return absl::StrFormat("\"%s\"", shown);
}

} // namespace zenka::script::ScriptWizardGen

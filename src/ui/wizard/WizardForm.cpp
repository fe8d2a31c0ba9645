#include "ui/wizard/WizardForm.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"
#include "ui/kit/ExposureFields.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace zenka::ui::WizardForm {

namespace {

constexpr double longestShutterSec = 3600;
constexpr double largestNumber = 1e9; ///< a slip of the finger

using Words = std::vector<std::string>;

/// What a choice may be, in the order of its enumeration.
Words wordsOf(Choices::Filter) {
    return {"Full solar filter", "Thousand Oaks", "ND filter", "None (totality only)"};
}
Words wordsOf(Choices::PartialCadence) {
    return {"by magnitude", "by interval"};
}
Words wordsOf(Choices::LowSunTrade) {
    return {"ISO (fast shutter)", "shutter (low ISO)", "both by halves"};
}
Words wordsOf(script::BracketVar) {
    return {"shutter", "ISO", "aperture"};
}
Words wordsOf(script::BracketWeight) {
    return {"in the middle", "as the darkest", "as the brightest"};
}

Words words(const Member& member) {
    const auto ofMember = []<typename Value>(Value Choices::*) {
        if constexpr (std::is_enum_v<Value>)
            return wordsOf(Value{});
        else
            return Words{};
    };
    return std::visit(ofMember, member);
}

/// A number as a person writes it: "60", "0.5".
std::string numberText(double value) {
    std::string text = base::plainNumber(value);
    if (text.ends_with(".0"))
        text.resize(text.size() - 2);
    return text;
}

std::optional<double> numberOf(const Field& field, std::string_view text) {
    std::string unit = base::lowered(field.unit);
    unit = unit.substr(0, unit.find(' '));
    const auto value = base::readNumber(ExposureFields::bare(text, "", unit));
    return value && std::abs(*value) <= largestNumber ? value : std::nullopt;
}

/// The text of a shutter or aperture, the number of an ISO, as a number to compare with.
double valueOf(Kind kind, std::string_view text) {
    return kind == Kind::shutter ? exposure::shutterSeconds(text) : base::readNumber(text).value_or(0);
}

std::string readWhole(const Field& field, std::string_view text, int& value) {
    const auto number = numberOf(field, text);
    if (!number || std::floor(*number) != *number)
        return absl::StrFormat("This is no whole number. Type one, as %d.", value);
    value = static_cast<int>(*number);
    return {};
}

std::string readIso(std::string_view text, int& value) {
    const auto number = base::readNumber(ExposureFields::bare(text, "iso", ""));
    if (!number || std::floor(*number) != *number || *number < 1 || *number > largestNumber)
        return "This is no ISO value. Type a whole number, as 100.";
    value = static_cast<int>(*number);
    return {};
}

std::string readShutter(const Field& field, std::string_view text, std::string& value) {
    const std::string typed = ExposureFields::bare(text, "", "s");
    if (typed.empty() && field.mayBeEmpty) {
        value.clear();
        return {};
    }
    const double seconds = exposure::shutterSeconds(typed);
    if (!(seconds > 0) || seconds > longestShutterSec)
        return "This is no shutter. Type seconds, as 1/500, 0.5 or 2.";
    value = typed;
    return {};
}

std::string readAperture(std::string_view text, std::string& value) {
    const std::string typed = ExposureFields::bareAperture(text);
    const auto number = base::readNumber(typed);
    if (!number || *number <= 0 || *number > largestNumber)
        return "This is no aperture. Type an f-number, as 8 or 5.6.";
    value = typed;
    return {};
}

template <typename Value>
const Value* memberOf(const Field& field, const Choices& choices) {
    const auto* member = std::get_if<Value Choices::*>(&field.member);
    return member ? &(choices.*(*member)) : nullptr;
}

/// From and To of a phase that the script takes the other way round.
std::string reversed(std::string_view id, const Choices& c) {
    const auto sentence = [](double from, double to, bool wrong) {
        return wrong ? absl::StrFormat("From and to stand the wrong way round: the script takes %g to %g s.",
                                       to, from)
                     : std::string();
    };
    if (id == "diamondTo")
        return sentence(c.diamondFrom, c.diamondTo, c.diamondFrom < c.diamondTo);
    if (id == "beadsTo")
        return sentence(c.beadsFrom, c.beadsTo, c.beadsFrom < c.beadsTo);
    if (id == "promTo")
        return sentence(c.promFrom, c.promTo, c.promFrom > c.promTo);
    return {};
}

/// What the generator takes of answers that its check passes.
std::string quietlyTaken(std::string_view id, const Choices& c) {
    if (id == "magnitudeCueStep" && c.magnitudeCueStep < 5)
        return "The script takes 5 % where it is less.";
    if (id == "magnitudeCueStep" && c.magnitudeCueStep >= 96)
        return "No step lies below 96 %: first and last contact alone are spoken.";
    if (id == "wideFilterLeadSec" && (c.wideFilterLeadSec < 1 || c.wideFilterLeadSec > 180))
        return absl::StrFormat("The script takes %d s: a lead lies between 1 and 180 s.",
                               std::clamp(c.wideFilterLeadSec, 1, 180));
    if (id == "egressDrainGap" && c.egressDrainGap < 0)
        return "The script takes 0 s: a gap cannot be negative.";
    if (id == "partials" && c.partials && c.filter == Choices::Filter::none)
        return "Without a filter the partial Sun must not be photographed, so these frames are left out. "
               "Choose a filter to have them.";
    return {};
}

} // namespace

bool shown(const Field& field, const Choices& choices, const Place& place) {
    if (field.ofTotality && place.central != Central::total)
        return false;
    if (field.ofScript && !place.firstPlan)
        return false;
    return !field.applies || field.applies(choices);
}

std::string reason(Section section, const Place& place) {
    const bool total = place.central == Central::total;
    switch (section) {
    case Section::edges:
    case Section::corona:
        if (place.central == Central::annular)
            return "From this site the eclipse is annular. The ring needs the filter as the full Sun does, "
                   "so "
                   "there is nothing to plan here.";
        if (!total)
            return "From this site there is no totality, so there is nothing to plan here.";
        break;
    case Section::cues:
        if (!place.firstPlan)
            return "The cues are those of the first camera, " + place.firstCamera + ".";
        if (!total)
            return "Without totality there is nothing to say of filters.";
        break;
    case Section::lowSun:
        if (!place.firstPlan)
            return "Whether frames below the horizon are left out goes by the first camera, " +
                   place.firstCamera + ".";
        break;
    case Section::partials:
    case Section::spacing: break;
    }
    return {};
}

std::string textOf(const Field& field, const Choices& choices) {
    if (const auto* number = memberOf<double>(field, choices))
        return numberText(*number);
    if (const auto* whole = memberOf<int>(field, choices))
        return std::to_string(*whole);
    if (const auto* text = memberOf<std::string>(field, choices))
        return *text;
    if (field.kind == Kind::check)
        return {};
    const Words all = words(field.member);
    const auto now = static_cast<std::size_t>(optionNow(field, choices));
    return now < all.size() ? all[now] : std::string();
}

bool ticked(const Field& field, const Choices& choices) {
    const auto* on = memberOf<bool>(field, choices);
    return on && *on;
}

void tick(const Field& field, bool on, Choices& choices) {
    if (const auto* member = std::get_if<bool Choices::*>(&field.member))
        choices.*(*member) = on;
}

std::string read(const Field& field, std::string_view text, Choices& choices) {
    if (base::trimmed(text).empty() && !field.mayBeEmpty)
        return absl::StrFormat("This is empty. Type a value, as %s.", textOf(field, choices));
    switch (field.kind) {
    case Kind::number: {
        const auto number = numberOf(field, text);
        if (!number)
            return absl::StrFormat("This is no number. Type one, as %s.", textOf(field, choices));
        choices.*std::get<double Choices::*>(field.member) = *number;
        return {};
    }
    case Kind::whole: return readWhole(field, text, choices.*std::get<int Choices::*>(field.member));
    case Kind::iso: return readIso(text, choices.*std::get<int Choices::*>(field.member));
    case Kind::shutter:
        return readShutter(field, text, choices.*std::get<std::string Choices::*>(field.member));
    case Kind::aperture: return readAperture(text, choices.*std::get<std::string Choices::*>(field.member));
    case Kind::check:
    case Kind::choice: break;
    }
    return {};
}

std::vector<std::string> options(const Field& field, const Choices& choices) {
    std::vector<std::string> list;
    switch (field.kind) {
    case Kind::choice: return words(field.member);
    case Kind::iso:
        for (const int iso : exposure::standardISOs(choices.wholeStopISO))
            list.push_back(std::to_string(iso));
        break;
    case Kind::shutter:
        for (const std::string_view row : exposure::standardShutters())
            list.emplace_back(row);
        break;
    case Kind::aperture:
        for (const std::string_view row : exposure::standardApertures())
            list.emplace_back(row);
        break;
    case Kind::check:
    case Kind::number:
    case Kind::whole: break;
    }
    return list;
}

int optionNow(const Field& field, const Choices& choices) {
    if (field.kind == Kind::choice)
        return std::visit(
            [&]<typename Value>(Value Choices::*member) {
                if constexpr (std::is_enum_v<Value>)
                    return static_cast<int>(choices.*member);
                else
                    return 0;
            },
            field.member);
    std::string text = textOf(field, choices);
    if (text.empty() && field.mayBeEmpty)
        text = choices.partialShutter();
    const double value = valueOf(field.kind, text);
    const auto list = options(field, choices);
    int nearest = -1;
    double least = 0;
    for (std::size_t i = 0; i < list.size(); ++i) {
        const double off = std::abs(std::log2(std::max(value, 1e-9) / valueOf(field.kind, list[i])));
        if (nearest >= 0 && off >= least)
            continue;
        nearest = static_cast<int>(i);
        least = off;
    }
    return nearest;
}

void takeOption(const Field& field, int option, Choices& choices) {
    const auto list = options(field, choices);
    if (option < 0 || option >= static_cast<int>(list.size()))
        return;
    if (field.kind == Kind::choice)
        std::visit(
            [&]<typename Value>(Value Choices::*member) {
                if constexpr (std::is_enum_v<Value>)
                    choices.*member = static_cast<Value>(option);
            },
            field.member);
    else
        read(field, list[static_cast<std::size_t>(option)], choices);
}

void nudge(const Field& field, int steps, Choices& choices) {
    if (const auto* member = std::get_if<double Choices::*>(&field.member)) {
        // Whole steps from zero, so that a value never shows what binary fractions make of it.
        const double now = choices.*(*member) / field.step;
        const double from = steps > 0 ? std::floor(now + 1e-6) : std::ceil(now - 1e-6);
        choices.*(*member) =
            std::clamp(std::round((from + steps) * field.step * 1e4) / 1e4, 0.0, largestNumber);
        return;
    }
    if (field.kind == Kind::whole) {
        int& value = choices.*std::get<int Choices::*>(field.member);
        value = std::max(1, value + static_cast<int>(field.step) * steps);
        return;
    }
    const auto list = options(field, choices);
    if (!list.empty())
        takeOption(field, std::clamp(optionNow(field, choices) + steps, 0, static_cast<int>(list.size()) - 1),
                   choices);
}

Note noteOf(const Field& field, const Choices& choices, const Choices& usable, const Place& place) {
    if (std::string said = quietlyTaken(field.id, choices); !said.empty())
        return {std::move(said), true};
    const std::string taken = textOf(field, usable);
    const std::string given = textOf(field, choices);
    if (taken != given) {
        const bool shutter = field.kind == Kind::shutter;
        return {absl::StrFormat("%s %s: the script takes %s.", given,
                                shutter ? "is no standard shutter" : "is out of range", taken),
                true};
    }
    if (std::string said = reversed(field.id, usable); !said.empty())
        return {std::move(said), true};
    if (std::string_view(field.id) == "filter")
        return {choices.filterAdvice(),
                choices.filter == Choices::Filter::none && place.central != Central::total};
    if (std::string_view(field.id) == "partialBaseShutter" && choices.partialBaseShutter.empty())
        return {"The shutter comes from the filter: " + choices.partialShutter() + ".", false};
    return {};
}

} // namespace zenka::ui::WizardForm

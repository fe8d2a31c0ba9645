#include "ui/framing/FramingChoice.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace zenka::ui {

namespace {

using ChoiceJson = nlohmann::json;

std::optional<std::string> textOf(const ChoiceJson& json, const char* key) {
    const auto found = json.find(key);
    return found != json.end() && found->is_string() ? std::optional(found->get<std::string>())
                                                     : std::nullopt;
}

/// The row of the number under a key, where it is one of the values.
template <std::size_t N>
void takeRow(const ChoiceJson& json, const char* key, const std::array<double, N>& values, int& row) {
    const auto found = json.find(key);
    if (found == json.end() || !found->is_number())
        return;
    const auto at = std::ranges::find(values, found->get<double>());
    if (at != values.end())
        row = static_cast<int>(at - values.begin());
}

} // namespace

FramingChoice framingChoiceFrom(const std::string& text) {
    const ChoiceJson json = ChoiceJson::parse(text, nullptr, false);
    FramingChoice choice;
    if (!json.is_object())
        return choice;
    choice.label = textOf(json, "label");
    choice.serial = textOf(json, "serial").value_or("");
    choice.moment = textOf(json, "moment").value_or(choice.moment);
    choice.aimsAtMax = textOf(json, "aim") == "MAX";
    takeRow(json, "radii", FramingChoice::coronaRadii, choice.radii);
    takeRow(json, "trail", FramingChoice::trailLengths, choice.trail);
    return choice;
}

std::string framingChoiceText(const FramingChoice& choice) {
    return ChoiceJson{{"serial", choice.serial},       {"label", choice.label.value_or("")},
                      {"moment", choice.moment},       {"aim", choice.aimsAtMax ? "MAX" : "first"},
                      {"radii", choice.wantedRadii()}, {"trail", choice.trailPx()}}
        .dump(-1, ' ', false, ChoiceJson::error_handler_t::replace);
}

} // namespace zenka::ui

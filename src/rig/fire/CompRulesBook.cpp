#include "rig/fire/CompRulesBook.h"

#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>
#include <vector>

namespace zenka::rig {

using exposure::CompRules;
using exposure::CompVariable;
using Json = nlohmann::json;

namespace {

constexpr char keyPrefix[] = "eclipse.compRules.";
constexpr std::array<std::string_view, 2> keyKinds{"serial:", "token:"};

constexpr std::array<std::pair<CompVariable, const char*>, 3> variableNames{
    {{CompVariable::shutter, "shutter"}, {CompVariable::iso, "iso"}, {CompVariable::aperture, "aperture"}}};

Json listOf(const std::vector<CompVariable>& variables) {
    Json list = Json::array();
    for (const CompVariable variable : variables)
        list.push_back(
            std::ranges::find(variableNames, variable, &decltype(variableNames)::value_type::first)->second);
    return list;
}

/// False for a list with what is no variable, or with one twice.
bool takeList(const Json& json, std::vector<CompVariable>& variables) {
    if (!json.is_array())
        return false;
    variables.clear();
    for (const Json& item : json) {
        const auto known =
            std::ranges::find_if(variableNames, [&](const auto& name) { return item == name.second; });
        if (known == variableNames.end() || std::ranges::count(variables, known->first) > 0)
            return false;
        variables.push_back(known->first);
    }
    return true;
}

bool takeNumber(const Json& json, double& number) {
    if (!json.is_number())
        return false;
    number = json.get<double>();
    return std::isfinite(number);
}

bool takeInteger(const Json& json, int& number) {
    double value = 0;
    if (!takeNumber(json, value) || std::abs(value) > 1e9)
        return false;
    number = static_cast<int>(value);
    return number == value;
}

} // namespace

Json toJson(const CompRules& rules) {
    return Json{{"order", listOf(rules.order)},
                {"enabled", listOf(rules.enabled)},
                {"balanced", rules.balanced},
                {"isoMin", rules.isoMin},
                {"isoMax", rules.isoMax},
                {"shutterFastestSec", rules.shutterFastestSec},
                {"shutterSlowestSec", rules.shutterSlowestSec},
                {"apertureWidest", rules.apertureWidest},
                {"apertureNarrowest", rules.apertureNarrowest}};
}

std::string encodeCompRules(const CompRules& rules) {
    return toJson(rules).dump();
}

std::optional<CompRules> decodeCompRules(std::string_view text) {
    return compRulesFrom(Json::parse(text, nullptr, false));
}

std::optional<CompRules> compRulesFrom(const Json& json) {
    if (!json.is_object())
        return std::nullopt;
    const auto field = [&json](const char* key) { return json.value(key, Json()); };
    CompRules rules;
    const Json balanced = field("balanced");
    if (!balanced.is_boolean())
        return std::nullopt;
    rules.balanced = balanced.get<bool>();
    const bool whole = takeList(field("order"), rules.order) && takeList(field("enabled"), rules.enabled) &&
                       takeInteger(field("isoMin"), rules.isoMin) &&
                       takeInteger(field("isoMax"), rules.isoMax) &&
                       takeNumber(field("shutterFastestSec"), rules.shutterFastestSec) &&
                       takeNumber(field("shutterSlowestSec"), rules.shutterSlowestSec) &&
                       takeNumber(field("apertureWidest"), rules.apertureWidest) &&
                       takeNumber(field("apertureNarrowest"), rules.apertureNarrowest);
    return whole && CompRulesBook::fault(rules).empty() ? std::optional(rules) : std::nullopt;
}

std::string CompRulesBook::fault(const CompRules& rules) {
    if (rules.isoMin < 1 || rules.isoMax < rules.isoMin)
        return "The lowest ISO must be at least 1 and not above the highest.";
    if (rules.shutterFastestSec <= 0 || rules.shutterSlowestSec < rules.shutterFastestSec)
        return "The fastest shutter must not be slower than the slowest.";
    if (rules.apertureWidest <= 0 || rules.apertureNarrowest < rules.apertureWidest)
        return "The widest aperture must have the smaller f-number.";
    return {};
}

std::string CompRulesBook::compRulesKey(const std::string& token) const {
    for (const auto& camera : roster_.camerasFor(token))
        if (camera->connected() && !camera->serial().empty() && !roster_.serialShared(camera->serial()))
            return "serial:" + camera->serial();
    return "token:" + token;
}

bool CompRulesBook::isKey(std::string_view key) {
    return std::ranges::any_of(
        keyKinds, [&](std::string_view kind) { return key.starts_with(kind) && key.size() > kind.size(); });
}

CompRulesBook::AllRules CompRulesBook::all() const {
    AllRules all;
    const std::string prefix = keyPrefix;
    for (const std::string& key : ports_.settings.keysBeginningWith(prefix)) {
        const auto rules = decodeCompRules(ports_.settings.text(key).value_or(""));
        if (rules && isKey(key.substr(prefix.size())))
            all.emplace(key.substr(prefix.size()), *rules);
    }
    return all;
}

void CompRulesBook::merge(const AllRules& rules) {
    for (const auto& [key, each] : rules) {
        if (!isKey(key) || !fault(each).empty())
            continue;
        ports_.settings.setText(keyPrefix + key, encodeCompRules(each));
        compRulesCache_[key] = each;
    }
    if (!rules.empty())
        changed_.emit({});
}

std::optional<CompRules> CompRulesBook::saved(const std::string& token) const {
    const std::string key = compRulesKey(token);
    const auto cached = compRulesCache_.find(key);
    if (cached != compRulesCache_.end())
        return cached->second;
    const auto text = ports_.settings.text(keyPrefix + key);
    return compRulesCache_[key] = text ? decodeCompRules(*text) : std::nullopt;
}

CompRules CompRulesBook::compRules(const std::string& token) const {
    return saved(token).value_or(CompRules{});
}

void CompRulesBook::saveCompRules(const CompRules& rules, const std::string& token) {
    const std::string key = compRulesKey(token);
    ports_.settings.setText(keyPrefix + key, encodeCompRules(rules));
    compRulesCache_[key] = rules;
    std::string order;
    for (const CompVariable variable : rules.order)
        if (std::ranges::count(rules.enabled, variable) > 0)
            order += (order.empty() ? "" : ", ") + std::string(exposure::label(variable));
    log_.pushLog(absl::StrFormat("Exposure rules saved for %s: %s%s, ISO %d–%d, shutter %s–%s", token,
                                 order.empty() ? "nothing may move" : order,
                                 rules.balanced ? " (balanced)" : "", rules.isoMin, rules.isoMax,
                                 exposure::shutterLabel(rules.shutterFastestSec),
                                 exposure::shutterLabel(rules.shutterSlowestSec)));
    changed_.emit(token);
}

} // namespace zenka::rig

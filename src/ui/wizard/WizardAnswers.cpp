#include "ui/wizard/WizardAnswers.h"

#include "script/WizardCheck.h"
#include "ui/wizard/WizardForm.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cmath>
#include <type_traits>

namespace zenka::ui {

namespace {

using Json = nlohmann::json;
using script::WizardChoices;

constexpr std::size_t mostCameras = 64; ///< no rig has them; keeps a broken file from growing the form

Json encoded(const WizardChoices& choices) {
    Json json = Json::object();
    for (const WizardForm::Field& field : WizardForm::fields())
        std::visit(
            [&]<typename Value>(Value WizardChoices::*member) {
                if constexpr (std::is_enum_v<Value>)
                    json[field.id] = static_cast<int>(choices.*member);
                else
                    json[field.id] = choices.*member;
            },
            field.member);
    return json;
}

void take(const Json& json, bool& value) {
    if (json.is_boolean())
        value = json.get<bool>();
}

void take(const Json& json, double& value) {
    if (json.is_number() && std::isfinite(json.get<double>()))
        value = json.get<double>();
}

void take(const Json& json, int& value) {
    constexpr double most = 1e9;
    if (json.is_number_integer() && std::abs(json.get<double>()) <= most)
        value = json.get<int>();
}

void take(const Json& json, std::string& value) {
    constexpr std::size_t longest = 64; // bytes of an exposure
    if (json.is_string() && json.get_ref<const std::string&>().size() <= longest)
        value = json.get<std::string>();
}

WizardChoices decoded(const Json& json) {
    WizardChoices choices;
    if (!json.is_object())
        return choices;
    for (const WizardForm::Field& field : WizardForm::fields()) {
        const auto found = json.find(field.id);
        if (found == json.end())
            continue;
        std::visit(
            [&]<typename Value>(Value WizardChoices::*member) {
                if constexpr (std::is_enum_v<Value>) {
                    int option = static_cast<int>(choices.*member);
                    take(*found, option);
                    if (option >= 0)
                        WizardForm::takeOption(field, option, choices);
                } else {
                    take(*found, choices.*member);
                }
            },
            field.member);
    }
    return choices;
}

std::vector<std::string> namesIn(const Json& json) {
    std::vector<std::string> list;
    if (!json.is_array())
        return list;
    for (const Json& item : json) {
        if (!item.is_string() || item.get_ref<const std::string&>().empty() || list.size() == mostCameras)
            continue;
        std::string name = script::ScriptWizardGen::usableCamera(item.get_ref<const std::string&>());
        if (std::ranges::find(list, name) == list.end())
            list.push_back(std::move(name));
    }
    return list;
}

} // namespace

WizardChoices& WizardAnswers::planOf(const std::string& camera) {
    return perCamera && !camera.empty() ? own.try_emplace(camera, shared).first->second : shared;
}

std::vector<WizardChoices> WizardAnswers::plans() const {
    std::vector<WizardChoices> plans;
    if (chosen.empty())
        return plans;
    if (!perCamera) {
        plans.push_back(shared);
        plans.back().cameras = chosen;
        return plans;
    }
    for (const std::string& camera : chosen) {
        const auto found = own.find(camera);
        plans.push_back(found == own.end() ? shared : found->second);
        plans.back().camera = camera;
        plans.back().cameras.clear();
    }
    return plans;
}

std::string encodeWizardAnswers(const WizardAnswers& answers) {
    Json own = Json::object();
    for (const auto& [camera, choices] : answers.own)
        own[camera] = encoded(choices);
    const Json json{{"perCamera", answers.perCamera},
                    {"chosen", answers.chosen},
                    {"typed", answers.typed},
                    {"shared", encoded(answers.shared)},
                    {"own", own}};
    return json.dump(-1, ' ', false, Json::error_handler_t::replace);
}

WizardAnswers decodeWizardAnswers(std::string_view text) {
    WizardAnswers answers;
    const Json json = Json::parse(text, nullptr, false);
    if (!json.is_object())
        return answers;
    const auto field = [&json](const char* key) { return json.value(key, Json()); };
    take(field("perCamera"), answers.perCamera);
    answers.chosen = namesIn(field("chosen"));
    answers.typed = namesIn(field("typed"));
    answers.shared = decoded(field("shared"));
    const Json own = field("own");
    if (own.is_object())
        for (const auto& [camera, choices] : own.items())
            if (answers.own.size() < mostCameras)
                answers.own.emplace(script::ScriptWizardGen::usableCamera(camera), decoded(choices));
    return answers;
}

} // namespace zenka::ui

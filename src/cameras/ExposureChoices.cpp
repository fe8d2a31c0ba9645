#include "cameras/ExposureChoices.h"

#include <nlohmann/json.hpp>

namespace zenka::cameras {

namespace {

using Json = nlohmann::json;

bool readList(const Json& object, const char* key, std::vector<std::string>& list) {
    const auto found = object.find(key);
    if (found == object.end() || !found->is_array())
        return false;
    for (const Json& item : *found) {
        if (!item.is_string())
            return false;
        list.push_back(item.get<std::string>());
    }
    return true;
}

} // namespace

bool ExposureChoices::empty() const {
    return shutter.empty() && iso.empty() && aperture.empty() && shutterFraction.empty();
}

std::string toJson(const ExposureChoices& choices) {
    const Json object{{"shutter", choices.shutter},   {"iso", choices.iso},
                      {"aperture", choices.aperture}, {"apertureProp", choices.apertureProp},
                      {"expComp", choices.expComp},   {"shutterFraction", choices.shutterFraction}};
    // A body's answer need not be UTF-8.
    return object.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::optional<ExposureChoices> exposureChoicesFromJson(std::string_view json) {
    const Json object = Json::parse(json, nullptr, false);
    if (!object.is_object())
        return std::nullopt;
    ExposureChoices choices;
    const auto prop = object.find("apertureProp");
    if (prop == object.end() || !prop->is_string())
        return std::nullopt;
    choices.apertureProp = prop->get<std::string>();
    if (!readList(object, "shutter", choices.shutter) || !readList(object, "iso", choices.iso) ||
        !readList(object, "aperture", choices.aperture) || !readList(object, "expComp", choices.expComp) ||
        !readList(object, "shutterFraction", choices.shutterFraction))
        return std::nullopt;
    return choices;
}

} // namespace zenka::cameras

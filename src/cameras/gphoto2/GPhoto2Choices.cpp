#include "cameras/gphoto2/GPhoto2Choices.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <array>

namespace zenka::cameras::GPhoto2Choices {

namespace {

using Json = nlohmann::json;
using List = std::vector<std::string>;

constexpr const char* shutterPrefix = "eclipse.choices.shutter.";
constexpr const char* fractionPrefix = "eclipse.choices.shutterFrac.";
constexpr const char* isoPrefix = "eclipse.choices.iso.";
constexpr const char* expCompPrefix = "eclipse.choices.expComp.";
constexpr const char* apertureKeyPrefix = "eclipse.choices.apProp.";
constexpr const char* versionPrefix = "eclipse.choices.v.";
constexpr const char* emptyPrefix = "eclipse.choices.empty.";

// Raised when what is read changes its meaning: older lists are then read anew.
constexpr double cacheVersion = 1;

// The apertures are not remembered: they are the lens's and not the body's.
constexpr std::array<const char*, 6> cacheKeys{shutterPrefix, fractionPrefix,    isoPrefix,
                                               expCompPrefix, apertureKeyPrefix, versionPrefix};

void setList(ports::Settings& settings, const std::string& key, const List& list) {
    settings.setText(key, Json(list).dump(-1, ' ', false, Json::error_handler_t::replace));
}

List listOf(const ports::Settings& settings, const std::string& key) {
    const auto text = settings.text(key);
    if (!text)
        return {};
    const Json json = Json::parse(*text, nullptr, false);
    List list;
    if (json.is_array())
        for (const Json& item : json)
            if (item.is_string())
                list.push_back(item.get<std::string>());
    return list;
}

} // namespace

Read readThrough(GPhoto2Session& session, const std::string& model, base::Seconds perKey) {
    Read read;
    List shutter = session.getConfigChoices("shutterspeed", perKey);
    // An Olympus that has just been claimed gives nothing the first time.
    if (shutter.empty() && GPhoto2Text::isOlympus(model))
        shutter = session.getConfigChoices("shutterspeed", perKey);
    read.shutterCount = shutter.size();
    if (read.degenerate())
        return read;
    ExposureChoices& choices = read.choices;
    choices.shutter = std::move(shutter);
    choices.shutterFraction = session.getConfigChoices("shutterspeed2", perKey);
    choices.iso = session.getConfigChoices("iso", perKey);
    choices.aperture = session.getConfigChoices("f-number", perKey);
    if (choices.aperture.empty()) {
        choices.aperture = session.getConfigChoices("aperture", perKey);
        if (!choices.aperture.empty())
            choices.apertureProp = "aperture";
    }
    choices.expComp = session.getConfigChoices("exposurecompensation", perKey);
    return read;
}

std::string diagnosticsText(GPhoto2Session& session, const std::string& model, base::Seconds perKey) {
    std::string text = "Zenka gphoto2 profile report\nmodel: " + model + "\n";
    for (const char* command :
         {"summary", "list-config", "get-config shutterspeed", "get-config shutterspeed2", "get-config iso"})
        text += std::string("\n--- ") + command + "\n" + session.runRaw(command, perKey) + "\n";
    return text;
}

Cached cachedChoices(ports::Settings& settings, const std::string& model) {
    if (settings.number(versionPrefix + model) != cacheVersion)
        return {};
    ExposureChoices choices{.shutter = listOf(settings, shutterPrefix + model),
                            .iso = listOf(settings, isoPrefix + model),
                            .expComp = listOf(settings, expCompPrefix + model),
                            .shutterFraction = listOf(settings, fractionPrefix + model)};
    if (const auto prop = settings.text(apertureKeyPrefix + model))
        choices.apertureProp = *prop;
    if (choices.shutter.size() >= fewestShutters)
        return {.choices = std::move(choices)};
    for (const char* key : cacheKeys)
        settings.remove(key + model);
    return {.poisonedCount = choices.shutter.size()};
}

void cacheChoices(ports::Settings& settings, const std::string& model, const ExposureChoices& choices) {
    setList(settings, shutterPrefix + model, choices.shutter);
    setList(settings, fractionPrefix + model, choices.shutterFraction);
    setList(settings, isoPrefix + model, choices.iso);
    setList(settings, expCompPrefix + model, choices.expComp);
    settings.setText(apertureKeyPrefix + model, choices.apertureProp);
    settings.setNumber(versionPrefix + model, cacheVersion);
    settings.remove(emptyPrefix + model);
}

int emptyReads(const ports::Settings& settings, const std::string& model) {
    const double count = settings.number(emptyPrefix + model).value_or(0);
    return count > 0 && count < 1000 ? static_cast<int>(count) : 0;
}

void noteEmptyChoiceRead(ports::Settings& settings, const std::string& model) {
    settings.setNumber(emptyPrefix + model, emptyReads(settings, model) + 1);
}

bool shouldReadChoicesLive(int emptyReads) {
    return emptyReads < 3;
}

GPhoto2Text::HeldSessions heldSessions(const ports::Settings& settings) {
    return {.nikon = settings.flag("eclipse.nikonHeldSession").value_or(true),
            .olympus = settings.flag("eclipse.olympusHeldSession").value_or(true)};
}

std::string degenerateWarning(const std::string& model, std::size_t count, int knownGood) {
    return absl::StrFormat("%s: the camera reported only %d shutter speed(s), but the %s"
                           " we have a profile for reports %d."
                           " That almost always means the mode dial is not on M."
                           " Zenka will send exposures as written rather than snapping them to that one"
                           " value, but set the body to Manual and Detect again so it can read the real"
                           " ladder.",
                           model, count, model, knownGood);
}

} // namespace zenka::cameras::GPhoto2Choices

#include "rig/transfer/RigFile.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "eclipse/Catalog.h"
#include "rig/script/ScriptFiles.h"
#include "rig/transfer/RigFields.h"

#include <absl/strings/str_format.h>
#include <absl/time/time.h>
#include <nlohmann/json.hpp>

#include <utility>

namespace zenka::rig {

using Json = nlohmann::json;

namespace {

constexpr char formatName[] = "zenka rig";
constexpr int formatVersion = 1;
constexpr char instantForm[] = "%Y-%m-%dT%H:%M:%SZ";

// --- writing

template <typename Items, typename ToJson>
Json listOf(const Items& items, ToJson make) {
    Json list = Json::array();
    for (const auto& item : items)
        list.push_back(make(item));
    return list;
}

template <typename Map, typename ToJson>
Json objectOf(const Map& map, ToJson make) {
    Json object = Json::object();
    for (const auto& [key, value] : map)
        object[key] = make(value);
    return object;
}

Json siteJson(const RigContents::SiteInUse& site) {
    Json json = toJson(site.record);
    json["eclipse"] = site.eclipseId;
    return json;
}

// --- reading

std::string textAt(const Json& object, const char* key) {
    const auto found = object.find(key);
    return found != object.end() && found->is_string() ? found->get<std::string>() : std::string();
}

/// Collects what could be read, and a sentence on what could not.
class Parts {
public:
    Parts(const Json& rig, std::vector<std::string>& leftOut) : rig_(rig), leftOut_(leftOut) {}

    /// Null where there is none. One that is no array, or no object, is told.
    const Json* find(const char* key, const char* name, bool (Json::*isType)() const noexcept) {
        const auto found = rig_.find(key);
        if (found == rig_.end())
            return nullptr;
        if (((*found).*isType)())
            return &*found;
        tell(absl::StrFormat("The %s could not be read and are left out.", name));
        return nullptr;
    }

    /// Hands out each item of an array or object; `take` says whether it could be read.
    template <typename Take>
    void each(const char* key, const char* name, bool (Json::*isType)() const noexcept, Take take) {
        const Json* items = find(key, name, isType);
        if (!items)
            return;
        std::size_t taken = 0;
        std::size_t seen = 0;
        for (const auto& item : items->items()) {
            if (++seen > RigFields::mostItems)
                break;
            taken += take(item.key(), item.value()) ? 1 : 0;
        }
        if (taken < items->size())
            tell(absl::StrFormat("Of %d %s, %d could not be read and are left out.", items->size(), name,
                                 items->size() - taken));
    }

    void tell(std::string sentence) { leftOut_.push_back(std::move(sentence)); }

private:
    const Json& rig_;
    std::vector<std::string>& leftOut_;
};

void readSite(const Json& rig, Parts& parts, RigContents& contents) {
    const auto found = rig.find("site");
    if (found == rig.end())
        return;
    auto record = siteRecordFrom(*found);
    if (!record || !RigFields::isPlace(record->site.lat, record->site.lon, record->site.elev) ||
        !RigFields::isLine(record->site.label) || !RigFields::isLine(record->site.tzId))
        return parts.tell("The site in use could not be read and is left out.");
    const std::string eclipse = textAt(*found, "eclipse");
    if (!eclipse::Catalog::has(eclipse))
        return parts.tell(
            "The site in use is for an eclipse that is not in this catalogue, and is left out.");
    if (!base::findTimeZone(record->site.tzId))
        parts.tell("The time zone of the site in use is not known here: times of day will be in UTC until "
                   "you set it in Location.");
    contents.site = {.eclipseId = eclipse, .record = *std::move(record)};
}

void readScript(const Json& rig, Parts& parts, RigContents& contents) {
    const auto found = rig.find("script");
    if (found == rig.end())
        return;
    const auto text = found->is_object() ? found->find("text") : found->end();
    if (!found->is_object() || text == found->end() || !text->is_string() ||
        text->get_ref<const std::string&>().size() > ScriptFiles::mostBytes ||
        text->get_ref<const std::string&>().find('\0') != std::string::npos)
        return parts.tell("The script could not be read and is left out.");
    std::string name = textAt(*found, "name");
    if (name.empty() || !RigFields::isLine(name))
        name = "Untitled";
    const std::string lines = base::replacedAll(text->get_ref<const std::string&>(), "\r\n", "\n");
    contents.script = {.name = std::move(name), .text = base::replacedAll(lines, "\r", "\n")};
}

void checkSensor(cameras::FramingRecord& framing, bool& whole) {
    if (RigFields::isLine(framing.sensor))
        return;
    framing.sensor.clear();
    whole = false;
}

void readLists(Parts& parts, RigContents& contents) {
    parts.each("savedSites", "saved sites", &Json::is_array, [&](const std::string&, const Json& item) {
        auto site = savedSiteFrom(item);
        if (!site || !RigFields::isPlace(site->lat, site->lon, site->elev) || site->id.empty() ||
            !RigFields::isLine(site->id) || !RigFields::isLine(site->name) || !RigFields::isLine(site->tz))
            return false;
        contents.savedSites.push_back(*std::move(site));
        return true;
    });
    parts.each("horizons", "horizons", &Json::is_array, [&](const std::string&, const Json& item) {
        auto horizon = horizonFrom(item);
        if (!horizon || !RigFields::isPlace(horizon->lat, horizon->lon, 0) ||
            !RigFields::isLine(horizon->result.source))
            return false;
        contents.horizons.push_back(*std::move(horizon));
        return true;
    });
    bool framingsWhole = true;
    parts.each("bodies", "bodies", &Json::is_array, [&](const std::string&, const Json& item) {
        auto body = cameras::libraryEntryFrom(item, framingsWhole);
        if (!body || body->serial.empty() || !RigFields::isLine(body->serial) ||
            !RigFields::isLine(body->model) || body->label.empty() || !RigFields::isLine(body->label) ||
            !RigFields::isLine(body->lens.value_or("")))
            return false;
        if (body->framing)
            checkSensor(*body->framing, framingsWhole);
        contents.bodies.push_back(*std::move(body));
        return true;
    });
    parts.each("framings", "framings of names", &Json::is_object,
               [&](const std::string& label, const Json& item) {
                   if (!item.is_object() || !RigFields::isLine(label) || label != base::lowered(label))
                       return false;
                   auto framing = cameras::framingFrom(item, framingsWhole);
                   checkSensor(framing, framingsWhole);
                   contents.framings.emplace(label, std::move(framing));
                   return true;
               });
    if (!framingsWhole)
        parts.tell("Some values of framings could not be read and are left out.");
    parts.each("rules", "exposure rules", &Json::is_object, [&](const std::string& key, const Json& item) {
        const auto rules = compRulesFrom(item);
        if (!rules || !CompRulesBook::isKey(key) || !RigFields::isLine(key))
            return false;
        contents.rules.emplace(key, *rules);
        return true;
    });
    parts.each("measured", "measured models", &Json::is_object,
               [&](const std::string& model, const Json& item) {
                   const auto floors = RigFields::floorsFrom(item);
                   if (!floors || model.empty() || !RigFields::isLine(model))
                       return false;
                   contents.floors.emplace(model, *floors);
                   return true;
               });
}

std::optional<base::Instant> instantFrom(const std::string& text) {
    absl::Time time;
    std::string fault;
    const bool finite = text.find("inf") == text.npos; // which absl takes for a time
    if (!finite || !absl::ParseTime(instantForm, text, &time, &fault))
        return std::nullopt;
    return base::fromAbsl(time);
}

} // namespace

std::string toJson(const RigContents& rig) {
    std::vector<std::pair<const char*, Json>> parts{
        {"format", formatName}, {"version", formatVersion}, {"appVersion", rig.appVersion}};
    if (rig.exported)
        parts.emplace_back("exported", base::formatTime(instantForm, *rig.exported, absl::UTCTimeZone()));
    if (rig.site)
        parts.emplace_back("site", siteJson(*rig.site));
    if (rig.script)
        parts.emplace_back("script", Json{{"name", rig.script->name}, {"text", rig.script->text}});
    const auto plain = [](const auto& item) { return Json(toJson(item)); };
    parts.emplace_back("savedSites", listOf(rig.savedSites, plain));
    parts.emplace_back("bodies", listOf(rig.bodies, plain));
    parts.emplace_back("framings", objectOf(rig.framings, plain));
    parts.emplace_back("rules", objectOf(rig.rules, plain));
    parts.emplace_back("measured", objectOf(rig.floors, RigFields::floorsJson));
    parts.emplace_back("horizons", listOf(rig.horizons, plain));
    std::string text;
    for (const auto& [key, value] : parts)
        text += absl::StrFormat("%s\"%s\": %s", text.empty() ? "{\n" : ",\n", key,
                                value.dump(-1, ' ', false, Json::error_handler_t::replace));
    return text + "\n}\n";
}

RigReading rigFrom(std::string_view text) {
    const Json rig = RigFields::parse(text);
    if (!rig.is_object() || textAt(rig, "format") != formatName)
        return {.contents = {},
                .fault = "is no rig of Zenka's, or it is cut. Choose a file that Export Rig… has written."};
    const auto version = rig.find("version");
    const bool numbered = version != rig.end() && version->is_number();
    if (numbered && version->get<double>() > formatVersion)
        return {.contents = {}, .fault = "was written by a newer Zenka. Update this one to import it."};
    if (!numbered || version->get<double>() < 1)
        return {.contents = {}, .fault = "does not tell its version. Export the rig anew."};
    RigReading reading;
    RigContents contents{.appVersion = textAt(rig, "appVersion"),
                         .exported = instantFrom(textAt(rig, "exported"))};
    if (!RigFields::isLine(contents.appVersion))
        contents.appVersion.clear();
    Parts parts(rig, reading.leftOut);
    readSite(rig, parts, contents);
    readScript(rig, parts, contents);
    readLists(parts, contents);
    reading.contents = std::move(contents);
    return reading;
}

} // namespace zenka::rig

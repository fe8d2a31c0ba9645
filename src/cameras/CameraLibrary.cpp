#include "cameras/CameraLibrary.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace zenka::cameras {

namespace {

using OrderedJson = nlohmann::ordered_json;

std::string listText(const std::vector<CameraLibraryEntry>& entries) {
    OrderedJson list = OrderedJson::array();
    for (const CameraLibraryEntry& entry : entries)
        list.push_back(toJson(entry));
    return list.dump(2, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

/// Whether the list changed.
bool putInto(std::vector<CameraLibraryEntry>& entries, const CameraLibraryEntry& entry) {
    const auto place = std::ranges::find(entries, entry.serial, &CameraLibraryEntry::serial);
    if (entry.serial.empty() || (place != entries.end() && *place == entry))
        return false;
    if (place == entries.end())
        entries.push_back(entry);
    else
        *place = entry;
    return true;
}

} // namespace

OrderedJson toJson(const CameraLibraryEntry& entry) {
    OrderedJson item{{"serial", entry.serial}, {"model", entry.model}, {"label", entry.label}};
    if (entry.lens)
        item["lens"] = *entry.lens;
    if (entry.framing)
        item["framing"] = toJson(*entry.framing);
    return item;
}

std::optional<CameraLibraryEntry> libraryEntryFrom(const nlohmann::json& item, bool& whole) {
    const auto text = [&](const char* key) -> std::optional<std::string> {
        const auto found = item.find(key);
        if (found == item.end() || !found->is_string())
            return std::nullopt;
        return found->get<std::string>();
    };
    if (!item.is_object())
        return std::nullopt;
    auto serial = text("serial");
    auto model = text("model");
    auto label = text("label");
    auto lens = text("lens");
    const bool lensUnreadable = !lens && item.contains("lens") && !item["lens"].is_null();
    if (!serial || !model || !label || lensUnreadable)
        return std::nullopt;
    const auto found = item.find("framing");
    const auto framing =
        found == item.end() || found->is_null() ? std::nullopt : std::optional(framingFrom(*found, whole));
    return CameraLibraryEntry{.serial = *std::move(serial),
                              .model = *std::move(model),
                              .label = *std::move(label),
                              .lens = std::move(lens),
                              .framing = framing};
}

CameraLibrary::CameraLibrary(ports::KeptFile::Means means, const ports::Folders& folders)
    : file_(std::move(means), folders.applicationSupport() / "cameras.json", "The camera library",
            "zenka.cameralibrary") {
}

std::optional<std::string> CameraLibrary::load() {
    entries_.clear();
    const auto text = file_.load();
    if (!text)
        return std::nullopt;
    const auto list = nlohmann::json::parse(*text, nullptr, false);
    bool whole = list.is_array();
    for (const auto& item : whole ? list : nlohmann::json::array()) {
        if (const auto entry = libraryEntryFrom(item, whole))
            putInto(entries_, *entry);
        else
            whole = false;
    }
    if (whole)
        return std::nullopt;
    const std::string what =
        "The camera library could not be read" +
        (entries_.empty() ? std::string("; it begins anew.")
                          : absl::StrFormat(" whole; cameras read: %d.", entries_.size()));
    if (!file_.keepDamaged(*text))
        return what;
    save();
    return what + " The file is kept as cameras.json.damaged in the program's folder.";
}

std::optional<CameraLibraryEntry> CameraLibrary::find(std::string_view serial) const {
    const auto found = std::ranges::find(entries_, serial, &CameraLibraryEntry::serial);
    return found == entries_.end() ? std::nullopt : std::optional(*found);
}

void CameraLibrary::put(const CameraLibraryEntry& entry) {
    if (putInto(entries_, entry))
        save();
}

void CameraLibrary::put(const std::vector<CameraLibraryEntry>& entries) {
    bool changed = false;
    for (const CameraLibraryEntry& entry : entries)
        changed = putInto(entries_, entry) || changed;
    if (changed)
        save();
}

void CameraLibrary::remove(std::string_view serial) {
    if (std::erase_if(entries_, [&](const auto& entry) { return entry.serial == serial; }) > 0)
        save();
}

void CameraLibrary::save() {
    file_.save(listText(entries_));
}

} // namespace zenka::cameras

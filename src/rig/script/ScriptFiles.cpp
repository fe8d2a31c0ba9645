#include "rig/script/ScriptFiles.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>
#include <filesystem>
#include <utility>

namespace zenka::rig {

namespace {

constexpr std::size_t maxRecentScripts = 10;

ScriptFiles::Read readFile(ports::Files& files, const std::string& path) {
    const auto refused = [&](std::string_view why) {
        return ScriptFiles::Read{.fault = absl::StrFormat("\"%s\" %s", ScriptFiles::nameOf(path), why)};
    };
    const auto bytes = files.read(path);
    if (!bytes)
        return refused("cannot be read. See that it is still there and that you may read it.");
    if (bytes->size() > ScriptFiles::mostBytes)
        return refused("is too long for a script. Choose a text with one command a line.");
    auto text = base::utf8Text(*bytes);
    if (!text || text->find('\0') != text->npos)
        return refused("is not plain text in UTF-8. Save it as UTF-8 in the program it comes from, or "
                       "choose another file.");
    ScriptFiles::Read read{.windowsLineEnds = text->find("\r\n") != text->npos};
    read.text = base::replacedAll(base::replacedAll(*text, "\r\n", "\n"), "\r", "\n");
    return read;
}

} // namespace

ScriptFiles::ScriptFiles(const ports::Ports& ports)
    : ports_(ports), queue_(ports.queues.serial("zenka.scripts")) {
}

ScriptFiles::Read ScriptFiles::readNow(const std::string& path) const {
    return readFile(ports_.files, path);
}

void ScriptFiles::read(const std::string& path, std::function<void(Read)> done) {
    queue_->post([&files = ports_.files, &loop = ports_.loop, path, done = lifeline_.guard(std::move(done))] {
        loop.post([done, read = readFile(files, path)] { done(read); });
    });
}

void ScriptFiles::write(const std::string& path, std::string text, bool windowsLineEnds,
                        std::function<void(bool)> done) {
    queue_->post([&files = ports_.files, &loop = ports_.loop, path, text = std::move(text), windowsLineEnds,
                  done = lifeline_.guard(std::move(done))] {
        const bool written =
            files.writeDocument(path, windowsLineEnds ? base::replacedAll(text, "\n", "\r\n") : text);
        loop.post([done, written] { done(written); });
    });
}

std::vector<std::string> ScriptFiles::recent() const {
    std::vector<std::string> paths;
    const auto text = ports_.settings.text(settingsKeys::recentScripts);
    const auto list = text ? nlohmann::json::parse(*text, nullptr, false) : nlohmann::json();
    if (!list.is_array())
        return paths;
    for (const auto& item : list) {
        if (item.is_string())
            paths.push_back(item.get<std::string>());
    }
    return paths;
}

void ScriptFiles::noteRecent(const std::string& path) {
    std::vector<std::string> paths = recent();
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(std::min(paths.size(), maxRecentScripts));
    ports_.settings.setText(
        settingsKeys::recentScripts,
        nlohmann::json(paths).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

std::string ScriptFiles::nameOf(const std::string& path) {
    return std::filesystem::path(path).filename().string();
}

} // namespace zenka::rig

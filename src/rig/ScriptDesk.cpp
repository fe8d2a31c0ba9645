#include "rig/ScriptDesk.h"

#include "base/Text.h"
#include "rig/SettingsKeys.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds debounceSpan{0.4};
constexpr std::size_t maxRecentScripts = 10;

constexpr char starterScript[] =
    "# New Zenka script.\n"
    "# Times are MM:SS.s relative to the contacts (C1, C2, MAX, C3, C4).\n"
    "# Build one with the Wizard or the AI assistant above, or click \"Load example\" for a full reference.\n"
    "\n"
    "TAKEPIC,MAX,+,00:00.0,CAM1,1/250,8.0,200,0.000,RAW,None,N,Inner corona at maximum";

} // namespace

ScriptDesk::ScriptDesk(const ports::Ports& ports, SiteDesk& site) : ports_(ports), site_(site) {
}

void ScriptDesk::restore() {
    const auto saved = ports_.settings.text(settingsKeys::scriptText);
    const auto defaultPath = ports_.settings.text(settingsKeys::defaultScriptPath);
    const auto savedName = ports_.settings.text(settingsKeys::scriptName).value_or("Untitled");
    const auto recent = recentScripts();

    if (defaultPath && loadFile(*defaultPath)) {
        // the user's own choice for each start
    } else if (saved && !base::trimmed(*saved).empty()) {
        load(*saved, savedName);
    } else if (!recent.empty() && loadFile(recent.front())) {
        noteRecent(recent.front());
        ports_.settings.setText(settingsKeys::scriptText, scriptText_.get());
    } else {
        load(starterScript, savedName);
    }
    if (!saved && !ports_.settings.flag(settingsKeys::welcomeSeen).value_or(false))
        showWelcome_.set(true);
}

void ScriptDesk::setScriptText(std::string text) {
    scriptText_.set(std::move(text));
    ports_.loop.cancel(debounce_);
    debounce_ = ports_.loop.after(debounceSpan, lifeline_.guard([this] { compile(); }));
}

void ScriptDesk::load(std::string text, std::string name) {
    ports_.loop.cancel(debounce_);
    scriptText_.set(std::move(text));
    currentScriptName_.set(std::move(name));
}

void ScriptDesk::compile() {
    ports_.loop.cancel(debounce_);
    script::CompiledScript result =
        script::ZenkaScript::compile(scriptText_.get(), {.eclipse = site_.eclipse(),
                                                         .observer = site_.observer(),
                                                         .contactTHours = site_.contactTHours(),
                                                         .tzId = site_.site().tzId});
    captures_ = std::move(result.captures);
    audioCues_ = std::move(result.audioCues);
    diagnostics_ = std::move(result.diagnostics);
    cameraTokens_ = std::move(result.cameras);
    scriptCameraSettings_ = std::move(result.cameraSettings);

    captureOffsets_.clear();
    captureOffsets_.reserve(captures_.size());
    capturesByToken_.clear();
    visibleCameras_.clear();
    for (const script::Capture& capture : captures_) {
        captureOffsets_.push_back(capture.offsetSec);
        capturesByToken_[capture.camera].push_back(capture);
        visibleCameras_.insert(capture.camera);
    }
    captureBounds_ = captures_.empty()
                         ? std::nullopt
                         : std::optional(Bounds{captureOffsets_.front(), captureOffsets_.back()});

    ports_.settings.setText(settingsKeys::scriptText, scriptText_.get());
    ports_.settings.setText(settingsKeys::scriptName, currentScriptName_.get());
    compiled_.emit();
}

bool ScriptDesk::loadFile(const std::string& path) {
    const auto bytes = ports_.files.read(path);
    auto text = bytes ? base::utf8Text(*bytes) : std::nullopt;
    if (!text)
        return false;
    load(*std::move(text), std::filesystem::path(path).filename().string());
    return true;
}

std::vector<std::string> ScriptDesk::recentScripts() const {
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

void ScriptDesk::noteRecent(const std::string& path) {
    std::vector<std::string> paths = recentScripts();
    std::erase(paths, path);
    paths.insert(paths.begin(), path);
    paths.resize(std::min(paths.size(), maxRecentScripts));
    ports_.settings.setText(
        settingsKeys::recentScripts,
        nlohmann::json(paths).dump(-1, ' ', false, nlohmann::json::error_handler_t::replace));
}

} // namespace zenka::rig

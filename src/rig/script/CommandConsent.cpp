#include "rig/script/CommandConsent.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>

namespace zenka::rig {

namespace {

using Json = nlohmann::json;

std::vector<std::string> listIn(const ports::Settings& settings) {
    std::vector<std::string> list;
    const Json json = Json::parse(settings.text(settingsKeys::allowedCommands).value_or(""), nullptr, false);
    if (!json.is_array())
        return list;
    for (const Json& item : json) {
        if (item.is_string())
            list.push_back(item.get<std::string>());
    }
    return list;
}

} // namespace

CommandConsent::CommandConsent(ports::Settings& settings, RigLog& log, ScriptDesk& script)
    : settings_(settings), log_(log), script_(script), allowed_(listIn(settings)) {
    script_.arrived().connect(
        [this](const std::string& text, ScriptDesk::Arrival arrival) { take(text, arrival); });
    script_.compiled().connect([this] { followScript(); });
    // What the user keeps under his own hand he need not be asked about when he opens it again.
    script_.saved().connect([this](const std::string& text) { rememberOwn(text); });
}

void CommandConsent::take(const std::string& text, ScriptDesk::Arrival arrival) {
    if (arrival == ScriptDesk::Arrival::lastTime &&
        !settings_.flag(settingsKeys::commandsWithheld).value_or(false))
        return; // they were the user's own, or had his leave
    const std::set<std::string_view> known(allowed_.begin(), allowed_.end());
    for (const script::CommandLine& command : script::commandLines(text)) {
        if (!known.contains(command.shell))
            withheld_.insert(command.shell);
    }
    news_ = arrival;
}

void CommandConsent::followScript() {
    const auto news = std::exchange(news_, std::nullopt);
    if (withheld_.empty()) {
        if (news)
            settings_.setFlag(settingsKeys::commandsWithheld, false);
        return;
    }
    auto waiting = script::commandLines(script_.scriptText().get());
    std::erase_if(waiting, [this](const auto& command) { return mayRun(command.shell); });
    settings_.setFlag(settingsKeys::commandsWithheld, !waiting.empty());
    waiting_.set(std::move(waiting));
    if (!news || waiting_->empty())
        return;
    log_.pushLog("⚠️ The script holds " + base::counted(std::ssize(*waiting_), "command") +
                 " for this computer that came with its file. Nothing of it is run before you allow it: "
                 "Script, Commands….");
    if (*news == ScriptDesk::Arrival::opened)
        asked_.emit();
}

void CommandConsent::runBegins() {
    std::vector<script::CommandLine> own;
    for (const script::AudioCue& cue : script_.audioCues()) {
        if (!cue.shell.empty() && mayRun(cue.shell))
            own.push_back({.shell = cue.shell});
    }
    remember(own);
}

void CommandConsent::allow() {
    const auto granted = waiting_.get();
    for (const script::CommandLine& command : granted)
        withheld_.erase(command.shell);
    remember(granted);
    settings_.setFlag(settingsKeys::commandsWithheld, false);
    waiting_.set({});
}

void CommandConsent::rememberOwn(const std::string& text) {
    std::vector<script::CommandLine> own = script::commandLines(text);
    std::erase_if(own, [this](const auto& command) { return !mayRun(command.shell); });
    remember(own);
}

void CommandConsent::remember(const std::vector<script::CommandLine>& commands) {
    if (commands.empty())
        return;
    for (const script::CommandLine& command : commands) {
        std::erase(allowed_, command.shell);
        allowed_.push_back(command.shell);
    }
    std::size_t bytes = 0;
    const auto kept = std::find_if(allowed_.rbegin(), allowed_.rend(), [&bytes](const std::string& shell) {
        return (bytes += shell.size()) > mostAllowedBytes;
    });
    allowed_.erase(allowed_.begin(), kept.base());
    settings_.setText(settingsKeys::allowedCommands,
                      Json(allowed_).dump(-1, ' ', false, Json::error_handler_t::replace));
}

} // namespace zenka::rig

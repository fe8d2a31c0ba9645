#include "rig/voice/VoiceChoice.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

#include <algorithm>
#include <tuple>

namespace zenka::rig {

namespace {

std::string languageCode(const std::string& tag) {
    return base::lowered(tag.substr(0, tag.find_first_of("-_")));
}

} // namespace

void VoiceChoice::learnVoices() {
    if (asked_)
        return;
    asked_ = true;
    ports_.speech.listVoices(lifeline_.guard([this](std::vector<ports::Voice> voices) {
        asked_ = !voices.empty(); // an engine may be installed yet
        std::ranges::stable_sort(voices, [](const ports::Voice& left, const ports::Voice& right) {
            return std::tuple(-left.quality, base::lowered(left.name)) <
                   std::tuple(-right.quality, base::lowered(right.name));
        });
        voices_.set(std::move(voices));
    }));
}

std::optional<ports::Voice> VoiceChoice::bestVoice() const {
    const auto& voices = voices_.get();
    const std::string wanted = languageCode(ports_.speech.userLanguage());
    const auto found = std::ranges::find_if(voices, [&](const ports::Voice& voice) {
        return !wanted.empty() && languageCode(voice.language) == wanted;
    });
    if (found != voices.end())
        return *found;
    return voices.empty() ? std::nullopt : std::optional(voices.front());
}

std::string VoiceChoice::currentVoice() const {
    std::string wanted = chosen();
    const auto& voices = voices_.get();
    if (voices.empty() || std::ranges::count(voices, wanted, &ports::Voice::id)) // else it was uninstalled
        return wanted;
    const auto best = bestVoice();
    return best ? best->id : std::string();
}

std::string VoiceChoice::chosen() const {
    return ports_.settings.text(settingsKeys::voice).value_or("");
}

void VoiceChoice::choose(const std::string& id) {
    ports_.settings.setText(settingsKeys::voice, id);
}

} // namespace zenka::rig

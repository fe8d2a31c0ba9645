#include "platform/SpeechText.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace zenka::platform::speechText {

namespace {

constexpr std::size_t longestBytes = 10'000;

/// Bytes of the valid UTF-8 character that a text begins with; 0 when it begins with none.
std::size_t characterLength(std::string_view text) {
    const auto byte = [&](std::size_t at) { return static_cast<unsigned char>(text[at]); };
    if (byte(0) < 0x80)
        return 1;
    const std::size_t length = byte(0) >= 0xf0 ? 4 : byte(0) >= 0xe0 ? 3 : 2;
    return text.size() >= length && base::utf8Text(text.substr(0, length)) ? length : 0;
}

struct ModuleQuality {
    std::string_view begin; // of the module's name
    int quality = 0;
};

// Neural voices, then recorded and statistical ones, then formants. Modules by the names that their packages
// and speech-dispatcher's own examples give them; the first that fits counts, so the mbrola voices of
// espeak-ng stand before espeak-ng.
constexpr std::array moduleQualities{
    ModuleQuality{"piper", 100},
    ModuleQuality{"mimic3", 95},
    ModuleQuality{"coqui", 95},
    ModuleQuality{"kokoro", 95},
    ModuleQuality{"open_jtalk", 80},
    ModuleQuality{"openjtalk", 80},
    ModuleQuality{"rhvoice", 80},
    ModuleQuality{"voxin", 75},
    ModuleQuality{"ibmtts", 75},
    ModuleQuality{"swift", 75},
    ModuleQuality{"cepstral", 75},
    ModuleQuality{"mary", 72},
    ModuleQuality{"espeak-ng-mbrola", 70},
    ModuleQuality{"espeak-mbrola", 70},
    ModuleQuality{"mbrola", 70},
    ModuleQuality{"pico", 60},
    ModuleQuality{"svox", 60},
    ModuleQuality{"festival", 50},
    ModuleQuality{"flite", 45},
    ModuleQuality{"espeak-ng", 40},
    ModuleQuality{"espeak", 35},
};
constexpr int unknownQuality = 10;

bool allLetters(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); });
}

} // namespace

std::string speakable(std::string_view text) {
    std::string line;
    while (!text.empty()) {
        const std::size_t length = characterLength(text);
        std::string_view character = length == 0 ? "\ufffd" : text.substr(0, length);
        if (length == 1 && (text[0] < ' ' || text[0] == '\x7f'))
            character = " ";
        if (line.size() + character.size() > longestBytes)
            break;
        line += character;
        text.remove_prefix(std::max<std::size_t>(length, 1));
    }
    return line.empty() ? " " : line;
}

int ssipRate(double rate, int usualRate) {
    const double change = rate < 1 ? (rate - 1) * 200 : (rate - 1) / 1.5 * 100;
    // a rate that is no number counts as the usual one
    return static_cast<int>(
        std::clamp(usualRate + (std::isfinite(change) ? std::round(change) : 0.0), -100.0, 100.0));
}

int ssipVolume(double volume) {
    return static_cast<int>(std::isfinite(volume) ? std::round(std::clamp(volume, 0.0, 1.0) * 200 - 100)
                                                  : 100);
}

int moduleQuality(std::string_view module) {
    const std::string name = base::lowered(module);
    const auto* const found =
        std::ranges::find_if(moduleQualities, [&](const auto& row) { return name.starts_with(row.begin); });
    return found == moduleQualities.end() ? unknownQuality : found->quality;
}

std::vector<ports::Voice> voicesOf(std::string_view module, std::string_view answer) {
    std::vector<ports::Voice> voices;
    const int quality = moduleQuality(module);
    for (const std::string_view line : base::splitPieces(answer, '\n')) {
        const auto columns = base::split(line, '\t');
        if (columns.size() < 3 || !columns[0].starts_with("249-"))
            continue;
        const std::string name = speakable(columns[0].substr(4));
        const std::string_view variant = base::trimmed(columns[2]);
        if (module.starts_with("espeak") && !variant.empty() && variant != "none")
            continue;
        voices.push_back({.id = std::string(module) + '/' + name,
                          .name = name,
                          .language = languageTag(columns[1]),
                          .quality = quality});
    }
    return voices;
}

std::string languageTag(std::string_view language) {
    const std::string hyphens = base::replacedAll(language, "_", "-");
    std::string tag;
    bool regular = true; // as long as no one-letter subtag begins an extension
    for (const std::string_view part : base::splitPieces(hyphens, '-')) {
        std::string piece = base::lowered(part);
        if (!tag.empty()) {
            regular = regular && piece.size() > 1;
            if (regular && piece.size() == 2 && allLetters(piece))
                piece = base::uppered(piece);
            else if (regular && piece.size() == 4 && allLetters(piece))
                piece = base::uppered(piece.substr(0, 1)) + piece.substr(1);
            tag += '-';
        }
        tag += piece;
    }
    return tag;
}

std::string tagOfLocale(std::string_view locale) {
    const std::string_view language = locale.substr(0, locale.find_first_of(".@"));
    return language == "C" || language == "POSIX" ? std::string() : languageTag(language);
}

} // namespace zenka::platform::speechText

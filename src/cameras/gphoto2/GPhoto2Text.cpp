#include "cameras/gphoto2/GPhoto2Text.h"

#include "base/Text.h"
#include "exposure/ExposureScales.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cmath>

namespace zenka::cameras::GPhoto2Text {

namespace {

constexpr std::string_view errorMark = "*** Error";

/// The last bytes, from the beginning of a letter on.
std::string_view cutTail(std::string_view text, std::size_t length) {
    if (text.size() <= length)
        return text;
    text.remove_prefix(text.size() - length);
    for (int more = 3; more > 0 && !text.empty() && (text.front() & 0xC0) == 0x80; --more)
        text.remove_prefix(1);
    return text;
}

/// The values behind a mark at the beginning of a line, trimmed.
std::vector<std::string_view> valuesOf(std::string_view reply, std::string_view mark) {
    std::vector<std::string_view> values;
    for (std::string_view line : base::split(reply, '\n')) {
        line = base::trimmed(line);
        if (line.starts_with(mark))
            values.push_back(base::trimmed(line.substr(mark.size())));
    }
    return values;
}

/// A reply begins "DIRECTORY} FOLDER> verb". The folder is "/" until a download changes it.
bool answers(std::string_view reply, std::string_view verb) {
    const std::string_view echo = reply.substr(0, reply.find('\n'));
    return echo.find("> " + std::string(verb)) != echo.npos;
}

/// The entry nearest in log space to a value above 0, the first of equals.
template <typename Read>
std::optional<std::string> nearest(const std::vector<std::string>& entries, double wanted, Read read) {
    std::optional<std::string> best;
    double least = 0;
    if (!(wanted > 0))
        return best;
    for (const std::string& entry : entries) {
        const std::optional<double> value = read(entry);
        if (!value || !(*value > 0))
            continue;
        const double distance = std::abs(std::log(*value) - std::log(wanted));
        if (!best || distance < least) {
            best = std::string(base::trimmed(entry));
            least = distance;
        }
    }
    return best;
}

bool contains(const std::string& text, std::string_view part) {
    return text.find(part) != text.npos;
}

bool hasBrand(std::string_view model) {
    return isOlympus(model) || std::ranges::any_of(brandSignatures, [model](std::string_view brand) {
               return base::containsIgnoringCase(model, brand);
           });
}

} // namespace

std::size_t countPrompts(std::string_view output) {
    // The mark is ASCII, so the bytes tell what either decoding would.
    std::size_t count = 0;
    for (std::size_t at = output.find(promptMark); at != output.npos;
         at = output.find(promptMark, at + promptMark.size()))
        ++count;
    return count;
}

std::string decoded(std::string_view bytes) {
    if (auto text = base::utf8Text(bytes))
        return *text;
    std::string text;
    for (const char byte : bytes) {
        const auto code = static_cast<unsigned char>(byte);
        if (code < 0x80) {
            text += byte;
        } else {
            text += static_cast<char>(0xC0 | (code >> 6));
            text += static_cast<char>(0x80 | (code & 0x3F));
        }
    }
    return text;
}

std::vector<std::string_view> replies(std::string_view output) {
    std::vector<std::string_view> found;
    std::size_t at = output.find(promptMark);
    while (at != output.npos) {
        const std::size_t from = at + promptMark.size();
        at = output.find(promptMark, from);
        found.push_back(output.substr(from, at == output.npos ? at : at - from));
    }
    return found;
}

std::optional<std::string> firstErrorLine(std::string_view output) {
    if (const auto said = valuesOf(output, "ERROR:"); !said.empty())
        return std::string(said.front());
    for (std::string_view line : base::split(output, '\n')) {
        line = base::trimmed(line);
        if (line.starts_with(errorMark) && line.find('(') != line.npos)
            return base::replacedAll(base::replacedAll(line, " ***", ""), "*** ", "");
    }
    return std::nullopt;
}

std::optional<std::string> fireErrorLine(std::string_view output, std::string_view verb, bool requireStored) {
    const std::vector<std::string_view> all = replies(output);
    const auto fired = std::find_if(all.rbegin(), all.rend(),
                                    [verb](std::string_view reply) { return answers(reply, verb); });
    if (fired == all.rend())
        return firstErrorLine(output);
    if (auto error = firstErrorLine(*fired))
        return error;
    if (requireStored && !base::containsIgnoringCase(*fired, "New file"))
        return "fired but no frame was stored (capture produced no file)";
    return std::nullopt;
}

std::string outputTail(std::string_view output, std::size_t length) {
    constexpr std::size_t looked = 400;
    std::string text;
    for (std::string_view line : base::split(cutTail(output, looked), '\n')) {
        // One that came without an answer stands in the line of the next.
        if (const std::size_t prompt = line.rfind(promptMark); prompt != line.npos) {
            const std::size_t end = line.find("> ", prompt);
            line = end == line.npos ? std::string_view() : line.substr(end + 2);
        }
        text += std::string(line) + "\n";
    }
    const std::string tail = decoded(cutTail(base::trimmed(text), length));
    return tail.empty() ? "(no output)" : tail;
}

std::vector<std::string> choices(std::string_view reply) {
    std::vector<std::string> found;
    for (std::string_view value : valuesOf(reply, "Choice:")) {
        // "12 1/500": the number in front is the index.
        const std::size_t blank = value.find(' ');
        if (base::readInteger(value.substr(0, blank)))
            value = blank == value.npos ? std::string_view() : base::trimmed(value.substr(blank));
        if (!value.empty())
            found.emplace_back(value);
    }
    return found;
}

std::optional<std::string> current(std::string_view reply) {
    const auto values = valuesOf(reply, "Current:");
    return values.empty() ? std::nullopt : std::optional<std::string>(values.front());
}

std::vector<std::string> labels(std::string_view reply) {
    const auto values = valuesOf(reply, "label=");
    return {values.begin(), values.end()};
}

std::optional<ExpProgram> parseExpProgram(std::string_view reply) {
    const auto value = current(reply);
    return value ? expProgramOf(*value) : std::nullopt;
}

std::optional<ExpProgram> expProgramOf(std::string_view value) {
    if (value.empty())
        return std::nullopt;
    return ExpProgram{.isManual = value == "M" || base::lowered(value) == "manual",
                      .modeName = std::string(value)};
}

std::optional<bool> parseAutoISO(std::string_view value) {
    const std::string word = base::lowered(base::trimmed(value));
    constexpr std::array<std::string_view, 4> on{"1", "on", "true", "yes"};
    constexpr std::array<std::string_view, 4> off{"0", "off", "false", "no"};
    if (std::ranges::find(on, word) != on.end())
        return true;
    if (std::ranges::find(off, word) != off.end())
        return false;
    return std::nullopt;
}

std::optional<int> parseBattery(std::string_view value) {
    value = base::trimmed(value);
    if (value.ends_with('%'))
        value = base::trimmed(value.substr(0, value.size() - 1));
    const auto percent = base::readInteger(value);
    return percent && *percent >= 0 && *percent <= 100 ? percent : std::nullopt;
}

std::vector<Detected> parseAutodetect(std::string_view output) {
    std::vector<Detected> found;
    const auto lines = base::split(output, '\n');
    for (std::size_t row = 2; row < lines.size(); ++row) {
        const std::string_view line = lines[row];
        const std::size_t at = line.find("usb:");
        if (at == line.npos)
            continue;
        found.push_back({.model = decoded(base::trimmed(line.substr(0, at))),
                         .port = decoded(base::trimmed(line.substr(at)))});
    }
    return found;
}

bool isDeviceGone(std::string_view note) {
    // The last two are what it really answers for a body that was unplugged: -52 from a running session,
    // -105 from a new process.
    constexpr std::array<std::string_view, 7> signs{
        "no camera found", "unknown port", "could not claim", "(-5:", "(-53:", "(-52:", "(-105:"};
    const std::string text = base::lowered(note);
    return std::ranges::any_of(signs, [&](std::string_view sign) { return contains(text, sign); });
}

std::optional<double> parseShutterChoice(std::string_view text) {
    return exposure::readShutterChoice(text);
}

std::string shutterArg(double sec, bool bulb) {
    if (bulb)
        return "bulb";
    if (sec >= 1 && sec == std::floor(sec))
        return absl::StrFormat("%.0f", sec);
    if (sec > 0 && sec < 1) {
        const double reciprocal = std::round(1 / sec);
        if (std::abs(1 / sec - reciprocal) < 0.02)
            return absl::StrFormat("1/%.0f", reciprocal);
    }
    return absl::StrFormat("%g", sec);
}

std::string shutterConfig(double sec, bool bulb, const ExposureChoices& choices) {
    if (!bulb)
        if (const auto entry = nearest(choices.shutter, sec, parseShutterChoice))
            return *entry;
    return shutterArg(sec, bulb);
}

KeyValue shutterWrite(double sec, bool bulb, const ExposureChoices& choices) {
    if (!bulb)
        if (const auto entry = nearest(choices.shutterFraction, sec, parseShutterChoice))
            return {.key = "shutterspeed2", .value = *entry};
    return {.key = "shutterspeed", .value = shutterConfig(sec, bulb, choices)};
}

std::optional<double> parseFChoice(std::string_view text) {
    text = base::trimmed(text);
    if (text.starts_with("f/") || text.starts_with("F/"))
        text.remove_prefix(2);
    return base::readNumber(base::replacedAll(text, ",", "."));
}

std::string apertureConfig(double fNumber, const ExposureChoices& choices) {
    if (const auto entry = nearest(choices.aperture, fNumber, parseFChoice))
        return *entry;
    return (choices.apertureProp == "aperture" ? "" : "f/") + absl::StrFormat("%g", fNumber);
}

std::string isoConfig(int iso, const ExposureChoices& choices) {
    const auto read = [](std::string_view text) { return base::readNumber(base::trimmed(text)); };
    return nearest(choices.iso, iso, read).value_or(absl::StrFormat("%d", iso));
}

bool isNikon(std::string_view model) {
    return base::containsIgnoringCase(model, "nikon");
}

bool isOlympus(std::string_view model) {
    constexpr std::array<std::string_view, 4> words{"olympus", "omsystem", "om system", "e-m"};
    const std::string name = base::lowered(model);
    return name.starts_with("om-") ||
           std::ranges::any_of(words, [&](std::string_view word) { return contains(name, word); });
}

bool forcesCardTarget(std::string_view model) {
    return base::containsIgnoringCase(model, "sony") || isNikon(model) || isOlympus(model) ||
           base::containsIgnoringCase(model, "canon");
}

bool usePersistent(std::string_view model, const HeldSessions& held) {
    return base::containsIgnoringCase(model, "sony") || (isNikon(model) && held.nikon) ||
           (isOlympus(model) && held.olympus);
}

bool labelOfAnotherBody(std::string_view label, std::string_view model) {
    // Nikon bodies write their name ("NIKON D750", "NIKON Z 6_2"), Canon's the same for all of them.
    const auto isBlank = [](char c) { return c == ' ' || c == '_' || c == '-'; };
    std::string written = base::lowered(base::trimmed(label));
    std::string body = base::lowered(base::trimmed(model));
    if (written == "eos_digital")
        return hasBrand(body) && !contains(body, "canon");
    if (!written.starts_with("nikon") || !hasBrand(body))
        return false;
    if (!isNikon(body))
        return true;
    for (const std::string_view word : {"nikon corporation", "nikon", "dsc", "(ptp mode)"})
        body = base::replacedAll(body, word, "");
    written = written.substr(std::string_view("nikon").size());
    std::erase_if(body, isBlank);
    std::erase_if(written, isBlank);
    return !body.empty() && !written.empty() && body != written;
}

} // namespace zenka::cameras::GPhoto2Text

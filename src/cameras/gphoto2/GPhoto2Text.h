#pragma once

#include "cameras/ExposureChoices.h"

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What gphoto2 prints and what it is told, as text. All of it is data from outside: what cannot be read
/// counts as absent.
namespace zenka::cameras::GPhoto2Text {

// --- the dialogue of its shell

/// How a prompt begins; the working directory, a folder of the card and "> " follow, without a newline.
inline constexpr std::string_view promptMark = "gphoto2: {";

std::size_t countPrompts(std::string_view output);

/// Its output as UTF-8: as it is, or else read as Latin-1.
std::string decoded(std::string_view bytes);

/// What stands between prompts, from the first prompt on: the answer to each command, its echo included.
std::vector<std::string_view> replies(std::string_view output);

/// The text of the first "ERROR:" line, else the first "*** Error (...) ***" line without its stars.
std::optional<std::string> firstErrorLine(std::string_view output);

/// What the verb that fires came to, in the output of a batch of commands that it ended: the faults of
/// the settings before it do not count. A stored file can be asked for as a proof.
std::optional<std::string> fireErrorLine(std::string_view output, std::string_view verb, bool requireStored);

/// The end of its output without prompts, for a person; "(no output)" when there is none.
std::string outputTail(std::string_view output, std::size_t length);

// --- answers

/// The values of the "Choice: N value" lines.
std::vector<std::string> choices(std::string_view reply);
/// The value of the first "Current:" line.
std::optional<std::string> current(std::string_view reply);
/// The values of the "label=" lines of storage-info.
std::vector<std::string> labels(std::string_view reply);

struct ExpProgram {
    bool isManual = false;
    std::string modeName;

    friend bool operator==(const ExpProgram&, const ExpProgram&) = default;
};
/// The "Current:" value of a reply as a program; nothing without one.
std::optional<ExpProgram> parseExpProgram(std::string_view reply);
std::optional<ExpProgram> expProgramOf(std::string_view value);

/// Nothing for a value that is neither a yes nor a no.
std::optional<bool> parseAutoISO(std::string_view value);

/// The percentage of a battery level, "80%"; nothing for a level in words.
std::optional<int> parseBattery(std::string_view value);

struct Detected {
    std::string model;
    std::string port; ///< "usb:001,004"

    friend bool operator==(const Detected&, const Detected&) = default;
};
std::vector<Detected> parseAutodetect(std::string_view output);

/// The failure says that there is no device behind the port any more, or that it cannot be had.
bool isDeviceGone(std::string_view note);

// --- exposure

/// A shutter of a body's list in seconds; "bulb" has none.
std::optional<double> parseShutterChoice(std::string_view text);
/// A shutter as a body without a list takes it: "bulb", "2", "1/500", "0.3".
std::string shutterArg(double sec, bool bulb);
/// The body's nearest shutter, else shutterArg.
std::string shutterConfig(double sec, bool bulb, const ExposureChoices& choices);

struct KeyValue {
    std::string key;
    std::string value;

    std::string text() const { return key + "=" + value; }
    friend bool operator==(const KeyValue&, const KeyValue&) = default;
};
/// The key and value that set the shutter: the list of true fractions where the body has one, for only
/// that is exact.
KeyValue shutterWrite(double sec, bool bulb, const ExposureChoices& choices);

std::optional<double> parseFChoice(std::string_view text);
std::string apertureConfig(double fNumber, const ExposureChoices& choices);
std::string isoConfig(int iso, const ExposureChoices& choices);

// --- brands, by the model's name

/// The brands that a name is roughly told by.
inline constexpr std::array<std::string_view, 7> brandSignatures{"LUMIX",    "Canon",   "Sony",  "Nikon",
                                                                 "Fujifilm", "Olympus", "Pentax"};

bool isNikon(std::string_view model);
bool isOlympus(std::string_view model);
/// Frames go to the card, never to the host's memory.
bool forcesCardTarget(std::string_view model);

/// What the user wants of held sessions.
struct HeldSessions {
    bool nikon = true;
    bool olympus = true;

    friend bool operator==(const HeldSessions&, const HeldSessions&) = default;
};
/// One session is held open, instead of one run of the program for each shot.
bool usePersistent(std::string_view model, const HeldSessions& held);

/// A volume label that another body than this model wrote when it formatted the card.
bool labelOfAnotherBody(std::string_view label, std::string_view model);

} // namespace zenka::cameras::GPhoto2Text

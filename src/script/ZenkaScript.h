#pragma once

#include "base/Uuid.h"
#include "eclipse/Besselian.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zenka::script {

/// What a script is compiled for: one eclipse seen from one site. The eclipse outlives the compile.
struct CompileContext {
    const eclipse::Eclipse& eclipse;
    eclipse::Observer observer;
    std::map<std::string, double> contactTHours; ///< hours from the reference instant by contact key
    std::string tzId;                            ///< time-zone identifier of the site
};

/// Contact times by key, as a compile wants them. A repeated key takes the later one.
std::map<std::string, double> contactTHours(const eclipse::LocalCircumstances& circumstances);

struct ScriptDiag {
    int lineNo = 0;       ///< 1-based
    std::string severity; ///< "error" or "warning"
    std::string message;

    friend bool operator==(const ScriptDiag&, const ScriptDiag&) = default;
};

/// One frame to fire.
struct Capture {
    base::Uuid id;
    int seq = 0;           ///< 1-based rank in the sorted list
    double offsetSec = 0;  ///< when, in seconds from the reference instant of the elements
    std::string refLabel;  ///< the moment for people, "C2 −8s"
    std::string camera;    ///< the camera's token as written
    double shutterSec = 0; ///< 0: the camera keeps its setting, or bulb
    bool bulb = false;
    double aperture = 0;            ///< f-number; 0: the camera keeps its setting
    int iso = 0;                    ///< 0: the camera keeps its setting
    double expComp = 0;             ///< the script's own exposure compensation, stops
    std::string format;             ///< as a rule "RAW"
    bool forceFullExposure = false; ///< send every setting again whatever the frame before had
    std::string comment;
    int lineNo = 0;

    friend bool operator==(const Capture&, const Capture&) = default;
};

/// The captures of each camera, in their order.
using CapturesByToken = std::map<std::string, std::vector<Capture>>;
CapturesByToken capturesByToken(const std::vector<Capture>& captures);

/// One spoken cue, or a command to run.
struct AudioCue {
    base::Uuid id;
    int seq = 0;
    double offsetSec = 0; ///< as for Capture
    std::string refLabel;
    std::string text;      ///< the words, or the display text of a command
    std::string soundFile; ///< the line's file field, possibly empty
    int lineNo = 0;
    std::string shell; ///< command line, empty for a spoken cue

    friend bool operator==(const AudioCue&, const AudioCue&) = default;
};

struct CompiledScript {
    std::vector<Capture> captures;       ///< sorted by offsetSec, script order at equal offsets
    std::vector<ScriptDiag> diagnostics; ///< in order of discovery
    std::vector<std::string> cameras;    ///< every token named by a take line, ascending
    std::vector<AudioCue> audioCues;     ///< sorted like the captures
    std::map<std::string, std::map<std::string, std::string>> cameraSettings; ///< CAMSET, by token
};

/// The language: docs/script-language.md.
namespace ZenkaScript {

/// Compiles a text. Pure; never fails as a whole: a line that is not understood becomes a diagnostic.
/// varValue is the (VAR) outside any loop.
CompiledScript compile(std::string_view text, const CompileContext& context,
                       std::optional<double> varValue = std::nullopt);

/// "SS", "MM:SS" or "HH:MM:SS" in seconds, the last piece fractional; an unreadable piece counts 0.
/// Nothing for a text with no piece at all, and for a time that no script can mean (over 300 years).
std::optional<double> parseTimeMMSS(std::string_view text);

struct Shutter {
    double seconds = 0;
    bool bulb = false;

    friend bool operator==(const Shutter&, const Shutter&) = default;
};

/// "1/500", "0.5", "BULB"; 0 for "AUTO", "-", blank and what cannot be read.
Shutter parseShutter(std::string_view text);

} // namespace ZenkaScript

} // namespace zenka::script

#pragma once

#include "script/ZenkaScript.h"

#include <cstddef>
#include <map>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// A parsed script. Everything that does not change from one round of a loop to the next is read once,
/// here; views point into the script's text.
namespace zenka::script {

/// When a line happens: a reference and the distance from it.
struct Moment {
    std::string reference; ///< as written, the magnitude drawn into it where it stood in a field of its own
    bool hasVar = false;   ///< "(VAR)" stands in it
    bool negative = false;
    double timeSec = 0; ///< of the offset field, without its sign
    std::string label;  ///< for people; empty where it depends on (VAR)

    double signedSec() const { return negative ? -timeSec : timeSec; }
};

/// What all lines have.
struct Line {
    int lineNo = 0;
    std::size_t length = 0; ///< of its text
    std::string fault;      ///< why it cannot stand once its reference is known, empty if it can
};

enum class Series { single, burst, bracket, rampUp, rampDown, rampUpDown, none };

/// TAKEPIC and its kin. Series::none is SETEXP, which only moves LAST.
struct TakeLine : Line {
    std::string command;  ///< upper case
    bool complete = true; ///< false: too few fields, and nothing else is read
    Series series = Series::single;
    Moment moment;
    std::string_view camera;
    ZenkaScript::Shutter shutter;
    double aperture = 0;
    int iso = 0;
    double expComp = 0;
    std::string_view format;
    bool forceFullExposure = false;
    std::string note;
    int count = 1;       ///< of a burst or ramp
    double rampStep = 1; ///< stops
};

/// BKTDATA: the bracket of the TAKEBKT lines that follow.
struct BracketLine : Line {
    int frames = 3;
    double step = 1; ///< stops
};

/// PLAY and COMMAND.
struct CueLine : Line {
    Moment moment;
    bool silent = false; ///< its moment is looked at, but nothing comes of it
    std::string text;
    std::string_view soundFile;
    std::string shell;
};

struct CamsetLine : Line {
    std::string_view camera;
    std::map<std::string, std::string> pairs;
    std::vector<std::string> warnings;
};

struct Node;

struct Loop : Line {
    bool interval = false; ///< FOR,(INTERVALOMETER), else FOR,(VAR)
    double start = 0;
    double step = 0;
    double end = 0; ///< (VAR) only
    int count = 1;  ///< (INTERVALOMETER) only
    std::vector<Node> body;
};

struct Node {
    std::variant<TakeLine, BracketLine, CueLine, CamsetLine, Loop> what;
};

} // namespace zenka::script

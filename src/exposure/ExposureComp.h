#pragma once

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::exposure {

/// What compensation may move.
enum class CompVariable { shutter, iso, aperture };

/// "shutter", "ISO", "aperture".
std::string_view label(CompVariable variable);

/// How one camera may be compensated.
struct CompRules {
    std::vector<CompVariable> order{CompVariable::shutter, CompVariable::iso, CompVariable::aperture};
    std::vector<CompVariable> enabled{CompVariable::shutter, CompVariable::iso};
    bool balanced = false; ///< share the stops instead of exhausting one variable first
    int isoMin = 100;
    int isoMax = 1600;
    double shutterFastestSec = 0.000125;
    double shutterSlowestSec = 0.25;
    double apertureWidest = 5.6;   ///< f-number
    double apertureNarrowest = 11; ///< f-number

    friend bool operator==(const CompRules&, const CompRules&) = default;
};

/// The live request for one camera, in whole stops.
struct CompOffsets {
    bool enabled = false;
    int partials = 0;
    int totality = 0;
    bool linked = false; ///< totality follows partials

    /// The stops in totality, which may follow those of the partials.
    int inTotality() const { return linked ? partials : totality; }

    friend bool operator==(const CompOffsets&, const CompOffsets&) = default;
};

struct CompFrame {
    double shutterSec = 0;
    int iso = 0;
    double aperture = 0; ///< f-number, 0 where the camera keeps its own
    bool bulb = false;

    friend bool operator==(const CompFrame&, const CompFrame&) = default;
};

/// What a body needs between two frames, seconds.
struct CompGaps {
    double same = 0;    ///< between frames of identical settings
    double change = 0;  ///< between frames that change a setting
    std::string source; ///< "script", "profile" or "default"

    friend bool operator==(const CompGaps&, const CompGaps&) = default;
};

struct CompResult {
    CompFrame frame;
    int requestedStops = 0;  ///< after clamping to ±6
    double appliedStops = 0; ///< unsigned amount delivered
    std::string note;        ///< what moved, and why not more

    friend bool operator==(const CompResult&, const CompResult&) = default;
};

namespace ExposureComp {

/// Shifts one frame by a number of stops, positive for more exposure, under a camera's rules and
/// without taking the time that the next frame needs (spacingToNext, seconds). AUTO and BULB frames come
/// back unchanged. Never fails: what cannot be delivered is told in the note.
CompResult apply(const CompFrame& frame, int stops, const CompRules& rules, const CompGaps& gaps,
                 std::optional<double> spacingToNext, bool nextSameSettings);

/// Stops as "+1", "0", "-2".
std::string signedStops(int stops);

/// What a camera is asked for, "CAM1 +1"; "CAM1 +1/-2" where totality differs.
std::string summary(const std::string& name, const CompOffsets& offsets);

/// Reads the key=value fields of a camera's settings line: cut at the first "=", both halves trimmed,
/// the key in lower case; fields with an empty half are left out, a later key wins.
std::map<std::string, std::string> parseCamsetPairs(const std::vector<std::string_view>& fields);

/// The gaps that a camera's settings give ("gap_same", "gap_change", both above 0), else nothing.
std::optional<CompGaps> gapsFromCamset(const std::map<std::string, std::string>& settings);

} // namespace ExposureComp

} // namespace zenka::exposure

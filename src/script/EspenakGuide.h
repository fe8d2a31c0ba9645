#pragma once

#include "script/BracketFrame.h"
#include "script/ZenkaScript.h"

#include <array>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::script {

/// Compares planned exposures with the eclipse exposure table of Fred Espenak (NASA) and says for each
/// phase whether a frame lands near it. Advice only. Exposures are compared by Q = log2(N² / (t · ISO)):
/// one more is one stop less light.
namespace EspenakGuide {

enum class Level { good, warn, bad };

struct ScriptNote {
    Level level = Level::good;
    std::string message;
    int lineNo = 0; ///< of the first of the frames that it is about

    friend bool operator==(const ScriptNote&, const ScriptNote&) = default;
};

/// How much of the corona a bracket reaches, from 0.1 to 8 solar radii.
struct CoronaCoverage {
    int covered = 0;
    int total = 0;
    Level level = Level::bad;
    std::optional<std::string> missing; ///< "outer corona" or "inner corona"

    friend bool operator==(const CoronaCoverage&, const CoronaCoverage&) = default;
};

/// How one exposure, or the nearest of several, stands against a target.
struct Verdict {
    Level level = Level::bad;
    std::string text;
    std::string suggestedShutter; ///< the standard shutter nearest to the target

    friend bool operator==(const Verdict&, const Verdict&) = default;
};

enum class Phase { corona, diamondRing, beads, prominences, earthshine, other };

inline constexpr double diamondRingQ = 5; ///< which the table scores as corona at 0.2 solar radii
inline constexpr double beadsQ = 12;
inline constexpr double prominencesQ = 9;
inline constexpr double earthshineQ = -8;

/// The Q of a frame. An unreadable aperture counts as 8, an unreadable ISO as 100, an unreadable shutter as
/// 1/1000.
double q(const ScriptWizardGen::BracketFrame& of);

/// Scores the frame nearest to the target. The ideal is a standard shutter, so it may lie up to a third of a
/// stop beside the target; frames are measured against the ideal. Without frames the level is bad.
Verdict scoreSingle(double targetQ, double ap, int iso, std::span<const double> frameQs);

/// Which zones of the corona, from the innermost one on, lie between the ends of a ladder of exposures,
/// evStep stops apart; and how that is.
std::array<bool, 7> coronaZones(const std::vector<double>& qs, double evStep);
CoronaCoverage scoreCorona(const std::vector<double>& qs, double evStep);

/// The phase that a frame's comment names.
Phase phase(std::string_view comment);

/// One note for each phase that has frames with a shutter and an ISO of their own.
std::vector<ScriptNote> scriptNotes(std::span<const Capture> captures);

} // namespace EspenakGuide

} // namespace zenka::script

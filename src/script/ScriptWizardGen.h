#pragma once

#include "eclipse/Besselian.h"
#include "exposure/ExposureScales.h"
#include "script/BracketFrame.h"
#include "script/WizardChoices.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::script {

/// Makes a script out of the wizard's answers, offline. The same answers give the same text. How each number
/// comes about: docs/script-wizard.md.
namespace ScriptWizardGen {

using exposure::shutterSeconds;
using exposure::snapAperture;
using exposure::snapISO;
using exposure::snapToStandard;

/// The site and its eclipse. The eclipse outlives the context.
struct HorizonCtx {
    const eclipse::Eclipse& eclipse;
    double lat = 0;
    double lon = 0;
    double elev = 0;
    std::map<std::string, double> contactTHours; ///< as in CompileContext
    bool drop = false;                           ///< leave out frames with the Sun below the horizon
};

/// How the corona bracket fits into totality, in seconds.
struct CoronaFit {
    std::vector<BracketFrame> coronaFrames; ///< of one set
    std::vector<BracketFrame> earthFrames;
    double earthSlot = 0; ///< what the earthshine frames take
    double setDur = 0;    ///< what one set takes
    double endMargin = 0; ///< kept free of sets behind C2 and before C3
    int sets = 0;
    int coronaDropped = 0; ///< frames of a set that the longest allowed shutter forbids
    int earthDropped = 0;
    int lowSunPast = 0; ///< frames that low-sun compensation could not lengthen enough

    friend bool operator==(const CoronaFit&, const CoronaFit&) = default;
};

/// The script for one plan, on one camera or on several. totalitySeconds is the length of the central phase,
/// hasTotality whether there is one. Without a horizon context nothing that depends on the site is done.
std::string build(const WizardChoices& choices, double totalitySeconds, bool hasTotality,
                  const std::optional<HorizonCtx>& horizon);
/// The script for several cameras, each with a plan of its own. The header and the cues go by the first.
std::string build(std::span<const WizardChoices> perCamera, double totalitySeconds, bool hasTotality,
                  const std::optional<HorizonCtx>& horizon);

/// The standard shutters from one to another, both included; all of them where either is none or they stand
/// the wrong way round.
std::vector<std::string> shutterWindow(std::string_view from, std::string_view to);

/// Steps from the base exposure, ascending: the middle of `count` frames is 0 for center, the first for
/// bottom, the last for top.
std::vector<int> bracketOffsets(int count, BracketWeight weight);

/// The exposures of a bracket; a step of 0 or less counts as 1 stop.
std::vector<BracketFrame> bracketFrames(const BracketFrame& base, std::span<const int> offsets, double evStep,
                                        BracketVar var, bool wholeStopISO);

/// Seconds as "MM:SS.s"; below 0 counts as 0.
std::string mmss(double seconds);
/// Seconds as "45s", "2m" or "2m 30s", rounded, at least 1 s.
std::string fmtInterval(double seconds);
/// Seconds as "2m05s", cut.
std::string fmtDur(double seconds);

/// How many sets of the corona bracket fit into totality. With lowSunAltDeg, the Sun's altitude at maximum,
/// the frames are lengthened for it first.
CoronaFit coronaFit(const WizardChoices& choices, double totalitySeconds, std::optional<double> lowSunAltDeg);

/// Takes out the frames whose shutter is longer than the ceiling, in seconds, and counts them.
int clampToCeiling(std::vector<BracketFrame>& frames, double ceilingSec);

/// Seconds that frames take, each with its spacing behind it.
double setDuration(std::span<const BracketFrame> frames, double spacing, bool lenr);

} // namespace ScriptWizardGen

} // namespace zenka::script

#pragma once

#include "script/LowSun.h"
#include "script/ScriptWizardGen.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// The pieces that ScriptWizardGen::build puts together. Each appends its lines.
namespace zenka::script::ScriptWizardGen {

using Lines = std::vector<std::string>;

/// What totality the plan can count on. A ring is no totality: it needs the filter all through.
enum class CentralPhase { none, annular, total };

/// What the horizon context tells of a moment. Moments are seconds from the reference instant.
class SiteSky {
public:
    explicit SiteSky(const std::optional<HorizonCtx>& horizon) : horizon_(horizon) {}

    bool known() const { return horizon_.has_value(); }
    bool trims() const { return horizon_ && horizon_->drop; }
    const std::optional<HorizonCtx>& horizon() const { return horizon_; }
    std::optional<double> contactSec(std::string_view key) const;
    double altDeg(double offsetSec) const; ///< no number where the site is not known
    /// Whether a frame then may stand: false only when trimming and the Sun is down.
    bool shows(double offsetSec) const;
    /// The same at so many seconds from a contact.
    bool shows(std::string_view key, double fromContactSec) const;
    bool annular() const;

private:
    std::optional<eclipse::Geom> geometry(double offsetSec) const;

    const std::optional<HorizonCtx>& horizon_;
};

/// One camera's part of the script, its answers made usable.
struct Plan {
    const WizardChoices& c;
    std::string camera;
    CentralPhase central = CentralPhase::none;
    double totalitySec = 0; ///< finite, not negative
    const SiteSky& sky;
    std::optional<double> lowSunAltDeg; ///< where totality is lengthened for it
};

/// Seconds that a frame keeps its body: exposures over 1 s twice with noise reduction.
double occupancy(double shutterSec, bool lenr);

/// As the script writes a time: to a tenth.
double tenths(double seconds);
/// A number with as many decimals as it needs, at most 4.
std::string shortNumber(double value);

/// The frame's exposure for people: "1/500 f/8.0 ISO 100".
std::string exposureWords(const BracketFrame& frame);
std::string bracketVarWord(BracketVar var);

std::string frameLine(std::string_view reference, char sign, double seconds, const std::string& camera,
                      const BracketFrame& frame, std::string_view note);

void appendHeader(Lines& lines, const std::vector<std::string>& cameras, const WizardChoices& first,
                  CentralPhase central, const SiteSky& sky);
void appendCameraSettings(Lines& lines, const std::vector<Plan>& plans);
void appendCues(Lines& lines, const WizardChoices& first, CentralPhase central);

void appendLowSunNotes(Lines& lines, const Plan& plan);
void appendPartialIngress(Lines& lines, const Plan& plan);
void appendPartialEgress(Lines& lines, const Plan& plan);
void appendEdgePhases(Lines& lines, const Plan& plan);
void appendCoronaAndEarthshine(Lines& lines, const Plan& plan);

} // namespace zenka::script::ScriptWizardGen

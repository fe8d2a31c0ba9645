#pragma once

#include <string>
#include <vector>

namespace zenka::script {

/// What a bracket moves from frame to frame.
enum class BracketVar { shutter, iso, aperture };
/// Where the base exposure stands in a bracket: in the middle, as its darkest or as its brightest frame.
enum class BracketWeight { center, bottom, top };

/// The answers of the script wizard, for one camera or for several that run the same plan. Any value may
/// stand here: what cannot be used is replaced when the script is made, and the script says so.
struct WizardChoices {
    enum class Filter { fullSolar, thousandOaks, nd, none };
    enum class PartialCadence { magnitude, interval };
    enum class LowSunTrade { fastShutter, lowISO, balanced };

    std::string camera = "CAM1";      ///< the camera where `cameras` is empty
    std::vector<std::string> cameras; ///< several cameras with the same plan
    Filter filter = Filter::fullSolar;
    int ndStops = 16;

    bool partials = true;
    double partialStepPct = 0.5;    ///< percent of magnitude from frame to frame
    bool contactFrames = true;      ///< frames at C1 and C4
    bool sunBaseline = true;        ///< frames of the uncovered Sun before C1 and after C4
    double sunBaselineLeadSec = 60; ///< how long before and after
    int partialBracket = 1;         ///< frames at each moment
    PartialCadence partialCadence = PartialCadence::magnitude;
    double partialIntervalSec = 60;
    double partialEVStep = 1;
    BracketVar partialBracketVar = BracketVar::shutter;
    std::string partialBaseShutter; ///< empty: from the filter, see partialShutter()
    BracketWeight partialWeight = BracketWeight::center;

    bool dropBelowHorizon = false;
    bool lowSunComp = false;
    double lowSunKCoeff = 0.15;            ///< extinction, magnitudes per airmass
    std::string lowSunMinShutter = "1/10"; ///< no partial frame is lengthened beyond it
    int lowSunMaxISO = 1600;
    LowSunTrade lowSunTrade = LowSunTrade::fastShutter;
    bool lowSunTotality = true;
    bool wholeStopISO = false;

    bool diamondRings = true;
    bool beads = true;
    bool prominences = true;
    bool earthshine = true;
    bool lenrOn = false; ///< the bodies' long-exposure noise reduction doubles frames over 1 s

    bool voiceCues = true;
    bool magnitudeCues = false;
    int magnitudeCueStep = 5; ///< percent
    bool wideFilterCue = false;
    int wideFilterLeadSec = 20;

    std::string coronaFastest = "1/1000";
    int coronaExposures = 7;
    double coronaEVStep = 1;
    BracketWeight coronaWeight = BracketWeight::bottom;
    BracketVar coronaBracketVar = BracketVar::shutter;
    double coronaSetGap = 3;   ///< seconds between sets
    double egressDrainGap = 0; ///< seconds more between frames behind C3, while the buffer drains

    double minShotGap = 1;          ///< seconds between frames that change a setting
    double minShotGapSame = 0.5;    ///< seconds between equal frames
    std::string maxShutter = "1/4"; ///< no longer frame in totality on a mount that does not track
    bool tracking = false;

    std::string partialAperture = "8.0";
    int partialISO = 100;
    std::string coronaAperture = "8.0";
    int coronaISO = 200;

    // From and To are seconds outside C2 and C3, for prominences inside.
    std::string diamondShutter = "1/400";
    std::string diamondAperture = "8.0";
    int diamondISO = 200;
    double diamondFrom = 15;
    double diamondTo = 6;
    double diamondEvery = 1;

    std::string beadsShutter = "1/4000";
    std::string beadsAperture = "8.0";
    int beadsISO = 200;
    double beadsFrom = 5;
    double beadsTo = 0;
    double beadsEvery = 0.5;

    std::string promShutter = "1/1000";
    std::string promAperture = "8.0";
    int promISO = 200;
    double promFrom = 1;
    double promTo = 10;
    double promEvery = 1;

    std::string earthshineShutter = "1";
    std::string earthshineAperture = "4.0";
    int earthshineISO = 3200;
    int earthshineBracket = 1;
    double earthshineEVStep = 1;
    BracketWeight earthshineWeight = BracketWeight::top;
    BracketVar earthshineBracketVar = BracketVar::shutter;

    /// The base shutter of partial frames.
    std::string partialShutter() const;
    /// A sentence on what the filter means for the exposures.
    std::string filterAdvice() const;
    /// The cameras of this plan: `cameras`, or `camera` alone.
    std::vector<std::string> targets() const;

    friend bool operator==(const WizardChoices&, const WizardChoices&) = default;
};

} // namespace zenka::script

#pragma once

#include "base/Instant.h"

#include <optional>
#include <string>
#include <vector>

namespace zenka::analysis {

/// What of a plan reached a card.
struct AnalysisResult {
    /// Consecutive captures of one exposure.
    struct Group {
        std::string label; ///< the script's comment, or the exposure
        int iso = 0;
        double ap = 0; ///< f-number
        std::string shutter;
        int expCount = 0;   ///< planned
        int actCount = 0;   ///< landed
        int nearCount = 0;  ///< landed at another ISO than asked
        int landedISO = 0;  ///< the ISO of those; 0 without any
        bool ok = false;    ///< all landed
        int wrongCount = 0; ///< at their time on the card, but with wrong settings; not in actCount

        /// "ISO 320", or "ISO 320 → 400" where the body rounded it.
        std::string isoDisplay() const;

        friend bool operator==(const Group&, const Group&) = default;
    };

    std::string sdName; ///< of the card or its folder
    std::string scriptName;
    std::string camera; ///< the token
    int expectedTotal = 0;
    int actualTotal = 0;                   ///< frames of the card that were compared
    int matched = 0;                       ///< captures with a frame of the right settings
    int nearMiss = 0;                      ///< those of them whose ISO the body rounded
    std::vector<std::string> nearMissNote; ///< a line for each rounding, the commonest first
    int extras = 0;                        ///< frames of no capture
    int isoOK = 0; ///< equal to matched, as is each of the next two: a match has all three
    int apOK = 0;
    int shOK = 0;
    std::vector<std::string> mismatches; ///< groups that did not land whole, at most 40
    double jitterMeanMs = 0;             ///< mean absolute error of the short intervals
    double jitterMaxMs = 0;
    int jitterCount = 0; ///< intervals measured
    std::vector<Group> groups;
    std::optional<base::Instant> runStart; ///< of the first frame
    std::optional<base::Instant> runEnd;   ///< of the last
    std::optional<int> dropDetected;       ///< not on the card, and logged as failed
    std::optional<int> dropSilent;         ///< not on the card, but logged as good
    std::optional<int> dropFalseAlarm;     ///< on the card, but logged as failed
    std::optional<std::string> runLogName; ///< the file of the run log
    int misExposed = 0;                    ///< landed at their time with wrong settings
    std::vector<std::string> misExposedNote;
    /// For each capture in the order of time, whether it has a frame, of whatever settings. Empty: not known.
    std::vector<bool> landed;

    /// Captures with no frame at all.
    int missing() const;
    /// The same in percent of the captures; 0 without any.
    double missedPercent() const;
    /// The most extras that a run passes with.
    int extrasLimit() const;
    bool pass() const;
    /// "green", "yellow" or "red", by what is missing.
    std::string landedStatus() const;
    /// "1h 02m 03s", "02m 03s"; "?" without frames.
    std::string durationStr() const;

    friend bool operator==(const AnalysisResult&, const AnalysisResult&) = default;
};

} // namespace zenka::analysis

#pragma once

#include "analysis/RunAnalysis.h"

#include <map>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::analysis {

/// An exposure as a run log has it.
struct LoggedExposure {
    int iso = 0;
    double aperture = 0;
    double shutterSec = 0; ///< 0 for bulb
    bool bulb = false;

    friend bool operator==(const LoggedExposure&, const LoggedExposure&) = default;
};

/// Reads run logs (docs/data-formats.md). A damaged row costs that row; a text without the columns gives
/// an empty table.
namespace RunLogTables {

/// By time key, whether a camera's shot is logged as fired well; a shot that was tried again and then
/// succeeded counts as good.
SoftwareOK parseRunLogVerdict(std::string_view csv, const std::string& camera);

/// By time key, what was sent in place of the script's exposure while live compensation was on.
std::map<int, LoggedExposure> parseRunLogCompensated(std::string_view csv, const std::string& camera);

/// The captures as they were sent: those with a logged exposure take it.
std::vector<script::Capture> withLogged(std::vector<script::Capture> captures,
                                        const std::map<int, LoggedExposure>& logged);

} // namespace RunLogTables

/// The run log that knows most of a camera's captures.
struct MatchedLog {
    std::string name; ///< of the file
    SoftwareOK verdict;
    std::map<int, LoggedExposure> compensated;
    int known = 0; ///< how many of the captures' time keys it has
};

/// Finds that log among many, held one at a time.
class RunLogMatcher {
public:
    RunLogMatcher(std::string camera, const std::vector<script::Capture>& expected);

    /// Takes the log if it knows more of the captures than the best so far.
    void look(const std::string& name, std::string_view csv);

    const std::optional<MatchedLog>& best() const { return best_; }
    /// Names of the logs that know some captures and were not taken.
    const std::vector<std::string>& others() const { return others_; }

private:
    std::string camera_;
    std::vector<int> keys_; // ascending, each once
    std::optional<MatchedLog> best_;
    std::vector<std::string> others_;
};

} // namespace zenka::analysis

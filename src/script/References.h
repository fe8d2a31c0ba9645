#pragma once

#include "base/Instant.h"
#include "script/Diagnostics.h"
#include "script/MagnitudeSearch.h"
#include "script/Tree.h"
#include "script/ZenkaScript.h"

#include <absl/time/time.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::script {

/// Turns references into seconds from the reference instant, for one compile.
class References {
public:
    References(const CompileContext& context, Diagnostics& diagnostics);

    /// Nothing, and a diagnostic, where the reference gives no moment. last is the LAST of the walk.
    std::optional<double> resolve(const Moment& moment, int lineNo, std::optional<double> varValue,
                                  std::optional<double> last);

private:
    using Pieces = std::vector<std::string_view>;

    std::optional<double> contact(const std::string& head, int lineNo);
    std::optional<double> magnitude(const std::string& head, const Pieces& pieces, std::string_view reference,
                                    int lineNo);
    std::optional<double> horizon(const std::string& head, int lineNo);
    std::optional<double> clockTime(const std::string& head, const Pieces& arguments,
                                    std::string_view reference, int lineNo);
    std::optional<double> sunCrossTHours(bool rising) const;
    double hoursOf(const char* key, double otherwise) const;
    bool sunIsUp(double tHours) const;

    const CompileContext& context_;
    Diagnostics& diagnostics_;
    /// Made when first asked for, and good for the whole compile.
    std::optional<MagnitudeSearch> ingress_;
    std::optional<MagnitudeSearch> egress_;
    std::optional<std::optional<double>> sunrise_;
    std::optional<std::optional<double>> sunset_;
    std::optional<absl::TimeZone> siteZone_;
};

/// A clock text, "18:32", "18:32:05" or "2024-04-08 18:32", as seconds from an instant on whose day in
/// the zone it lies when it names none. Nothing for a text without hour and minute.
std::optional<double> absoluteOffsetSeconds(const std::vector<std::string_view>& clock, base::Instant base,
                                            const absl::TimeZone& zone);

} // namespace zenka::script

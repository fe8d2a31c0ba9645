#include "script/Labels.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>

namespace zenka::script {

namespace {

std::string offsetText(double seconds) {
    if (seconds < 60)
        return absl::StrFormat("%.0fs", seconds);
    const auto whole = static_cast<long long>(seconds); // bounded by furthestSec
    return absl::StrFormat("%d:%02d", whole / 60, whole % 60);
}

std::string shownArgument(std::string_view argument) {
    const auto number = base::readNumber(argument);
    return number ? absl::StrFormat("%g", *number) : std::string(argument);
}

} // namespace

std::string makeLabel(const Moment& moment, std::optional<double> varValue) {
    std::string reference = moment.reference;
    if (varValue && moment.hasVar)
        reference = base::replacedAll(reference, varMark, absl::StrFormat("%g", *varValue));
    const std::vector<std::string_view> pieces = base::splitPieces(reference, ' ');
    const std::string head = pieces.empty() ? "?" : base::uppered(pieces.front());
    const std::string argument = pieces.size() > 1 ? shownArgument(pieces[1]) : "?";

    if (head == "MAGPRE")
        return "Pre " + argument + "%";
    if (head == "MAGPOST")
        return "Post " + argument + "%";

    std::string offset;
    if (moment.timeSec != 0)
        offset = (moment.negative ? std::string(base::minusSign) : "+") + offsetText(moment.timeSec);
    if (head == "LAST")
        return offset.empty() ? "after last" : "last " + offset;

    std::string name = head;
    if (head == "SUNRISE")
        name = "Sunrise";
    else if (head == "SUNSET")
        name = "Sunset";
    else if ((head == "A" || head == "L") && pieces.size() > 1)
        name = argument + (head == "A" ? " UTC" : " local");
    return offset.empty() ? name : name + " " + offset;
}

} // namespace zenka::script

#include "eclipse/Calendar.h"

#include "base/Text.h"
#include "eclipse/Fault.h"

#include <array>

namespace zenka::eclipse::detail {

absl::CivilDay dateOf(std::string_view dateUTC) {
    std::array<int, 3> parts{};
    const std::vector<std::string_view> pieces = base::split(dateUTC, '-');
    if (pieces.size() != parts.size()) {
        fault("a date is not of the form year-month-day", dateUTC);
    }
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::optional<int> number = base::readInteger(pieces[i]);
        if (!number) {
            fault("a date is not of the form year-month-day", dateUTC);
        }
        parts[i] = *number;
    }
    return absl::CivilDay(parts[0], parts[1], parts[2]);
}

} // namespace zenka::eclipse::detail

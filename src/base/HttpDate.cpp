#include "base/HttpDate.h"

#include "base/Text.h"

#include <absl/time/time.h>

namespace zenka::base {

std::optional<Instant> httpDate(const std::string& text) {
    absl::Time time;
    std::string fault;
    const std::string plain(trimmed(text));
    // ParseTime also takes words such as "infinite-future".
    const bool hasForm = plain.size() > 4 && plain[3] == ',';
    if (!hasForm || !absl::ParseTime("%a, %d %b %Y %H:%M:%S GMT", plain, &time, &fault))
        return std::nullopt;
    return Instant{static_cast<double>(absl::ToUnixSeconds(time))};
}

} // namespace zenka::base

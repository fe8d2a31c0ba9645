#include "platform/SystemTree.h"

#include "base/Text.h"
#include "platform/LinuxFiles.h"

#include <algorithm>
#include <charconv>
#include <system_error>

namespace zenka::platform {

std::optional<std::int64_t> wholeNumber(std::string_view text) {
    std::int64_t value = 0;
    const char* end = text.data() + text.size();
    const auto result = std::from_chars(text.data(), end, value);
    return result.ec == std::errc() && result.ptr == end ? std::optional(value) : std::nullopt;
}

std::optional<std::vector<std::string>> SystemTree::entries(const std::string& folder,
                                                            std::string_view prefix) const {
    namespace fs = std::filesystem;
    std::error_code fault;
    std::vector<std::string> found;
    for (fs::directory_iterator at(root_ / folder, fault), end; !fault && at != end; at.increment(fault))
        if (const std::string name = at->path().filename(); name.starts_with(prefix))
            found.emplace_back(folder).append("/").append(name);
    if (fault)
        return std::nullopt;
    std::ranges::sort(found);
    return found;
}

std::optional<std::string> SystemTree::text(const std::string& path) const {
    const auto content = LinuxFiles().read(root_ / path);
    return content ? std::optional(std::string(base::trimmed(*content))) : std::nullopt;
}

std::optional<std::int64_t> SystemTree::number(const std::string& path) const {
    const auto content = text(path);
    return content ? wholeNumber(*content) : std::nullopt;
}

std::optional<double> SystemTree::degrees(const std::string& path) const {
    const auto thousandths = number(path);
    return thousandths ? std::optional(static_cast<double>(*thousandths) / 1000) : std::nullopt;
}

} // namespace zenka::platform

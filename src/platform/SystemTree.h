#pragma once

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::platform {

/// What the kernel tells in small files, below a root that stands for "/". Any thread. A file that is not
/// there, or cannot be read just now, tells nothing.
class SystemTree {
public:
    explicit SystemTree(std::filesystem::path root) : root_(std::move(root)) {}

    /// The entries of a folder whose names begin so, as paths below the root, in order of their names;
    /// nothing when there is no such folder.
    std::optional<std::vector<std::string>> entries(const std::string& folder,
                                                    std::string_view prefix = {}) const;

    /// The text of a file without the blanks around it.
    std::optional<std::string> text(const std::string& path) const;

    /// A file that holds a whole number.
    std::optional<std::int64_t> number(const std::string& path) const;

    /// A file that holds thousandths of a degree Celsius, as degrees.
    std::optional<double> degrees(const std::string& path) const;

private:
    const std::filesystem::path root_;
};

/// A whole text as a whole number.
std::optional<std::int64_t> wholeNumber(std::string_view text);

} // namespace zenka::platform

#include "ports/FreshName.h"

#include <absl/strings/str_format.h>

namespace zenka::ports {

namespace {

constexpr int mostOfOneName = 1000;

} // namespace

std::filesystem::path freshName(Files& files, const std::filesystem::path& folder, const std::string& name,
                                const std::string& suffix) {
    std::filesystem::path path = folder / (name + suffix);
    for (int number = 2; files.exists(path); ++number) {
        if (number > mostOfOneName)
            return {};
        path = folder / absl::StrFormat("%s %d%s", name, number, suffix);
    }
    return path;
}

} // namespace zenka::ports

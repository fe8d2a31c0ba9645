#pragma once

#include <cstdio>
#include <string>

namespace zenka::cli {

/// Prints one line to standard output.
inline void printLine(const std::string& line) {
    std::fwrite(line.data(), 1, line.size(), stdout);
    std::fputc('\n', stdout);
}

} // namespace zenka::cli

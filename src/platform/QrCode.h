#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace zenka::platform {

/// A square of dark and light modules, row by row.
struct QrCode {
    int side = 0; ///< modules; 0: the text is too long
    std::vector<bool> dark;

    bool at(int row, int column) const {
        return dark[static_cast<std::size_t>(row) * static_cast<std::size_t>(side) +
                    static_cast<std::size_t>(column)];
    }
};

QrCode qrCode(const std::string& text);

} // namespace zenka::platform

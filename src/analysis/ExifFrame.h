#pragma once

#include "base/Instant.h"

#include <string>

namespace zenka::analysis {

/// One frame of a card.
struct ExifFrame {
    std::string file;      ///< the name without its folder
    base::Instant date;    ///< when it was taken, the camera's clock read as local time
    int iso = 0;           ///< 0: the file has none
    double aperture = 0;   ///< f-number; 0: the file has none
    double shutterSec = 0; ///< seconds; 0: the file has none

    friend bool operator==(const ExifFrame&, const ExifFrame&) = default;
};

} // namespace zenka::analysis

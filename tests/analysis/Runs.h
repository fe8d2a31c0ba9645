#pragma once

#include "analysis/RunAnalysis.h"

#include <string>
#include <vector>

namespace zenka::test {

/// A card's clock at the zero of the script's time scale.
inline constexpr double cardZero = 1786552200.0;

inline script::Capture capture(double offsetSec, double shutterSec = 0.002, int iso = 100,
                               double aperture = 8) {
    return {.offsetSec = offsetSec,
            .refLabel = "C2 +1s",
            .camera = "CAM1",
            .shutterSec = shutterSec,
            .aperture = aperture,
            .iso = iso};
}

/// What a body makes of a capture, with the card's clock so many seconds ahead.
inline analysis::ExifFrame frameOf(const script::Capture& capture, double aheadSec = 0) {
    return {.file = "IMG.CR3",
            .date = {cardZero + capture.offsetSec + aheadSec},
            .iso = capture.iso,
            .aperture = capture.aperture,
            .shutterSec = capture.shutterSec};
}

/// Sets of five exposures, a frame every so many seconds.
inline std::vector<script::Capture> plan(int count, double everySec = 2) {
    std::vector<script::Capture> captures;
    for (int i = 0; i < count; ++i)
        captures.push_back(capture(everySec * i, 0.001 * static_cast<double>(1 << 2 * (i % 5))));
    return captures;
}

inline std::vector<analysis::ExifFrame> framesOf(const std::vector<script::Capture>& captures,
                                                 double aheadSec = 0) {
    std::vector<analysis::ExifFrame> frames;
    for (const script::Capture& capture : captures)
        frames.push_back(frameOf(capture, aheadSec));
    return frames;
}

inline analysis::AnalysisResult compare(const std::vector<script::Capture>& expected,
                                        const std::vector<analysis::ExifFrame>& actual) {
    return analysis::RunAnalysis::compare(expected, actual, {"EOS_DIGITAL", "total.zenka", "CAM1"});
}

} // namespace zenka::test

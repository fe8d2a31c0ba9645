#include "script/Bursts.h"

#include <algorithm>

namespace zenka::script {

namespace {

bool isOf(const Capture& capture, const std::vector<std::string>& tokens) {
    return std::ranges::find(tokens, capture.camera) != tokens.end();
}

void add(Burst& burst, const Capture& capture) {
    if (burst.frames == 0) {
        burst.beginSec = capture.offsetSec;
        burst.beginLabel = capture.refLabel;
    }
    burst.endSec = capture.offsetSec;
    burst.endLabel = capture.refLabel;
    burst.longestSec = std::max(burst.longestSec, capture.shutterSec);
    ++burst.frames;
}

} // namespace

std::vector<Burst> burstsOf(const std::vector<Capture>& captures, const std::vector<std::string>& tokens) {
    std::vector<Burst> bursts;
    for (const Capture& capture : captures) {
        if (!isOf(capture, tokens))
            continue;
        if (bursts.empty() || capture.offsetSec - bursts.back().endSec >= burstPauseSec)
            bursts.emplace_back();
        add(bursts.back(), capture);
    }
    return bursts;
}

Burst burstWithin(const std::vector<Capture>& captures, const std::vector<std::string>& tokens,
                  double fromSec, double toSec) {
    Burst burst;
    auto capture = std::ranges::lower_bound(captures, fromSec, {}, &Capture::offsetSec);
    for (; capture != captures.end() && capture->offsetSec <= toSec; ++capture)
        if (isOf(*capture, tokens))
            add(burst, *capture);
    return burst;
}

} // namespace zenka::script

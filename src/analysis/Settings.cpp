#include "analysis/Settings.h"

#include "analysis/RunAnalysis.h"
#include "base/Text.h"

#include <absl/strings/str_format.h>

#include <bit>
#include <cmath>
#include <map>

namespace zenka::analysis {

namespace {

constexpr double isoStops = 0.5;
constexpr double apertureReach = 0.15;
constexpr double shutterShare = 0.08;
/// The rows kept at a time, in words: 32 MB.
constexpr std::size_t mostWords = 4'000'000;

double isoDistance(int asked, int landed) {
    return std::abs(std::log2(static_cast<double>(landed) / asked));
}

double shutterDistance(double asked, double landed) {
    return std::abs(landed - asked) / asked;
}

// What is no number, on either side, is a setting that is not there.

bool shutterFits(double asked, double landed) {
    if (asked > 0)
        return landed > 0 && shutterDistance(asked, landed) < shutterShare;
    return true;
}

bool apertureFits(double asked, double landed) {
    if (asked > 0)
        return landed > 0 && std::abs(landed - asked) < apertureReach;
    return true;
}

template <typename Shot>
std::vector<std::uint32_t> kindsOf(const std::vector<Shot>& shots) {
    // By their bits, for what a file says may be no number and has no order.
    std::map<std::array<std::uint64_t, 3>, std::uint32_t> known;
    std::vector<std::uint32_t> kinds;
    kinds.reserve(shots.size());
    for (const Shot& shot : shots)
        kinds.push_back(known
                            .try_emplace({static_cast<std::uint64_t>(shot.iso),
                                          std::bit_cast<std::uint64_t>(shot.aperture),
                                          std::bit_cast<std::uint64_t>(shot.shutterSec)},
                                         static_cast<std::uint32_t>(known.size()))
                            .first->second);
    return kinds;
}

} // namespace

bool matches(const script::Capture& capture, const ExifFrame& frame) {
    return shutterFits(capture.shutterSec, frame.shutterSec) &&
           apertureFits(capture.aperture, frame.aperture) &&
           (capture.iso <= 0 || frame.iso <= 0 || isoDistance(capture.iso, frame.iso) <= isoStops);
}

std::string settingsDifference(const script::Capture& capture, const ExifFrame& frame) {
    std::vector<std::string> parts;
    if (capture.shutterSec > 0 && frame.shutterSec > 0 &&
        shutterDistance(capture.shutterSec, frame.shutterSec) >= shutterShare)
        parts.push_back("asked " + RunAnalysis::shutterText(capture.shutterSec) + ", card says " +
                        RunAnalysis::shutterText(frame.shutterSec));
    if (capture.iso > 0 && frame.iso <= 0)
        parts.push_back(absl::StrFormat("asked ISO %d, file carries no ISO tag", capture.iso));
    else if (capture.iso > 0 && isoDistance(capture.iso, frame.iso) > isoStops)
        parts.push_back(absl::StrFormat("asked ISO %d, card says ISO %d", capture.iso, frame.iso));
    if (capture.aperture > 0 && frame.aperture > 0 &&
        std::abs(frame.aperture - capture.aperture) >= apertureReach)
        parts.push_back(absl::StrFormat("asked f/%g, card says f/%g", capture.aperture, frame.aperture));
    return parts.empty() ? "settings differ from the script" : base::joined(parts);
}

MatchRows::MatchRows(const std::vector<script::Capture>& captures, const std::vector<ExifFrame>& frames)
    : captures_(captures), frames_(frames), captureKind_(kindsOf(captures)), frameKind_(kindsOf(frames)) {
    for (std::size_t frame = 0; frame < frameKind_.size(); ++frame)
        if (frameKind_[frame] == sample_.size())
            sample_.push_back(frame);
}

const FrameSet& MatchRows::of(std::size_t capture) {
    const std::uint32_t kind = captureKind_[capture];
    if (const auto known = rows_.find(kind); known != rows_.end())
        return known->second;
    // A shoot has a few dozen settings. Where each capture has its own, the rows are made as they are asked
    // for.
    if (rows_.size() * FrameSet::wordsFor(frames_.size()) > mostWords)
        rows_.clear();
    std::vector<char> fits;
    fits.reserve(sample_.size());
    for (const std::size_t frame : sample_)
        fits.push_back(matches(captures_[capture], frames_[frame]) ? 1 : 0);
    FrameSet row(frames_.size());
    for (std::size_t frame = 0; frame < frames_.size(); ++frame)
        if (fits[frameKind_[frame]] != 0)
            row.insert(frame);
    return rows_.emplace(kind, std::move(row)).first->second;
}

} // namespace zenka::analysis

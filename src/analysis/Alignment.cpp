#include "analysis/Alignment.h"

#include <bit>

namespace zenka::analysis {

namespace {

using Word = FrameSet::Word;

/// The table of the longest common subsequence, a bit for each cell: along a row its values grow by 0 or 1,
/// and a row comes from the one before by a few operations on whole words (Hyyrö, "Bit-parallel LCS-length
/// computation revisited", 2004). The settings decide what is equal, which is no equivalence; the
/// method does not need one.
class LengthTable {
public:
    LengthTable(std::size_t captures, std::size_t frames)
        : words_(FrameSet::wordsFor(frames)), bits_((captures + 1) * words_, ~Word{0}) {}

    /// Fills the row behind a capture, when those of the captures before it are filled.
    void fill(std::size_t capture, const FrameSet& matching, FrameRange range) {
        const Word* before = row(capture);
        Word* after = bits_.data() + (capture + 1) * words_;
        Word carry = 0;
        for (std::size_t at = 0; at < words_; ++at) {
            const Word flat = before[at];
            const Word match = matching.word(at, range);
            const Word sum = flat + (flat & match);
            const Word carried = sum + carry;
            carry = static_cast<Word>(sum < flat) | static_cast<Word>(carried < sum);
            after[at] = carried | (flat & ~match);
        }
    }

    /// Whether the value of a row grows at a frame.
    bool growsAt(std::size_t captures, std::size_t frame) const {
        return (row(captures)[frame / FrameSet::wordBits] >> frame % FrameSet::wordBits & 1) == 0;
    }

    /// The length for the first so many captures and frames.
    int length(std::size_t captures, std::size_t frames) const {
        const Word* bits = row(captures);
        int sum = 0;
        for (std::size_t at = 0; at < frames / FrameSet::wordBits; ++at)
            sum += std::popcount(~bits[at]);
        const std::size_t rest = frames % FrameSet::wordBits;
        if (rest > 0)
            sum += std::popcount(~bits[frames / FrameSet::wordBits] << (FrameSet::wordBits - rest));
        return sum;
    }

private:
    const Word* row(std::size_t captures) const { return bits_.data() + captures * words_; }

    std::size_t words_;
    std::vector<Word> bits_; // set where the value does not grow
};

FrameRange rangeOf(const std::vector<FrameRange>& near, std::size_t capture, std::size_t frames) {
    return near.empty() ? FrameRange{0, frames} : near[capture];
}

std::vector<int> alignInOrder(MatchRows& rows, const std::vector<FrameRange>& near) {
    const std::size_t frames = rows.frames();
    LengthTable table(rows.captures(), frames);
    for (std::size_t capture = 0; capture < rows.captures(); ++capture)
        table.fill(capture, rows.of(capture), rangeOf(near, capture, frames));

    std::vector<int> aligned(rows.captures(), noFrame);
    std::size_t i = rows.captures();
    std::size_t j = frames;
    if (i == 0)
        return aligned;
    int here = table.length(i, j);
    int above = table.length(i - 1, j);
    while (i > 0 && j > 0) {
        const int left = here - (table.growsAt(i, j - 1) ? 1 : 0);
        // A match is always one more than the cell on the diagonal.
        const bool match = rangeOf(near, i - 1, frames).contains(j - 1) && rows.of(i - 1).contains(j - 1);
        if (match)
            aligned[i - 1] = static_cast<int>(j - 1);
        if (!match && above < left) {
            here = left;
            above -= table.growsAt(i - 1, j - 1) ? 1 : 0;
            --j;
            continue;
        }
        if (match) {
            above -= table.growsAt(i - 1, j - 1) ? 1 : 0;
            --j;
        }
        here = above;
        --i;
        above = i > 0 ? table.length(i - 1, j) : 0;
    }
    return aligned;
}

std::vector<int> alignGreedily(MatchRows& rows, const std::vector<FrameRange>& near) {
    std::vector<int> aligned(rows.captures(), noFrame);
    FrameSet free(rows.frames(), true);
    for (std::size_t capture = 0; capture < rows.captures(); ++capture) {
        const FrameRange range = rangeOf(near, capture, rows.frames());
        const std::size_t frame = FrameSet::firstInBoth(free, rows.of(capture), range);
        if (!range.contains(frame))
            continue;
        aligned[capture] = static_cast<int>(frame);
        free.erase(frame);
    }
    return aligned;
}

} // namespace

std::vector<int> align(MatchRows& rows, const std::vector<FrameRange>& near) {
    return rows.captures() * rows.frames() > mostAlignmentCells ? alignGreedily(rows, near)
                                                                : alignInOrder(rows, near);
}

} // namespace zenka::analysis

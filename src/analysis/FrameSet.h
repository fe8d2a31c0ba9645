#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace zenka::analysis {

/// Frames [begin, end) of a sorted list.
struct FrameRange {
    std::size_t begin = 0;
    std::size_t end = 0;

    bool contains(std::size_t frame) const { return begin <= frame && frame < end; }
};

/// A set of frames by their index, a bit each.
class FrameSet {
public:
    using Word = std::uint64_t;
    static constexpr std::size_t wordBits = 64;

    static std::size_t wordsFor(std::size_t frames) { return (frames + wordBits - 1) / wordBits; }

    explicit FrameSet(std::size_t frames, bool all = false) : words_(wordsFor(frames), all ? ~Word{0} : 0) {}

    void insert(std::size_t frame) { words_[frame / wordBits] |= bit(frame); }
    void erase(std::size_t frame) { words_[frame / wordBits] &= ~bit(frame); }
    bool contains(std::size_t frame) const { return (words_[frame / wordBits] & bit(frame)) != 0; }

    /// 64 frames of the set, those outside of the range left out.
    Word word(std::size_t index, FrameRange range) const { return words_[index] & mask(index, range); }

    /// The first frame of the range that is in both sets; the range's end for none.
    static std::size_t firstInBoth(const FrameSet& a, const FrameSet& b, FrameRange range) {
        for (std::size_t at = range.begin / wordBits; at * wordBits < range.end; ++at)
            if (const Word both = a.word(at, range) & b.words_[at])
                return at * wordBits + static_cast<std::size_t>(std::countr_zero(both));
        return range.end;
    }

private:
    static Word bit(std::size_t frame) { return Word{1} << frame % wordBits; }

    /// The bits of a word that lie in a range.
    static Word mask(std::size_t index, FrameRange range) {
        const std::size_t first = index * wordBits;
        const std::size_t low = std::max(range.begin, first);
        const std::size_t high = std::min(range.end, first + wordBits);
        if (low >= high)
            return 0;
        return ~Word{0} >> (wordBits - (high - low)) << (low - first);
    }

    std::vector<Word> words_;
};

} // namespace zenka::analysis

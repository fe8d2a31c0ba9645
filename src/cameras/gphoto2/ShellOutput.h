#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace zenka::cameras {

/// What a gphoto2 shell prints, with its prompts counted as they come, also those that arrive in pieces.
/// It keeps the end of an output that grows without bound.
class ShellOutput {
public:
    static constexpr std::size_t usualLimit = std::size_t{4} << 20;

    /// It holds no more bytes than the limit.
    explicit ShellOutput(std::size_t limit = usualLimit) : limit_(limit) {}

    void append(std::string_view piece);

    /// Prompts since the beginning, whatever was dropped since.
    std::size_t prompts() const { return prompts_; }

    /// The output from before the last prompts on, one for each command and the one that waits now; all
    /// there is when there are fewer.
    std::string_view repliesOf(std::size_t commands) const;

    /// Drops all before the last prompt.
    void trimToLastPrompt();

    std::string_view text() const { return buffer_; }

private:
    void dropFront(std::size_t count);

    const std::size_t limit_;
    std::string buffer_;
    std::size_t scanned_ = 0; // where the search for the next prompt begins
    std::size_t prompts_ = 0;
};

} // namespace zenka::cameras

#include "cameras/gphoto2/ShellOutput.h"

#include "cameras/gphoto2/GPhoto2Text.h"

#include <algorithm>

namespace zenka::cameras {

using GPhoto2Text::promptMark;

void ShellOutput::append(std::string_view piece) {
    buffer_ += piece;
    for (std::size_t at = 0; (at = buffer_.find(promptMark, scanned_)) != buffer_.npos;) {
        ++prompts_;
        scanned_ = at + promptMark.size();
    }
    // A mark that has come in part is found when its rest has come.
    if (buffer_.size() >= promptMark.size())
        scanned_ = std::max(scanned_, buffer_.size() - promptMark.size() + 1);
    if (buffer_.size() > limit_)
        dropFront(buffer_.size() - limit_ / 2);
}

std::string_view ShellOutput::repliesOf(std::size_t commands) const {
    std::size_t from = buffer_.size();
    for (std::size_t count = 0; count <= commands; ++count) {
        if (from == 0)
            return buffer_;
        from = buffer_.rfind(promptMark, from - 1);
        if (from == buffer_.npos)
            return buffer_;
    }
    return std::string_view(buffer_).substr(from);
}

void ShellOutput::trimToLastPrompt() {
    if (const std::size_t at = buffer_.rfind(promptMark); at != buffer_.npos)
        dropFront(at);
}

void ShellOutput::dropFront(std::size_t count) {
    buffer_.erase(0, count);
    scanned_ -= std::min(scanned_, count);
}

} // namespace zenka::cameras

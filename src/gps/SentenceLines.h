#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace zenka::gps {

/// Puts the bytes of a stream together to lines. A stream may begin in mid-line and hold anything.
class SentenceLines {
public:
    /// A line that gets longer is thrown away; sentences have 82 bytes, makers' own some more.
    static constexpr std::size_t longest = 512;

    using Take = std::function<void(std::string_view line)>;

    /// Gives each line that these bytes complete, without its end and the blanks around it.
    void feed(std::string_view bytes, const Take& take);

    void clear() { line_.clear(); }

private:
    std::string line_;
};

} // namespace zenka::gps

#pragma once

#include <QGuiApplication>

#include <array>

namespace zenka::platform {

/// What Qt wants in order to paint text where there is neither a display nor a window. One at a time, and
/// none beside a window.
class OffscreenText {
public:
    OffscreenText() : application_(count_, arguments_.data()) {}

private:
    std::array<char, 6> name_{"zenka"};
    std::array<char, 10> option_{"-platform"};
    std::array<char, 10> value_{"offscreen"};
    std::array<char*, 4> arguments_{name_.data(), option_.data(), value_.data(), nullptr};
    int count_ = 3; // Qt keeps a reference
    QGuiApplication application_;
};

} // namespace zenka::platform

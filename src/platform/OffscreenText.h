#pragma once

#include <QGuiApplication>

#include <array>
#include <cstdio>

namespace zenka::platform {

/// What Qt wants in order to paint text where there is neither a display nor a window. One at a time, and
/// none beside a window.
class OffscreenText {
public:
    OffscreenText() : before_(qInstallMessageHandler(print)), application_(count_, arguments_.data()) {}
    OffscreenText(const OffscreenText&) = delete;
    OffscreenText& operator=(const OffscreenText&) = delete;
    ~OffscreenText() { qInstallMessageHandler(before_); }

private:
    /// Outside a session Qt tells where it would put files of one, of which there are none.
    static void print(QtMsgType, const QMessageLogContext&, const QString& message) {
        if (!message.startsWith(QLatin1String("QStandardPaths: XDG_RUNTIME_DIR not set")))
            std::fprintf(stderr, "%s\n", qPrintable(message));
    }

    QtMessageHandler before_;
    std::array<char, 6> name_{"zenka"};
    std::array<char, 10> option_{"-platform"};
    std::array<char, 10> value_{"offscreen"};
    std::array<char*, 4> arguments_{name_.data(), option_.data(), value_.data(), nullptr};
    int count_ = 3; // Qt keeps a reference
    QGuiApplication application_;
};

} // namespace zenka::platform

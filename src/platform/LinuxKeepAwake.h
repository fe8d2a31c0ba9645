#pragma once

#include "platform/Report.h"
#include "ports/KeepAwake.h"

#include <memory>

namespace zenka::platform {

/// Holds off sleep by a lock of logind on the system bus ("idle:sleep", block), and the blanking of the
/// display by org.freedesktop.ScreenSaver on the session bus. Each bus has a thread of its own, as even
/// opening one waits for it; only the newest wish counts there, so a hold that is released before its
/// answer came is undone as soon as it comes.
///
/// The report hears, on any thread, of a hold that could not be had. Destroying the object releases,
/// and waits half a second at most for each bus; what is not undone by then the services undo when the
/// connection closes.
class LinuxKeepAwake final : public ports::KeepAwake {
public:
    /// Where the buses are; empty means the machine's usual ones.
    struct Buses {
        std::string system;
        std::string session;
    };

    explicit LinuxKeepAwake(const Report& report = {});
    LinuxKeepAwake(const Report& report, const Buses& buses);
    LinuxKeepAwake(const LinuxKeepAwake&) = delete;
    LinuxKeepAwake& operator=(const LinuxKeepAwake&) = delete;
    ~LinuxKeepAwake() override;

    void hold(const std::string& reason) override;
    void release() override;

private:
    class Holder;
    std::unique_ptr<Holder> machine_;
    std::unique_ptr<Holder> display_;
};

} // namespace zenka::platform

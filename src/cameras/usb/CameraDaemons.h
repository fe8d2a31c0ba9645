#pragma once

#include "base/Instant.h"
#include "ports/ProcessTable.h"
#include "ports/WorkQueues.h"

#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::cameras {

/// The desktop's daemons that open every camera plugged in, and so hold the device that a driver wants.
/// They are started anew on each plug-in and within moments of being ended. Any thread; none of it waits but
/// killCameraDaemons() and cameraGrabbingProcesses(), which scan the process table and do not belong on the
/// main thread.
class CameraDaemons {
public:
    CameraDaemons(ports::ProcessTable& processes, ports::WorkQueues& queues);
    ~CameraDaemons();
    CameraDaemons(const CameraDaemons&) = delete;
    CameraDaemons& operator=(const CameraDaemons&) = delete;

    /// Ends those of this user, by id.
    void killCameraDaemons();

    /// The names of what runs and is known to hold cameras, whoever's it is: the daemons, and programs that
    /// are the user's to quit and are never ended. Nothing when the scan failed.
    std::optional<std::vector<std::string>> cameraGrabbingProcesses();

    /// Counted: from the first start to the last stop the daemons are ended again and again, at once and then
    /// every 150 ms, on a queue of its own. A stop too many does nothing.
    void startDaemonSuppressor();
    void stopDaemonSuppressor();

    /// A hold for a scope.
    class Held {
    public:
        explicit Held(CameraDaemons& daemons) : daemons_(daemons) { daemons_.startDaemonSuppressor(); }
        ~Held() { daemons_.stopDaemonSuppressor(); }
        Held(const Held&) = delete;
        Held& operator=(const Held&) = delete;

    private:
        CameraDaemons& daemons_;
    };

    static bool isDaemon(std::string_view processName);
    /// A program for people that takes hold of cameras.
    static bool isCameraProgram(std::string_view processName);

private:
    struct Suppressor;

    std::shared_ptr<Suppressor> suppressor_; // its beats may outlive this object, and then do nothing
};

} // namespace zenka::cameras

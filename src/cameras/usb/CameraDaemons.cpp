#include "cameras/usb/CameraDaemons.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <mutex>
#include <span>

namespace zenka::cameras {

namespace {

constexpr base::Seconds beat{0.150};

// GNOME's two, and the worker of KDE's camera protocol, which kiod or a kioslave renames itself to. Their
// hosts serve other protocols as well and are left alone.
constexpr std::array<std::string_view, 3> daemonNames{"gvfs-gphoto2-volume-monitor", "gvfsd-gphoto2",
                                                      "kio_camera"};

constexpr std::array<std::string_view, 7> programNames{
    "digikam", "darktable", "entangle", "gphotofs", "gthumb", "rapid-photo-downloader", "shotwell"};

// A process that a scan can read no more of than its /proc comm has the first 15 bytes of its name.
constexpr std::size_t shortNameLength = 15;

bool isOneOf(std::span<const std::string_view> names, std::string_view processName) {
    return std::ranges::any_of(names, [processName](std::string_view name) {
        return processName == name ||
               (processName.size() == shortNameLength && name.starts_with(processName));
    });
}

} // namespace

struct CameraDaemons::Suppressor : std::enable_shared_from_this<Suppressor> {
    Suppressor(ports::ProcessTable& table, ports::WorkQueues& makesQueues)
        : processes(table), queues(makesQueues) {}

    ports::ProcessTable& processes;
    ports::WorkQueues& queues;
    std::mutex mutex;
    int holds = 0;
    std::uint64_t generation = 0; // of the beats that run
    std::shared_ptr<ports::WorkQueue> queue;

    void killCameraDaemons() {
        const auto running = processes.running();
        if (!running)
            return;
        for (const ports::RunningProcess& process : *running)
            if (process.mine && isDaemon(process.name))
                processes.end(process.id);
    }

    void beatOf(std::uint64_t mine) {
        {
            const std::lock_guard lock(mutex);
            if (holds == 0 || mine != generation)
                return;
        }
        killCameraDaemons();
        const std::lock_guard lock(mutex);
        if (holds > 0 && mine == generation)
            queue->postAfter(beat, [self = shared_from_this(), mine] { self->beatOf(mine); });
    }
};

CameraDaemons::CameraDaemons(ports::ProcessTable& processes, ports::WorkQueues& queues)
    : suppressor_(std::make_shared<Suppressor>(processes, queues)) {
}

CameraDaemons::~CameraDaemons() {
    std::shared_ptr<ports::WorkQueue> queue;
    {
        const std::lock_guard lock(suppressor_->mutex);
        suppressor_->holds = 0;
        queue = std::move(suppressor_->queue);
    }
}

bool CameraDaemons::isDaemon(std::string_view processName) {
    return isOneOf(daemonNames, processName);
}

bool CameraDaemons::isCameraProgram(std::string_view processName) {
    return isOneOf(programNames, processName);
}

void CameraDaemons::killCameraDaemons() {
    suppressor_->killCameraDaemons();
}

std::optional<std::vector<std::string>> CameraDaemons::cameraGrabbingProcesses() {
    const auto running = suppressor_->processes.running();
    if (!running)
        return std::nullopt;
    std::vector<std::string> names;
    for (const ports::RunningProcess& process : *running)
        if ((isDaemon(process.name) || isCameraProgram(process.name)) &&
            std::ranges::find(names, process.name) == names.end())
            names.push_back(process.name);
    return names;
}

void CameraDaemons::startDaemonSuppressor() {
    const std::lock_guard lock(suppressor_->mutex);
    if (++suppressor_->holds > 1)
        return;
    if (!suppressor_->queue)
        suppressor_->queue = suppressor_->queues.serial("zenka.daemons");
    suppressor_->queue->post([self = suppressor_, mine = ++suppressor_->generation] { self->beatOf(mine); });
}

void CameraDaemons::stopDaemonSuppressor() {
    const std::lock_guard lock(suppressor_->mutex);
    if (suppressor_->holds > 0)
        --suppressor_->holds;
}

} // namespace zenka::cameras

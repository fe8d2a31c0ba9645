#include "rig/voice/ShellCues.h"

#include <absl/strings/str_format.h>

#include <atomic>
#include <list>
#include <utility>

namespace zenka::rig {

namespace {

constexpr base::Seconds lookPeriod{0.25}; ///< between two looks at the commands that run

std::string endOf(int code) {
    return code == 0  ? "done"
           : code > 0 ? absl::StrFormat("failed, exit status %d", code)
                      : absl::StrFormat("ended by signal %d", -code);
}

} // namespace

struct ShellCues::Running : std::enable_shared_from_this<Running> {
    struct Command {
        std::string name;
        std::unique_ptr<ports::ChildProcess> child;
    };

    ports::ChildProcesses& children;
    std::weak_ptr<ports::WorkQueue> queue;
    std::function<void(std::string)> tell; // any thread
    std::list<Command> commands;
    bool looking = false;
    std::atomic<bool> ending{false};

    Running(ports::ChildProcesses& from, std::function<void(std::string)> log)
        : children(from), tell(std::move(log)) {}

    void start(const std::string& line, const std::string& name) {
        if (ending)
            return;
        if (static_cast<int>(commands.size()) >= mostRunning)
            return tell(absl::StrFormat("⚠️ Command “%s” was not started: %d others still run.", name,
                                        mostRunning));
        auto started = children.start({.program = "/bin/sh", .arguments = {"-c", line}, .mergeErrors = true});
        if (!started.child)
            return tell("⚠️ Command “" + name + "” could not be started: " + started.fault + ".");
        commands.push_back({.name = name, .child = std::move(started.child)});
        lookLater();
    }

    void lookLater() {
        const auto onQueue = queue.lock();
        if (onQueue && !commands.empty() && !std::exchange(looking, true))
            onQueue->postAfter(lookPeriod, [self = shared_from_this()] {
                self->looking = false;
                self->look();
            });
    }

    void look() {
        if (ending)
            return commands.clear();
        std::erase_if(commands, [this](Command& command) {
            command.child->read(base::Seconds{0}); // a full pipe would hold it up
            const auto code = command.child->waitForEnd(base::Seconds{0});
            if (code)
                tell((*code == 0 ? "⚙︎ Command “" : "⚠️ Command “") + command.name +
                     "”: " + endOf(*code) + ".");
            return code.has_value();
        });
        lookLater();
    }
};

ShellCues::ShellCues(const ports::Ports& ports, RigLog& log)
    : queues_(ports.queues), running_(std::make_shared<Running>(ports.children, log.teller())) {
}

ShellCues::~ShellCues() {
    endAll();
}

void ShellCues::runShell(const std::string& command, const std::string& name) {
    if (!queue_) {
        queue_ = queues_.serial("zenka.shell");
        running_->queue = queue_;
    }
    queue_->post([running = running_, command, name] { running->start(command, name); });
}

void ShellCues::endAll() {
    running_->ending = true;
    if (queue_)
        queue_->post([running = running_] { running->commands.clear(); });
}

} // namespace zenka::rig

#include "platform/LinuxStallSampler.h"

#include "base/Text.h"
#include "platform/Descriptor.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <spawn.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>
#include <vector>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

/// Waits for the end of its input, which is the word that it may attach. A tracer that was killed can
/// leave the process stopped, hence the last command.
constexpr const char* script = "read -r word\n"
                               "timeout --foreground -s KILL 10 \"$1\" -p \"$2\"\n"
                               "kill -s CONT \"$2\"\n";

std::string findProgram(std::string_view name) {
    const char* path = std::getenv("PATH");
    for (const std::string_view folder : base::splitPieces(path ? path : "/usr/bin:/bin", ':')) {
        std::string candidate = (fs::path(folder) / name).string();
        if (::access(candidate.c_str(), X_OK) == 0)
            return candidate;
    }
    return {};
}

/// The environment without the debug information servers, which a stack sample must not wait for.
std::vector<char*> childEnvironment() {
    std::vector<char*> entries;
    for (char** entry = environ; *entry; ++entry)
        if (!std::string_view(*entry).starts_with("DEBUGINFOD_URLS="))
            entries.push_back(*entry);
    entries.push_back(nullptr);
    return entries;
}

/// The child in a process group of its own, with only these two descriptors and the usual signals.
std::optional<pid_t> spawn(const std::string& program, int input, int output) {
    posix_spawn_file_actions_t actions;
    posix_spawnattr_t attributes;
    posix_spawn_file_actions_init(&actions);
    posix_spawnattr_init(&attributes);
    posix_spawn_file_actions_adddup2(&actions, input, STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, output, STDERR_FILENO);
    posix_spawn_file_actions_addclosefrom_np(&actions, STDERR_FILENO + 1);
    sigset_t none;
    sigset_t all;
    sigemptyset(&none);
    sigfillset(&all);
    posix_spawnattr_setsigmask(&attributes, &none);
    posix_spawnattr_setsigdefault(&attributes, &all);
    posix_spawnattr_setpgroup(&attributes, 0);
    posix_spawnattr_setflags(&attributes,
                             POSIX_SPAWN_SETPGROUP | POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF);

    std::array<std::string, 6> words{"sh", "-c", script, "sh", program, std::to_string(::getpid())};
    std::array<char*, 7> arguments{};
    for (std::size_t index = 0; index < words.size(); ++index)
        arguments[index] = words[index].data();
    pid_t child = 0;
    const int fault =
        posix_spawn(&child, "/bin/sh", &actions, &attributes, arguments.data(), childEnvironment().data());
    posix_spawnattr_destroy(&attributes);
    posix_spawn_file_actions_destroy(&actions);
    return fault == 0 ? std::optional(child) : std::nullopt;
}

void reap(pid_t child) {
    while (::waitpid(child, nullptr, 0) < 0 && errno == EINTR) {
    }
    ::prctl(PR_SET_PTRACER, 0);
}

} // namespace

LinuxStallSampler::LinuxStallSampler() : LinuxStallSampler(findProgram("eu-stack")) {
}

LinuxStallSampler::LinuxStallSampler(std::string program) : program_(std::move(program)) {
}

bool LinuxStallSampler::sampleTo(const fs::path& file) {
    if (program_.empty() || sampling_->exchange(true))
        return false;
    std::error_code fault;
    if (file.has_parent_path())
        fs::create_directories(file.parent_path(), fault);
    std::array<int, 2> ends{-1, -1};
    std::optional<pid_t> child;
    {
        const Descriptor output(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666));
        if (output && ::pipe2(ends.data(), O_CLOEXEC) == 0) {
            const Descriptor input(ends[0]);
            const Descriptor word(ends[1]);
            child = spawn(program_, input.get(), output.get());
            // the hardened kernels let a child trace its parent only by leave
            if (child)
                ::prctl(PR_SET_PTRACER, *child);
        }
    }
    if (!child) {
        sampling_->store(false);
        return false;
    }
    try {
        std::thread([child = *child, sampling = sampling_] {
            reap(child);
            sampling->store(false);
        }).detach();
    } catch (const std::system_error&) {
        // a machine out of threads: this sample is taken, and is the last one
    }
    return true;
}

} // namespace zenka::platform

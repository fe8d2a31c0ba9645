#include "platform/LinuxStallSampler.h"

#include "base/Text.h"
#include "platform/Descriptor.h"
#include "platform/Spawn.h"

#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <optional>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <system_error>
#include <thread>

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

/// The sampler's shell. Its environment lacks the debug information servers, which a stack sample must not
/// wait for.
std::optional<pid_t> spawnSampler(const std::string& program, int input, int output) {
    pid_t child = 0;
    const int fault = spawn({.program = "/bin/sh",
                             .arguments = {"-c", script, "sh", program, std::to_string(::getpid())},
                             .environment = environmentWithout({"DEBUGINFOD_URLS"}),
                             .input = input,
                             .output = output,
                             .errors = output},
                            child);
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
        const Descriptor output(::open(file.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0600));
        if (output && ::pipe2(ends.data(), O_CLOEXEC) == 0) {
            const Descriptor input(ends[0]);
            const Descriptor word(ends[1]);
            child = spawnSampler(program_, input.get(), output.get());
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

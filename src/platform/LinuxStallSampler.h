#pragma once

#include "ports/StallSampler.h"

#include <atomic>
#include <memory>
#include <string>

namespace zenka::platform {

/// Samples by eu-stack of elfutils. One sample at a time: only one tracer can be attached to a process,
/// so a second sample cannot be started until the first has ended.
///
/// A tracer stops this whole process, so a tracer that hangs cannot be ended from here: `timeout` of the
/// coreutils does that after 10 s, from outside.
class LinuxStallSampler final : public ports::StallSampler {
public:
    LinuxStallSampler();

    /// With the program in place of eu-stack; empty when there is none.
    explicit LinuxStallSampler(std::string program);

    bool sampleTo(const std::filesystem::path& file) override;

private:
    const std::string program_;
    const std::shared_ptr<std::atomic<bool>> sampling_ = std::make_shared<std::atomic<bool>>(false);
};

} // namespace zenka::platform

#pragma once

#include <filesystem>

namespace zenka::ports {

/// Takes a sample of what every thread of this process is doing.
class StallSampler {
public:
    virtual ~StallSampler() = default;

    /// Starts writing stack traces of all threads to a new file and returns at once; false when that
    /// cannot be started. Any thread.
    virtual bool sampleTo(const std::filesystem::path& file) = 0;
};

} // namespace zenka::ports

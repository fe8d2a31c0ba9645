#pragma once

#include "ports/SharedLibraries.h"

#include <filesystem>

namespace zenka::platform {

class LinuxSharedLibraries final : public ports::SharedLibraries {
public:
    LinuxSharedLibraries();
    /// Looks in another folder before it asks the loader.
    explicit LinuxSharedLibraries(std::filesystem::path folder) : folder_(std::move(folder)) {}

    Opened open(const std::string& name) override;

private:
    const std::filesystem::path folder_;
};

} // namespace zenka::platform

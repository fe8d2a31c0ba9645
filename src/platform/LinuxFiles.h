#pragma once

#include "ports/Files.h"

namespace zenka::platform {

/// Files by POSIX calls. Names are bytes and are taken as they are. Any thread.
///
/// A process that is killed within a write may leave a hidden file ".zenka-..." beside the target;
/// the target itself is then as it was.
class LinuxFiles final : public ports::Files {
public:
    /// Regular files only: a pipe or a device could keep the caller waiting for ever.
    std::optional<std::string> read(const std::filesystem::path& path) override;

    /// A symbolic link stays one: what it names is written.
    std::optional<std::string> readBeginning(const std::filesystem::path& path, std::size_t most) override;
    bool writeAtomically(const std::filesystem::path& path, std::string_view bytes) override;
    bool writeDocument(const std::filesystem::path& path, std::string_view bytes) override;

    /// The file appears with its content whole, where the file system can rename or link without
    /// replacing (all but some removable ones, which get the plain exclusive way).
    std::unique_ptr<ports::AppendFile> create(const std::filesystem::path& path,
                                              std::string_view bytes) override;

    std::unique_ptr<ports::AppendFile> openForAppending(const std::filesystem::path& path) override;

    std::vector<std::string> namesIn(const std::filesystem::path& folder) override;
    bool exists(const std::filesystem::path& path) override;
    void remove(const std::filesystem::path& path) override;
};

} // namespace zenka::platform

#pragma once

#include "ports/Folders.h"

namespace zenka::platform {

/// The folders of the XDG base directories and of the user's user-dirs.dirs, as they were when this
/// object was made.
class LinuxFolders final : public ports::Folders {
public:
    LinuxFolders();

    std::filesystem::path applicationSupport() const override { return applicationSupport_; }
    std::filesystem::path documents() const override { return documents_; }
    std::filesystem::path temporary() const override { return temporary_; }

    /// The base folder that a variable names, else the usual one, which stands in the user's home. A relative
    /// name is to be taken for none (XDG base directories, freedesktop.org).
    static std::filesystem::path base(const char* variable, const char* usual);

private:
    std::filesystem::path applicationSupport_;
    std::filesystem::path documents_;
    std::filesystem::path temporary_;
};

} // namespace zenka::platform

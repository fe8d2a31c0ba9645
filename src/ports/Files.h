#pragma once

#include <cstddef>
#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::ports {

/// A file that only grows. Closed with its object.
class AppendFile {
public:
    virtual ~AppendFile() = default;

    /// Hands the bytes to the system in one write; false when not all of them were taken.
    virtual bool append(std::string_view bytes) = 0;
};

/// The disk. Every call may wait for it, so none belongs on the main thread during a run. What is written can
/// be read by the user alone, for much of it tells where he is or how to get at a server of his; only a
/// document is made for others, too.
class Files {
public:
    virtual ~Files() = default;

    /// The whole content; nothing when it cannot be read.
    virtual std::optional<std::string> read(const std::filesystem::path& path) = 0;

    /// Its first bytes, at most so many: for a file of which nobody knows how long it is.
    virtual std::optional<std::string> readBeginning(const std::filesystem::path& path, std::size_t most) = 0;

    /// Writes a whole file so that a crash or a power cut leaves either the old content or the new one.
    /// Makes missing folders.
    virtual bool writeAtomically(const std::filesystem::path& path, std::string_view bytes) = 0;

    /// Likewise a document of the user's, such as a script. It has the rights of the one there before, a new
    /// one those that the user's files have in general.
    virtual bool writeDocument(const std::filesystem::path& path, std::string_view bytes) = 0;

    /// Makes a new file with this content and keeps it open for appending. Makes missing folders.
    /// Nothing when the name is taken (the file there stays as it is) or the file cannot be made.
    virtual std::unique_ptr<AppendFile> create(const std::filesystem::path& path, std::string_view bytes) = 0;

    /// Opens a file for appending. One that is not there is made, with missing folders. Nothing when it can
    /// be neither opened nor made.
    virtual std::unique_ptr<AppendFile> openForAppending(const std::filesystem::path& path) = 0;

    /// The names of the regular files of a folder, ascending; none when it cannot be listed.
    virtual std::vector<std::string> namesIn(const std::filesystem::path& folder) = 0;

    /// False only where it is known that there is none; a disk that gives no answer may have it.
    virtual bool exists(const std::filesystem::path& path) = 0;

    /// Removes a file. A missing one is no error.
    virtual void remove(const std::filesystem::path& path) = 0;
};

} // namespace zenka::ports

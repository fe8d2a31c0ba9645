#include "platform/LinuxFiles.h"

#include "platform/Descriptor.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <limits>
#include <sys/stat.h>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

constexpr mode_t usersAlone = 0600;
constexpr mode_t usersUsual = 0666; ///< less what the umask takes away

bool writeFully(int file, std::string_view bytes) {
    while (!bytes.empty()) {
        const ssize_t written = ::write(file, bytes.data(), bytes.size());
        if (written < 0 && errno != EINTR)
            return false;
        if (written > 0)
            bytes.remove_prefix(static_cast<std::size_t>(written));
    }
    return true;
}

bool syncFile(int file) {
    // some file systems of folders and devices know no syncing; that is no failure
    return ::fsync(file) == 0 || errno == EINVAL || errno == ENOTSUP;
}

fs::path folderOf(const fs::path& path) {
    return path.has_parent_path() ? path.parent_path() : fs::path(".");
}

void syncFolder(const fs::path& folder) {
    const Descriptor handle(::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC));
    if (handle)
        syncFile(handle.get());
}

/// A new file under a hidden name, gone again with its object unless it was renamed.
class TemporaryFile {
public:
    TemporaryFile(const fs::path& folder, mode_t mode) {
        static std::atomic<unsigned> counter{0};
        for (int attempt = 0; attempt < 100 && !handle_; ++attempt) {
            // the file's own name is left out: a long one would not fit with an addition
            path_ = folder / absl::StrFormat(".zenka-%d-%u", ::getpid(), counter++);
            handle_ =
                Descriptor(::open(path_.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, mode));
            if (!handle_ && errno != EEXIST)
                break;
        }
    }
    TemporaryFile(const TemporaryFile&) = delete;
    TemporaryFile& operator=(const TemporaryFile&) = delete;
    ~TemporaryFile() {
        if (!path_.empty())
            ::unlink(path_.c_str());
    }

    Descriptor& handle() { return handle_; }
    bool fill(std::string_view bytes) {
        return handle_ && writeFully(handle_.get(), bytes) && syncFile(handle_.get());
    }
    bool renameOver(const fs::path& target) {
        if (::rename(path_.c_str(), target.c_str()) != 0)
            return false;
        path_.clear();
        return true;
    }

    enum class Placing { done, taken, impossible };
    Placing placeAt(const fs::path& target) {
        if (::renameat2(AT_FDCWD, path_.c_str(), AT_FDCWD, target.c_str(), RENAME_NOREPLACE) == 0) {
            path_.clear();
            return Placing::done;
        }
        if (errno == EEXIST)
            return Placing::taken;
        if (::link(path_.c_str(), target.c_str()) == 0)
            return Placing::done;
        return errno == EEXIST ? Placing::taken : Placing::impossible;
    }

private:
    fs::path path_;
    Descriptor handle_;
};

class LinuxAppendFile final : public ports::AppendFile {
public:
    explicit LinuxAppendFile(Descriptor handle) : handle_(std::move(handle)) {}

    bool append(std::string_view bytes) override {
        ssize_t written = 0;
        do {
            written = ::write(handle_.get(), bytes.data(), bytes.size());
        } while (written < 0 && errno == EINTR);
        return written >= 0 && static_cast<std::size_t>(written) == bytes.size();
    }

private:
    Descriptor handle_;
};

bool makeFolder(const fs::path& folder) {
    std::error_code fault;
    fs::create_directories(folder, fault);
    return fs::is_directory(folder, fault);
}

/// A file there before keeps its rights as far as the mask goes.
bool writeWhole(const fs::path& path, std::string_view bytes, mode_t fresh, mode_t mask) {
    std::error_code fault;
    fs::path target = path;
    if (fs::is_symlink(path, fault)) {
        target = fs::weakly_canonical(path, fault);
        if (fault)
            return false;
    }
    const fs::path folder = folderOf(target);
    if (!makeFolder(folder))
        return false;
    TemporaryFile temporary(folder, fresh);
    if (!temporary.handle())
        return false;
    struct stat existing {};
    if (::stat(target.c_str(), &existing) == 0)
        std::ignore =
            ::fchmod(temporary.handle().get(), existing.st_mode & mask); // where the disk knows modes
    if (!temporary.fill(bytes) || !temporary.handle().close() || !temporary.renameOver(target))
        return false;
    syncFolder(folder);
    return true;
}

} // namespace

std::optional<std::string> LinuxFiles::read(const fs::path& path) {
    return readBeginning(path, std::numeric_limits<std::size_t>::max());
}

std::optional<std::string> LinuxFiles::readBeginning(const fs::path& path, std::size_t most) {
    const Descriptor file(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    struct stat status {};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return std::nullopt;
    std::string content;
    content.reserve(std::min(static_cast<std::size_t>(status.st_size), most));
    std::array<char, 65536> piece{};
    for (;;) {
        const ssize_t got = ::read(file.get(), piece.data(), std::min(piece.size(), most - content.size()));
        if (got == 0)
            return content;
        if (got > 0)
            content.append(piece.data(), static_cast<std::size_t>(got));
        else if (errno != EINTR)
            return std::nullopt;
    }
}

bool LinuxFiles::writeAtomically(const fs::path& path, std::string_view bytes) {
    return writeWhole(path, bytes, usersAlone, 0700);
}

bool LinuxFiles::writeDocument(const fs::path& path, std::string_view bytes) {
    return writeWhole(path, bytes, usersUsual, 07777);
}

std::unique_ptr<ports::AppendFile> LinuxFiles::create(const fs::path& path, std::string_view bytes) {
    const fs::path folder = folderOf(path);
    if (!makeFolder(folder))
        return nullptr;
    TemporaryFile temporary(folder, usersAlone);
    if (!temporary.fill(bytes))
        return nullptr;
    Descriptor handle;
    switch (temporary.placeAt(path)) {
    case TemporaryFile::Placing::done: handle = std::move(temporary.handle()); break;
    case TemporaryFile::Placing::taken: return nullptr;
    case TemporaryFile::Placing::impossible:
        handle =
            Descriptor(::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_EXCL | O_CLOEXEC, usersAlone));
        if (!handle)
            return nullptr;
        if (!writeFully(handle.get(), bytes) || !syncFile(handle.get())) {
            ::unlink(path.c_str());
            return nullptr;
        }
    }
    syncFolder(folder);
    return std::make_unique<LinuxAppendFile>(std::move(handle));
}

std::unique_ptr<ports::AppendFile> LinuxFiles::openForAppending(const fs::path& path) {
    if (!makeFolder(folderOf(path)))
        return nullptr;
    Descriptor handle(
        ::open(path.c_str(), O_WRONLY | O_APPEND | O_CREAT | O_NONBLOCK | O_NOCTTY | O_CLOEXEC, usersAlone));
    struct stat status {};
    if (!handle || ::fstat(handle.get(), &status) != 0 || !S_ISREG(status.st_mode))
        return nullptr;
    return std::make_unique<LinuxAppendFile>(std::move(handle));
}

std::vector<std::string> LinuxFiles::namesIn(const fs::path& folder) {
    std::vector<std::string> names;
    std::error_code fault;
    for (fs::directory_iterator at(folder, fault), end; !fault && at != end; at.increment(fault)) {
        std::error_code unknown;
        if (at->is_regular_file(unknown))
            names.push_back(at->path().filename());
    }
    std::ranges::sort(names);
    return names;
}

bool LinuxFiles::exists(const fs::path& path) {
    struct stat status {};
    return ::stat(path.c_str(), &status) == 0 || (errno != ENOENT && errno != ENOTDIR);
}

void LinuxFiles::remove(const fs::path& path) {
    ::unlink(path.c_str());
}

} // namespace zenka::platform

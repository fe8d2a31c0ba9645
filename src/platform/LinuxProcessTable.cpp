#include "platform/LinuxProcessTable.h"

#include "base/Text.h"
#include "platform/LinuxFiles.h"
#include "platform/ProcessHandle.h"

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <fcntl.h>
#include <poll.h>
#include <sys/stat.h>
#include <utility>

namespace zenka::platform {

namespace {

namespace fs = std::filesystem;

/// The kernel cuts the name that it keeps of a program here.
constexpr std::size_t keptNameLength = 15;

std::optional<std::vector<int>> processIds(const fs::path& root) {
    std::error_code fault;
    std::vector<int> ids;
    for (fs::directory_iterator entry(root, fault), end; !fault && entry != end; entry.increment(fault))
        if (const auto id = base::readInteger(entry->path().filename().native()); id && *id > 0)
            ids.push_back(*id);
    if (fault)
        return std::nullopt;
    std::ranges::sort(ids);
    return ids;
}

/// The value of one line "Key:\tvalue".
std::string_view statusValue(std::string_view status, std::string_view key) {
    for (const std::string_view line : base::splitPieces(status, '\n'))
        if (line.starts_with(key) && line.substr(key.size()).starts_with(":\t"))
            return line.substr(key.size() + 2);
    return {};
}

/// A program's whole name, which begins with what the kernel kept of it. The executable's file tells it,
/// and where that may not be looked at, or is an interpreter, the command line.
std::string wholeName(const fs::path& process, const std::string& kept) {
    if (kept.size() < keptNameLength)
        return kept;
    std::error_code fault;
    std::string executable = fs::read_symlink(process / "exe", fault).filename();
    constexpr std::string_view deleted = " (deleted)";
    if (executable.ends_with(deleted))
        executable.resize(executable.size() - deleted.size());
    if (executable.starts_with(kept))
        return executable;
    const std::string commandLine = LinuxFiles().read(process / "cmdline").value_or("");
    for (const std::string_view word : base::splitPieces(commandLine, '\0'))
        if (std::string name = fs::path(word).filename(); name.starts_with(kept))
            return name;
    return kept;
}

/// What a path leads to. Servers are not asked: one that is gone would keep the scan waiting.
struct FileIdentity {
    bool isCharacterDevice = false;
    std::pair<unsigned, unsigned> device;
    std::pair<unsigned, unsigned> disk;
    std::uint64_t inode = 0;

    bool operator==(const FileIdentity& other) const {
        // one device can have nodes on several file systems, as in a container
        if (isCharacterDevice && other.isCharacterDevice)
            return device == other.device;
        return disk == other.disk && inode == other.inode;
    }
};

/// Nothing with errno set.
std::optional<FileIdentity> identityOf(const fs::path& path) {
    struct statx found {};
    if (::statx(AT_FDCWD, path.c_str(), AT_STATX_DONT_SYNC | AT_NO_AUTOMOUNT, STATX_TYPE | STATX_INO,
                &found) != 0)
        return std::nullopt;
    return FileIdentity{.isCharacterDevice = S_ISCHR(found.stx_mode),
                        .device = {found.stx_rdev_major, found.stx_rdev_minor},
                        .disk = {found.stx_dev_major, found.stx_dev_minor},
                        .inode = found.stx_ino};
}

bool holds(const fs::path& process, const FileIdentity& file) {
    std::error_code fault;
    for (fs::directory_iterator entry(process / "fd", fault), end; !fault && entry != end;
         entry.increment(fault))
        if (identityOf(entry->path()) == file)
            return true;
    return false;
}

} // namespace

LinuxProcessTable::LinuxProcessTable(fs::path root) : root_(std::move(root)) {
}

std::optional<ports::RunningProcess> LinuxProcessTable::look(int id) const {
    const fs::path process = root_ / std::to_string(id);
    const auto status = LinuxFiles().read(process / "status");
    if (!status || statusValue(*status, "State").starts_with('Z'))
        return std::nullopt;
    // the first of its four user ids is that of who started it
    const std::string_view users = statusValue(*status, "Uid");
    return ports::RunningProcess{.id = id,
                                 .name = wholeName(process, std::string(statusValue(*status, "Name"))),
                                 .mine = users.substr(0, users.find('\t')) == std::to_string(::getuid())};
}

std::optional<std::vector<ports::RunningProcess>> LinuxProcessTable::running() {
    const auto ids = processIds(root_);
    if (!ids)
        return std::nullopt;
    std::vector<ports::RunningProcess> found;
    for (const int id : *ids)
        if (auto process = look(id))
            found.push_back(*std::move(process));
    return found;
}

std::optional<std::vector<ports::RunningProcess>> LinuxProcessTable::holdersOf(const fs::path& file) {
    const auto ids = processIds(root_);
    const auto identity = identityOf(file);
    const bool missing = !identity && (errno == ENOENT || errno == ENOTDIR);
    if (!ids || (!identity && !missing))
        return std::nullopt;
    std::vector<ports::RunningProcess> holders;
    for (const int id : *ids) {
        if (missing || id == ::getpid() || !holds(root_ / std::to_string(id), *identity))
            continue;
        if (auto process = look(id))
            holders.push_back(*std::move(process));
    }
    return holders;
}

bool LinuxProcessTable::end(int id) {
    if (id <= 0 || id == ::getpid())
        return false;
    const Descriptor process = openProcess(id);
    if (!process)
        return false;
    const auto seen = look(id);
    // while it has not ended, nobody else can have its id: so it was this one that was looked at
    pollfd ending{process.get(), POLLIN, 0};
    if (!seen || !seen->mine || ::poll(&ending, 1, 0) != 0)
        return false;
    return sendSignal(process, SIGKILL);
}

} // namespace zenka::platform

#pragma once

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <fcntl.h>
#include <filesystem>
#include <poll.h>
#include <stdexcept>
#include <string>
#include <string_view>
#include <sys/ioctl.h>
#include <system_error>
#include <termios.h>
#include <unistd.h>

namespace zenka::test {

/// A serial device made of a pseudo-terminal: a link of its name in a folder leads to it. The program under
/// test has that folder for /dev. Unplugged with its object.
class PtyPort {
public:
    PtyPort(const std::filesystem::path& folder, const std::string& name)
        : link_(folder / name), master_(::posix_openpt(O_RDWR | O_NOCTTY | O_CLOEXEC)) {
        std::array<char, 128> path{};
        if (master_ < 0 || ::grantpt(master_) != 0 || ::unlockpt(master_) != 0 ||
            ::ptsname_r(master_, path.data(), path.size()) != 0)
            throw std::runtime_error("no pseudo-terminal");
        // Nothing echoes, and the system knows of a device that is closed only after its first opening.
        const int device = ::open(path.data(), O_RDWR | O_NOCTTY | O_CLOEXEC);
        termios settings{};
        ::tcgetattr(device, &settings);
        ::cfmakeraw(&settings);
        ::tcsetattr(device, TCSANOW, &settings);
        ::close(device);
        std::filesystem::remove(link_);
        std::filesystem::create_symlink(path.data(), link_);
    }
    PtyPort(const PtyPort&) = delete;
    PtyPort& operator=(const PtyPort&) = delete;
    ~PtyPort() { unplug(); }

    const std::filesystem::path& path() const { return link_; }

    void write(std::string_view bytes) const {
        while (!bytes.empty()) {
            const ssize_t written = ::write(master_, bytes.data(), bytes.size());
            if (written < 0 && errno != EINTR && errno != EAGAIN)
                throw std::runtime_error("the pseudo-terminal takes nothing");
            bytes.remove_prefix(static_cast<std::size_t>(std::max<ssize_t>(written, 0)));
        }
    }

    /// Whether somebody has the device open.
    bool isOpen() const {
        pollfd asked{.fd = master_, .events = 0, .revents = 0};
        return ::poll(&asked, 1, 0) >= 0 && (asked.revents & POLLHUP) == 0;
    }

    /// Whether somebody has it for himself: the last that the program does before it reads, and after it has
    /// thrown away what came before.
    bool isTaken() const {
        const int device = ::open(link_.c_str(), O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC);
        if (device < 0)
            return errno == EBUSY;
        int exclusive = 0; // for root, whom that mode does not keep out
        ::ioctl(device, TIOCGEXCL, &exclusive);
        ::close(device);
        return exclusive != 0;
    }

    void unplug() {
        if (master_ < 0)
            return;
        std::error_code ignored;
        std::filesystem::remove(link_, ignored);
        ::close(master_);
        master_ = -1;
    }

private:
    const std::filesystem::path link_;
    int master_ = -1;
};

} // namespace zenka::test

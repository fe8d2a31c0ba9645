#include "platform/LinuxSerialPorts.h"

#include "platform/Descriptor.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <fcntl.h>
#include <grp.h>
#include <poll.h>
#include <string_view>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <system_error>
#include <termios.h>
#include <tuple>
#include <unistd.h>
#include <utility>

namespace zenka::platform {

namespace {

constexpr const char* inUse = "another program is using it";

std::string systemWords(int error) {
    return std::system_category().message(error);
}

/// The group that a device belongs to, which on most systems may read it.
std::string groupOf(const std::string& path) {
    struct stat status {};
    std::array<char, 1024> space{};
    group entry{};
    group* found = nullptr;
    if (::stat(path.c_str(), &status) == 0 &&
        ::getgrgid_r(status.st_gid, &entry, space.data(), space.size(), &found) == 0 && found != nullptr &&
        std::string_view(found->gr_name) != "root")
        return found->gr_name;
    return "dialout";
}

std::string openFault(int error, const std::string& path) {
    switch (error) {
    case EBUSY: return inUse;
    case ENOENT:
    case ENODEV:
    case ENXIO: return "it is not there";
    case EACCES:
    case EPERM:
        return absl::StrFormat(
            "this user may not read it; \"sudo usermod -aG %s $USER\" and a new login let you",
            groupOf(path));
    default: return systemWords(error);
    }
}

std::optional<speed_t> speedOf(int baud) {
    switch (baud) {
    case 4800: return B4800;
    case 9600: return B9600;
    case 19200: return B19200;
    case 38400: return B38400;
    case 57600: return B57600;
    case 115200: return B115200;
    default: return std::nullopt;
    }
}

/// Raw bytes, 8 bits, no parity, one stop bit, no carrier awaited. False with errno set.
bool setUp(int line, speed_t speed) {
    termios settings{};
    if (::tcgetattr(line, &settings) != 0)
        return false;
    ::cfmakeraw(&settings);
    settings.c_cflag &= ~static_cast<tcflag_t>(CSTOPB | CRTSCTS | HUPCL);
    settings.c_cflag |= static_cast<tcflag_t>(CREAD | CLOCAL);
    // With at least one byte asked for, a read of none means that the device is gone.
    settings.c_cc[VMIN] = 1;
    settings.c_cc[VTIME] = 0;
    ::cfsetispeed(&settings, speed);
    ::cfsetospeed(&settings, speed);
    return ::tcsetattr(line, TCSANOW, &settings) == 0 && ::tcflush(line, TCIFLUSH) == 0;
}

class LinuxSerialLine final : public ports::SerialLine {
public:
    explicit LinuxSerialLine(Descriptor line) : line_(std::move(line)) {}
    LinuxSerialLine(const LinuxSerialLine&) = delete;
    LinuxSerialLine& operator=(const LinuxSerialLine&) = delete;
    // The mode would outlive this descriptor where another one is open still.
    ~LinuxSerialLine() override { ::ioctl(line_.get(), TIOCNXCL); }

    Reading read(base::Seconds limit) override {
        constexpr double longestMs = 60'000;
        const int waitMs = static_cast<int>(std::clamp(std::ceil(limit.count() * 1e3), 0.0, longestMs));
        pollfd wanted{.fd = line_.get(), .events = POLLIN, .revents = 0};
        const int ready = ::poll(&wanted, 1, waitMs);
        if (ready <= 0)
            return {.bytes = {}, .gone = ready < 0 && errno != EINTR};
        std::array<char, 512> bytes{};
        const ssize_t got = ::read(line_.get(), bytes.data(), bytes.size());
        if (got > 0)
            return {.bytes = std::string(bytes.data(), static_cast<std::size_t>(got)), .gone = false};
        const bool nothingYet = got < 0 && (errno == EAGAIN || errno == EINTR);
        return {.bytes = {}, .gone = !nothingYet || (wanted.revents & (POLLHUP | POLLERR | POLLNVAL)) != 0};
    }

private:
    const Descriptor line_;
};

} // namespace

LinuxSerialPorts::LinuxSerialPorts(std::filesystem::path folder) : folder_(std::move(folder)) {
}

std::vector<std::string> LinuxSerialPorts::candidates() {
    namespace fs = std::filesystem;
    std::vector<std::string> names;
    std::error_code fault;
    for (fs::directory_iterator at(folder_, fault), end; !fault && at != end; at.increment(fault))
        if (std::string name = at->path().filename();
            name.starts_with("ttyACM") || name.starts_with("ttyUSB"))
            names.push_back(std::move(name));
    constexpr std::size_t kindLength = 6;
    const auto place = [](const std::string& name) {
        return std::tuple(name.substr(0, kindLength), name.size(), name); // the longer number is the higher
    };
    std::ranges::sort(names, {}, place);
    for (std::string& name : names)
        name = folder_ / name;
    return names;
}

ports::SerialPorts::Opened LinuxSerialPorts::open(const std::string& path, int baud) {
    const auto refused = [](std::string why) { return Opened{.line = nullptr, .fault = std::move(why)}; };
    const auto speed = speedOf(baud);
    if (!speed)
        return refused(absl::StrFormat("%d baud is no speed of a line", baud));
    // Looked for before the opening, which may itself disturb the other one.
    if (const auto holders = processes_.holdersOf(path); holders && !holders->empty())
        return refused(absl::StrFormat("%s (%s)", inUse, holders->front().name));

    Descriptor line(::open(path.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
    if (!line)
        return refused(openFault(errno, path));
    if (::isatty(line.get()) == 0)
        return refused("it is no serial line");
    int exclusive = 0; // for root, whom that mode does not keep out
    if (::flock(line.get(), LOCK_EX | LOCK_NB) != 0 ||
        (::ioctl(line.get(), TIOCGEXCL, &exclusive) == 0 && exclusive != 0))
        return refused(inUse);
    if (!setUp(line.get(), *speed))
        return refused("it cannot be set up: " + systemWords(errno));
    ::ioctl(line.get(), TIOCEXCL);
    return {.line = std::make_unique<LinuxSerialLine>(std::move(line)), .fault = {}};
}

} // namespace zenka::platform

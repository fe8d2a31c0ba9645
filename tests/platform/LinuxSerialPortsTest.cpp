#include "platform/LinuxSerialPorts.h"

#include "gps/GPSReceiver.h"
#include "platform/Descriptor.h"
#include "platform/LinuxClock.h"
#include "platform/ThreadWorkQueues.h"
#include "platform/Waiting.h"
#include "support/Child.h"
#include "support/NmeaReplay.h"
#include "support/PtyPort.h"
#include "support/TempFolder.h"

#include <gmock/gmock.h>

#include <fcntl.h>
#include <fstream>
#include <mutex>
#include <sys/file.h>
#include <sys/ioctl.h>
#include <sys/stat.h>
#include <termios.h>

namespace zenka::platform {
namespace {

using base::Seconds;
using test::PtyPort;
using test::TempFolder;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace fs = std::filesystem;

/// What a receiver said, from its own thread.
class Heard {
public:
    gps::GPSReceiver::Listener listener() {
        return {
            .onUpdate = [this](const gps::GPSFix& fix,
                               std::optional<base::Instant> wall) { add(test::fixLine(fix, bool(wall))); },
            .onConnectionChange = [this](bool connected) { add(connected ? "connected" : "lost"); },
            .onPassedOver = [this](const std::string& why) { add(why); }};
    }
    std::vector<std::string> lines() {
        const std::lock_guard lock(mutex_);
        return lines_;
    }

private:
    void add(std::string line) {
        const std::lock_guard lock(mutex_);
        lines_.push_back(std::move(line));
    }
    std::mutex mutex_;
    std::vector<std::string> lines_;
};

class LinuxSerialPortsTest : public testing::Test {
protected:
    std::string faultOf(const fs::path& path) {
        const auto opened = ports.open(path, 9600);
        EXPECT_EQ(opened.line == nullptr, !opened.fault.empty());
        return opened.fault;
    }

    const TempFolder folder;
    LinuxSerialPorts ports{folder.path()};
};

TEST_F(LinuxSerialPortsTest, candidatesAreTheUsbSerialDevicesInNaturalOrder) {
    for (const char* name :
         {"ttyUSB10", "ttyUSB2", "ttyS0", "ttyACM1", "tty", "xttyUSB0", "ttyUSB0", "ttyACM0"})
        std::ofstream(folder.path() / name) << "";
    std::vector<std::string> names;
    for (const std::string& path : ports.candidates())
        names.push_back(fs::path(path).filename());
    EXPECT_THAT(names, ElementsAre("ttyACM0", "ttyACM1", "ttyUSB0", "ttyUSB2", "ttyUSB10"));
    EXPECT_THAT(LinuxSerialPorts(folder.path() / "missing").candidates(), IsEmpty());
}

TEST_F(LinuxSerialPortsTest, aLineIsRawAndReadsWhatComesWithinTheLimit) {
    PtyPort port(folder.path(), "ttyACM0");
    port.write("old bytes, from before anyone listened\n");
    auto opened = ports.open(port.path(), 9600);
    ASSERT_TRUE(opened.line) << opened.fault;
    const auto begin = std::chrono::steady_clock::now();
    EXPECT_EQ(opened.line->read(Seconds{0.05}).bytes, "");
    const Seconds waited = std::chrono::steady_clock::now() - begin;
    EXPECT_GE(waited.count(), 0.049);

    const std::string raw = "\x03\x04\x11\r\n\xff $G" + std::string(3, '\0');
    port.write(raw);
    EXPECT_EQ(opened.line->read(Seconds{5}).bytes, raw);
    port.write(std::string(700, 'x'));
    EXPECT_EQ(opened.line->read(Seconds{5}).bytes.size(), 512U);
    EXPECT_EQ(opened.line->read(Seconds{5}).bytes.size(), 188U);

    port.write("last");
    port.unplug();
    auto reading = opened.line->read(Seconds{5});
    for (int times = 0; times < 3 && !reading.gone; ++times)
        reading = opened.line->read(Seconds{5});
    EXPECT_TRUE(reading.gone);
    EXPECT_TRUE(opened.line->read(Seconds{5}).gone) << "and remains so";
}

TEST_F(LinuxSerialPortsTest, aDeviceThatSomebodyElseHasIsLeftAlone) {
    const PtyPort port(folder.path(), "ttyUSB0");
    const auto openIt = [&] { return ::open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC); };

    Descriptor other(openIt());
    ASSERT_EQ(::flock(other.get(), LOCK_EX | LOCK_NB), 0);
    EXPECT_EQ(faultOf(port.path()), "another program is using it");
    ASSERT_EQ(::flock(other.get(), LOCK_UN), 0);
    ASSERT_EQ(::ioctl(other.get(), TIOCEXCL), 0);
    EXPECT_EQ(faultOf(port.path()), "another program is using it");
    ASSERT_EQ(::ioctl(other.get(), TIOCNXCL), 0);
    other.close();

    // One that takes no lock at all, and whose settings are not touched.
    test::Child reader(
        {"sh", "-c", "stty 57600 <\"$0\"; exec 3<\"$0\"; echo open; exec sleep 60", port.path()});
    ASSERT_EQ(reader.readLine(), "open");
    EXPECT_THAT(faultOf(port.path()), HasSubstr("another program is using it (s"));
    const Descriptor look(openIt());
    termios settings{};
    ASSERT_EQ(::tcgetattr(look.get(), &settings), 0);
    EXPECT_EQ(::cfgetispeed(&settings), speed_t{B57600});
}

TEST_F(LinuxSerialPortsTest, aLineIsLockedAsLongAsItIsOpen) {
    const PtyPort port(folder.path(), "ttyUSB0");
    const Descriptor look(::open(port.path().c_str(), O_RDWR | O_NOCTTY | O_CLOEXEC));
    const auto exclusive = [&] {
        int is = -1;
        return ::ioctl(look.get(), TIOCGEXCL, &is) == 0 && is == 1;
    };
    auto opened = ports.open(port.path(), 9600);
    ASSERT_TRUE(opened.line) << opened.fault;
    EXPECT_TRUE(exclusive());
    EXPECT_NE(::flock(look.get(), LOCK_EX | LOCK_NB), 0);
    opened.line.reset();
    EXPECT_FALSE(exclusive());
    EXPECT_EQ(::flock(look.get(), LOCK_EX | LOCK_NB), 0);
    termios settings{};
    ASSERT_EQ(::tcgetattr(look.get(), &settings), 0);
    EXPECT_EQ(settings.c_cflag & HUPCL, 0U) << "DTR would fall, and rise at each look";
}

TEST_F(LinuxSerialPortsTest, whatCannotBeOpenedIsToldInPlainWords) {
    std::ofstream(folder.path() / "ttyUSB0") << "a file";
    EXPECT_EQ(faultOf(folder.path() / "ttyUSB0"), "it is no serial line");
    EXPECT_EQ(faultOf(folder.path() / "ttyUSB1"), "it is not there");
    EXPECT_EQ(ports.open(folder.path() / "ttyUSB0", 1234).fault, "1234 baud is no speed of a line");

    fs::permissions(folder.path(), fs::perms::others_exec | fs::perms::owner_all);
    fs::permissions(folder.path() / "ttyUSB0", fs::perms::none);
    constexpr uid_t nobody = 65534;
    const bool root = ::geteuid() == 0;
    ASSERT_TRUE(!root || ::seteuid(nobody) == 0);
    const std::string fault = faultOf(folder.path() / "ttyUSB0");
    // The group of the file; the group of root is to be joined by nobody.
    EXPECT_THAT(fault, HasSubstr(root ? "usermod -aG dialout $USER" : "sudo usermod -aG "));
    EXPECT_THAT(fault, HasSubstr("$USER\" and a new login let you"));
    ASSERT_TRUE(!root || ::seteuid(0) == 0);
}

TEST_F(LinuxSerialPortsTest, aReceiverOnARealLineGivesTheFixesOfEachStream) {
    for (const auto& stream : test::nmeaStreams()) {
        SCOPED_TRACE(stream.name);
        Heard heard;
        {
            LinuxClock clock;
            ThreadWorkQueues queues;
            test::InlineLoop loop;
            PtyPort port(folder.path(), "ttyACM0");
            gps::GPSReceiver receiver(ports, queues, loop, clock);
            receiver.start(heard.listener());
            ASSERT_TRUE(test::serveUntil([&] { return port.isTaken(); }));
            constexpr std::size_t piece = 333;
            for (std::size_t at = 0; at < stream.bytes.size(); at += piece) {
                port.write(std::string_view(stream.bytes).substr(at, piece));
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            ASSERT_TRUE(test::serveUntil([&] { return heard.lines().size() > stream.fixes.size(); }));
            port.unplug();
            ASSERT_TRUE(test::serveUntil([&] { return heard.lines().back() == "lost"; }));
        }
        std::vector<std::string> expected{"connected"};
        expected.insert(expected.end(), stream.fixes.begin(), stream.fixes.end());
        expected.emplace_back("lost");
        EXPECT_EQ(heard.lines(), expected);
    }
}

TEST_F(LinuxSerialPortsTest, theEndOfTheProgramWaitsForOneReadAtMost) {
    LinuxClock clock;
    test::InlineLoop loop;
    const PtyPort port(folder.path(), "ttyACM0");
    Heard heard;
    auto queues = std::make_unique<ThreadWorkQueues>();
    auto receiver = std::make_unique<gps::GPSReceiver>(ports, *queues, loop, clock);
    receiver->start(heard.listener());
    ASSERT_TRUE(test::serveUntil([&] { return port.isOpen(); }));
    const auto begin = std::chrono::steady_clock::now();
    receiver.reset();
    queues.reset();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(2)); // the probe alone has 2.5 s
    EXPECT_FALSE(port.isOpen());
}

} // namespace
} // namespace zenka::platform

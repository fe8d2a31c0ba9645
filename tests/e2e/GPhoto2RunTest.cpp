// A whole rig on the real machine with gphoto2 bodies, each a process of its own.
#include "base/CivilTime.h"
#include "base/Text.h"
#include "platform/LinuxPorts.h"
#include "platform/Waiting.h"
#include "platform/virtual/VirtualMachine.h"
#include "rig/GPhoto2Family.h"
#include "rig/RigModel.h"
#include "support/Child.h"
#include "support/ScriptedUsb.h"
#include "support/TempFolder.h"
#include "support/TestFolders.h"

#include <QCoreApplication>
#include <absl/strings/str_format.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <mutex>
#include <optional>

using namespace zenka;
namespace fs = std::filesystem;
using test::serveUntil;
using testing::Contains;

namespace {

std::string textOf(const fs::path& path) {
    std::ifstream file(path);
    return {std::istreambuf_iterator<char>(file), {}};
}

std::ptrdiff_t entriesOf(const char* folder) {
    return std::distance(fs::directory_iterator(folder), {});
}

/// A bus that is looked at from other threads while a test changes it.
class SharedBus final : public ports::UsbBus {
public:
    std::optional<std::vector<ports::UsbDevice>> devices() override {
        const std::lock_guard lock(mutex_);
        return devices_;
    }
    void watch(std::function<void()>) override {}
    void set(std::vector<ports::UsbDevice> devices) {
        const std::lock_guard lock(mutex_);
        devices_ = std::move(devices);
    }

private:
    std::mutex mutex_;
    std::vector<ports::UsbDevice> devices_;
};

/// The program's own composition, but for a bus that a test plugs bodies in.
struct Rig {
    explicit Rig(const fs::path& root) : folders(root / "home") {
        program.emplace(cameras::GPhoto2Machine{.children = machine.children,
                                                .daemons = daemons,
                                                .queues = machine.queues,
                                                .loop = machine.loop,
                                                .clock = machine.clock,
                                                .settings = settings,
                                                .folders = folders,
                                                .files = machine.files,
                                                .programFolder = root / "bin"});
        model.emplace(machine.all, "9.9",
                      rig::CameraDetector::Families{std::make_shared<rig::GPhoto2Family>(*program, bus)});
        model->log().lineAdded().connect([this](const std::string& line) { lines.push_back(line); });
        model->site().choose("2100-09-04", model->site().site());
        model->recompute();
        model->fireClock().startClock();
    }

    bool logged(const std::string& part) const {
        return std::ranges::any_of(
            lines, [&](const std::string& line) { return line.find(part) != std::string::npos; });
    }

    platform::MemorySettings settings;
    test::FoldersBelow folders;
    SharedBus bus;
    test::ScriptedProcessTable processes; // no desktop service is ended by a test
    platform::LinuxPorts machine{settings, folders};
    cameras::CameraDaemons daemons{processes, machine.queues};
    std::optional<cameras::GPhoto2Program> program;
    std::vector<std::string> lines;
    std::optional<rig::RigModel> model;
};

struct GPhoto2RunTest : testing::Test {
    test::TempFolder made;
    const fs::path& root = made.path();
    std::vector<std::string> bodies; ///< as the fake reads them
    std::vector<ports::UsbDevice> plugged;
    int argumentCount = 1;
    std::string name = "test";
    std::array<char*, 2> arguments{name.data(), nullptr};
    std::optional<QCoreApplication> application;
    std::ptrdiff_t threadsBefore = 0;
    std::ptrdiff_t filesBefore = 0;
    std::optional<Rig> rig;

    void SetUp() override {
        ::setenv("FAKE_GPHOTO2", "rig", 1);
        ::setenv("FAKE_GPHOTO2_RIG", root.c_str(), 1);
        ::setenv("DBUS_SESSION_BUS_ADDRESS", "unix:path=/nowhere", 1);
        ::setenv("DBUS_SYSTEM_BUS_ADDRESS", "unix:path=/nowhere", 1);
        const fs::path bundle = root / "lib/zenka/gphoto2/bin";
        fs::create_directories(bundle);
        fs::create_symlink(ZENKA_SOURCE_DIR "/tests/support/fake_gphoto2", bundle / "gphoto2");
        application.emplace(argumentCount, arguments.data());
        Rig(root).machine.keepAwake.hold("a test"); // Qt's thread for D-Bus stays
        threadsBefore = entriesOf("/proc/self/task");
        filesBefore = entriesOf("/proc/self/fd");
        rig.emplace(root);
    }

    void TearDown() override {
        quit();
        for (const char* variable :
             {"FAKE_GPHOTO2", "FAKE_GPHOTO2_RIG", "DBUS_SESSION_BUS_ADDRESS", "DBUS_SYSTEM_BUS_ADDRESS"})
            ::unsetenv(variable);
    }

    /// The end of the program: it leaves nothing behind.
    void quit() {
        if (!rig)
            return;
        rig->model->handleAppWillTerminate();
        rig.reset();
        EXPECT_TRUE(test::childless()) << "a child or a zombie is left";
        EXPECT_EQ(entriesOf("/proc/self/task"), threadsBefore);
        EXPECT_EQ(entriesOf("/proc/self/fd"), filesBefore);
    }

    void plugIn(const std::string& listedAs, const std::string& product, int address,
                const std::string& serial, const std::string& behaviour = "ok") {
        bodies.push_back(absl::StrFormat("%s|usb:001,%03d|%s", listedAs, address, behaviour));
        plugged.push_back({.product = product,
                           .vendor = "Nikon",
                           .serial = serial,
                           .vid = 0x04b0,
                           .busNumber = 1,
                           .address = address});
        tell();
    }
    void pull(const std::string& serial) {
        const auto device = std::ranges::find(plugged, serial, &ports::UsbDevice::serial);
        bodies.erase(bodies.begin() + (device - plugged.begin()));
        plugged.erase(device);
        tell();
    }
    void tell() {
        std::string list;
        for (const std::string& body : bodies)
            list += body + "\n";
        std::ofstream(root / "bodies.new") << list;
        fs::rename(root / "bodies.new", root / "bodies");
        rig->bus.set(plugged);
    }

    void serveFor(double seconds) {
        const double end = rig->machine.clock.continuousSeconds() + seconds;
        serveUntil([&] { return rig->machine.clock.continuousSeconds() >= end; });
    }

    bool detect() {
        rig->model->detector().detectCameras();
        return serveUntil([&] { return !rig->model->detector().detecting().get(); });
    }

    struct Sent {
        std::string port;
        int process = 0;
        std::string command;
    };
    std::vector<Sent> sentTo(const std::string& port) const {
        std::vector<Sent> list;
        const std::string text = textOf(root / "sent");
        for (const std::string_view line : base::splitPieces(text, '\n')) {
            const auto words = base::split(line, ' ');
            if (words[0] == port)
                list.push_back({.port = port,
                                .process = base::readInteger(words[1]).value_or(0),
                                .command = std::string(line.substr(words[0].size() + words[1].size() + 2))});
        }
        return list;
    }
    std::ptrdiff_t shots(const std::string& port) const {
        return std::ranges::count(sentTo(port), "trigger-capture", &Sent::command);
    }

    /// Frames on each body again and again, in a live run that begins in a moment.
    void run(const std::vector<std::string>& tokens, int frames, double intervalSec) {
        const base::Instant first = rig->machine.clock.now() + base::Seconds{2};
        const std::string when = base::formatTime("%Y-%m-%d %H:%M:%S", first, absl::UTCTimeZone());
        std::string script = absl::StrFormat("FOR,(INTERVALOMETER),0,%g,%d\n", intervalSec, frames);
        for (const std::string& token : tokens)
            script += "TAKEPIC,A " + when + ",+,00:00," + token + ",1/500,8.0,200,0.000,RAW,None,N,live\n";
        rig->model->script().load(script + "ENDFOR\n", "live");
        rig->model->script().compile();
        rig->model->transport().armRealEclipseTiming(true);
    }

    /// The rows of the only run log that have these words.
    std::ptrdiff_t rows(const std::vector<std::string>& words) const {
        std::string csv;
        for (const auto& file : fs::recursive_directory_iterator(root / "home"))
            if (file.path().extension() == ".csv")
                csv = textOf(file.path());
        return std::ranges::count_if(base::splitPieces(csv, '\n'), [&](std::string_view row) {
            return std::ranges::all_of(words,
                                       [row](const std::string& word) { return row.find(word) != row.npos; });
        });
    }
};

} // namespace

// One of three bodies never gives a prompt. Another is pulled in the run, its process killed, and it is
// plugged in elsewhere. The third fires each of its frames. Each frame of each body has its row.
TEST_F(GPhoto2RunTest, aBodyThatIsKilledInARunIsFoundAgainWhileTheOthersGoOn) {
    plugIn("Nikon DSC D750", "NIKON DSC D750", 4, "6001");
    plugIn("USB PTP Class Camera", "NIKON DSC Z 8", 5, "6002");
    plugIn("Nikon DSC D850", "NIKON DSC D850", 6, "6003", "silent");
    const std::string left = "LEFT, \"wide\"";
    rig->model->roster().setLabelOfSerial("6001", left);
    rig->model->roster().setLabelOfSerial("6002", "TELE");
    ASSERT_TRUE(detect());
    EXPECT_TRUE(rig->logged("Detected 3: " + left + " (gphoto2), TELE (gphoto2), Nikon DSC D850 (gphoto2)."))
        << testing::PrintToString(rig->lines);
    const std::string old = "usb:001,005";
    ASSERT_TRUE(serveUntil([&] { return !sentTo("usb:001,004").empty() && !sentTo(old).empty(); }));

    run({"LEFT", "TELE", "D850"}, 400, 0.25);
    ASSERT_TRUE(serveUntil([&] { return shots(old) >= 3; }));
    const int victim = sentTo(old).back().process;
    pull("6002");
    ASSERT_EQ(::kill(victim, SIGKILL), 0);
    ASSERT_TRUE(serveUntil([&] { return rig->logged("CAMERA DISCONNECTED: TELE"); }));
    EXPECT_EQ(rig->model->reconnect().downCams().size(), 1U);
    rig->model->reconnect().busChanged();
    serveFor(3.1); // it is asked first whether it ever left
    plugIn("USB PTP Class Camera", "NIKON DSC Z 8", 9, "6002");
    rig->model->reconnect().busChanged();
    ASSERT_TRUE(serveUntil([&] { return rig->logged("RECONNECTED TELE"); }));
    const std::string fresh = "usb:001,009";
    ASSERT_TRUE(serveUntil([&] { return shots(fresh) >= 2; })) << testing::PrintToString(rig->lines);
    std::vector<std::string> firstShot;
    for (const Sent& sent : sentTo(fresh)) {
        if (sent.command.starts_with("set-config-value ") && sent.command.find("/main/") == std::string::npos)
            firstShot.push_back(sent.command.substr(std::string("set-config-value ").size()));
        if (sent.command == "trigger-capture")
            break;
    }
    for (const char* setting : {"iso=200", "f-number=f/8", "shutterspeed2=1/500"})
        EXPECT_THAT(firstShot, Contains(setting));
    EXPECT_NE(sentTo(fresh).back().process, victim);
    rig->model->transport().useSimulatedTiming(); // the run is over
    serveFor(0.5);
    quit();

    const auto frames = rows({",LEFT,\"LEFT, \"\"wide\"\"\",6001,gphoto2,", ",ok,"});
    EXPECT_GT(frames, 8);
    EXPECT_EQ(rows({",LEFT,"}), frames);
    // The end of the run may have cancelled the staggered part of its last frame.
    const auto tele = rows({",TELE,TELE,6002,gphoto2,"});
    EXPECT_GE(tele, frames - 1);
    const auto lost = rows({",TELE,TELE,6002,gphoto2,", ",dropped,"});
    EXPECT_GT(lost, 3);
    EXPECT_EQ(rows({",TELE,TELE,6002,gphoto2,", ",ok,"}), tele - lost);
    // And its first frame waits for the prompt still.
    EXPECT_GE(rows({",D850,Nikon DSC D850,6003,gphoto2,", ",dropped,"}), frames - 2);
}

// A body that hangs when it is claimed holds up neither the next Detect nor the end of the program.
TEST_F(GPhoto2RunTest, aBodyThatHangsIsLetGoAtOnce) {
    plugIn("Nikon DSC D850", "NIKON DSC D850", 6, "6003", "silent");
    ASSERT_TRUE(detect());
    ASSERT_TRUE(serveUntil([&] { return !sentTo("usb:001,006").empty(); }));
    const auto begin = std::chrono::steady_clock::now();
    ASSERT_TRUE(detect());
    EXPECT_EQ(rig->model->roster().cameras().size(), 1U);
    quit();
    EXPECT_LT(std::chrono::steady_clock::now() - begin, std::chrono::seconds(10)); // its start has 12 s
}

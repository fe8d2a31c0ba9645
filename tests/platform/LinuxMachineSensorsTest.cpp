#include "platform/LinuxMachineSensors.h"

#include "base/Text.h"
#include "platform/TestBus.h"
#include "platform/virtual/VirtualTime.h"
#include "support/TempFolder.h"

#include <QDBusVariant>
#include <gmock/gmock.h>

#include <fstream>
#include <sys/statvfs.h>

namespace zenka::platform {
namespace {

using ports::MachineReading;
using ports::ThermalState;
using testing::ElementsAre;
using testing::IsEmpty;

namespace fs = std::filesystem;
using Files = std::vector<std::pair<std::string, std::string>>;

constexpr const char* noBus = "unix:path=/nowhere/at all";

class LinuxMachineSensorsTest : public testing::Test {
protected:
    /// Writes files below a folder of the tree, each with a line end as the kernel's have it.
    void put(const std::string& folder, const Files& files) {
        fs::create_directories(root.path() / folder);
        for (const auto& [name, text] : files) {
            fs::create_directories((root.path() / folder / name).parent_path());
            std::ofstream(root.path() / folder / name) << text << "\n";
        }
    }
    void supply(const std::string& name, const Files& files) { put("sys/class/power_supply/" + name, files); }
    void zone(int number, const Files& files) {
        put("sys/class/thermal/thermal_zone" + std::to_string(number), files);
    }
    void clear() { fs::remove_all(root.path() / "sys"); }

    MachineReading read() { return sensors.read(); }
    double freeGB() const {
        struct statvfs space {};
        EXPECT_EQ(::statvfs(root.path().c_str(), &space), 0);
        return static_cast<double>(space.f_bavail) * static_cast<double>(space.f_frsize) / 1e9;
    }

    const test::TempFolder root;
    VirtualTime time{base::Instant{1786554000}};
    LinuxMachineSensors sensors{time, {.root = root.path(), .home = root.path(), .systemBus = noBus}};
};

TEST_F(LinuxMachineSensorsTest, aMachineThatTellsNothingHasNothingButItsDisk) {
    // Others write to this disk meanwhile: what is free is between what it was before and after, or near it.
    const double before = freeGB();
    const MachineReading reading = read();
    const double after = freeGB();
    ASSERT_NE(reading.freeDiskGB, std::nullopt);
    EXPECT_GT(*reading.freeDiskGB, std::min(before, after) - 1);
    EXPECT_LT(*reading.freeDiskGB, std::max(before, after) + 1);
    EXPECT_EQ(reading, MachineReading{.freeDiskGB = reading.freeDiskGB});
    EXPECT_EQ(LinuxMachineSensors(time, {.root = root.path(), .home = "/nowhere", .systemBus = noBus})
                  .read()
                  .freeDiskGB,
              std::nullopt);
}

TEST_F(LinuxMachineSensorsTest, ticksAreSortedByWhatTheProcessorsDid) {
    put("proc", {{"stat", "cpu  100 20 30 400 50 6 7 8 90 9\ncpu0 1 2 3 4 5 6 7 8 9 10\nintr 1 2 3"}});
    EXPECT_EQ(read().ticks, (ports::ProcessorTicks{.user = 100, .sys = 51, .idle = 450, .nice = 20}));
    for (const char* odd : {"", "cpu", "cpu  1 2 3", "cpu  1 x 3 4", "cpu  1 -2 3 4", "cpu0 1 2 3 4 5"}) {
        put("proc", {{"stat", odd}});
        EXPECT_EQ(read().ticks, std::nullopt) << odd;
    }
}

TEST_F(LinuxMachineSensorsTest, aLaptopRunsOnWhatItsSupplyTells) {
    supply("AC", {{"type", "Mains"}, {"online", "1"}});
    supply("BAT0", {{"type", "Battery"}, {"present", "1"}, {"status", "Not charging"}, {"capacity", "79"}});
    supply("hidpp_battery_0",
           {{"type", "Battery"}, {"scope", "Device"}, {"status", "Discharging"}, {"capacity", "5"}});
    MachineReading reading = read();
    EXPECT_EQ(reading.onACPower, true);
    EXPECT_TRUE(reading.hasInternalBattery);
    EXPECT_EQ(reading.batteryPercent, 79);

    supply("AC", {{"online", "0"}});
    supply("BAT0", {{"status", "Discharging"}, {"capacity", "40"}});
    reading = read();
    EXPECT_EQ(reading.onACPower, false);
    EXPECT_EQ(reading.batteryPercent, 40);
    // an empty battery counts as well
    supply("BAT0", {{"capacity", "0"}});
    EXPECT_EQ(read().batteryPercent, 0);
    // a charger on the USB port
    supply("ucsi-source-psy-USBC000:001", {{"type", "USB"}, {"scope", "System"}, {"online", "1"}});
    EXPECT_EQ(read().onACPower, true);
    EXPECT_THAT(read().faults, IsEmpty());
}

TEST_F(LinuxMachineSensorsTest, aMachineWithoutABatteryRunsOnMains) {
    put("sys/class/power_supply", {});
    EXPECT_EQ(read().onACPower, true);
    // a mouse, a port that gives power, and a bay that is empty do not change that
    supply("mouse", {{"type", "Battery"}, {"scope", "Device"}, {"status", "Discharging"}, {"capacity", "9"}});
    supply("ucsi", {{"type", "USB"}, {"online", "0"}});
    supply("BAT1", {{"type", "Battery"}, {"present", "0"}, {"status", "Unknown"}});
    const MachineReading reading = read();
    EXPECT_EQ(reading.onACPower, true);
    EXPECT_FALSE(reading.hasInternalBattery);
    EXPECT_EQ(reading.batteryPercent, std::nullopt);
}

TEST_F(LinuxMachineSensorsTest, theBatteryTellsWhereNoSupplyIsListed) {
    supply("BAT0", {{"type", "Battery"}, {"capacity", "50"}});
    const std::vector<std::pair<std::string, std::optional<bool>>> cases{
        {"Discharging", false}, {"Charging", true}, {"Full", true}, {"Not charging", true}, {"Unknown", {}}};
    for (const auto& [status, onAC] : cases) {
        supply("BAT0", {{"status", status}});
        EXPECT_EQ(read().onACPower, onAC) << status;
    }
    // of two the one rests while the other works
    supply("BAT1", {{"type", "Battery"}, {"capacity", "50"}, {"status", "Discharging"}});
    EXPECT_EQ(read().onACPower, false);
    supply("BAT0", {{"status", "Not charging"}});
    EXPECT_EQ(read().onACPower, false);
}

TEST_F(LinuxMachineSensorsTest, severalBatteriesAreWeighedByWhatTheyHold) {
    supply("BAT0", {{"type", "Battery"}, {"capacity", "100"}, {"energy_full", "20000000"}});
    supply("BAT1", {{"type", "Battery"}, {"energy_now", "18000000"}, {"energy_full", "60000000"}});
    EXPECT_EQ(read().batteryPercent, 47); // 38 of 80 Wh
    // One of them in ampere-hours: nothing to weigh by.
    supply("BAT1",
           {{"energy_now", ""}, {"energy_full", ""}, {"charge_now", "2850"}, {"charge_full", "5000"}});
    EXPECT_EQ(read().batteryPercent, 78);
    EXPECT_THAT(read().faults, IsEmpty());
}

TEST_F(LinuxMachineSensorsTest, aChargeThatMakesNoSenseIsAFaultAndNoPercentage) {
    supply("BAT0", {{"type", "Battery"}, {"status", "Discharging"}});
    EXPECT_EQ(read().batteryPercent, std::nullopt);
    EXPECT_THAT(read().faults, IsEmpty()) << "a driver need not tell the charge";
    for (const char* odd : {"300", "-1", "full", "99999999999999999999", "", "5 0"}) {
        supply("BAT0", {{"capacity", odd}});
        EXPECT_EQ(read().batteryPercent, std::nullopt) << odd;
        EXPECT_THAT(read().faults,
                    ElementsAre("What the battery BAT0 tells of its charge makes no sense and is left out."));
    }
    EXPECT_TRUE(read().hasInternalBattery);
    supply("BAT0", {{"capacity", "104"}});
    EXPECT_EQ(read().batteryPercent, 100);
    // what it holds helps out
    supply("BAT0", {{"capacity", "300"}, {"charge_now", "2000"}, {"charge_full", "4000"}});
    EXPECT_EQ(read().batteryPercent, 50);
    supply("BAT0", {{"charge_full", "0"}});
    EXPECT_EQ(read().batteryPercent, std::nullopt);
}

TEST_F(LinuxMachineSensorsTest, aZoneIsMeasuredByItsOwnTripPoints) {
    zone(0, {{"type", "acpitz"},
             {"mode", "enabled"},
             {"trip_point_0_type", "critical"},
             {"trip_point_0_temp", "105000"},
             {"trip_point_1_type", "hot"},
             {"trip_point_1_temp", "103000"},
             {"trip_point_2_type", "passive"},
             {"trip_point_2_temp", "95000"},
             {"trip_point_3_type", "active"},
             {"trip_point_3_temp", "80000"},
             {"trip_point_4_type", "active"},
             {"trip_point_4_temp", "55000"}});
    const std::vector<std::pair<const char*, ThermalState>> byTrips{
        {"30000", ThermalState::nominal},  {"79999", ThermalState::nominal},
        {"80000", ThermalState::fair},     {"94999", ThermalState::fair},
        {"95000", ThermalState::serious},  {"101999", ThermalState::serious},
        {"102000", ThermalState::critical}};
    for (const auto& [degrees, state] : byTrips) {
        zone(0, {{"temp", degrees}});
        EXPECT_EQ(read().thermal, state) << degrees;
    }
    zone(0, {{"trip_point_0_temp", "150000"}, {"temp", "103000"}});
    EXPECT_EQ(read().thermal, ThermalState::critical) << "the hot point";

    // A zone with a critical point alone, and the worst of two.
    zone(0, {{"temp", "30000"}});
    zone(1, {{"type", "pch"}, {"trip_point_0_type", "critical"}, {"trip_point_0_temp", "100000"}});
    const std::vector<std::pair<const char*, ThermalState>> byDistance{{"84999", ThermalState::nominal},
                                                                       {"85000", ThermalState::fair},
                                                                       {"92000", ThermalState::serious},
                                                                       {"97000", ThermalState::critical}};
    for (const auto& [degrees, state] : byDistance) {
        zone(1, {{"temp", degrees}});
        EXPECT_EQ(read().thermal, state) << degrees;
    }
}

TEST_F(LinuxMachineSensorsTest, oddZonesTellNothing) {
    // marks that programs set, a disabled zone, unset points, a sensor that is off, one without points
    zone(0, {{"type", "x86_pkg_temp"},
             {"temp", "70000"},
             {"trip_point_0_type", "passive"},
             {"trip_point_0_temp", "60000"}});
    zone(1, {{"type", "acpitz"},
             {"mode", "disabled"},
             {"temp", "99000"},
             {"trip_point_0_type", "critical"},
             {"trip_point_0_temp", "100000"}});
    zone(2, {{"type", "iwlwifi_1"},
             {"temp", "40000"},
             {"trip_point_0_type", "passive"},
             {"trip_point_0_temp", "-32768000"},
             {"trip_point_1_type", "hot"},
             {"trip_point_1_temp", "0"},
             {"trip_point_2_type", "critical"},
             {"trip_point_2_temp", "hot"}});
    zone(3, {{"type", "acpitz"},
             {"temp", "255000"},
             {"trip_point_0_type", "critical"},
             {"trip_point_0_temp", "100000"}});
    zone(4, {{"type", "INT3400 Thermal"}, {"temp", "20000"}});
    EXPECT_EQ(read().thermal, std::nullopt);
    EXPECT_EQ(read().socTempC, 70);
    EXPECT_THAT(read().faults, IsEmpty());
}

TEST_F(LinuxMachineSensorsTest, aProcessorThatThrottlesItselfIsSerious) {
    const auto throttled = [&](const char* first, const char* second) {
        put("sys/devices/system/cpu", {{"cpu0/thermal_throttle/package_throttle_total_time_ms", first},
                                       {"cpu1/thermal_throttle/package_throttle_total_time_ms", second}});
    };
    throttled("500000", "0");
    EXPECT_EQ(read().thermal, ThermalState::nominal) << "what was before the first read does not count";
    time.runFor(base::Seconds{10});
    throttled("501000", "1000");
    EXPECT_EQ(read().thermal, ThermalState::nominal) << "a tenth";
    time.runFor(base::Seconds{10});
    throttled("501000", "2001");
    EXPECT_EQ(read().thermal, ThermalState::serious);
    zone(0, {{"type", "acpitz"},
             {"temp", "99000"},
             {"trip_point_0_type", "critical"},
             {"trip_point_0_temp", "100000"}});
    time.sleepFor(base::Seconds{3600}); // in which no processor is throttled
    time.runFor(base::Seconds{10});
    EXPECT_EQ(read().thermal, ThermalState::critical);
    zone(0, {{"temp", "30000"}});
    time.runFor(base::Seconds{10});
    throttled("7", "2001"); // a processor that came back
    EXPECT_EQ(read().thermal, ThermalState::nominal);
    EXPECT_EQ(read().thermal, ThermalState::nominal) << "no time passed";
}

TEST_F(LinuxMachineSensorsTest, theHottestSensorOfTheProcessorCounts) {
    put("sys/class/hwmon/hwmon0", {{"name", "nvme"}, {"temp1_input", "90000"}});
    put("sys/class/hwmon/hwmon1", {{"name", "coretemp"},
                                   {"temp1_input", "61000"},
                                   {"temp1_crit", "100000"},
                                   {"temp2_input", "63500"},
                                   {"temp3_input", "-128000"},
                                   {"temp4_input", "255000"}});
    EXPECT_EQ(read().socTempC, 63.5);
    zone(0, {{"type", "cpu0-thermal"}, {"temp", "71000"}});
    zone(1, {{"type", "acpitz"}, {"temp", "98000"}});
    EXPECT_EQ(read().socTempC, 71);
    clear();
    // the first drives the fan and lies above the truth
    put("sys/class/hwmon/hwmon3", {{"name", "k10temp"},
                                   {"temp1_input", "77000"},
                                   {"temp1_label", "Tctl"},
                                   {"temp2_input", "50000"},
                                   {"temp2_label", "Tdie"}});
    EXPECT_EQ(read().socTempC, 50);
}

TEST_F(LinuxMachineSensorsTest, theFirmwaresProfileTellsWhereNoDaemonDoes) {
    put("sys/firmware/acpi", {{"platform_profile", "balanced"}});
    EXPECT_EQ(read().lowPowerMode, false);
    put("sys/firmware/acpi", {{"platform_profile", "low-power"}});
    EXPECT_EQ(read().lowPowerMode, true);
}

void addDaemon(test::TestBus& bus, const std::string& name, const std::string& profile) {
    const std::string path = "/" + base::replacedAll(name, ".", "/");
    bus.addService(name, {"--system", name, path, name});
    bus.call(name, "org.freedesktop.DBus.Mock", "AddProperty",
             {QString::fromStdString(name), QStringLiteral("ActiveProfile"),
              QVariant::fromValue(QDBusVariant(QString::fromStdString(profile)))});
}

TEST_F(LinuxMachineSensorsTest, thePowerProfilesDaemonIsAskedByEitherName) {
    put("sys/firmware/acpi", {{"platform_profile", "low-power"}});
    for (const char* name : {"org.freedesktop.UPower.PowerProfiles", "net.hadess.PowerProfiles"}) {
        test::TestBus bus;
        LinuxMachineSensors asking(time,
                                   {.root = root.path(), .home = root.path(), .systemBus = bus.address()});
        EXPECT_EQ(asking.read().lowPowerMode, true) << "by the firmware, as long as there is no daemon";
        addDaemon(bus, name, "balanced");
        EXPECT_EQ(asking.read().lowPowerMode, false);
        bus.call(name, "org.freedesktop.DBus.Mock", "UpdateProperties",
                 {QString::fromStdString(name),
                  QVariantMap{{QStringLiteral("ActiveProfile"), QStringLiteral("power-saver")}}});
        EXPECT_EQ(asking.read().lowPowerMode, true);
        EXPECT_THAT(asking.read().faults, IsEmpty());
    }
}

TEST_F(LinuxMachineSensorsTest, aSilentBusIsLetBeForMinutes) {
    const test::SilentBus bus;
    LinuxMachineSensors asking(time, {.root = root.path(), .home = root.path(), .systemBus = bus.address()});
    const auto seconds = [&] {
        const auto begin = std::chrono::steady_clock::now();
        EXPECT_EQ(asking.read().lowPowerMode, std::nullopt);
        return base::Seconds(std::chrono::steady_clock::now() - begin).count();
    };
    EXPECT_GT(seconds(), 1);
    double total = 0;
    for (int times = 0; times < 29; ++times) {
        time.runFor(base::Seconds{10});
        total += seconds();
    }
    EXPECT_LT(total, 10) << "each wait for the bus is more than one";
}

TEST_F(LinuxMachineSensorsTest, aBusThatComesLaterIsAskedAfterMinutes) {
    test::TestBus bus;
    addDaemon(bus, "net.hadess.PowerProfiles", "power-saver");
    const QTemporaryDir folder;
    const std::string socket = folder.filePath(QStringLiteral("bus")).toStdString();
    LinuxMachineSensors asking(
        time, {.root = root.path(), .home = root.path(), .systemBus = "unix:path=" + socket});
    EXPECT_EQ(asking.read().lowPowerMode, std::nullopt);
    fs::create_symlink(bus.address().substr(std::string("unix:path=").size(),
                                            bus.address().find(',') - std::string("unix:path=").size()),
                       socket);
    time.runFor(base::Seconds{290});
    EXPECT_EQ(asking.read().lowPowerMode, std::nullopt);
    time.runFor(base::Seconds{20});
    EXPECT_EQ(asking.read().lowPowerMode, true);
}

} // namespace
} // namespace zenka::platform

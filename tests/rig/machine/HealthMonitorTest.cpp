#include "support/VirtualRig.h"

#include <gmock/gmock.h>

namespace zenka::test {

using ports::ThermalState;
using rig::SystemHealth;
using Severity = SystemHealth::Severity;

namespace {

TEST(SystemHealth, theWorstOfItIsOneWord) {
    const SystemHealth good{.thermal = ThermalState::nominal, .freeDiskGB = 100};
    EXPECT_EQ(good.worst(), Severity::good);
    EXPECT_EQ(SystemHealth{}.worst(), Severity::good) << "what is not told counts for nothing";
    struct Case {
        const char* what;
        Severity severity;
        std::function<void(SystemHealth&)> change;
    };
    const auto onBattery = [](int percent) {
        return [percent](SystemHealth& h) {
            h.hasInternalBattery = true;
            h.onACPower = false;
            h.macBatteryPercent = percent;
        };
    };
    for (const Case& each : {
             Case{"fair", Severity::warning, [](auto& h) { h.thermal = ThermalState::fair; }},
             Case{"serious", Severity::critical, [](auto& h) { h.thermal = ThermalState::serious; }},
             Case{"low power", Severity::warning, [](auto& h) { h.lowPowerMode = true; }},
             Case{"41 %", Severity::good, onBattery(41)},
             Case{"40 %", Severity::warning, onBattery(40)},
             Case{"20 %", Severity::critical, onBattery(20)},
             Case{"30 % and hot", Severity::critical,
                  [&](auto& h) {
                      onBattery(30)(h);
                      h.thermal = ThermalState::serious;
                  }},
             Case{"mains at 5 %", Severity::good,
                  [&](auto& h) {
                      onBattery(5)(h);
                      h.onACPower = true;
                  }},
             Case{"CPU", Severity::warning, [](auto& h) { h.cpuUsagePercent = 90; }},
             Case{"4.9 GB", Severity::warning, [](auto& h) { h.freeDiskGB = 4.9; }},
             Case{"0.9 GB", Severity::critical, [](auto& h) { h.freeDiskGB = 0.9; }},
         }) {
        SystemHealth health = good;
        each.change(health);
        EXPECT_EQ(health.worst(), each.severity) << each.what;
    }
}

TEST(SystemHealth, theProcessorsLoadIsThatSinceTheSampleBefore) {
    rig::SystemHealthSampler sampler;
    const auto load = [&](std::optional<ports::ProcessorTicks> ticks) {
        return sampler.sample({.ticks = ticks}).cpuUsagePercent;
    };
    EXPECT_EQ(load(ports::ProcessorTicks{.user = 100, .sys = 50, .idle = 900, .nice = 0}), 0);
    EXPECT_EQ(load(ports::ProcessorTicks{.user = 120, .sys = 55, .idle = 970, .nice = 5}), 30);
    EXPECT_EQ(load(ports::ProcessorTicks{.user = 120, .sys = 55, .idle = 970, .nice = 5}), 0);
    EXPECT_EQ(load(ports::ProcessorTicks{.user = 1, .sys = 1, .idle = 1, .nice = 1}), 0)
        << "a counter stepped back";
    EXPECT_EQ(load(std::nullopt), std::nullopt);
}

class HealthMonitorTest : public testing::Test {
protected:
    VirtualRig rig;
    rig::HealthMonitor& monitor = rig.model.health();

    void heat(ThermalState state) {
        rig.sensors.now.thermal = state;
        rig.run(10);
    }
};

TEST_F(HealthMonitorTest, heatIsToldSpokenAndEasesTheDrawing) {
    monitor.startHealthMonitor();
    rig.load(rig.frameAt(1));
    rig.playFrom(0);
    rig.run(1);
    const double interval = rig.model.renderPace().renderInterval();
    rig.model.transport().togglePlay();
    heat(ThermalState::serious);
    EXPECT_EQ(rig.countLines("⚠️ Thermal state serious; easing UI refresh (firing unaffected)"), 1);
    EXPECT_TRUE(monitor.showThermalWarning().get());
    heat(ThermalState::critical);
    EXPECT_EQ(rig.countLines("⚠️ Thermal state CRITICAL"), 1);
    rig.playFrom(0);
    rig.run(0.01);
    EXPECT_GE(rig.model.renderPace().renderInterval(), 0.5);
    EXPECT_LT(interval, 0.5);
    rig.model.transport().togglePlay();
    heat(ThermalState::fair);
    EXPECT_FALSE(monitor.showThermalWarning().get());
    heat(ThermalState::serious);
    rig.run(10);
    EXPECT_EQ(rig.speech.texts(),
              std::vector<std::string>(2, "Warning. Your computer is overheating. Move it into the shade."));
}

TEST_F(HealthMonitorTest, aFaultIsToldOnceAndStuckSensorsToo) {
    rig.sensors.now.faults = {"The battery BAT0 says 300 %"};
    monitor.startHealthMonitor();
    rig.run(60);
    EXPECT_EQ(rig.countLines("The battery BAT0 says 300 %"), 1);
    int asked = 0;
    rig.sensors.onRead = [&] {
        if (++asked == 1)
            rig.machine.time.runFor(base::Seconds{100});
    };
    rig.run(200);
    EXPECT_EQ(rig.countLines("do not answer"), 1);
    EXPECT_GT(asked, 5) << "it asks again when they have answered";
}

} // namespace

} // namespace zenka::test

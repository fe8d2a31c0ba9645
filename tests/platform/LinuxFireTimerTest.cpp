#include "platform/LinuxFireTimer.h"

#include "platform/LinuxClock.h"
#include "platform/TestBus.h"
#include "platform/Waiting.h"

#include <QDBusVariant>
#include <gmock/gmock.h>

#include <atomic>
#include <limits>
#include <sched.h>
#include <sys/resource.h>
#include <sys/syscall.h>

namespace zenka::platform {
namespace {

using base::Seconds;
using test::serveUntil;

constexpr Seconds never{3600};

class LinuxFireTimerTest : public testing::Test {
protected:
    double now() const { return LinuxClock().continuousSeconds(); }

    std::atomic<int> beats_ = 0;
    LinuxFireTimer timer_{{.take = true, .ask = false, .systemBusAddress = {}}};
};

TEST_F(LinuxFireTimerTest, theBeatRunsOnItsThreadAtItsRateAndChangesItsRate) {
    const double begin = now();
    std::thread::id thread;
    timer_.start(Seconds(0.02), Seconds(0.005), [&] {
        thread = std::this_thread::get_id();
        ++beats_;
    });
    EXPECT_TRUE(serveUntil([&] { return beats_ >= 10; }));
    EXPECT_GE(now() - begin, 0.2);
    timer_.reschedule(never, Seconds(0.2));
    const int before = beats_;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_LE(beats_, before + 1); // one may have been under way
    timer_.reschedule(Seconds(0.01), Seconds(0.005));
    EXPECT_TRUE(serveUntil([&] { return beats_ >= before + 5; }));
    timer_.stop();
    EXPECT_NE(thread, std::this_thread::get_id());
    const int atStop = beats_;
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    EXPECT_EQ(beats_, atStop);
}

TEST_F(LinuxFireTimerTest, theSlackOfABeatIsBounded) {
    double late = 0;
    timer_.start(Seconds(0.05), Seconds(0.1), [&, last = now()]() mutable {
        late = std::max(late, now() - last - 0.05);
        last = now();
        ++beats_;
    });
    EXPECT_TRUE(serveUntil([&] { return beats_ >= 20; }));
    timer_.stop();
    std::printf("latest beat %.3f ms after its instant, slack 100 ms\n", late * 1e3);
    EXPECT_LT(late, 1.0);
}

TEST_F(LinuxFireTimerTest, anAskedForInstantGivesOneMoreBeatNotBeforeIt) {
    std::atomic<double> beatAt = 0;
    timer_.start(never, Seconds(0.2), [&] {
        beatAt = now();
        ++beats_;
    });
    timer_.wakeAt(now() + 1000); // replaced by the next
    const double wanted = now() + 0.05;
    timer_.wakeAt(wanted);
    EXPECT_TRUE(serveUntil([&] { return beats_ == 1; }));
    std::printf("beat %.3f ms after the asked-for instant\n", (beatAt - wanted) * 1e3);
    EXPECT_GE(beatAt, wanted);

    timer_.wakeAt(now() - 5); // a past one beats at once
    EXPECT_TRUE(serveUntil([&] { return beats_ == 2; }));
    timer_.wakeAt(now() + 0.05);
    timer_.wakeAt(std::numeric_limits<double>::infinity());
    timer_.wakeAt(std::numeric_limits<double>::quiet_NaN());
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(beats_, 2);
}

TEST_F(LinuxFireTimerTest, theBeatItselfMayAskRescheduleRestartAndStop) {
    std::atomic<int> second = 0;
    timer_.start(never, Seconds(0), [&] {
        if (++beats_ < 5) {
            timer_.wakeAt(now() + 0.002);
        } else {
            timer_.start(never, Seconds(0), [&] {
                if (++second == 3)
                    timer_.stop();
            });
            timer_.reschedule(Seconds(0.002), Seconds(0));
        }
    });
    timer_.wakeAt(now());
    EXPECT_TRUE(serveUntil([&] { return second == 3; }));
    EXPECT_EQ(beats_, 5);
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(second, 3);
    // stopped from within, it starts again from outside
    timer_.start(Seconds(0.002), Seconds(0), [&] { ++beats_; });
    EXPECT_TRUE(serveUntil([&] { return beats_ >= 8; }));
}

TEST_F(LinuxFireTimerTest, aLongStallGivesOneBeatAndNoBurst) {
    std::vector<double> at;
    timer_.start(Seconds(0.02), Seconds(0), [&] {
        at.push_back(now());
        if (at.size() == 2)
            std::this_thread::sleep_for(std::chrono::milliseconds(300));
        beats_ = static_cast<int>(at.size());
    });
    EXPECT_TRUE(serveUntil([&] { return beats_ >= 8; }));
    timer_.stop();
    // five more beats on the grid of 20 ms after the stall; the first of them may come late by a moment
    EXPECT_GE(at[7] - at[2], 0.08);
}

TEST_F(LinuxFireTimerTest, whenStopOrStartReturnsNoBeatOfTheOldFunctionRuns) {
    for (int round = 0; round < 30; ++round) {
        auto alive = std::make_shared<std::atomic<bool>>(true);
        std::weak_ptr<std::atomic<bool>> watch = alive;
        timer_.start(Seconds(0.0002), Seconds(0), [this, alive] {
            EXPECT_TRUE(*alive);
            std::this_thread::sleep_for(std::chrono::microseconds(300));
            EXPECT_TRUE(*alive);
            ++beats_;
        });
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        if (round % 2)
            timer_.stop();
        else
            timer_.start(never, Seconds(0), [] {});
        *alive = false;
        alive.reset();
        EXPECT_TRUE(watch.expired());
    }
    EXPECT_GT(beats_, 0);
}

TEST_F(LinuxFireTimerTest, allThreadsMaySteerItAtOnce) {
    std::vector<std::thread> threads;
    for (int number = 0; number < 4; ++number)
        threads.emplace_back([&] {
            for (int round = 0; round < 100; ++round) {
                timer_.start(Seconds(0.0005), Seconds(0), [&] {
                    ++beats_;
                    timer_.wakeAt(now() + 0.0001);
                });
                timer_.reschedule(Seconds(0.001), Seconds(0));
                timer_.wakeAt(now());
                timer_.stop();
            }
        });
    for (auto& thread : threads)
        thread.join();
    const int atStop = beats_;
    std::this_thread::sleep_for(std::chrono::milliseconds(20));
    EXPECT_EQ(beats_, atStop);
}

TEST(LinuxFireTimerPriority, realtimeKitIsAskedForTheBeatThreadAndTheProcessIsBounded) {
    test::TestBus bus;
    const std::string kit = "org.freedesktop.RealtimeKit1";
    bus.addService(kit, {"--system", kit, "/org/freedesktop/RealtimeKit1", kit});
    bus.call(kit, "org.freedesktop.DBus.Mock", "AddProperty",
             {QString::fromStdString(kit), "MaxRealtimePriority", QVariant::fromValue(QDBusVariant(3))});
    bus.call(kit, "org.freedesktop.DBus.Mock", "AddProperty",
             {QString::fromStdString(kit), "RTTimeUSecMax", QVariant::fromValue(QDBusVariant(200000LL))});
    bus.addMethod(kit, "MakeThreadRealtime", "tu", "", "");

    std::atomic<long> thread = 0;
    LinuxFireTimer timer({.take = false, .ask = true, .systemBusAddress = bus.address()});
    timer.start(Seconds(0.01), Seconds(0.005), [&] { thread = ::syscall(SYS_gettid); });
    EXPECT_TRUE(serveUntil([&] { return thread != 0 && !bus.calls(kit).empty(); }));
    EXPECT_THAT(bus.calls(kit), testing::ElementsAre("MakeThreadRealtime " + std::to_string(thread) + " 3"));
    rlimit limit{};
    ASSERT_EQ(::getrlimit(RLIMIT_RTTIME, &limit), 0);
    EXPECT_LE(limit.rlim_max, 200'000U);
}

TEST(LinuxFireTimerPriority, itBeatsWithNoPriorityAndASilentBus) {
    const test::SilentBus bus;
    std::atomic<int> beats = 0;
    {
        LinuxFireTimer timer({.take = false, .ask = true, .systemBusAddress = bus.address()});
        timer.start(Seconds(0.01), Seconds(0.005), [&] { ++beats; });
        EXPECT_TRUE(serveUntil([&] { return beats >= 5; }));
    }
}

TEST(LinuxFireTimerPriority, aProcessThatMayTakesARealtimePriorityThatNoChildInherits) {
    const sched_param lowest{.sched_priority = 1};
    int allowed = -1;
    std::thread([&] { allowed = ::sched_setscheduler(0, SCHED_RR | SCHED_RESET_ON_FORK, &lowest); }).join();
    std::atomic<int> policy = -1;
    LinuxFireTimer timer({.take = true, .ask = false, .systemBusAddress = {}});
    timer.start(Seconds(0.01), Seconds(0.005), [&] { policy = ::sched_getscheduler(0); });
    EXPECT_TRUE(serveUntil([&] { return policy >= 0; }));
    EXPECT_EQ(policy, allowed == 0 ? SCHED_RR | SCHED_RESET_ON_FORK : SCHED_OTHER);
}

} // namespace
} // namespace zenka::platform

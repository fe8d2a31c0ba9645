#include "cameras/sony/SonyBench.h"

#include <atomic>
#include <thread>

using namespace zenka;
using namespace zenka::cameras;

namespace {

/// Real threads, a thousandth of the time.
class HastySonyWaits final : public SonyWaits {
public:
    void pause(base::Seconds span) const override { SonyWaits::pause(span / 1000); }
};

} // namespace

// For ThreadSanitizer. The fake SDK itself fails on two calls at once.
TEST(SonyThreads, firesPingsEnumerationsAndDisconnectsAtOnce) {
    constexpr int rounds = 60;
    test::FakeCrSDK sdk;
    sdk.bodies = {test::offeringBody(), {.model = "ILCE-1", .id = {0x11}}};
    zenka_sony_set_up(&sdk, std::make_shared<const HastySonyWaits>());
    ASSERT_EQ(SonyCRSDK::enumerate().size(), 2U);
    const std::int64_t steady = zenka_sony_connect(0, "ab01");
    ASSERT_NE(steady, 0);
    std::atomic<std::int64_t> changing = 0;
    std::atomic<int> firesOk = 0;
    std::atomic<bool> over = false;
    {
        std::vector<std::jthread> threads;
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                zenka_sony_set_exposure(steady, 100 << (round % 3), 8, 1 / (100.0 + round), round % 2);
                firesOk += zenka_sony_fire(steady);
                zenka_sony_last_sent_shutter(steady);
            }
        });
        threads.emplace_back([&] { // a body that comes and goes
            for (int round = 0; round < rounds; ++round) {
                changing = zenka_sony_connect(1, "11");
                zenka_sony_fire(changing);
                zenka_sony_disconnect(changing);
            }
        });
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round) {
                EXPECT_EQ(zenka_sony_health_ping(steady), 1);
                zenka_sony_health_ping(changing);
                SonyCRSDK::stateDump(changing);
                zenka_sony_reset_expo_cache(steady);
            }
        });
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round)
                SonyCRSDK::enumerate();
        });
        threads.emplace_back([&] {
            for (int round = 0; round < rounds; ++round)
                SonyCRSDK::enumerate();
        });
        std::jthread told([&] { // a thread of the SDK
            while (!over) {
                sdk.warn(0, 0x20011);
                sdk.warn(1, 0x20002);
                zenka_sony_reconnecting(changing);
                std::this_thread::yield();
            }
        });
        threads.clear();
        over = true;
    }
    EXPECT_EQ(firesOk, rounds);
    EXPECT_GT(zenka_sony_captured_count(steady), 0);
    EXPECT_FALSE(SonyCRSDK::enumerateWedged());
    zenka_sony_disconnect_all();
    EXPECT_EQ(sdk.openSessions(), 0U);
    zenka_sony_release();
    zenka_sony_set_up(nullptr);
}

#include "platform/CanberraSounds.h"

#include "platform/QtMainLoop.h"
#include "platform/Waiting.h"
#include "support/SoundServers.h"

#include <gmock/gmock.h>

namespace zenka::platform {
namespace {

using namespace std::chrono_literals;
using test::serveUntil;
using testing::IsEmpty;
using testing::SizeIs;
using Clock = std::chrono::steady_clock;

constexpr const char* alarm = "dialog-error";

TEST(CanberraSounds, soundsAreHeardOverOneAnotherAndAlsoFromTheNextServer) {
    test::PrivateUser user;
    test::SoundServer sound(user);
    QtMainLoop loop;
    CanberraSounds sounds(loop);
    std::vector<std::string> faults;
    const auto failed = [&](const std::string& fault) { faults.push_back(fault); };
    {
        test::Recording recording;
        sounds.play(alarm, failed);
        ASSERT_TRUE(recording.firstSoundAfter({}, test::patience));
        ASSERT_TRUE(recording.waitForSilence(0.3, test::patience));
        const auto one = recording.stretches(0.1);
        ASSERT_THAT(one, testing::Not(IsEmpty()));
        EXPECT_GT(one.front().loudness, 0.01);

        sounds.play(alarm, failed);
        sounds.play(alarm, failed);
        ASSERT_TRUE(recording.firstSoundAfter(Clock::now(), test::patience));
        ASSERT_TRUE(recording.waitForSilence(0.3, test::patience));
        const auto two = recording.stretches(0.1).back();
        EXPECT_LT(two.seconds(), 1.6 * one.front().seconds());
        EXPECT_GT(two.loudness, 1.2 * one.front().loudness);
    }
    EXPECT_FALSE(serveUntil([&] { return !faults.empty(); }, 100ms)) << faults.front();

    sound.stop();
    sounds.play(alarm, failed);
    sounds.play(alarm, failed);
    ASSERT_TRUE(serveUntil([&] { return faults.size() == 2; }));
    for (const std::string& fault : faults)
        EXPECT_EQ(fault, "no sound server answers");
    sound.start();
    test::Recording again;
    sounds.play(alarm, failed);
    EXPECT_TRUE(again.firstSoundAfter({}, test::patience));
    EXPECT_THAT(faults, SizeIs(2));
}

TEST(CanberraSounds, anUnknownNameFailsOnceWithWords) {
    test::PrivateUser user;
    test::SoundServer sound(user);
    QtMainLoop loop;
    CanberraSounds sounds(loop);
    std::vector<std::string> faults;
    sounds.play("no such sound", [&](const std::string& fault) { faults.push_back(fault); });
    EXPECT_THAT(faults, IsEmpty()); // never from within
    ASSERT_TRUE(serveUntil([&] { return !faults.empty(); }));
    sounds.play("no such sound", {});
    EXPECT_FALSE(serveUntil([&] { return faults.size() > 1; }, 200ms));
    EXPECT_EQ(faults.front(), "the desktop has no sound named \"no such sound\"");
}

TEST(CanberraSounds, destroyingTheObjectEndsItsSoundsAndTellsNothing) {
    test::PrivateUser user;
    test::SoundServer sound(user);
    QtMainLoop loop;
    bool told = false;
    const auto begin = Clock::now();
    {
        CanberraSounds sounds(loop);
        sounds.play("alarm-clock-elapsed", [&](const std::string&) { told = true; });
        sounds.play("no such sound", [&](const std::string&) { told = true; });
    }
    EXPECT_LT(Clock::now() - begin, 5s);
    EXPECT_FALSE(serveUntil([&] { return told; }, 200ms));
}

} // namespace
} // namespace zenka::platform

#include "gps/GPSReceiver.h"

#include "platform/virtual/VirtualMachine.h"
#include "support/NmeaSentences.h"
#include "support/ScriptedSerial.h"

#include <gmock/gmock.h>

#include <cmath>
#include <cstdio>

using namespace zenka;
using base::Instant;
using base::Seconds;
using gps::GPSFix;
using test::nmea::Sky;
using testing::AllOf;
using testing::ElementsAre;
using testing::Ge;
using testing::IsEmpty;
using testing::Le;

namespace {

/// 2026-08-12 17:00 UTC
constexpr Instant start{1786554000};
const std::string acm = "/dev/ttyACM0";
const std::string usb = "/dev/ttyUSB0";

/// A receiver whose time is so far ahead of the wall clock.
test::ScriptedSerial::Sentences ahead(double seconds, const Sky& sky = {}) {
    return [=](Instant wall) { return test::nmea::second(wall + Seconds{seconds}, sky); };
}

class GPSReceiverTest : public testing::Test {
protected:
    struct Update {
        double at = 0; // when the main thread heard of it
        GPSFix fix;
        std::optional<Instant> wall;
    };
    struct Change {
        bool connected = false;
        double at = 0;
    };

    GPSReceiverTest() {
        receiver = std::make_unique<gps::GPSReceiver>(serial, queues, loop, time);
        receiver->start({.onUpdate =
                             [this](const GPSFix& fix, std::optional<Instant> wall) {
                                 EXPECT_TRUE(time.onMainLane());
                                 updates.push_back({.at = elapsed(), .fix = fix, .wall = wall});
                             },
                         .onConnectionChange =
                             [this](bool connected) {
                                 EXPECT_TRUE(time.onMainLane());
                                 changes.push_back({.connected = connected, .at = elapsed()});
                             },
                         .onPassedOver = [this](const std::string& why) { passedOver.push_back(why); }});
    }

    void run(double seconds) { time.runFor(Seconds{seconds}); }
    double elapsed() const { return time.continuousSeconds() - startSeconds; }
    std::vector<double> attemptsAt(const std::string& path) const {
        std::vector<double> instants;
        for (const auto& attempt : serial.attempts)
            if (attempt.path == path)
                instants.push_back(std::round((attempt.at - startSeconds) * 1e3) / 1e3);
        return instants;
    }
    /// The offsets that the timed updates tell, wall less satellite time.
    std::vector<double> offsets() const {
        std::vector<double> found;
        for (const Update& update : updates)
            if (update.wall)
                found.push_back((*update.wall - *update.fix.utc).count());
        return found;
    }

    platform::VirtualTime time{start};
    platform::VirtualLoop loop{time};
    platform::VirtualWorkQueues queues{time};
    test::ScriptedSerial serial{time};
    const double startSeconds = time.continuousSeconds();
    std::vector<Update> updates;
    std::vector<Change> changes;
    std::vector<std::string> passedOver;
    std::unique_ptr<gps::GPSReceiver> receiver;
};

TEST_F(GPSReceiverTest, theWallTimeIsThatOfTheReadingAndComesWithTimedSentencesOnly) {
    serial.stream(acm, ahead(5.25));
    run(20.5);
    const auto told = offsets();
    ASSERT_EQ(told.size(), 20U);
    double largest = 0;
    for (const double offset : told)
        largest = std::max(largest, std::abs(offset + 5.25));
    constexpr double ceiling = 1e-4; // doubles of the wall clock, added up
    std::printf("largest error of the offset: %.2g s, ceiling %.2g s\n", largest, ceiling);
    EXPECT_LE(largest, ceiling);
    EXPECT_EQ(updates.back().fix.satsInView, 11);
    EXPECT_FALSE(updates.back().wall) << "the last of a second is no RMC";

    // A lock without a time, and the time of a receiver's own clock without a lock.
    updates.clear();
    serial.silence(acm);
    serial.send(acm, test::nmea::sentence("GPRMC,,A,4230.0000,N,00342.0000,W,0.0,0.0,,,,A"));
    run(1);
    ASSERT_EQ(updates.size(), 1U);
    EXPECT_FALSE(updates.back().wall);
    EXPECT_TRUE(updates.back().fix.utc) << "the time before stays";
    serial.send(acm, test::nmea::rmc(time.now(), {.hasFix = false}));
    run(1);
    ASSERT_EQ(updates.size(), 2U);
    EXPECT_FALSE(updates.back().fix.hasFix);
    EXPECT_FALSE(updates.back().wall);
}

TEST_F(GPSReceiverTest, aDeviceThatIsNoReceiverIsPassedOverAndLookedAtAgainInEachRound) {
    serial.plug(acm);
    serial.stream(
        usb, [](Instant) { return "temperature 21 G\r\n$ 5\r\n"; }, 0.3);
    run(22);
    EXPECT_THAT(attemptsAt(acm), ElementsAre(0, 8, 16));
    EXPECT_THAT(attemptsAt(usb), ElementsAre(2.5, 10.5, 18.5));
    EXPECT_FALSE(serial.isOpen(acm) || serial.isOpen(usb));
    EXPECT_THAT(passedOver, ElementsAre("/dev/ttyACM0 is no satellite receiver: it sent nothing for 2.5 s",
                                        "/dev/ttyUSB0 is no satellite receiver: it sent something else"));
    EXPECT_THAT(changes, IsEmpty());
    EXPECT_THAT(updates, IsEmpty());
}

TEST_F(GPSReceiverTest, aDeviceThatCannotBeOpenedIsToldOnceForEachReason) {
    serial.refuse(acm, "another program is using it");
    run(10);
    serial.refuse(acm, "it is no serial line");
    run(10);
    EXPECT_THAT(passedOver, ElementsAre("/dev/ttyACM0 cannot be read: another program is using it",
                                        "/dev/ttyACM0 cannot be read: it is no serial line"));
    EXPECT_THAT(attemptsAt(acm), ElementsAre(0, 3, 6, 9, 12, 15, 18));
}

TEST_F(GPSReceiverTest, aReceiverThatComesLaterIsFoundInTheNextRound) {
    run(10);
    EXPECT_EQ(serial.listings, 4) << "one each 3 s";
    serial.stream(acm, ahead(0));
    run(4.5);
    ASSERT_EQ(changes.size(), 1U);
    EXPECT_TRUE(changes[0].connected);
    // round at 12 s, first burst at 13 s
    EXPECT_NEAR(changes[0].at, 13, 0.01);
    EXPECT_THAT(passedOver, IsEmpty());
}

TEST_F(GPSReceiverTest, aMarkCutInTwoIsFoundAndItsSentenceCounts) {
    serial.plug(acm);
    run(0.2);
    const std::string sentences = "garbage" + test::nmea::rmc(time.now());
    serial.send(acm, sentences.substr(0, 8));
    run(0.1);
    serial.send(acm, sentences.substr(8));
    run(0.2);
    ASSERT_EQ(updates.size(), 1U);
    EXPECT_TRUE(updates[0].wall);
}

TEST_F(GPSReceiverTest, aReceiverThatFallsSilentIsGoneAfterEightSeconds) {
    serial.stream(acm, ahead(0));
    run(5.5);
    serial.silence(acm); // the last burst was at 5 s
    run(7.4);
    EXPECT_EQ(changes.size(), 1U);
    run(0.5);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_FALSE(changes[1].connected);
    EXPECT_THAT(changes[1].at, AllOf(Ge(13), Le(13.3)));
    // it is looked for at once, and found when it speaks again
    serial.stream(acm, ahead(0));
    run(3);
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_TRUE(changes[2].connected);
}

TEST_F(GPSReceiverTest, aReceiverThatMovesToAnotherPortIsFoundThereAndKnowsNothingOfBefore) {
    serial.stream(acm, ahead(0));
    run(5.5);
    serial.send(acm, "$GPRMC,1200"); // pulled in mid-sentence
    serial.unplug(acm);
    run(0.2);
    ASSERT_EQ(changes.size(), 2U);
    EXPECT_THAT(changes[1].at, AllOf(Ge(5.5), Le(5.7)));
    updates.clear();
    serial.stream(usb, ahead(0, {.hasFix = false}));
    run(6);
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_TRUE(changes[2].connected);
    ASSERT_FALSE(updates.empty());
    for (const Update& update : updates) {
        EXPECT_FALSE(update.fix.lat);
        EXPECT_FALSE(update.fix.utc);
    }
}

TEST_F(GPSReceiverTest, aStalledMainThreadHearsOfTheNewestOnly) {
    serial.stream(acm, ahead(0), 0.1);
    run(2.05);
    updates.clear();
    const double stallEnd = elapsed() + 60.03;
    time.stallMainFor(Seconds{60.03});
    run(62);
    ASSERT_GE(updates.size(), 4U);
    // one delivery of what waited, and each sentence's again from then on
    EXPECT_NEAR(updates[0].at, stallEnd, 0.01);
    EXPECT_NEAR((*updates[0].wall - start).count(), stallEnd, 0.11);
    EXPECT_FALSE(updates[1].wall);
    EXPECT_EQ(updates[1].fix.utc, updates[0].fix.utc);
    EXPECT_GT(updates[2].at, stallEnd + 0.001);
    EXPECT_NEAR(static_cast<double>(updates.size()), 2 + 2 * (elapsed() - stallEnd) / 0.1, 4);
}

TEST_F(GPSReceiverTest, aReceiverThatWentAndCameDuringAStallIsToldAsBoth) {
    serial.stream(acm, ahead(0));
    run(3.5);
    time.stallMainFor(Seconds{30});
    for (int times = 0; times < 3; ++times) {
        serial.unplug(acm);
        run(4);
        serial.stream(acm, ahead(0));
        run(5);
    }
    updates.clear();
    run(10);
    ASSERT_EQ(changes.size(), 3U);
    EXPECT_FALSE(changes[1].connected);
    EXPECT_TRUE(changes[2].connected);
    EXPECT_FALSE(updates.empty());
}

TEST_F(GPSReceiverTest, aSleepOfTheMachineNeitherLosesTheReceiverNorGivesOldBytesANewTime) {
    serial.stream(acm, ahead(0));
    run(5.5);
    updates.clear();
    time.sleepFor(Seconds{3600.2}); // the line's buffer is full of old sentences then
    run(10);
    EXPECT_EQ(changes.size(), 1U);
    const auto told = offsets();
    EXPECT_THAT(told, testing::SizeIs(AllOf(Ge(8U), Le(10U))));
    EXPECT_THAT(told, testing::Each(testing::DoubleNear(0, 0.001)));
    // a receiver that slept as well
    serial.silence(acm);
    time.sleepFor(Seconds{3600.2});
    run(2);
    serial.stream(acm, ahead(0));
    run(5);
    EXPECT_EQ(changes.size(), 1U);
}

TEST_F(GPSReceiverTest, nothingIsToldAfterItsEndAndTheLineIsClosed) {
    serial.stream(acm, ahead(0), 0.1);
    run(2.05);
    EXPECT_TRUE(serial.isOpen(acm));
    time.stallMainFor(Seconds{1}); // an update waits for the main thread
    run(0.5);
    const std::size_t before = updates.size();
    receiver.reset();
    run(10);
    EXPECT_EQ(updates.size(), before);
    EXPECT_EQ(changes.size(), 1U);
    EXPECT_FALSE(serial.isOpen(acm));
    EXPECT_EQ(serial.attempts.size(), 1U);
}

} // namespace

TEST(GPSReceiver, aListenerMayEndTheReceiver) {
    platform::VirtualTime time{start};
    platform::VirtualLoop loop{time};
    platform::VirtualWorkQueues queues{time};
    test::ScriptedSerial serial{time};
    serial.stream(acm, ahead(0));
    auto receiver = std::make_unique<gps::GPSReceiver>(serial, queues, loop, time);
    int calls = 0;
    receiver->start({.onUpdate = [&](const GPSFix&, std::optional<Instant>) { ++calls; },
                     .onConnectionChange =
                         [&](bool) {
                             ++calls;
                             receiver.reset();
                         },
                     .onPassedOver = {}});
    time.runFor(Seconds{5});
    EXPECT_EQ(calls, 1);
    EXPECT_FALSE(serial.isOpen(acm));
}

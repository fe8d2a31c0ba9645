#include "platform/QtMainLoop.h"

#include "platform/Waiting.h"

#include <QEventLoop>
#include <QTimer>
#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>

namespace zenka::platform {
namespace {

using base::Seconds;
using test::serveUntil;

/// Long enough for what is due within some milliseconds to have run.
void serveFor(std::chrono::milliseconds span) {
    QEventLoop loop;
    QTimer::singleShot(span, &loop, &QEventLoop::quit);
    loop.exec();
}

TEST(QtMainLoop, postsFromManyThreadsRunOnTheMainThreadInOrderOfEachThread) {
    QtMainLoop loop;
    std::vector<std::vector<int>> got(4);
    std::vector<std::thread> threads;
    for (std::size_t number = 0; number < got.size(); ++number)
        threads.emplace_back([&, number] {
            EXPECT_FALSE(loop.onMainThread());
            for (int piece = 0; piece < 5000; ++piece)
                loop.post([&, number, piece] {
                    EXPECT_TRUE(loop.onMainThread());
                    got[number].push_back(piece);
                });
        });
    EXPECT_TRUE(serveUntil([&] {
        return std::all_of(got.begin(), got.end(), [](const auto& row) { return row.size() == 5000; });
    }));
    for (auto& thread : threads)
        thread.join();
    for (const auto& row : got)
        EXPECT_TRUE(std::is_sorted(row.begin(), row.end()));
}

TEST(QtMainLoop, postsAndTimersRunInOrderOfTheirInstantThenOfTheirCall) {
    QtMainLoop loop;
    std::string order;
    const auto note = [&](char letter) { return [&order, letter] { order += letter; }; };
    loop.after(Seconds(0.030), note('e'));
    loop.after(Seconds(0.020), note('d'));
    loop.post(note('a'));
    loop.after(Seconds(0), note('b'));
    loop.after(Seconds(-5), note('c'));
    // all are due before the loop gets to run, and a post made last comes last
    std::this_thread::sleep_for(std::chrono::milliseconds(50));
    loop.post(note('f'));
    EXPECT_TRUE(serveUntil([&] { return order.size() == 6; }));
    EXPECT_EQ(order, "abcdef");
}

TEST(QtMainLoop, aTimerRunsNotBeforeItsInstant) {
    QtMainLoop loop;
    for (const double delay : {0.0003, 0.0017, 0.0101}) {
        const auto begin = std::chrono::steady_clock::now();
        double passed = -1;
        loop.after(Seconds(delay),
                   [&] { passed = Seconds(std::chrono::steady_clock::now() - begin).count(); });
        EXPECT_TRUE(serveUntil([&] { return passed >= 0; }));
        EXPECT_GE(passed, delay);
    }
}

TEST(QtMainLoop, aTimerCancelledFromAnotherDueFunctionDoesNotRun) {
    QtMainLoop loop;
    std::string order;
    ports::MainLoop::TimerId second{};
    loop.after(Seconds(0.001), [&] {
        order += 'a';
        loop.cancel(second);
    });
    second = loop.after(Seconds(0.002), [&] { order += 'b'; });
    loop.after(Seconds(0.003), [&] { order += 'c'; });
    std::this_thread::sleep_for(std::chrono::milliseconds(20)); // all due in one wake
    EXPECT_TRUE(serveUntil([&] { return order.ends_with('c'); }));
    EXPECT_EQ(order, "ac");
    loop.cancel(second);
    loop.cancel(ports::MainLoop::TimerId::none);
}

TEST(QtMainLoop, aRepeatingTimerCancelsItselfAndLeavesOutMissedBeats) {
    QtMainLoop loop;
    int beats = 0;
    const auto begin = std::chrono::steady_clock::now();
    ports::MainLoop::TimerId timer{};
    timer = loop.every(Seconds(0.010), [&] {
        if (++beats == 1)
            std::this_thread::sleep_for(std::chrono::milliseconds(200)); // a stall of 20 beats
        if (beats == 5)
            loop.cancel(timer);
    });
    EXPECT_TRUE(serveUntil([&] { return beats == 5; }));
    // one at 10 ms, the stall, and four more on the grid: a burst would be through before 250 ms
    EXPECT_GE(std::chrono::steady_clock::now() - begin, std::chrono::milliseconds(250));
    serveFor(std::chrono::milliseconds(50));
    EXPECT_EQ(beats, 5);
}

TEST(QtMainLoop, aFloodOfPostsLeavesTurnsToOtherEvents) {
    QtMainLoop loop;
    int pieces = 0;
    int turnsBefore = 0;
    bool flooding = true;
    const std::function<void()> again = [&] {
        ++pieces;
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
        if (flooding)
            loop.post(again);
    };
    for (int number = 0; number < 40; ++number)
        loop.post(again);
    QTimer other;
    QObject::connect(&other, &QTimer::timeout, [&] { flooding = ++turnsBefore < 5; });
    other.start(1);
    EXPECT_TRUE(serveUntil([&] { return !flooding; }));
    // a wake that ran all that was ready would give the five turns no sooner than after 200 pieces
    EXPECT_LT(pieces, 120);
}

TEST(QtMainLoop, whatAFunctionThrowsEndsThere) {
    QtMainLoop loop;
    bool next = false;
    testing::internal::CaptureStderr();
    loop.post([] { throw std::runtime_error("out of film"); });
    loop.post([&] { next = true; });
    EXPECT_TRUE(serveUntil([&] { return next; }));
    EXPECT_NE(testing::internal::GetCapturedStderr().find("out of film"), std::string::npos);
}

TEST(QtMainLoop, aNestedEventLoopStillServesPostsAndTimers) {
    QtMainLoop loop;
    std::string order;
    loop.post([&] {
        QEventLoop dialog;
        loop.post([&] { order += 'a'; });
        loop.after(Seconds(0.002), [&] {
            order += 'b';
            dialog.quit();
        });
        dialog.exec();
        order += 'c';
    });
    loop.post([&] { order += '0'; });
    EXPECT_TRUE(serveUntil([&] { return order.ends_with('c'); }));
    EXPECT_EQ(order, "0abc");
}

TEST(QtMainLoop, destroyingTheLoopDestroysWhatWaitsUnrun) {
    const auto token = std::make_shared<int>(0);
    bool ran = false;
    auto loop = std::make_unique<QtMainLoop>();
    loop->post([&, token] { ran = true; });
    loop->after(Seconds(0), [&, token] { ran = true; });
    loop->every(Seconds(0.001), [&, token] { ran = true; });
    loop.reset();
    EXPECT_EQ(token.use_count(), 1);
    serveFor(std::chrono::milliseconds(5));
    EXPECT_FALSE(ran);
}

} // namespace
} // namespace zenka::platform

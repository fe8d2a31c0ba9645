#include "platform/ThreadWorkQueues.h"

#include "platform/Waiting.h"

#include <gmock/gmock.h>

#include <atomic>
#include <future>
#include <pthread.h>

namespace zenka::platform {
namespace {

using base::Seconds;
using test::patience;
using namespace std::chrono_literals;

TEST(ThreadWorkQueues, aSerialQueueRunsOnePieceAfterAnotherOnItsNamedThread) {
    ThreadWorkQueues queues;
    const auto queue = queues.serial("zenka.a long name of a queue");
    std::vector<int> got; // no lock: the queue itself is the order
    std::string name(32, '\0');
    for (int number = 0; number < 10000; ++number)
        queue->post([&, number] { got.push_back(number); });
    queue->post([&] { pthread_getname_np(pthread_self(), name.data(), name.size()); });
    ASSERT_TRUE(queue->drain(patience));
    EXPECT_EQ(got.size(), 10000U);
    EXPECT_TRUE(std::is_sorted(got.begin(), got.end()));
    EXPECT_STREQ(name.c_str(), "zenka.a long na");
}

TEST(ThreadWorkQueues, delayedWorkRunsInOrderOfItsInstantAndIsNoPartOfADrain) {
    ThreadWorkQueues queues;
    const auto queue = queues.serial("delays");
    std::string order;
    std::promise<void> done;
    const auto begin = std::chrono::steady_clock::now();
    queue->postAfter(Seconds(1e300), [&] { order += '!'; });
    queue->postAfter(Seconds(0.3), [&] {
        order += 'd';
        done.set_value();
    });
    queue->postAfter(Seconds(0.2), [&] { order += 'c'; });
    queue->postAfter(Seconds(-1), [&] { order += 'a'; });
    std::promise<std::string> early;
    queue->post([&] { early.set_value(order += 'b'); });
    EXPECT_TRUE(queue->drain(patience));
    EXPECT_TRUE(early.get_future().get().starts_with("ab"));
    ASSERT_EQ(done.get_future().wait_for(patience), std::future_status::ready);
    EXPECT_GE(std::chrono::steady_clock::now() - begin, 300ms);
    EXPECT_TRUE(queue->drain(patience));
    EXPECT_EQ(order, "abcd");
}

TEST(ThreadWorkQueues, aDrainGivesUpAtItsLimit) {
    ThreadWorkQueues queues;
    const auto queue = queues.serial("stuck");
    std::promise<void> go;
    queue->post([future = go.get_future().share()] { future.wait(); });
    EXPECT_FALSE(queue->drain(Seconds(0.01)));
    EXPECT_FALSE(queue->drain(Seconds(-1)));
    go.set_value();
    EXPECT_TRUE(queue->drain(patience));
}

TEST(ThreadWorkQueues, aQueueLetGoWaitsForNothingAndStillDoesAllItsWork) {
    std::string order;
    std::promise<void> go;
    {
        ThreadWorkQueues queues;
        auto queue = queues.serial("let go");
        queue->post([&, future = go.get_future().share()] {
            future.wait();
            order += 'a';
        });
        queue->postAfter(Seconds(3600), [&] { order += 'd'; });
        queue->postAfter(Seconds(60), [&] { order += 'c'; });
        queue->post([&] { order += 'b'; });
        queue.reset(); // would wait for ever here if it waited
        go.set_value();
    }
    EXPECT_EQ(order, "abcd");
}

TEST(ThreadWorkQueues, aQueueMayBeLetGoByItsOwnWorkAndMayOutliveItsMaker) {
    std::atomic<int> ran = 0;
    std::shared_ptr<ports::WorkQueue> outliving;
    {
        ThreadWorkQueues queues;
        auto queue = queues.serial("own");
        queue->post([&ran, held = queue]() mutable {
            held.reset();
            ++ran;
        });
        queue.reset();
        outliving = queues.serial("outliving");
        outliving->post([&] { ++ran; });
    }
    EXPECT_EQ(ran, 2);
    outliving->post([&] { ++ran; });
    outliving.reset();
    EXPECT_EQ(ran, 2);
}

TEST(ThreadWorkQueues, whatAPieceOwnsIsGoneWhenADrainSaysThatItIsDone) {
    ThreadWorkQueues queues;
    const auto queue = queues.serial("owner");
    std::atomic<int> gone = 0;
    const auto owned = [&] {
        return std::shared_ptr<void>(nullptr, [&](void*) {
            std::this_thread::sleep_for(20ms); // time enough for a drain that does not wait for it
            ++gone;
        });
    };
    testing::internal::CaptureStderr();
    queue->post([token = owned()] {});
    queue->post([token = owned()] { throw std::runtime_error("lens cap on"); });
    EXPECT_TRUE(queue->drain(patience));
    EXPECT_EQ(gone, 2);
    EXPECT_THAT(testing::internal::GetCapturedStderr(), testing::HasSubstr("lens cap on"));
}

TEST(ThreadWorkQueues, aQueueThatDoesNotKeepUpKeepsAllAndSaysSoOnce) {
    std::vector<std::string> reports;
    ThreadWorkQueues queues([&](std::string line) { reports.push_back(std::move(line)); });
    const auto queue = queues.serial("rows");
    std::promise<void> go;
    std::atomic<int> ran = 0;
    queue->post([future = go.get_future().share()] { future.wait(); });
    for (int number = 0; number < 150'000; ++number)
        queue->post([&] { ++ran; });
    go.set_value();
    EXPECT_TRUE(queue->drain(patience));
    EXPECT_EQ(ran, 150'000);
    EXPECT_THAT(reports,
                testing::ElementsAre("The work queue \"rows\" is not keeping up: 100000 pieces wait."));
}

TEST(ThreadWorkQueues, theBackgroundPoolRunsSideBySideAndEndsItsWork) {
    std::atomic<int> ran = 0;
    {
        ThreadWorkQueues queues({}, 3);
        std::promise<void> go;
        const auto future = go.get_future().share();
        std::atomic<int> waiting = 0;
        for (int number = 0; number < 3; ++number)
            queues.background([&, future] {
                ++waiting;
                future.wait();
                queues.background([&] { ++ran; });
            });
        while (waiting < 3)
            std::this_thread::yield(); // only three threads at once get it there
        for (int number = 0; number < 100; ++number)
            queues.background([&] { ++ran; });
        go.set_value();
    }
    EXPECT_EQ(ran, 103);
}

} // namespace
} // namespace zenka::platform

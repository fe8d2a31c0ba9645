// Post to run latency of the main loop and of a serial queue, each beside the plain Qt way or an empty
// round, and how late a timer runs.

#include "platform/QtMainLoop.h"
#include "platform/ThreadWorkQueues.h"

#include <QCoreApplication>
#include <QTimer>
#include <benchmark/benchmark.h>

#include <latch>

namespace {

using namespace zenka;
using Clock = std::chrono::steady_clock;

QCoreApplication& application() {
    static int count = 1;
    static char name[] = "bench";
    static char* words[] = {name, nullptr};
    static QCoreApplication instance(count, words);
    return instance;
}

/// From another thread to the main thread, which sleeps in its event loop.
template <typename Post>
void crossThread(benchmark::State& state, Post post) {
    platform::ThreadWorkQueues queues;
    const auto sender = queues.serial("sender");
    for (auto _ : state) {
        bool ran = false;
        Clock::time_point begin;
        Clock::time_point end;
        sender->postAfter(base::Seconds(0.0005), [&] {
            begin = Clock::now();
            post([&] {
                end = Clock::now();
                ran = true;
            });
        });
        while (!ran)
            application().processEvents(QEventLoop::WaitForMoreEvents);
        sender->drain(base::Seconds(1));
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
    }
}

void mainLoopFromAnotherThread(benchmark::State& state) {
    application();
    platform::QtMainLoop loop;
    crossThread(state, [&](auto function) { loop.post(std::move(function)); });
}
BENCHMARK(mainLoopFromAnotherThread)->UseManualTime()->Iterations(2000);

void invokeMethodFromAnotherThread(benchmark::State& state) {
    crossThread(state, [](auto function) {
        QMetaObject::invokeMethod(&application(), std::move(function), Qt::QueuedConnection);
    });
}
BENCHMARK(invokeMethodFromAnotherThread)->UseManualTime()->Iterations(2000);

/// The cost of one of a thousand posts from the main thread itself.
void mainLoopBatch(benchmark::State& state) {
    application();
    platform::QtMainLoop loop;
    for (auto _ : state) {
        int ran = 0;
        for (int number = 0; number < 1000; ++number)
            loop.post([&] { ++ran; });
        while (ran < 1000)
            application().processEvents(QEventLoop::WaitForMoreEvents);
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(mainLoopBatch);

void invokeMethodBatch(benchmark::State& state) {
    for (auto _ : state) {
        int ran = 0;
        for (int number = 0; number < 1000; ++number)
            QMetaObject::invokeMethod(
                &application(), [&] { ++ran; }, Qt::QueuedConnection);
        while (ran < 1000)
            application().processEvents(QEventLoop::WaitForMoreEvents);
    }
    state.SetItemsProcessed(state.iterations() * 1000);
}
BENCHMARK(invokeMethodBatch);

/// How long after its instant a timer of 1.3 ms runs.
void mainLoopTimerLateness(benchmark::State& state) {
    application();
    platform::QtMainLoop loop;
    for (auto _ : state) {
        bool ran = false;
        Clock::time_point end;
        const auto due = Clock::now() + std::chrono::microseconds(1300);
        loop.after(base::Seconds(0.0013), [&] {
            end = Clock::now();
            ran = true;
        });
        while (!ran)
            application().processEvents(QEventLoop::WaitForMoreEvents);
        state.SetIterationTime(std::chrono::duration<double>(end - due).count());
    }
}
BENCHMARK(mainLoopTimerLateness)->UseManualTime()->Iterations(1000);

/// From one thread to a queue's thread, which sleeps.
void serialQueue(benchmark::State& state) {
    platform::ThreadWorkQueues queues;
    const auto queue = queues.serial("receiver");
    for (auto _ : state) {
        std::latch ran(1);
        Clock::time_point end;
        std::this_thread::sleep_for(std::chrono::microseconds(200));
        const auto begin = Clock::now();
        queue->post([&] {
            end = Clock::now();
            ran.count_down();
        });
        ran.wait();
        queue->drain(base::Seconds(1));
        state.SetIterationTime(std::chrono::duration<double>(end - begin).count());
    }
}
BENCHMARK(serialQueue)->UseManualTime()->Iterations(2000);

} // namespace

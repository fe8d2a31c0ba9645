#include "platform/QuitSignals.h"

#include <atomic>
#include <csignal>
#include <sys/eventfd.h>
#include <utility>

namespace zenka::platform {

namespace {

constexpr int quitSignals[] = {SIGTERM, SIGINT, SIGHUP};

// What a signal handler may use: an event that the main thread waits for.
std::atomic<int> eventOfHandler = -1;

extern "C" void noteQuitSignal(int signal) {
    const std::uint64_t one = 1;
    [[maybe_unused]] const auto written = ::write(eventOfHandler, &one, sizeof one);
    std::signal(signal, SIG_DFL);
}

} // namespace

QuitSignals::QuitSignals(std::function<void()> quit) : event_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (!event_)
        return; // the signals then do what they did before
    notifier_ = std::make_unique<QSocketNotifier>(event_.get(), QSocketNotifier::Read);
    QObject::connect(notifier_.get(), &QSocketNotifier::activated,
                     [quit = std::move(quit), notifier = notifier_.get()] {
                         notifier->setEnabled(false);
                         quit();
                     });
    eventOfHandler = event_.get();
    for (const int signal : quitSignals)
        std::signal(signal, noteQuitSignal);
}

QuitSignals::~QuitSignals() {
    if (!event_)
        return;
    for (const int signal : quitSignals)
        std::signal(signal, SIG_DFL);
    eventOfHandler = -1;
}

} // namespace zenka::platform

#include "platform/SpeechSession.h"

#include <array>
#include <csignal>
#include <deque>
#include <map>
#include <mutex>
#include <optional>
#include <poll.h>
#include <pthread.h>
#include <sys/socket.h>

namespace zenka::platform {

namespace {

struct Order {
    std::uint64_t number = 0;
    std::optional<ports::Utterance> utterance; // none: only get ready
};

} // namespace

/// What the main thread and the session's share, and the session's work.
struct SpeechSession::Desk {
    Desk(SpeechService where, Ended told) : service(std::move(where)), ended(std::move(told)) {}

    void serve();
    void order(Order given) {
        {
            const std::lock_guard lock(mutex);
            orders.push_back(std::move(given));
        }
        events->wake();
    }

    const SpeechService service;
    const std::shared_ptr<SpeechEvents> events = std::make_shared<SpeechEvents>();
    std::mutex mutex;
    const Ended ended;
    std::deque<Order> orders;
    bool ending = false;
    Descriptor socket; // of the connection; both threads may break it off

private:
    void tell(std::uint64_t number, const ports::SpeechOutput::Result& result) {
        const std::lock_guard lock(mutex);
        if (!ending)
            ended(number, result);
    }
    bool connect(std::string& fault);
    void carryOut(const Order& given);
    void hearEvents();
    void sleep() const;
    bool hungUp() const;
    void lose(const std::string& fault);

    // of the session's thread alone
    std::unique_ptr<SpeechConnection> connection_;
    std::map<std::size_t, std::uint64_t> speaking_; // numbers of utterances by message
};

void SpeechSession::Desk::serve() {
    sigset_t pipe;
    sigemptyset(&pipe);
    sigaddset(&pipe, SIGPIPE);
    pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
    for (;;) {
        sleep();
        hearEvents();
        if (connection_ && hungUp())
            lose("the speech service went away");
        std::optional<Order> next;
        {
            const std::lock_guard lock(mutex);
            if (ending)
                break;
            if (orders.empty())
                continue;
            next = std::move(orders.front());
            orders.pop_front();
            if (!orders.empty())
                events->wake();
        }
        carryOut(*next);
    }
    if (connection_ && !speaking_.empty())
        connection_->cancel();
    connection_.reset();
}

void SpeechSession::Desk::sleep() const {
    std::array<pollfd, 2> waiting{{{.fd = events->descriptor(), .events = POLLIN, .revents = 0},
                                   {.fd = socket.get(), .events = POLLRDHUP, .revents = 0}}};
    ::poll(waiting.data(), connection_ ? 2 : 1, -1);
}

bool SpeechSession::Desk::hungUp() const {
    pollfd waiting{.fd = socket.get(), .events = POLLRDHUP, .revents = 0};
    return ::poll(&waiting, 1, 0) == 1;
}

void SpeechSession::Desk::hearEvents() {
    for (const SpeechEvents::Event& event : events->take()) {
        const auto found = speaking_.find(event.message);
        if (found == speaking_.end())
            continue;
        const std::uint64_t number = found->second;
        speaking_.erase(found);
        tell(number,
             {.spoken = event.spoken, .fault = event.spoken ? "" : "the speech service cancelled the words"});
    }
}

bool SpeechSession::Desk::connect(std::string& fault) {
    if (connection_)
        return true;
    connection_ = SpeechConnection::open(service, events, fault);
    const std::lock_guard lock(mutex);
    socket = connection_ ? connection_->socket() : Descriptor();
    return connection_ != nullptr;
}

void SpeechSession::Desk::carryOut(const Order& given) {
    std::string fault;
    if (!connect(fault)) {
        if (given.utterance)
            tell(given.number, {.spoken = false, .fault = fault});
        return;
    }
    if (!given.utterance) {
        // makes no sound and takes 10 ms, and the service reads its dictionaries
        connection_->say({.text = " ", .voiceId = {}});
        return;
    }
    if (const auto message = connection_->say(*given.utterance)) {
        speaking_[*message] = given.number;
        return;
    }
    lose("the speech service broke off");
    tell(given.number, {.spoken = false, .fault = "the speech service broke off"});
}

void SpeechSession::Desk::lose(const std::string& fault) {
    for (const auto& [message, number] : std::exchange(speaking_, {}))
        tell(number, {.spoken = false, .fault = fault});
    connection_.reset();
    const std::lock_guard lock(mutex);
    socket = Descriptor();
}

SpeechSession::SpeechSession(SpeechService service, Ended ended)
    : desk_(std::make_shared<Desk>(std::move(service), std::move(ended))),
      thread_([desk = desk_] { desk->serve(); }) {
}

SpeechSession::~SpeechSession() {
    end();
}

void SpeechSession::end() {
    {
        const std::lock_guard lock(desk_->mutex);
        desk_->ending = true;
    }
    desk_->events->wake();
}

void SpeechSession::speak(std::uint64_t number, ports::Utterance utterance) {
    desk_->order({.number = number, .utterance = std::move(utterance)});
}

void SpeechSession::warmUp() {
    desk_->order({});
}

std::function<void()> SpeechSession::abandon() {
    end();
    thread_.leave();
    return [desk = desk_] {
        const std::lock_guard lock(desk->mutex);
        ::shutdown(desk->socket.get(), SHUT_RDWR);
    };
}

} // namespace zenka::platform

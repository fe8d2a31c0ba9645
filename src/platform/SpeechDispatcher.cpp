#include "platform/SpeechDispatcher.h"

#include "platform/SpeechText.h"

#include <csignal>
#include <cstdlib>
#include <mutex>
#include <pthread.h>

namespace zenka::platform {

namespace {

/// So long a session that was abandoned may take to cancel.
constexpr base::Seconds farewell{2};

} // namespace

/// Asks once for the voices, on a thread of its own.
class SpeechDispatcher::VoiceSearch {
public:
    using Found = std::function<void(std::vector<ports::Voice>)>;

    VoiceSearch(const SpeechService& service, Found found)
        : desk_(std::make_shared<Desk>()), thread_([desk = desk_, service, found = std::move(found)] {
              sigset_t pipe;
              sigemptyset(&pipe);
              sigaddset(&pipe, SIGPIPE);
              pthread_sigmask(SIG_BLOCK, &pipe, nullptr);
              std::string fault;
              std::vector<ports::Voice> voices;
              if (const auto connection = SpeechConnection::open(service, nullptr, fault))
                  voices = connection->voices();
              const std::lock_guard lock(desk->mutex);
              if (!desk->closed)
                  found(std::move(voices));
          }) {}
    VoiceSearch(const VoiceSearch&) = delete;
    VoiceSearch& operator=(const VoiceSearch&) = delete;
    ~VoiceSearch() {
        const std::lock_guard lock(desk_->mutex);
        desk_->closed = true;
    }

private:
    struct Desk {
        std::mutex mutex;
        bool closed = false;
    };
    std::shared_ptr<Desk> desk_;
    LooseThread thread_;
};

SpeechDispatcher::SpeechDispatcher(ports::MainLoop& loop, SpeechService service)
    : loop_(loop), service_(std::move(service)) {
}

SpeechDispatcher::~SpeechDispatcher() = default;

SpeechSession& SpeechDispatcher::session() {
    if (!session_) {
        auto ended = lifeline_.guard([this](std::uint64_t number, const Result& result) {
            auto node = waiting_.extract(number);
            if (!node.empty() && node.mapped())
                node.mapped()(result);
        });
        session_ = std::make_unique<SpeechSession>(
            service_, [&loop = loop_, ended](std::uint64_t number, const Result& result) {
                loop.post([ended, number, result] { ended(number, result); });
            });
    }
    return *session_;
}

void SpeechDispatcher::speak(ports::Utterance utterance, Done done) {
    waiting_[++lastNumber_] = std::move(done);
    session().speak(lastNumber_, std::move(utterance));
}

void SpeechDispatcher::abandon() {
    waiting_.clear();
    if (!session_)
        return;
    loop_.after(farewell, session_->abandon());
    session_.reset();
}

void SpeechDispatcher::warmUp() {
    session().warmUp();
}

void SpeechDispatcher::listVoices(TakeVoices take) {
    takers_.push_back(std::move(take));
    if (takers_.size() > 1)
        return;
    auto found = lifeline_.guard([this](const std::vector<ports::Voice>& voices) {
        search_.reset();
        for (const TakeVoices& taker : std::exchange(takers_, {}))
            taker(voices);
    });
    search_ =
        std::make_unique<VoiceSearch>(service_, [&loop = loop_, found](std::vector<ports::Voice> voices) {
            loop.post([found, voices = std::move(voices)] { found(voices); });
        });
}

std::string SpeechDispatcher::userLanguage() const {
    for (const char* variable : {"LC_ALL", "LC_MESSAGES", "LANG"}) {
        const char* locale = std::getenv(variable);
        if (locale && *locale)
            return speechText::tagOfLocale(locale);
    }
    return {};
}

} // namespace zenka::platform

#pragma once

#include "platform/Descriptor.h"
#include "ports/SpeechOutput.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace zenka::platform {

/// Where speech-dispatcher listens.
struct SpeechService {
    std::string socket; ///< path; empty for the user's usual service
    bool start = true;  ///< when nobody listens there
};

/// What the service tells of messages, from libspeechd's thread to another that sleeps on the descriptor.
class SpeechEvents {
public:
    struct Event {
        std::size_t message = 0;
        bool spoken = false; ///< else it was cancelled
    };

    SpeechEvents();
    void add(Event event);
    std::vector<Event> take();
    /// Makes the descriptor readable.
    void wake();
    int descriptor() const { return wake_.get(); }

private:
    Descriptor wake_;
    std::mutex mutex_;
    std::vector<Event> events_;
};

/// A connection to speech-dispatcher by libspeechd, on one thread, which blocks that signal that a write to a
/// service gone would raise (SIGPIPE). The library's calls wait for the service without end.
class SpeechConnection {
public:
    /// Connects, where need be starts the service. With events the connection tells the ends of messages;
    /// one without is for questions. Nothing on a fault, which is the end of a sentence.
    static std::unique_ptr<SpeechConnection>
    open(const SpeechService& service, const std::shared_ptr<SpeechEvents>& events, std::string& fault);
    SpeechConnection(const SpeechConnection&) = delete;
    SpeechConnection& operator=(const SpeechConnection&) = delete;
    ~SpeechConnection();

    /// Queues an utterance behind this connection's others; the number of its message, or nothing when the
    /// connection is of no more use.
    std::optional<std::size_t> say(const ports::Utterance& utterance);

    /// Cancels all that was given.
    void cancel();

    /// Changes the output module, so a connection that speaks is not to be asked.
    std::vector<ports::Voice> voices();

    /// Another descriptor of the same socket: hung up when the service goes; shutting it down frees a
    /// thread that is stuck in the library.
    Descriptor socket() const;

private:
    struct Library;
    explicit SpeechConnection(std::unique_ptr<Library> library);
    bool choose(const std::string& voiceId);

    std::unique_ptr<Library> library_;
};

} // namespace zenka::platform

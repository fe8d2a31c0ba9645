#pragma once

#include "platform/LooseThread.h"
#include "platform/SpeechConnection.h"

#include <cstdint>
#include <functional>
#include <memory>

namespace zenka::platform {

/// One client of the speech service, on a thread of its own. It connects when there is something to say, and
/// anew when the service went away.
class SpeechSession {
public:
    /// Hears once of each utterance that ended or will not be spoken. On the session's thread; not any more
    /// once the session is abandoned or destroyed.
    using Ended = std::function<void(std::uint64_t utterance, const ports::SpeechOutput::Result&)>;

    SpeechSession(SpeechService service, Ended ended);
    SpeechSession(const SpeechSession&) = delete;
    SpeechSession& operator=(const SpeechSession&) = delete;

    /// Cancels what is being spoken; waits half a second at most.
    ~SpeechSession();

    void speak(std::uint64_t number, ports::Utterance utterance);
    void warmUp();

    /// Cancels what is being spoken and waits for nothing. What is given back breaks the thread's connection
    /// off when it is called, for a thread that the service keeps waiting.
    std::function<void()> abandon();

private:
    struct Desk;
    void end();

    std::shared_ptr<Desk> desk_;
    LooseThread thread_;
};

} // namespace zenka::platform

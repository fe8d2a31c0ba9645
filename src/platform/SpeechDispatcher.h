#pragma once

#include "base/Lifeline.h"
#include "platform/SpeechSession.h"
#include "ports/MainLoop.h"
#include "ports/SpeechOutput.h"

#include <map>
#include <memory>

namespace zenka::platform {

/// Speech by speech-dispatcher, through whichever engines it has. Voices have ids of the form "module/name".
///
/// A session keeps one connection open from the first word on, which also keeps a service alive that was
/// started for it. Abandoning makes a new session, so that nothing waits for the old one. An engine that died
/// is not noticed by the service (0.11.4), which ends no utterance any more until it is asked to cancel one;
/// then it breaks down itself, and the next words start a new one. Voices are asked for on a connection of
/// their own.
class SpeechDispatcher final : public ports::SpeechOutput {
public:
    explicit SpeechDispatcher(ports::MainLoop& loop, SpeechService service = {});
    SpeechDispatcher(const SpeechDispatcher&) = delete;
    SpeechDispatcher& operator=(const SpeechDispatcher&) = delete;

    /// Ends all speech; waits half a second at most for each of its two threads.
    ~SpeechDispatcher() override;

    void speak(ports::Utterance utterance, Done done) override;
    void abandon() override;
    void warmUp() override;
    void listVoices(TakeVoices take) override;
    std::string userLanguage() const override;

private:
    class VoiceSearch;
    SpeechSession& session();

    ports::MainLoop& loop_;
    const SpeechService service_;
    std::uint64_t lastNumber_ = 0;
    std::map<std::uint64_t, Done> waiting_;
    std::vector<TakeVoices> takers_;
    std::unique_ptr<SpeechSession> session_;
    std::unique_ptr<VoiceSearch> search_;
    base::Lifeline lifeline_;
};

} // namespace zenka::platform

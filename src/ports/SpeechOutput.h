#pragma once

#include <functional>
#include <string>
#include <vector>

namespace zenka::ports {

/// A voice that is installed.
struct Voice {
    std::string id;       ///< what a setting keeps; unique among the voices
    std::string name;     ///< for people
    std::string language; ///< IETF tag, "en-GB"; empty where it is not known
    int quality = 0;      ///< the more, the better; comparable among the voices of one list only

    friend bool operator==(const Voice&, const Voice&) = default;
};

struct Utterance {
    std::string text;
    std::string voiceId; ///< empty for the engine's own choice
    double rate = 1.0;   ///< of the user's usual speed of speech
    double volume = 1.0; ///< of the engine's full volume

    friend bool operator==(const Utterance&, const Utterance&) = default;
};

/// Text to speech. Main thread; nothing waits for the engine.
class SpeechOutput {
public:
    struct Result {
        bool spoken = false; ///< to its end
        std::string fault;   ///< why not, as the end of a sentence: "no speech service answers"

        friend bool operator==(const Result&, const Result&) = default;
    };
    using Done = std::function<void(const Result&)>;
    using TakeVoices = std::function<void(const std::vector<Voice>& voices)>;

    virtual ~SpeechOutput() = default;

    /// Speaks after what was given before, and calls done once on the main thread, never from within: at
    /// the utterance's end, or as soon as it is clear that it will not be spoken. An engine that never
    /// ends an utterance never calls done.
    virtual void speak(Utterance utterance, Done done) = 0;

    /// Gives up all that was given and not ended, also where the engine has got stuck: done of none of it is
    /// called any more, and what is given from now on does not wait for it.
    virtual void abandon() = 0;

    /// Gets the engine ready, so that the next utterance begins without delay.
    virtual void warmUp() = 0;

    /// The voices that are installed, later on the main thread; none where there is no engine.
    virtual void listVoices(TakeVoices take) = 0;

    /// Language of the user as an IETF tag, "en-GB"; empty where none is set.
    virtual std::string userLanguage() const = 0;
};

} // namespace zenka::ports

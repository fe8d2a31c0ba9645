#pragma once

#include "platform/virtual/VirtualTime.h"
#include "ports/AlertSounds.h"
#include "ports/AudioOutput.h"
#include "ports/MainLoop.h"
#include "ports/SpeechOutput.h"

#include <string>
#include <utility>
#include <vector>

namespace zenka::test {

/// A speech engine in virtual time.
class ScriptedSpeech final : public ports::SpeechOutput {
public:
    ScriptedSpeech(platform::VirtualTime& time, ports::MainLoop& loop) : time_(time), loop_(loop) {}

    base::Seconds perUtterance{1.0};
    std::string fault; ///< nothing can be spoken, said at once
    bool neverEnds = false;
    std::vector<ports::Voice> installed;
    std::string language = "en-GB";

    struct Spoken {
        double at = 0; ///< continuous seconds
        ports::Utterance utterance;
    };
    std::vector<Spoken> spoken; ///< in the order in which they were given
    int warmUps = 0;
    int abandoned = 0;
    int listings = 0;

    std::vector<std::string> texts() const {
        std::vector<std::string> all;
        for (const Spoken& each : spoken)
            all.push_back(each.utterance.text);
        return all;
    }

    void speak(ports::Utterance utterance, Done done) override {
        spoken.push_back({.at = time_.continuousSeconds(), .utterance = std::move(utterance)});
        if (!fault.empty())
            loop_.post([done = std::move(done), why = fault] { done({.spoken = false, .fault = why}); });
        else if (!neverEnds)
            loop_.after(perUtterance, [done = std::move(done)] { done({.spoken = true, .fault = {}}); });
    }
    void abandon() override { ++abandoned; }
    void warmUp() override { ++warmUps; }
    void listVoices(TakeVoices take) override {
        ++listings;
        loop_.post([take = std::move(take), voices = installed] { take(voices); });
    }
    std::string userLanguage() const override { return language; }

private:
    platform::VirtualTime& time_;
    ports::MainLoop& loop_;
};

/// Notes what would be heard.
class HeardSounds final : public ports::AlertSounds {
public:
    explicit HeardSounds(platform::VirtualTime& time) : time_(time) {}
    std::vector<double> heard; ///< continuous seconds
    std::string fault;

    void play(const std::string&, Failed failed) override {
        if (fault.empty())
            heard.push_back(time_.continuousSeconds());
        else
            failed(fault);
    }

private:
    platform::VirtualTime& time_;
};

/// An output that is set as a test says.
struct ToldAudio final : ports::AudioOutput {
    ports::AudioState now;
    ports::AudioState state() const override { return now; }
};

} // namespace zenka::test

// How late the voice is: from the call to speak to the first sound in a recording of a null output, with a
// PulseAudio and a speech-dispatcher of its own and espeak-ng. A sample counts from the moment when the
// recorder had it, in pieces as long as is printed, so the true value is smaller by up to that.

#include "platform/QtMainLoop.h"
#include "platform/SpeechDispatcher.h"
#include "support/SoundServers.h"

#include <QCoreApplication>
#include <absl/strings/str_format.h>

#include <algorithm>
#include <array>
#include <cstdio>
#include <optional>
#include <vector>

namespace {

using namespace zenka;
using namespace std::chrono_literals;
using Clock = std::chrono::steady_clock;

double millisecondsSince(Clock::time_point begin, Clock::time_point end) {
    return std::chrono::duration<double, std::milli>(end - begin).count();
}

void serve(const std::function<bool()>& over) {
    while (!over())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

void rest(std::chrono::milliseconds span) {
    const auto end = Clock::now() + span;
    serve([&] { return Clock::now() > end; });
}

struct Spoken {
    double firstSoundMs = 0;
    double endMs = 0;
};

Spoken speak(platform::SpeechDispatcher& speech, test::Recording& recording, const std::string& text) {
    std::optional<Clock::time_point> end;
    const auto begin = Clock::now();
    speech.speak({.text = text, .voiceId = {}, .rate = 0.96, .volume = 1}, [&](const auto& result) {
        if (!result.spoken)
            std::puts(("not spoken: " + result.fault).c_str());
        end = Clock::now();
    });
    serve([&] { return end.has_value(); });
    const auto sound = recording.firstSoundAfter(begin, 5s);
    rest(400ms);
    return {.firstSoundMs = sound ? millisecondsSince(begin, *sound) : -1,
            .endMs = millisecondsSince(begin, *end)};
}

void print(const char* title, std::vector<double> values) {
    std::ranges::sort(values);
    std::puts(absl::StrFormat("%-44s %3d utterances   median %4.0f ms   worst %4.0f ms", title, values.size(),
                              values[values.size() / 2], values.back())
                  .c_str());
}

constexpr std::array texts{
    "Remove filters",
    "Totality begins in thirty seconds",
    "Camera CAM1 battery at 18 percent. Swap soon.",
    "Warning. Your computer is overheating. Move it into the shade.",
    "Second contact in ten seconds, remove all the filters now and look up at the sky.",
};

} // namespace

int main(int argc, char** argv) {
    const QCoreApplication application(argc, argv);
    test::PrivateUser user;
    test::SoundServer sound(user);
    platform::QtMainLoop loop;
    const int rounds = 6;
    double longestPiece = 0;

    const auto fresh = [&](bool warm, std::chrono::milliseconds pause, bool running) {
        test::SpeechServer server(user);
        if (running)
            server.start();
        test::Recording recording;
        platform::SpeechDispatcher speech(loop, {.socket = server.socket(), .start = true});
        if (warm)
            speech.warmUp();
        rest(pause);
        const double first = speak(speech, recording, texts[0]).firstSoundMs;
        longestPiece = std::max(longestPiece, recording.longestPieceSec());
        return first;
    };
    std::vector<double> cold;
    std::vector<double> started;
    std::vector<double> warmed;
    for (int round = 0; round < rounds; ++round) {
        cold.push_back(fresh(false, 0ms, false));
        started.push_back(fresh(false, 0ms, true));
        warmed.push_back(fresh(true, 5s, false));
    }
    print("the service has to be started", cold);
    print("a service just started, not warmed up", started);
    print("first words 5 s after warming up", warmed);

    test::SpeechServer server(user);
    server.start();
    test::Recording recording;
    platform::SpeechDispatcher speech(loop, {.socket = server.socket(), .start = false});
    speak(speech, recording, texts[0]);
    std::vector<double> later;
    std::vector<std::pair<std::size_t, double>> lengths;
    for (int round = 0; round < rounds; ++round)
        for (const std::string text : texts) {
            const Spoken spoken = speak(speech, recording, text);
            later.push_back(spoken.firstSoundMs);
            lengths.emplace_back(text.size(), spoken.endMs);
        }
    print("later words", later);
    longestPiece = std::max(longestPiece, recording.longestPieceSec());
    std::puts(absl::StrFormat("pieces of the recording: %.0f ms at most", 1000 * longestPiece).c_str());
    for (std::size_t i = 0; i < texts.size(); ++i)
        std::puts(absl::StrFormat("%3d characters: told as spoken after %.0f ms, %.0f ms a character",
                                  lengths[i].first, lengths[i].second,
                                  lengths[i].second / static_cast<double>(lengths[i].first))
                      .c_str());
}

#pragma once

#include "support/Child.h"

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <memory>
#include <mutex>
#include <optional>
#include <stop_token>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace zenka::test {

/// Folders of a user who has only just come: services that find theirs by the environment stay by themselves.
/// Puts the environment back when it goes.
class PrivateUser {
public:
    PrivateUser();
    PrivateUser(const PrivateUser&) = delete;
    PrivateUser& operator=(const PrivateUser&) = delete;
    ~PrivateUser();

    const std::filesystem::path& folder() const { return folder_; }
    void set(const std::string& name, const std::string& value);

private:
    std::filesystem::path folder_;
    std::vector<std::pair<std::string, std::optional<std::string>>> before_;
};

/// A PulseAudio daemon of the test's own whose one output, "out", swallows what it plays. Child processes and
/// libraries find it by PULSE_SERVER.
class SoundServer {
public:
    explicit SoundServer(PrivateUser& user);

    void start();
    void stop(); // dead at once
    std::string address() const;
    /// A line for pactl.
    void control(const std::vector<std::string>& words);

private:
    std::filesystem::path folder_;
    std::unique_ptr<Child> daemon_;
};

/// What the null output plays, from now on.
class Recording {
public:
    using Clock = std::chrono::steady_clock;
    static constexpr int rate = 44100;

    /// Begins once sound (of silence) arrives.
    Recording();
    Recording(const Recording&) = delete;
    Recording& operator=(const Recording&) = delete;

    struct Stretch {
        double beginSec = 0; ///< of the recording
        double endSec = 0;
        double loudness = 0; ///< root mean square, 1 is full
        double seconds() const { return endSec - beginSec; }
    };
    /// What was heard up to now: stretches of sound with a pause of some length between them.
    std::vector<Stretch> stretches(double pauseSec);
    /// Waits until something is heard that came in at or after an instant, and gives that instant: when the
    /// piece with the first sample that is no silence had come. Nothing within the limit gives nothing.
    std::optional<Clock::time_point> firstSoundAfter(Clock::time_point begin,
                                                     std::chrono::milliseconds limit);
    /// Waits until it has been silent for some time.
    bool waitForSilence(double silentSec, std::chrono::milliseconds limit);
    /// How long the sound was on its way to the recorder at most, by the pieces that it comes in.
    double longestPieceSec();

private:
    /// Takes in all that comes: the recorder loses what finds its pipe full.
    void listen(const std::stop_token& stop);

    struct Piece {
        std::size_t end = 0; // in samples_
        Clock::time_point arrival;
    };
    Child recorder_;
    std::mutex mutex_;
    std::condition_variable_any more_;
    std::vector<std::int16_t> samples_;
    std::vector<Piece> pieces_;
    double longestPieceSec_ = 0;
    std::jthread listener_;
};

/// A speech-dispatcher with espeak-ng of the test's own.
class SpeechServer {
public:
    explicit SpeechServer(PrivateUser& user);
    SpeechServer(const SpeechServer&) = delete;
    SpeechServer& operator=(const SpeechServer&) = delete;
    ~SpeechServer();

    void start();
    /// By SIGKILL, also one that was started on demand; the engine then ends by itself.
    void kill();
    void killEngine() const;
    std::string socket() const;
    /// Makes the service refuse to be started on demand.
    void forbidStart();

private:
    const std::filesystem::path folder_;
    const std::filesystem::path configuration_;
    std::unique_ptr<Child> daemon_;
};

} // namespace zenka::test

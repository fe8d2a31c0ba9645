#include "support/SoundServers.h"

#include <algorithm>
#include <cmath>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <stdexcept>
#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace zenka::test {

namespace {

using namespace std::chrono_literals;

constexpr auto patience = 30s;
constexpr int silence = 30; // of 32767; the services make none of their own

bool takesConnections(const std::filesystem::path& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.string().copy(address.sun_path, sizeof address.sun_path - 1);
    const int socket = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    const bool connected =
        ::connect(socket, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0;
    ::close(socket);
    return connected;
}

void waitFor(const std::filesystem::path& socket) {
    const auto end = std::chrono::steady_clock::now() + patience;
    while (!takesConnections(socket)) {
        if (std::chrono::steady_clock::now() > end)
            throw std::runtime_error("nobody listens at " + socket.string());
        std::this_thread::sleep_for(5ms);
    }
}

void write(const std::filesystem::path& file, const std::string& text) {
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << text;
}

/// A program whose chatter goes nowhere.
std::vector<std::string> quiet(const std::vector<std::string>& words) {
    std::vector<std::string> all{"sh", "-c", "exec \"$@\" 2>/dev/null", "sh"};
    all.insert(all.end(), words.begin(), words.end());
    return all;
}

} // namespace

PrivateUser::PrivateUser() {
    // short and plain: names of sockets have a limit, and PulseAudio reads its arguments by rules of its own
    std::string name = std::filesystem::temp_directory_path() / "zenka.XXXXXX";
    if (!mkdtemp(name.data()))
        throw std::runtime_error("no folder can be made below the temporary one");
    folder_ = name;
    const auto own = [this](const char* variable, const char* below) {
        const auto path = folder_ / below;
        std::filesystem::create_directories(path);
        std::filesystem::permissions(path, std::filesystem::perms::owner_all);
        set(variable, path);
    };
    own("HOME", "home");
    own("XDG_RUNTIME_DIR", "run");
    own("XDG_CONFIG_HOME", "config");
    own("XDG_CACHE_HOME", "cache");
    own("XDG_DATA_HOME", "data");
}

PrivateUser::~PrivateUser() {
    for (auto entry = before_.rbegin(); entry != before_.rend(); ++entry) {
        if (entry->second)
            ::setenv(entry->first.c_str(), entry->second->c_str(), 1);
        else
            ::unsetenv(entry->first.c_str());
    }
    std::error_code ignored;
    std::filesystem::remove_all(folder_, ignored);
}

void PrivateUser::set(const std::string& name, const std::string& value) {
    const char* now = std::getenv(name.c_str());
    before_.emplace_back(name, now ? std::optional<std::string>(now) : std::nullopt);
    ::setenv(name.c_str(), value.c_str(), 1);
}

SoundServer::SoundServer(PrivateUser& user) : folder_(user.folder()) {
    user.set("PULSE_SERVER", address());
    start();
}

void SoundServer::start() {
    // without "norewinds" the output begins by dealing in pieces of two seconds
    daemon_ = std::make_unique<Child>(
        quiet({"pulseaudio", "-n", "--daemonize=no", "--exit-idle-time=-1", "--use-pid-file=no",
               "--disable-shm=yes", "--realtime=no", "--high-priority=no", "-L",
               "module-null-sink sink_name=out rate=44100 norewinds=1", "-L",
               "module-native-protocol-unix auth-anonymous=1 socket=" + (folder_ / "sound").string()}));
    waitFor(folder_ / "sound");
}

void SoundServer::stop() {
    daemon_.reset();
    std::filesystem::remove(folder_ / "sound");
}

std::string SoundServer::address() const {
    return "unix:" + (folder_ / "sound").string();
}

void SoundServer::control(const std::vector<std::string>& words) {
    std::vector<std::string> all{"pactl"};
    all.insert(all.end(), words.begin(), words.end());
    if (Child(all).wait() != 0)
        throw std::runtime_error("pactl refuses " + words.front());
}

Recording::Recording()
    : recorder_({"parec", "--device=out.monitor", "--raw", "--format=s16le", "--channels=1",
                 "--rate=" + std::to_string(rate), "--latency-msec=10", "--process-time-msec=5"}),
      listener_([this](const std::stop_token& stop) { listen(stop); }) {
    std::unique_lock lock(mutex_);
    if (!more_.wait_for(lock, patience, [this] { return !pieces_.empty(); }))
        throw std::runtime_error("the output cannot be recorded");
}

void Recording::listen(const std::stop_token& stop) {
    std::string bytes; // half a sample may be left over
    while (!stop.stop_requested()) {
        bytes += recorder_.readWithin(50ms);
        const auto arrival = Clock::now();
        const std::size_t count = bytes.size() / 2;
        if (count == 0)
            continue;
        const std::lock_guard lock(mutex_);
        const std::size_t before = samples_.size();
        samples_.resize(before + count);
        std::memcpy(samples_.data() + before, bytes.data(), 2 * count);
        bytes.erase(0, 2 * count);
        pieces_.push_back({.end = samples_.size(), .arrival = arrival});
        longestPieceSec_ = std::max(longestPieceSec_, static_cast<double>(count) / rate);
        more_.notify_all();
    }
}

double Recording::longestPieceSec() {
    const std::lock_guard lock(mutex_);
    return longestPieceSec_;
}

std::vector<Recording::Stretch> Recording::stretches(double pauseSec) {
    const std::lock_guard lock(mutex_);
    const auto pause = static_cast<std::size_t>(pauseSec * rate);
    std::vector<Stretch> found;
    std::size_t begin = 0;
    std::size_t end = 0; // of the sound that goes on; 0 when none does
    const auto close = [&] {
        double sum = 0;
        for (std::size_t i = begin; i < end; ++i)
            sum += std::pow(samples_[i] / 32768.0, 2);
        found.push_back({.beginSec = static_cast<double>(begin) / rate,
                         .endSec = static_cast<double>(end) / rate,
                         .loudness = std::sqrt(sum / static_cast<double>(end - begin))});
        end = 0;
    };
    for (std::size_t i = 0; i < samples_.size(); ++i) {
        if (std::abs(samples_[i]) > silence) {
            if (end == 0)
                begin = i;
            end = i + 1;
        } else if (end != 0 && i - end >= pause) {
            close();
        }
    }
    if (end != 0)
        close();
    return found;
}

std::optional<Recording::Clock::time_point> Recording::firstSoundAfter(Clock::time_point begin,
                                                                       std::chrono::milliseconds limit) {
    const auto over = Clock::now() + limit;
    std::unique_lock lock(mutex_);
    std::size_t piece = 0;
    do {
        for (; piece < pieces_.size(); ++piece) {
            if (pieces_[piece].arrival < begin)
                continue;
            const std::size_t from = piece == 0 ? 0 : pieces_[piece - 1].end;
            if (std::any_of(samples_.begin() + static_cast<std::ptrdiff_t>(from),
                            samples_.begin() + static_cast<std::ptrdiff_t>(pieces_[piece].end),
                            [](std::int16_t sample) { return std::abs(sample) > silence; }))
                return pieces_[piece].arrival;
        }
    } while (more_.wait_until(lock, over, [&] { return pieces_.size() > piece; }));
    return std::nullopt;
}

bool Recording::waitForSilence(double silentSec, std::chrono::milliseconds limit) {
    const auto silent = [&] {
        const auto loud = std::find_if(samples_.rbegin(), samples_.rend(),
                                       [](std::int16_t sample) { return std::abs(sample) > silence; });
        return static_cast<double>(loud - samples_.rbegin()) >= silentSec * rate;
    };
    std::unique_lock lock(mutex_);
    return more_.wait_until(lock, Clock::now() + limit, silent);
}

SpeechServer::SpeechServer(PrivateUser& user)
    : folder_(user.folder() / "run" / "speech-dispatcher"),
      configuration_(user.folder() / "config" / "speech-dispatcher") {
    user.set("SPEECHD_ADDRESS", "unix_socket:" + socket());
    write(configuration_ / "speechd.conf", "LogLevel 0\nLogDir \"" + folder_.string() +
                                               "\"\nAudioOutputMethod \"pulse\"\n" +
                                               "AddModule \"espeak-ng\" \"sd_espeak-ng\" "
                                               "\"espeak-ng.conf\"\nDefaultModule espeak-ng\nTimeout 20\n");
    std::filesystem::create_directories(folder_);
}

SpeechServer::~SpeechServer() {
    kill();
}

void SpeechServer::start() {
    daemon_ = std::make_unique<Child>(quiet({"speech-dispatcher", "-s", "-C", configuration_, "-S", socket(),
                                             "-P", folder_ / "own.pid", "-L", folder_}));
    waitFor(socket());
}

void SpeechServer::kill() {
    daemon_.reset();
    const auto file = folder_ / "pid" / "speech-dispatcher.pid";
    pid_t onDemand = 0;
    if (std::ifstream(file) >> onDemand && onDemand > 1)
        ::kill(onDemand, SIGKILL);
    std::error_code ignored;
    std::filesystem::remove(file, ignored);
}

void SpeechServer::killEngine() const {
    // the engine has the path of its configuration as argument
    for (const auto& process : std::filesystem::directory_iterator("/proc")) {
        const pid_t id = std::atoi(process.path().filename().c_str());
        std::ifstream file(process.path() / "cmdline");
        const std::string words{std::istreambuf_iterator<char>(file), {}};
        if (id > 1 && words.find("/sd_espeak-ng") != std::string::npos &&
            words.find(configuration_.string()) != std::string::npos)
            ::kill(id, SIGKILL);
    }
}

std::string SpeechServer::socket() const {
    return folder_ / "speechd.sock";
}

void SpeechServer::forbidStart() {
    std::ofstream(configuration_ / "speechd.conf", std::ios::app) << "DisableAutoSpawn\n";
}

} // namespace zenka::test

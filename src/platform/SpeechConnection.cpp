#include "platform/SpeechConnection.h"

#include "base/Text.h"
#include "platform/SpeechText.h"

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <iterator>
#include <libspeechd.h>
#include <map>
#include <poll.h>
#include <pthread.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <tuple>
#include <unistd.h>

namespace zenka::platform {

namespace {

constexpr const char* noAnswer = "no speech service answers";
constexpr int handshakeMs = 5000; // a service that systemd starts on demand takes its time

// The library's callbacks carry no pointer of ours, only the service's number of the client. Never destroyed:
// a thread that is stuck in the library may outlive main().
struct Clients {
    std::mutex mutex;
    std::map<std::size_t, std::weak_ptr<SpeechEvents>> events;
};

Clients& clients() {
    static auto* const all = new Clients;
    return *all;
}

void notice(std::size_t message, std::size_t client, SPDNotificationType type) {
    // spd_close cancels this thread, which must not unwind from in here
    int before = 0;
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, &before);
    {
        std::shared_ptr<SpeechEvents> events;
        {
            const std::lock_guard lock(clients().mutex);
            const auto found = clients().events.find(client);
            if (found != clients().events.end())
                events = found->second.lock();
        }
        if (events)
            events->add({.message = message, .spoken = type == SPD_EVENT_END});
    }
    pthread_setcancelstate(before, nullptr);
}

using Address = std::unique_ptr<SPDConnectionAddress, void (*)(SPDConnectionAddress*)>;

Address addressOf(const SpeechService& service, std::string& fault) {
    if (service.socket.empty()) {
        char* words = nullptr;
        Address address(spd_get_default_address(&words), SPDConnectionAddress__free);
        if (!address)
            fault = "the address of the speech service makes no sense";
        std::free(words);
        return address;
    }
    Address address(static_cast<SPDConnectionAddress*>(std::calloc(1, sizeof(SPDConnectionAddress))),
                    SPDConnectionAddress__free);
    address->method = SPD_METHOD_UNIX_SOCKET;
    address->unix_socket_name = ::strdup(service.socket.c_str());
    return address;
}

enum class Greeting { answered, nobody, silent };

/// The library waits for its first answer without end, so a connection of our own asks for one first.
Greeting greet(const std::string& path) {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        return Greeting::nobody;
    path.copy(address.sun_path, path.size());
    const Descriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (::connect(socket.get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        // its queue of those who wait to be let in is full
        return errno == EAGAIN ? Greeting::silent : Greeting::nobody;
    constexpr std::string_view bye = "QUIT\r\n";
    std::ignore = ::send(socket.get(), bye.data(), bye.size(), MSG_NOSIGNAL);
    pollfd waiting{.fd = socket.get(), .events = POLLIN, .revents = 0};
    char digit = 0;
    if (::poll(&waiting, 1, handshakeMs) != 1 || ::recv(socket.get(), &digit, 1, 0) != 1)
        return Greeting::silent;
    // the library ends the process at an answer below 100
    return digit >= '1' && digit <= '9' ? Greeting::answered : Greeting::silent;
}

/// The library's reason why nobody could be reached, which is several sentences in one line.
std::string reasonOf(const char* words) {
    std::string_view reason = words ? words : "";
    for (const std::string_view lead : {"Autospawn: ", "stating this as a reason: ", "Autospawn failed: "})
        if (const std::size_t at = reason.find(lead); at != std::string_view::npos)
            reason.remove_prefix(at + lead.size());
    const std::string line(base::trimmed(reason.substr(0, reason.find('\n'))));
    return line.empty() ? noAnswer : std::string(noAnswer) + " (" + line.substr(0, 200) + ")";
}

} // namespace

struct SpeechConnection::Library {
    explicit Library(SPDConnection* opened) : connection(opened) {}
    Library(const Library&) = delete;
    Library& operator=(const Library&) = delete;
    ~Library() {
        if (client > 0) {
            const std::lock_guard lock(clients().mutex);
            clients().events.erase(static_cast<std::size_t>(client));
        }
        spd_close(connection);
    }

    bool ok(int result) {
        lost = lost || result != 0;
        return result == 0;
    }

    /// The output modules with an engine. The one named dummy only says that there is none.
    void listEngines() {
        char** const list = spd_list_modules(connection);
        lost = lost || list == nullptr;
        for (char** name = list; name && *name; ++name)
            if (std::string_view(*name) != "dummy")
                engines.emplace_back(*name);
        if (list)
            free_spd_modules(list);
    }

    SPDConnection* connection = nullptr;
    int client = 0;
    bool lost = false;
    int usualRate = 0;
    std::vector<std::string> engines;
    std::string usualModule;
    // as they were last set
    std::string voiceId;
    std::optional<int> rate;
    std::optional<int> volume;
};

SpeechEvents::SpeechEvents() : wake_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
}

void SpeechEvents::add(Event event) {
    {
        const std::lock_guard lock(mutex_);
        events_.push_back(event);
    }
    wake();
}

std::vector<SpeechEvents::Event> SpeechEvents::take() {
    std::uint64_t count = 0;
    std::ignore = ::read(wake_.get(), &count, sizeof count);
    const std::lock_guard lock(mutex_);
    return std::exchange(events_, {});
}

void SpeechEvents::wake() {
    const std::uint64_t one = 1;
    std::ignore = ::write(wake_.get(), &one, sizeof one);
}

SpeechConnection::SpeechConnection(std::unique_ptr<Library> library) : library_(std::move(library)) {
}

SpeechConnection::~SpeechConnection() = default;

std::unique_ptr<SpeechConnection> SpeechConnection::open(const SpeechService& service,
                                                         const std::shared_ptr<SpeechEvents>& events,
                                                         std::string& fault) {
    const Address address = addressOf(service, fault);
    if (!address)
        return nullptr;
    if (address->method == SPD_METHOD_UNIX_SOCKET) {
        const Greeting greeting = greet(address->unix_socket_name);
        if (greeting == Greeting::silent || (greeting == Greeting::nobody && !service.start)) {
            fault = greeting == Greeting::silent ? "the speech service does not answer" : noAnswer;
            return nullptr;
        }
    }
    char* words = nullptr;
    SPDConnection* opened = spd_open2("zenka", "main", nullptr, events ? SPD_MODE_THREADED : SPD_MODE_SINGLE,
                                      address.get(), service.start ? 1 : 0, &words);
    const std::string reason = reasonOf(words);
    std::free(words);
    if (!opened) {
        fault = reason;
        return nullptr;
    }
    ::fcntl(opened->socket, F_SETFD, FD_CLOEXEC);
    auto library = std::make_unique<Library>(opened);
    library->listEngines();
    if (library->engines.empty()) {
        fault = library->lost ? "the speech service broke off" : "no speech engine is installed";
        return nullptr;
    }
    library->usualRate = spd_get_voice_rate(opened);
    if (char* module = spd_get_output_module(opened)) {
        library->usualModule = module;
        std::free(module);
    }
    library->client = events ? spd_get_client_id(opened) : 0;
    if (library->client > 0) {
        const std::lock_guard lock(clients().mutex);
        clients().events[static_cast<std::size_t>(library->client)] = events;
    }
    opened->callback_end = notice;
    opened->callback_cancel = notice;
    if (events && (library->client <= 0 || !library->ok(spd_set_notification_on(opened, SPD_END)) ||
                   !library->ok(spd_set_notification_on(opened, SPD_CANCEL)))) {
        fault = "the speech service broke off";
        return nullptr;
    }
    return std::unique_ptr<SpeechConnection>(new SpeechConnection(std::move(library)));
}

bool SpeechConnection::choose(const std::string& voiceId) {
    if (voiceId == library_->voiceId)
        return true;
    const std::size_t slash = voiceId.find('/');
    std::string module = voiceId.substr(0, slash);
    std::string voice =
        slash == std::string::npos ? std::string() : speechText::speakable(voiceId.substr(slash + 1));
    // one that is installed no more gives way to the engine's own choice
    if (voice.empty() || std::ranges::find(library_->engines, module) == library_->engines.end()) {
        module = library_->usualModule;
        voice = "NULL"; // SSIP's word for none
    }
    library_->voiceId = voiceId;
    return library_->ok(spd_set_output_module(library_->connection, module.c_str())) &&
           library_->ok(spd_set_synthesis_voice(library_->connection, voice.c_str()));
}

std::optional<std::size_t> SpeechConnection::say(const ports::Utterance& utterance) {
    SPDConnection* const connection = library_->connection;
    // each is a question and an answer more before the first sound, so only what has changed is set
    choose(utterance.voiceId);
    const int rate = speechText::ssipRate(utterance.rate, library_->usualRate);
    if (library_->rate != rate && library_->ok(spd_set_voice_rate(connection, rate)))
        library_->rate = rate;
    const int volume = speechText::ssipVolume(utterance.volume);
    if (library_->volume != volume && library_->ok(spd_set_volume(connection, volume)))
        library_->volume = volume;
    if (library_->lost)
        return std::nullopt;
    // a message queues; a text (SPD_TEXT) would cut the one before it off
    const int message = spd_say(connection, SPD_MESSAGE, speechText::speakable(utterance.text).c_str());
    library_->lost = message < 0;
    return message < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(message));
}

void SpeechConnection::cancel() {
    library_->ok(spd_cancel(library_->connection));
}

std::vector<ports::Voice> SpeechConnection::voices() {
    std::vector<ports::Voice> voices;
    for (const std::string& module : library_->engines) {
        if (!library_->ok(spd_set_output_module(library_->connection, module.c_str())))
            break;
        // the library's own way of taking the long list apart takes seconds
        char* const answer = spd_send_data(library_->connection, "LIST SYNTHESIS_VOICES\r\n", SPD_WAIT_REPLY);
        std::ranges::move(speechText::voicesOf(module, answer ? answer : ""), std::back_inserter(voices));
        std::free(answer);
    }
    return voices;
}

Descriptor SpeechConnection::socket() const {
    return Descriptor(::fcntl(library_->connection->socket, F_DUPFD_CLOEXEC, 0));
}

} // namespace zenka::platform

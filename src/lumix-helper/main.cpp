// Holds the USB device of one Lumix body and answers requests on its standard input, see HelperProtocol.h.
//
//   zenka-lumix-helper --bus N --address N
//
// Ends with 0 when it is asked to, by a request, the end of its input or a signal; with 1 when the body
// cannot be had, with 3 when it has left the bus. The reason is on its standard error.
#include "base/Text.h"
#include "lumix-helper/HelperProtocol.h"
#include "lumix-helper/UsbPtpTransport.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <optional>
#include <poll.h>
#include <string>
#include <string_view>
#include <unistd.h>
#include <vector>

namespace {

using namespace zenka::lumixHelper;

constexpr int usageFault = 2;
constexpr int bodyGone = 3;
constexpr int idleMs = 50; ///< events are taken in after so long
constexpr int writeTries = 100;

std::atomic<bool> stop = false;
static_assert(std::atomic<bool>::is_always_lock_free);

extern "C" void noteStop(int) {
    stop = true;
}

void obeySignals() {
    struct sigaction action {};
    action.sa_handler = noteStop; // without SA_RESTART, so that waiting ends
    for (const int signal : {SIGTERM, SIGINT, SIGHUP})
        ::sigaction(signal, &action, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
}

bool ready(int descriptor, short events, int limitMs) {
    pollfd waited{.fd = descriptor, .events = events, .revents = 0};
    return ::poll(&waited, 1, limitMs) > 0;
}

/// False when nobody takes it for some seconds, or ever will.
bool say(std::string line) {
    line += '\n';
    std::string_view rest = line;
    for (int tries = 0; !rest.empty() && tries < writeTries && !stop; ++tries) {
        if (!ready(STDOUT_FILENO, POLLOUT, idleMs))
            continue;
        // a pipe that is ready takes as much without waiting
        const ssize_t written = ::write(STDOUT_FILENO, rest.data(), std::min<std::size_t>(rest.size(), 512));
        if (written > 0)
            rest.remove_prefix(static_cast<std::size_t>(written));
        else if (errno != EINTR && errno != EAGAIN)
            return false;
    }
    return rest.empty();
}

std::optional<int> numberBehind(const std::vector<std::string_view>& words, std::string_view name) {
    for (std::size_t i = 0; i + 1 < words.size(); ++i)
        if (words[i] == name)
            return zenka::base::readInteger(words[i + 1]);
    return std::nullopt;
}

int serve(UsbPtpTransport& transport) {
    LumixBody body(transport);
    HelperProtocol protocol(body);
    RequestLines lines;
    std::array<char, 4096> piece{};
    bool open = true;
    while (open && !stop && !protocol.quitAsked() && !protocol.ended() && !transport.gone()) {
        if (ready(STDIN_FILENO, POLLIN, idleMs)) {
            const ssize_t got = ::read(STDIN_FILENO, piece.data(), piece.size());
            open = got > 0 || (got < 0 && errno == EINTR);
            if (got > 0)
                lines.feed({piece.data(), static_cast<std::size_t>(got)});
        }
        while (open && !stop && !protocol.quitAsked() && !protocol.ended()) {
            const auto line = lines.next();
            if (!line)
                break;
            std::string answer = protocol.answer(*line);
            if (protocol.quitAsked())
                body.release(); // before the one who asked hears of it
            open = say(std::move(answer));
        }
        body.takeEvents();
    }
    body.release();
    if (!transport.gone())
        return EXIT_SUCCESS;
    std::fputs("zenka-lumix-helper: the body has left the bus\n", stderr);
    return bodyGone;
}

} // namespace

int main(int argc, char** argv) {
    const std::vector<std::string_view> words(argv + 1, argv + argc);
    const auto bus = numberBehind(words, "--bus");
    const auto address = numberBehind(words, "--address");
    if (!bus || !address) {
        std::fputs("usage: zenka-lumix-helper --bus N --address N\n", stderr);
        return usageFault;
    }
    obeySignals();
    const auto opened = UsbPtpTransport::open(*bus, *address, stop);
    if (!opened.transport) {
        std::fprintf(stderr, "zenka-lumix-helper: %s\n", opened.fault.c_str());
        return EXIT_FAILURE;
    }
    return serve(*opened.transport);
}

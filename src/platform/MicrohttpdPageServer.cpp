#include "platform/MicrohttpdPageServer.h"

#include <arpa/inet.h>
#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <ifaddrs.h>
#include <microhttpd.h>
#include <net/if.h>
#include <netinet/in.h>
#include <optional>
#include <string_view>
#include <sys/socket.h>
#include <utility>

namespace zenka::platform {

namespace {

using Time = std::chrono::steady_clock;

constexpr unsigned mostConnections = 24;
constexpr unsigned mostOfOneMachine = 8;
constexpr unsigned secondsForOne = 10;
constexpr std::size_t bytesForOne = 16 << 10;

/// Loopback, and the ranges that no router passes on.
bool isLocal(std::uint32_t address) {
    const auto within = [address](std::uint32_t base, int bits) {
        return address >> (32 - bits) == base >> (32 - bits);
    };
    return within(0x7F000000, 8) || within(0x0A000000, 8) || within(0xAC100000, 12) ||
           within(0xC0A80000, 16) || within(0xA9FE0000, 16);
}

std::optional<std::uint32_t> addressIn(const sockaddr* address) {
    if (!address || address->sa_family != AF_INET)
        return std::nullopt;
    sockaddr_in place{};
    std::memcpy(&place, address, sizeof place);
    return ntohl(place.sin_addr.s_addr);
}

MHD_Result letIn(void*, const sockaddr* from, socklen_t) {
    const auto address = addressIn(from);
    return address && isLocal(*address) ? MHD_YES : MHD_NO;
}

/// How other machines of the network reach this one.
std::vector<std::string> ownAddresses() {
    std::vector<std::string> found;
    ifaddrs* all = nullptr;
    if (::getifaddrs(&all) != 0)
        return found;
    for (const ifaddrs* each = all; each; each = each->ifa_next) {
        const auto address = addressIn(each->ifa_addr);
        const bool up = (each->ifa_flags & IFF_UP) != 0 && (each->ifa_flags & IFF_LOOPBACK) == 0;
        if (!address || !up || !isLocal(*address))
            continue;
        std::array<char, INET_ADDRSTRLEN> text{};
        const in_addr raw{htonl(*address)};
        if (::inet_ntop(AF_INET, &raw, text.data(), text.size()))
            found.emplace_back(text.data());
    }
    ::freeifaddrs(all);
    return found;
}

/// Takes as long for any text of the secret's length.
bool isSecret(std::string_view asked, std::string_view secret) {
    if (asked.size() != secret.size() || secret.empty())
        return false;
    unsigned differences = 0;
    for (std::size_t i = 0; i < secret.size(); ++i)
        differences |= static_cast<unsigned char>(asked[i]) ^ static_cast<unsigned char>(secret[i]);
    return differences == 0;
}

MHD_Result answer(MHD_Connection* connection, unsigned status, std::string_view body) {
    // libmicrohttpd takes a copy
    MHD_Response* response =
        MHD_create_response_from_buffer(body.size(), const_cast<char*>(body.data()), MHD_RESPMEM_MUST_COPY);
    if (!response)
        return MHD_NO;
    constexpr std::array<std::pair<const char*, const char*>, 6> headers{
        {{MHD_HTTP_HEADER_CONTENT_TYPE, "text/html; charset=utf-8"},
         {MHD_HTTP_HEADER_CACHE_CONTROL, "no-store"},
         {"Content-Security-Policy", "default-src 'none'; style-src 'unsafe-inline'; frame-ancestors 'none'"},
         {"Referrer-Policy", "no-referrer"},
         {"X-Content-Type-Options", "nosniff"},
         {MHD_HTTP_HEADER_CONNECTION, "close"}}};
    for (const auto& [name, value] : headers)
        MHD_add_response_header(response, name, value);
    const MHD_Result queued = MHD_queue_response(connection, status, response);
    MHD_destroy_response(response);
    return queued;
}

} // namespace

struct MicrohttpdPageServer::Content {
    explicit Content(std::chrono::milliseconds limit) : patience(limit) {}

    const std::chrono::milliseconds patience;
    std::mutex mutex;
    std::string secret;
    std::string silence;
    std::shared_ptr<const std::string> page;
    Time::time_point since = Time::now();

    std::shared_ptr<const std::string> pageAt(std::string_view path) {
        const std::lock_guard lock(mutex);
        if (!path.starts_with('/') || !isSecret(path.substr(1), secret))
            return nullptr;
        if (!page || Time::now() - since > patience)
            return std::make_shared<const std::string>(silence);
        return page;
    }
};

namespace {

MHD_Result serve(void* closure, MHD_Connection* connection, const char* path, const char* method,
                 const char* /*version*/, const char* /*upload*/, std::size_t* /*uploadSize*/,
                 void** /*state*/) {
    auto& content = *static_cast<MicrohttpdPageServer::Content*>(closure);
    const std::string_view how(method);
    if (how != MHD_HTTP_METHOD_GET && how != MHD_HTTP_METHOD_HEAD)
        return answer(connection, MHD_HTTP_METHOD_NOT_ALLOWED, "Only to be looked at.\n");
    const auto page = content.pageAt(path);
    return page ? answer(connection, MHD_HTTP_OK, *page)
                : answer(connection, MHD_HTTP_NOT_FOUND, "Nothing here.\n");
}

} // namespace

void MicrohttpdPageServer::Stop::operator()(MHD_Daemon* daemon) const {
    MHD_stop_daemon(daemon);
}

MicrohttpdPageServer::MicrohttpdPageServer(std::chrono::milliseconds patience)
    : content_(std::make_unique<Content>(patience)) {
}

MicrohttpdPageServer::~MicrohttpdPageServer() = default;

ports::PageServer::Listening MicrohttpdPageServer::listen(const Wanted& wanted) {
    close();
    {
        const std::lock_guard lock(content_->mutex);
        content_->secret = wanted.secret;
        content_->silence = wanted.silence;
        content_->page = nullptr;
    }
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_addr.s_addr = htonl(wanted.wholeNetwork ? INADDR_ANY : INADDR_LOOPBACK);
    int fault = 0;
    for (const int port : {wanted.port, 0}) {
        place.sin_port = htons(static_cast<std::uint16_t>(port));
        errno = 0;
        daemon_.reset(MHD_start_daemon(
            MHD_USE_AUTO_INTERNAL_THREAD, 0, letIn, nullptr, serve, content_.get(), MHD_OPTION_SOCK_ADDR,
            reinterpret_cast<const sockaddr*>(&place), MHD_OPTION_CONNECTION_LIMIT, mostConnections,
            MHD_OPTION_PER_IP_CONNECTION_LIMIT, mostOfOneMachine, MHD_OPTION_CONNECTION_TIMEOUT,
            secondsForOne, MHD_OPTION_CONNECTION_MEMORY_LIMIT, bytesForOne, MHD_OPTION_END));
        fault = errno;
        if (daemon_)
            break;
    }
    const MHD_DaemonInfo* info =
        daemon_ ? MHD_get_daemon_info(daemon_.get(), MHD_DAEMON_INFO_BIND_PORT) : nullptr;
    if (!info)
        return {.fault = fault ? std::strerror(fault) : "no port could be had"};
    Listening listening{.port = info->port};
    listening.addresses = wanted.wholeNetwork ? ownAddresses() : std::vector<std::string>{"127.0.0.1"};
    return listening;
}

void MicrohttpdPageServer::publish(std::string page) {
    auto whole = std::make_shared<const std::string>(std::move(page));
    const std::lock_guard lock(content_->mutex);
    content_->page.swap(whole);
    content_->since = Time::now();
}

void MicrohttpdPageServer::close() {
    daemon_.reset();
}

} // namespace zenka::platform

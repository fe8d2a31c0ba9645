// The page for phones, over a real connection and in a real browser.
#include "platform/MicrohttpdPageServer.h"
#include "services/GlanceDesk.h"
#include "support/Browser.h"
#include "support/VirtualRig.h"

#include <absl/strings/str_format.h>
#include <gmock/gmock.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <thread>
#include <unistd.h>

using namespace zenka;
using namespace std::chrono_literals;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

namespace {

int connectTo(int port) {
    const int handle = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in place{};
    place.sin_family = AF_INET;
    place.sin_port = htons(static_cast<std::uint16_t>(port));
    place.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    const timeval limit{.tv_sec = 20, .tv_usec = 0};
    ::setsockopt(handle, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof limit);
    EXPECT_EQ(::connect(handle, reinterpret_cast<const sockaddr*>(&place), sizeof place), 0);
    return handle;
}

/// All that comes back for some bytes.
std::string answerTo(int port, const std::string& bytes) {
    const int handle = connectTo(port);
    EXPECT_EQ(::send(handle, bytes.data(), bytes.size(), MSG_NOSIGNAL), static_cast<ssize_t>(bytes.size()));
    std::string answer;
    std::array<char, 4096> piece{};
    for (;;) {
        const ssize_t got = ::recv(handle, piece.data(), piece.size(), 0);
        if (got <= 0)
            break;
        answer.append(piece.data(), static_cast<std::size_t>(got));
    }
    ::close(handle);
    return answer;
}

std::string ask(int port, const std::string& line) {
    return answerTo(port, line + " HTTP/1.1\r\nHost: here\r\n\r\n");
}

} // namespace

TEST(GlancePage, aBrowserShowsARunAndNothingElseIsThere) {
    test::VirtualRig rig;
    rig.addBody("CAM1 <script>console.error(1)</script>");
    const double c2 = rig.model.site().contactTHours().at("C2") * 3600;
    rig.load(rig.frameAt(c2 - 5, "CAM1 <script>console.error(1)</script>"));
    platform::MicrohttpdPageServer server;
    services::GlanceDesk desk(rig.machine.all, server, rig.model);
    desk.setReach(services::GlanceDesk::Reach::thisComputer);
    ASSERT_EQ(desk.addresses()->size(), 1U) << desk.fault().get();
    const std::string address = desk.addresses()->front();
    rig.playFrom(c2 - 10);
    rig.run(8);

    const test::Browser browser;
    const std::string shown = browser.show({"--dump-dom"}, address);
    EXPECT_THAT(shown, HasSubstr("C2 in"));
    EXPECT_THAT(shown, HasSubstr("● CAM1"));
    EXPECT_THAT(shown, HasSubstr("&lt;script&gt;"));
    EXPECT_THAT(browser.log(), Not(HasSubstr("CONSOLE")));
    EXPECT_THAT(browser.show({"--dump-dom"}, address + "x"), Not(HasSubstr("CAM1")));
    const auto page = browser.folder() / "page.html";
    const int port = std::stoi(address.substr(17));
    std::string saved = ask(port, "GET " + address.substr(address.rfind('/')));
    std::ofstream(page) << saved.substr(saved.find("\r\n\r\n") + 4);
    for (const int width : {360, 1366})
        EXPECT_EQ(browser.tooWideAt(width, "page.html"), "0");
}

TEST(GlancePage, onlyTheSecretIsAnsweredAndOnlyToBeLookedAt) {
    platform::MicrohttpdPageServer server(2s);
    const auto listening = server.listen({.secret = "opensesame", .silence = "no word"});
    ASSERT_NE(listening.port, 0) << listening.fault;
    EXPECT_THAT(listening.addresses, testing::ElementsAre("127.0.0.1"));
    server.publish("the page");
    EXPECT_THAT(ask(listening.port, "GET /opensesame"), HasSubstr("the page"));
    EXPECT_THAT(ask(listening.port, "HEAD /opensesame"), StartsWith("HTTP/1.1 200"));
    for (const char* line :
         {"GET /", "GET /opensesam", "GET /opensesame/", "GET /OPENSESAME", "GET //opensesame"})
        EXPECT_THAT(ask(listening.port, line), StartsWith("HTTP/1.1 404")) << line;
    for (const char* line : {"POST /opensesame", "PUT /opensesame", "DELETE /opensesame", "BREW /opensesame"})
        EXPECT_THAT(ask(listening.port, line), StartsWith("HTTP/1.1 405")) << line;
    for (const std::string& junk :
         {std::string(4096, '\xFF') + "\r\n\r\n", "GET /" + std::string(60'000, 'a') + " HTTP/1.1\r\n\r\n"})
        EXPECT_THAT(answerTo(listening.port, junk), Not(HasSubstr("the page")));
    std::this_thread::sleep_for(2500ms);
    EXPECT_THAT(ask(listening.port, "GET /opensesame"), HasSubstr("no word"));

    // Those who connect and say nothing keep nobody else out for long, and hold the end up for nobody.
    std::vector<int> silent;
    for (int i = 0; i < 40; ++i)
        silent.push_back(connectTo(listening.port));
    server.publish("the next page");
    EXPECT_EQ(server.listen({.secret = "other", .port = listening.port, .silence = ""}).port, listening.port);
    server.publish("the last page");
    EXPECT_THAT(ask(listening.port, "GET /other"), HasSubstr("the last page"));
    for (const int handle : silent)
        ::close(handle);
    platform::MicrohttpdPageServer second;
    const auto beside = second.listen({.secret = "other", .port = listening.port, .silence = ""});
    EXPECT_NE(beside.port, 0) << "a port that is taken is no obstacle: " << beside.fault;
    EXPECT_NE(beside.port, listening.port);
}

#include "platform/QtHttpClient.h"

#include "platform/QtMainLoop.h"
#include "platform/Waiting.h"
#include "support/Child.h"

#include <gtest/gtest.h>

#include <chrono>
#include <optional>

namespace zenka::platform {
namespace {

class QtHttpClientTest : public testing::Test {
protected:
    QtHttpClientTest() : server({"python3", ZENKA_SOURCE_DIR "/tests/platform/http_server.py"}) {
        host = "http://127.0.0.1:" + server.readLine();
        request.timeout = base::Seconds{20};
    }

    ports::HttpReply ask(const std::string& url) {
        request.url = url.starts_with('/') ? host + url : url;
        std::optional<ports::HttpReply> got;
        int answers = 0;
        client.send(request, [&](const ports::HttpReply& reply) {
            EXPECT_TRUE(loop.onMainThread());
            got = reply;
            ++answers;
        });
        EXPECT_EQ(answers, 0) << "never from within send()";
        EXPECT_TRUE(test::serveUntil([&] { return answers > 0; }));
        test::serveUntil([&] { return answers > 1; }, std::chrono::milliseconds(20));
        EXPECT_EQ(answers, 1);
        return got.value_or(ports::HttpReply{});
    }

    test::Child server;
    std::string host;
    QtMainLoop loop;
    QtHttpClient client{loop};
    ports::HttpRequest request;
};

TEST_F(QtHttpClientTest, methodHeadersAndBodyArriveAndTheAnswerComesBack) {
    request.method = "PUT";
    request.headers = {{"X-Word", "hello"}, {"Content-Type", "application/json"}};
    request.body = std::string("a\0b", 3);
    const auto reply = ask("/echo");
    EXPECT_EQ(reply.status, 200);
    EXPECT_EQ(reply.fault, "");
    EXPECT_TRUE(reply.body.starts_with("PUT hello ")) << reply.body;
    EXPECT_TRUE(reply.body.ends_with(request.body));
    EXPECT_EQ(reply.headers.at("x-answer"), "Yes");
    EXPECT_TRUE(reply.headers.contains("date"));

    request.method = "HEAD";
    request.body.clear();
    EXPECT_TRUE(ask("/echo").headers.contains("date"));
}

TEST_F(QtHttpClientTest, aStatusIsAnAnswerAndARedirectIsFollowed) {
    for (const int status : {204, 400, 404, 500, 503}) {
        const auto reply = ask("/status/" + std::to_string(status));
        EXPECT_EQ(reply.status, status);
        EXPECT_EQ(reply.fault, "") << status;
        EXPECT_EQ(reply.ok(), status < 300);
    }
    const auto moved = ask("/moved");
    EXPECT_EQ(moved.status, 200);
    EXPECT_TRUE(moved.body.starts_with("GET")) << moved.body;
}

TEST_F(QtHttpClientTest, whatIsNoAnswerIsAFaultInWords) {
    EXPECT_EQ(ask("/circle").fault, "the server sent the request in circles");
    EXPECT_NE(ask("/to-a-file").fault, "");
    EXPECT_NE(ask("/cut").fault, "");
    EXPECT_NE(ask("/junk").fault, "");
    EXPECT_EQ(ask("http://127.0.0.1:1/").fault, "the server refused the connection");
    EXPECT_EQ(ask("http://nowhere.invalid/").fault, "the server's name was not found");
    for (const char* url : {"file:///etc/hostname", "no address", "", "http://", "ftp://127.0.0.1/"})
        EXPECT_EQ(ask(url).fault, "the address cannot be read") << url;
    request.headers = {{"X-Word", "one\r\nX-Other: two"}};
    EXPECT_EQ(ask("/echo").fault, "the request has a line break in it");
}

TEST_F(QtHttpClientTest, neitherSilenceNorADripOutlastsTheTimeLimit) {
    request.timeout = base::Seconds{0.5};
    for (const char* path : {"/silent", "/drip"}) {
        const auto begun = std::chrono::steady_clock::now();
        EXPECT_EQ(ask(path).fault, "the time ran out") << path;
        EXPECT_LT(std::chrono::steady_clock::now() - begun, std::chrono::seconds(20)) << path;
    }
}

TEST_F(QtHttpClientTest, anEndlessAnswerIsCutOff) {
    request.mostBytes = 1 << 20;
    const auto reply = ask("/endless");
    EXPECT_EQ(reply.fault, "the answer is too long");
    EXPECT_TRUE(reply.tooLong);
}

TEST_F(QtHttpClientTest, whatIsCancelledOrOutlivedIsNotCompleted) {
    request.url = host + "/echo";
    bool completed = false;
    const auto id = client.send(request, [&](const auto&) { completed = true; });
    client.cancel(id);
    client.cancel(id);
    {
        QtHttpClient shortLived(loop);
        shortLived.send(request, [&](const auto&) { completed = true; });
    }
    EXPECT_EQ(ask("/echo").status, 200);
    EXPECT_FALSE(completed);
}

TEST_F(QtHttpClientTest, anAnswerMaySendTheNextRequest) {
    request.url = host + "/echo";
    int answers = 0;
    std::function<void(const ports::HttpReply&)> again = [&](const ports::HttpReply& reply) {
        EXPECT_EQ(reply.status, 200);
        if (++answers < 5)
            client.send(request, again);
    };
    client.send(request, again);
    EXPECT_TRUE(test::serveUntil([&] { return answers == 5; }));
}

} // namespace
} // namespace zenka::platform

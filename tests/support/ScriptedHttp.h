#pragma once

#include "ports/HttpClient.h"

#include <gtest/gtest.h>

#include <deque>
#include <map>
#include <string>
#include <utility>

namespace zenka::test {

/// A network whose answers come when the test gives them.
class ScriptedHttp final : public ports::HttpClient {
public:
    struct Exchange {
        RequestId id;
        ports::HttpRequest request;
        Done done;
    };
    std::deque<Exchange> waiting;

    RequestId send(ports::HttpRequest request, Done done) override {
        const auto id = RequestId{++lastId_};
        waiting.push_back({.id = id, .request = std::move(request), .done = std::move(done)});
        return id;
    }
    void cancel(RequestId request) override {
        std::erase_if(waiting, [&](const Exchange& exchange) { return exchange.id == request; });
    }

    /// Completes the oldest request.
    void answer(int status, const std::string& body, std::map<std::string, std::string> headers = {}) {
        ports::HttpReply reply;
        reply.status = status;
        reply.headers = std::move(headers);
        reply.body = body;
        complete(reply);
    }
    void fail(const std::string& fault) {
        ports::HttpReply reply;
        reply.fault = fault;
        complete(reply);
    }

private:
    void complete(const ports::HttpReply& reply) {
        ASSERT_FALSE(waiting.empty()) << "nothing was asked";
        const Exchange oldest = std::move(waiting.front());
        waiting.pop_front();
        oldest.done(reply);
    }

    std::uint64_t lastId_ = 0;
};

} // namespace zenka::test

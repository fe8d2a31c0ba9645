#include "services/AssistantExchange.h"

#include "services/ServiceAddress.h"

#include <memory>
#include <string>
#include <utility>

namespace zenka::services {

namespace {

constexpr base::Seconds answerTimeout{60};

} // namespace

void AssistantExchange::cancel() {
    ++asked_;
    ports_.http.cancel(std::exchange(request_, ports::HttpClient::RequestId::none));
}

void AssistantExchange::ask(AssistantRequest request, const rig::CompileSite& site, Done done) {
    cancel();
    const auto written =
        lifeline_.guard([this, number = asked_, site, done = std::move(done)](std::string& body) {
            if (number == asked_)
                post(std::move(body), site, done);
        });
    ports_.queues.background([written, request = std::move(request), &loop = ports_.loop] {
        const auto body = std::make_shared<std::string>(requestBody(request));
        loop.post([written, body] { written(*body); });
    });
}

void AssistantExchange::post(std::string body, const rig::CompileSite& site, const Done& done) {
    ports::HttpRequest request;
    request.method = "POST";
    request.url = serviceAddress(ports_.settings, "/api/script-assistant");
    request.headers = {{"Content-Type", "application/json"}};
    request.body = std::move(body);
    request.timeout = answerTimeout;
    request.mostBytes = mostAnswerBytes;
    request_ = ports_.http.send(std::move(request),
                                lifeline_.guard([this, site, done](const ports::HttpReply& reply) {
                                    request_ = ports::HttpClient::RequestId::none;
                                    read(reply, site, done);
                                }));
}

void AssistantExchange::read(const ports::HttpReply& reply, const rig::CompileSite& site, const Done& done) {
    struct Reading {
        AssistantAnswer answer;
        std::optional<ReplyScript> found;
    };
    const auto arrive = lifeline_.guard([this, number = asked_, done](Reading& reading) {
        if (number == asked_)
            done(std::move(reading.answer), std::move(reading.found));
    });
    ports_.queues.background([arrive, reply, site, &loop = ports_.loop] {
        const auto reading = std::make_shared<Reading>();
        reading->answer = readAnswer(reply);
        reading->found = scriptIn(reading->answer.reply, [&](const std::string& script) {
            return !script::ZenkaScript::compile(script, site.context()).captures.empty();
        });
        loop.post([arrive, reading] { arrive(*reading); });
    });
}

} // namespace zenka::services

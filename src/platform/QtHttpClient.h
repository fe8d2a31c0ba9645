#pragma once

#include "ports/HttpClient.h"
#include "ports/MainLoop.h"

#include <QNetworkAccessManager>

#include <memory>
#include <unordered_map>

class QNetworkReply;

namespace zenka::platform {

/// Requests through Qt, whose sockets live on a thread of Qt's own. Made and destroyed on the main thread,
/// after and before the application object. Destroying it drops what is under way.
class QtHttpClient final : public ports::HttpClient {
public:
    explicit QtHttpClient(ports::MainLoop& loop);
    QtHttpClient(const QtHttpClient&) = delete;
    QtHttpClient& operator=(const QtHttpClient&) = delete;
    ~QtHttpClient() override;

    RequestId send(ports::HttpRequest request, Done done) override;
    void cancel(RequestId request) override;

private:
    struct Exchange;

    void complete(RequestId request, const ports::HttpReply& reply);
    void refuse(RequestId request, std::string fault);
    void read(RequestId request);
    void finish(RequestId request);

    ports::MainLoop& loop_;
    /// Made with the first request, as it brings the plug-ins of the encryption with it.
    std::unique_ptr<QNetworkAccessManager> manager_;
    std::unordered_map<RequestId, std::unique_ptr<Exchange>> exchanges_;
    std::uint64_t lastId_ = 0;
};

} // namespace zenka::platform

#include "platform/QtHttpClient.h"

#include <QCoreApplication>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QUrl>

#include <algorithm>
#include <utility>

namespace zenka::platform {

namespace {

constexpr int mostRedirects = 5;

QByteArray bytesOf(const std::string& text) {
    return QByteArray(text.data(), static_cast<qsizetype>(text.size()));
}

bool isOneLine(const std::string& text) {
    return text.find_first_of("\r\n") == std::string::npos && text.find('\0') == std::string::npos;
}

QNetworkRequest prepared(const ports::HttpRequest& request) {
    QNetworkRequest prepared{QUrl(QString::fromStdString(request.url), QUrl::StrictMode)};
    prepared.setMaximumRedirectsAllowed(mostRedirects);
    prepared.setAttribute(QNetworkRequest::CookieLoadControlAttribute, QNetworkRequest::Manual);
    prepared.setAttribute(QNetworkRequest::CookieSaveControlAttribute, QNetworkRequest::Manual);
    prepared.setHeader(
        QNetworkRequest::UserAgentHeader,
        (QCoreApplication::applicationName() + u'/' + QCoreApplication::applicationVersion()).toUtf8());
    for (const auto& [name, value] : request.headers)
        prepared.setRawHeader(bytesOf(name), bytesOf(value));
    return prepared;
}

/// The fault of a reply that brought no answer at all.
std::string faultOf(const QNetworkReply& reply) {
    switch (reply.error()) {
    case QNetworkReply::ConnectionRefusedError: return "the server refused the connection";
    case QNetworkReply::RemoteHostClosedError: return "the server closed the connection";
    case QNetworkReply::HostNotFoundError: return "the server's name was not found";
    case QNetworkReply::SslHandshakeFailedError: return "no secure connection could be made";
    case QNetworkReply::TooManyRedirectsError: return "the server sent the request in circles";
    case QNetworkReply::InsecureRedirectError: return "the server sent the request to an unsafe address";
    case QNetworkReply::TemporaryNetworkFailureError:
    case QNetworkReply::NetworkSessionFailedError:
    case QNetworkReply::UnknownNetworkError: return "there is no network";
    default: return reply.errorString().toStdString();
    }
}

/// Qt calls a status of 400 and more an error too; here it is an answer like any other.
bool isAnswer(QNetworkReply::NetworkError error) {
    const bool ofContent =
        error >= QNetworkReply::ContentAccessDenied && error <= QNetworkReply::UnknownContentError;
    const bool ofServer =
        error >= QNetworkReply::InternalServerError && error <= QNetworkReply::UnknownServerError;
    return error == QNetworkReply::NoError || ofContent || ofServer ||
           error == QNetworkReply::ProtocolInvalidOperationError; // status 400
}

} // namespace

struct QtHttpClient::Exchange {
    ports::MainLoop& loop;
    Done done;
    std::size_t mostBytes = 0;
    QNetworkReply* reply = nullptr; ///< owned by the manager until it is let go
    ports::MainLoop::TimerId limit = ports::MainLoop::TimerId::none;
    std::string body;

    Exchange(ports::MainLoop& mainLoop, Done whenDone, std::size_t mostOfBody)
        : loop(mainLoop), done(std::move(whenDone)), mostBytes(mostOfBody) {}
    Exchange(const Exchange&) = delete;
    Exchange& operator=(const Exchange&) = delete;
    ~Exchange() {
        loop.cancel(limit);
        if (!reply)
            return;
        reply->disconnect();
        reply->abort();
        reply->deleteLater();
    }
};

QtHttpClient::QtHttpClient(ports::MainLoop& loop) : loop_(loop) {
}

QtHttpClient::~QtHttpClient() {
    exchanges_.clear();
}

QtHttpClient::RequestId QtHttpClient::send(ports::HttpRequest request, Done done) {
    if (!manager_) {
        manager_ = std::make_unique<QNetworkAccessManager>();
        manager_->setRedirectPolicy(QNetworkRequest::NoLessSafeRedirectPolicy);
    }
    const auto id = RequestId{++lastId_};
    Exchange& exchange =
        *exchanges_.emplace(id, std::make_unique<Exchange>(loop_, std::move(done), request.mostBytes))
             .first->second;
    const QNetworkRequest prepared = platform::prepared(request);
    const QString scheme = prepared.url().scheme();
    const bool addressed = prepared.url().isValid() && !prepared.url().host().isEmpty() &&
                           (scheme == QLatin1String("http") || scheme == QLatin1String("https"));
    const bool headersFit = std::ranges::all_of(request.headers, [](const auto& header) {
        return isOneLine(header.first) && isOneLine(header.second);
    });
    if (!addressed || !headersFit || !isOneLine(request.method)) {
        const char* fault = addressed ? "the request has a line break in it" : "the address cannot be read";
        exchange.limit = loop_.after(base::Seconds{0}, [this, id, fault] { refuse(id, fault); });
        return id;
    }

    exchange.limit = loop_.after(request.timeout, [this, id] { refuse(id, "the time ran out"); });
    // As a custom request, HEAD would wait for the body that never comes.
    QNetworkReply* reply =
        request.method == "HEAD"
            ? manager_->head(prepared)
            : manager_->sendCustomRequest(prepared, bytesOf(request.method), bytesOf(request.body));
    exchange.reply = reply;
    QObject::connect(reply, &QNetworkReply::readyRead, reply, [this, id] { read(id); });
    QObject::connect(reply, &QNetworkReply::finished, reply, [this, id] { finish(id); });
    return id;
}

void QtHttpClient::cancel(RequestId request) {
    const auto node = exchanges_.extract(request);
    QNetworkReply* reply = node.empty() ? nullptr : node.mapped()->reply;
    if (!reply)
        return;
    reply->disconnect();
    reply->abort();
    // At once: an error that is on its way from Qt's thread would have Qt complain of a second one.
    delete reply;
    node.mapped()->reply = nullptr;
}

void QtHttpClient::complete(RequestId request, const ports::HttpReply& reply) {
    auto node = exchanges_.extract(request);
    if (node.empty())
        return;
    // Off the wire before the caller may send again.
    const Done done = std::move(node.mapped()->done);
    node.mapped().reset();
    done(reply);
}

void QtHttpClient::refuse(RequestId request, std::string fault) {
    ports::HttpReply reply;
    reply.fault = std::move(fault);
    complete(request, reply);
}

void QtHttpClient::read(RequestId request) {
    const auto found = exchanges_.find(request);
    if (found == exchanges_.end())
        return;
    Exchange& exchange = *found->second;
    // What a redirect brings along is no part of the answer.
    const int status = exchange.reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    const QByteArray bytes = exchange.reply->readAll();
    if (status >= 300 && status < 400)
        return;
    exchange.body.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    if (exchange.body.size() > exchange.mostBytes) {
        ports::HttpReply tooLong;
        tooLong.fault = "the answer is too long";
        tooLong.tooLong = true;
        complete(request, tooLong);
    }
}

void QtHttpClient::finish(RequestId request) {
    read(request);
    const auto found = exchanges_.find(request);
    if (found == exchanges_.end())
        return;
    Exchange& exchange = *found->second;
    const QNetworkReply& source = *exchange.reply;
    ports::HttpReply reply;
    const int status = source.attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    if (status == 0 || !isAnswer(source.error())) {
        reply.fault = faultOf(source);
    } else {
        reply.status = status;
        reply.body = std::move(exchange.body);
        for (const auto& [name, value] : source.rawHeaderPairs())
            reply.headers.insert_or_assign(name.toLower().toStdString(), value.toStdString());
    }
    complete(request, reply);
}

} // namespace zenka::platform

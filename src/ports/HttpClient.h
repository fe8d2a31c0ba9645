#pragma once

#include "base/Instant.h"

#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <string>

namespace zenka::ports {

struct HttpRequest {
    std::string method = "GET";
    std::string url; ///< http or https, encoded
    std::map<std::string, std::string> headers;
    std::string body;
    /// From the call to the last byte of the answer, redirects included.
    base::Seconds timeout{10};
    /// A longer answer is a fault.
    std::size_t mostBytes = 4 << 20;

    bool operator==(const HttpRequest&) const = default;
};

/// What came of a request: an answer of any status, or a fault and status 0.
struct HttpReply {
    int status = 0;
    std::map<std::string, std::string> headers; ///< names in lower case
    std::string body;
    std::string fault;    ///< why there is no answer, as the end of a sentence: "the time ran out"
    bool tooLong = false; ///< the fault is that the answer is longer than mostBytes

    bool ok() const { return status >= 200 && status < 300; }
    bool operator==(const HttpReply&) const = default;
};

/// Requests to servers. Main thread; never waits. Redirects are followed, but never from https to http.
class HttpClient {
public:
    enum class RequestId : std::uint64_t { none = 0 };
    using Done = std::function<void(const HttpReply&)>;

    virtual ~HttpClient() = default;

    /// Sends a request and calls done once on the main thread, never from within send().
    virtual RequestId send(HttpRequest request, Done done) = 0;

    /// A request that is cancelled is not completed any more. An unknown or completed one is no error.
    virtual void cancel(RequestId request) = 0;
};

} // namespace zenka::ports

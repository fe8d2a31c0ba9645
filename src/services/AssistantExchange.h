#pragma once

#include "base/Lifeline.h"
#include "ports/Ports.h"
#include "rig/site/SiteDesk.h"
#include "services/AssistantWire.h"
#include "services/ReplyScript.h"

#include <cstddef>
#include <functional>
#include <optional>

namespace zenka::services {

/// One request to the assistant's server, there and back. Long texts are written and read aside. Main thread.
class AssistantExchange {
public:
    using Done = std::function<void(AssistantAnswer answer, std::optional<ReplyScript> script)>;

    /// The ports outlive it. What is under way when it goes is given up.
    explicit AssistantExchange(const ports::Ports& ports) : ports_(ports) {}
    AssistantExchange(const AssistantExchange&) = delete;
    AssistantExchange& operator=(const AssistantExchange&) = delete;
    ~AssistantExchange() { cancel(); }

    /// Calls back once, later, unless it is cancelled; the one before is given up. The site tells what frames
    /// come of a script in the reply.
    void ask(AssistantRequest request, const rig::CompileSite& site, Done done);
    void cancel();

private:
    void post(std::string body, const rig::CompileSite& site, const Done& done);
    void read(const ports::HttpReply& reply, const rig::CompileSite& site, const Done& done);

    const ports::Ports& ports_;
    ports::HttpClient::RequestId request_ = ports::HttpClient::RequestId::none;
    std::size_t asked_ = 0; ///< only what belongs to the last request goes on
    base::Lifeline lifeline_;
};

} // namespace zenka::services

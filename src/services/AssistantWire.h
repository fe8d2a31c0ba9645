#pragma once

#include "base/Uuid.h"
#include "ports/HttpClient.h"

#include <span>
#include <string>
#include <vector>

namespace zenka::services {

/// One message of the chat.
struct AssistantMsg {
    base::Uuid id;
    std::string role; ///< "user" or "assistant"
    std::string content;

    friend bool operator==(const AssistantMsg&, const AssistantMsg&) = default;
};

/// What one request tells the server. docs/script-assistant.md has it for who runs one.
struct AssistantRequest {
    std::vector<AssistantMsg> messages;
    bool guided = true;
    std::string context;
    std::string currentScript;
};

/// A longer answer is a fault.
inline constexpr std::size_t mostAnswerBytes = 1 << 20;
/// Of the messages that are sent along. The newest fit always, as none that a user writes is longer than a
/// part of it.
inline constexpr std::size_t mostSentBytes = 256 << 10;

/// The place of the first message that is sent: the oldest ones stay behind when all are too long together,
/// and what is sent begins with a message of the user's.
std::size_t firstSent(std::span<const AssistantMsg> messages);

/// The request's JSON. Bytes that are no UTF-8 are replaced.
std::string requestBody(const AssistantRequest& request);

/// What came of a request: a reply, or a sentence that says why there is none.
struct AssistantAnswer {
    std::string reply;
    std::string error;
};
AssistantAnswer readAnswer(const ports::HttpReply& reply);

} // namespace zenka::services

#include "services/AssistantWire.h"

#include "base/Text.h"

#include <absl/strings/str_format.h>
#include <nlohmann/json.hpp>

#include <algorithm>

namespace zenka::services {

namespace {

constexpr std::size_t longestError = 500; ///< bytes of what a server may say instead of an answer

/// A text of the answer; empty for any other.
std::string textOf(const nlohmann::json& answer, const char* key) {
    if (!answer.is_object())
        return {};
    const auto found = answer.find(key);
    return found != answer.end() && found->is_string() ? found->get<std::string>() : std::string();
}

std::string shortened(std::string text) {
    if (text.size() <= longestError)
        return text;
    std::size_t end = longestError;
    while (end > 0 && (static_cast<unsigned char>(text[end]) & 0xC0) == 0x80)
        --end;
    text.resize(end);
    return text + "…";
}

} // namespace

std::size_t firstSent(std::span<const AssistantMsg> messages) {
    std::size_t first = messages.size();
    std::size_t bytes = 0;
    while (first > 0 && bytes + messages[first - 1].content.size() <= mostSentBytes)
        bytes += messages[--first].content.size();
    while (first > 0 && first < messages.size() && messages[first].role != "user")
        ++first;
    return std::min(first, messages.empty() ? 0 : messages.size() - 1);
}

std::string requestBody(const AssistantRequest& request) {
    nlohmann::json messages = nlohmann::json::array();
    for (const AssistantMsg& message : request.messages)
        messages.push_back({{"role", message.role}, {"content", message.content}});
    const nlohmann::json body{{"messages", std::move(messages)},
                              {"guided", request.guided ? "guided" : "open"},
                              {"context", request.context},
                              {"currentScript", request.currentScript}};
    return body.dump(-1, ' ', false, nlohmann::json::error_handler_t::replace);
}

AssistantAnswer readAnswer(const ports::HttpReply& reply) {
    if (reply.tooLong || reply.body.size() > mostAnswerBytes)
        return {.error = "The assistant's answer was too long to be taken. Ask for a shorter one."};
    if (reply.status == 0)
        return {.error = "Network error. Check your connection and try again."};
    if (reply.status == 503)
        return {.error = "The AI assistant isn't switched on yet. Coming soon."};
    const auto answer = nlohmann::json::parse(reply.body, nullptr, false);
    if (reply.status != 200) {
        const std::string error(base::trimmed(textOf(answer, "error")));
        return {.error = error.empty() ? absl::StrFormat("The assistant couldn't respond (%d)", reply.status)
                                       : shortened(error)};
    }
    std::string text = textOf(answer, "reply");
    if (base::trimmed(text).empty())
        return {.error = "The assistant's answer could not be read. Try again."};
    return {.reply = std::move(text)};
}

} // namespace zenka::services

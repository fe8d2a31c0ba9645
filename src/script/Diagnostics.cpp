#include "script/Diagnostics.h"

#include <absl/strings/str_format.h>

#include <utility>

namespace zenka::script {

void Diagnostics::add(int lineNo, const char* severity, std::string message) {
    if (list_.size() > most_)
        return;
    if (list_.size() == most_) {
        severity = "error";
        message = absl::StrFormat("more than %d diagnostics, the rest are not listed", most_);
    }
    textLength_ += message.size();
    list_.push_back({.lineNo = lineNo, .severity = severity, .message = std::move(message)});
}

} // namespace zenka::script

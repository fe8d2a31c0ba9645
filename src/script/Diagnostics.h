#pragma once

#include "script/ZenkaScript.h"

#include <cstddef>
#include <string>
#include <vector>

namespace zenka::script {

/// Collects what a compile has to say, in order, up to a number.
class Diagnostics {
public:
    explicit Diagnostics(std::size_t most) : most_(most) {}

    void error(int lineNo, std::string message) { add(lineNo, "error", std::move(message)); }
    void warning(int lineNo, std::string message) { add(lineNo, "warning", std::move(message)); }

    /// Length of all messages so far, told apart from their number because a message may quote its line.
    std::size_t textLength() const { return textLength_; }

    std::vector<ScriptDiag> take() { return std::move(list_); }

private:
    void add(int lineNo, const char* severity, std::string message);

    std::size_t most_;
    std::size_t textLength_ = 0;
    std::vector<ScriptDiag> list_;
};

} // namespace zenka::script

#pragma once

#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace zenka::services {

/// A script that a reply of the assistant holds.
struct ReplyScript {
    std::string script; ///< its lines end with \n alone
    std::string around; ///< the reply with a short remark in the place of the script
};

/// How the assistant marks a script: a block between two lines of three or more backticks, the first one with
/// the word "zenka" behind them. A block without a word counts as well when `compiles` says that frames come
/// of it. The last one of a reply is taken; one that is left open goes to the end. Nothing where there is
/// none. Pure but for `compiles`, which is asked a few times at most.
std::optional<ReplyScript> scriptIn(std::string_view reply,
                                    const std::function<bool(const std::string& script)>& compiles);

} // namespace zenka::services

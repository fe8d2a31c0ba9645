#pragma once

#include <functional>
#include <memory>
#include <utility>

namespace zenka::base {

/// Ties callbacks to the life of their owner: a guarded function does nothing once the Lifeline,
/// a member of the owner, is gone. Guarded functions run on the owner's thread.
class Lifeline {
public:
    Lifeline() = default;
    Lifeline(const Lifeline&) = delete;
    Lifeline& operator=(const Lifeline&) = delete;

    template <typename Function>
    auto guard(Function function) const {
        return [alive = std::weak_ptr<const int>(token_), function = std::move(function)](auto&&... args) {
            if (alive.lock())
                function(std::forward<decltype(args)>(args)...);
        };
    }

private:
    std::shared_ptr<const int> token_ = std::make_shared<const int>(0);
};

} // namespace zenka::base

#pragma once

#include <sigc++/sigc++.h>

#include <utility>

namespace zenka::base {

/// A value that tells its observers when it changes. Main thread only.
/// Setting an equal value tells nobody.
template <typename T>
class Published {
public:
    Published() = default;
    explicit Published(T initial) : value_(std::move(initial)) {}

    const T& get() const { return value_; }
    const T& operator*() const { return value_; }
    const T* operator->() const { return &value_; }

    void set(T value) {
        if (value_ == value)
            return;
        value_ = std::move(value);
        changed_.emit(value_);
    }

    /// Changes the value in place and tells the observers, whatever came out.
    template <typename Change>
    void edit(Change&& change) {
        std::forward<Change>(change)(value_);
        changed_.emit(value_);
    }

    sigc::signal<void(const T&)>& changed() const { return changed_; }

private:
    T value_{};
    mutable sigc::signal<void(const T&)> changed_; // observing changes nothing of the value
};

} // namespace zenka::base

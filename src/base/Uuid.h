#pragma once

#include <compare>
#include <cstdint>
#include <string>

namespace zenka::base {

/// A random identifier (RFC 4122, version 4). Value-initialized it is the nil identifier.
struct Uuid {
    std::uint64_t high = 0;
    std::uint64_t low = 0;

    /// A new identifier, distinct from all others for all practical purposes. Any thread; cheap enough
    /// for one a frame of a compiled script.
    static Uuid fresh();

    /// "XXXXXXXX-XXXX-4XXX-XXXX-XXXXXXXXXXXX", upper case.
    std::string text() const;

    friend auto operator<=>(const Uuid&, const Uuid&) = default;
};

} // namespace zenka::base

#pragma once

#include <optional>
#include <string>
#include <vector>

namespace zenka::ports {

/// The user's settings, by key. Main thread. Reading and writing never wait for the disk; a value
/// written can be read back at once and is on its way to the disk. A value of another type than asked
/// for reads as absent.
class Settings {
public:
    virtual ~Settings() = default;

    virtual std::optional<std::string> text(const std::string& key) const = 0;
    virtual void setText(const std::string& key, const std::string& value) = 0;

    virtual std::optional<double> number(const std::string& key) const = 0;
    virtual void setNumber(const std::string& key, double value) = 0;

    virtual std::optional<bool> flag(const std::string& key) const = 0;
    virtual void setFlag(const std::string& key, bool value) = 0;

    virtual void remove(const std::string& key) = 0;

    /// The keys that have a value and begin with a prefix, in alphabetical order.
    virtual std::vector<std::string> keysBeginningWith(const std::string& prefix) const = 0;
};

} // namespace zenka::ports

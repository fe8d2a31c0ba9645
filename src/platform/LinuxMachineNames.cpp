#include "platform/LinuxMachineNames.h"

#include "base/Text.h"

#include <algorithm>

namespace zenka::platform {

namespace {

constexpr std::size_t longestName = 200;

/// A name that may be shown and sent: one line of text. A text of the device tree ends with a zero.
std::string plainName(std::string name) {
    while (name.ends_with('\0'))
        name.pop_back();
    name = std::string(base::trimmed(name));
    const bool plain = std::ranges::none_of(name, [](unsigned char c) { return c < 0x20; });
    return plain && name.size() <= longestName ? base::utf8Text(name).value_or("") : std::string();
}

/// The value of PRETTY_NAME, quoted as a shell would have it (os-release(5)).
std::string prettyName(const std::string& osRelease) {
    constexpr std::string_view key = "PRETTY_NAME=";
    for (std::string_view line : base::split(osRelease, '\n')) {
        line = base::trimmed(line);
        if (!line.starts_with(key))
            continue;
        line.remove_prefix(key.size());
        const char quote = line.empty() ? ' ' : line.front();
        if ((quote == '"' || quote == '\'') && line.size() >= 2 && line.ends_with(quote))
            line = line.substr(1, line.size() - 2);
        std::string name;
        for (std::size_t i = 0; i < line.size(); ++i) {
            if (line[i] == '\\' && quote != '\'' && i + 1 < line.size())
                ++i;
            name += line[i];
        }
        return name;
    }
    return {};
}

} // namespace

ports::MachineName LinuxMachineNames::read() {
    ports::MachineName names;
    for (const char* file : {"sys/class/dmi/id/product_name", "sys/firmware/devicetree/base/model"})
        if (names.product.empty())
            names.product = plainName(tree_.text(file).value_or(""));
    for (const char* file : {"etc/os-release", "usr/lib/os-release"})
        if (names.system.empty())
            names.system = plainName(prettyName(tree_.text(file).value_or("")));
    return names;
}

} // namespace zenka::platform

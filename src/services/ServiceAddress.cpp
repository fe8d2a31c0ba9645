#include "services/ServiceAddress.h"

#include "base/Text.h"

namespace zenka::services {

std::string serviceAddress(const ports::Settings& settings, std::string_view path) {
    std::string host(base::trimmed(settings.text(serviceHostKey).value_or("")));
    while (host.ends_with('/'))
        host.pop_back();
    if (!host.starts_with("https://") && !host.starts_with("http://"))
        return {};
    return host + std::string(path);
}

std::string serviceHostName(const ports::Settings& settings) {
    const std::string address = serviceAddress(settings, "");
    const auto name = address.find("//");
    return name == std::string::npos ? std::string() : address.substr(name + 2);
}

} // namespace zenka::services

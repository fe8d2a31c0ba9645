#include "services/UpdateCheck.h"

#include "base/Text.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <utility>
#include <vector>

namespace zenka::services {

namespace {

constexpr base::Seconds timeout{15};
constexpr std::size_t mostBytes = 64 << 10;
constexpr std::size_t longestText = 300; ///< of what a server may put before the user

std::vector<int> numbersOf(const std::string& version) {
    std::vector<int> numbers;
    for (const std::string_view piece : base::split(version, '.'))
        numbers.push_back(base::readInteger(piece).value_or(0));
    return numbers;
}

/// A text of the answer that may be shown; empty for any other.
std::string shownText(const nlohmann::json& answer, const char* key) {
    const auto found = answer.find(key);
    if (found == answer.end() || !found->is_string())
        return {};
    std::string text = found->get<std::string>();
    const bool plain = std::ranges::none_of(text, [](unsigned char c) { return c < 0x20; });
    return plain && text.size() <= longestText ? text : std::string();
}

bool isVersion(const std::string& text) {
    return !text.empty() && text.find_first_not_of("0123456789.") == std::string::npos;
}

} // namespace

bool laterVersion(const std::string& candidate, const std::string& than) {
    std::vector<int> left = numbersOf(candidate);
    std::vector<int> right = numbersOf(than);
    const std::size_t length = std::max(left.size(), right.size());
    left.resize(length);
    right.resize(length);
    return left > right;
}

UpdateCheck::UpdateCheck(const ports::Ports& ports, std::string version)
    : ports_(ports), version_(std::move(version)) {
}

std::string UpdateCheck::address() const {
    return ports_.settings.text(updateAddressKey).value_or("");
}

void UpdateCheck::setAddress(const std::string& address) {
    ports_.settings.setText(updateAddressKey, std::string(base::trimmed(address)));
}

void UpdateCheck::check() {
    if (asking_.get())
        return;
    const std::string asked = address();
    if (asked.empty()) {
        words_.set("This is Zenka " + version_ + ". Your system's package manager updates it.");
        return;
    }
    asking_.set(true);
    words_.set("Asking " + asked + "…");
    ports::HttpRequest request;
    request.url = asked;
    request.timeout = timeout;
    request.mostBytes = mostBytes;
    ports_.http.send(std::move(request), lifeline_.guard([this](const ports::HttpReply& reply) {
        read(reply);
        asking_.set(false);
    }));
}

void UpdateCheck::read(const ports::HttpReply& reply) {
    if (!reply.ok()) {
        const std::string why =
            reply.fault.empty() ? "it answered with status " + std::to_string(reply.status) : reply.fault;
        words_.set("The address for updates could not be read: " + why +
                   ". Check the connection and the address in Settings, then try again.");
        return;
    }
    const auto answer = nlohmann::json::parse(reply.body, nullptr, false);
    const std::string newest = answer.is_object() ? shownText(answer, "version") : std::string();
    if (!isVersion(newest)) {
        words_.set("The address for updates named no version. Check the address in Settings.");
        return;
    }
    if (!laterVersion(newest, version_)) {
        words_.set("Zenka " + version_ + " is up to date.");
        return;
    }
    const std::string where = shownText(answer, "url");
    words_.set("Zenka " + newest + " can be had; this is " + version_ + ". Get it " +
               (where.starts_with("https://") ? "at " + where : "from your system's package manager") + ".");
}

} // namespace zenka::services

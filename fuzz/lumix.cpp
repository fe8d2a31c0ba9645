// What a Lumix body sends and what its helper is asked may be anything: the helper answers every line with
// one line, every wait ends, and no container is read past its end. The input is cut at each newline; a piece
// that begins with "<" comes from the body as a transfer, one with "!" as an event, any other is a request.
#include "Check.h"
#include "lumix-helper/HelperProtocol.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <deque>
#include <string>
#include <string_view>
#include <utility>

namespace {

using namespace zenka::lumixHelper;

/// A body that sends what the input has for it. An answer's "\x01\x01\x01\x01" at the place of the
/// transaction is made that of the last command, so that some get through.
class ScriptedBody final : public PtpTransport {
public:
    std::deque<Bytes> transfers;
    std::vector<Bytes> events;

    Fault send(const Bytes& bytes, Milliseconds) override {
        const auto container = ptp::parse(bytes);
        check(container.has_value());
        last_ = container->transaction;
        now_ += 1;
        return Fault::none;
    }
    Received receive(Milliseconds limit) override {
        check(limit.count() >= 0 && limit.count() <= 10'000);
        if (transfers.empty()) {
            now_ += static_cast<double>(limit.count());
            return {.fault = Fault::timeout, .bytes = {}};
        }
        now_ += 1;
        Received received{.fault = Fault::none, .bytes = std::move(transfers.front())};
        transfers.pop_front();
        Bytes& bytes = received.bytes;
        if (!bytes.empty() && bytes[0] == 'S')
            return {.fault = Fault::stall, .bytes = {}};
        for (std::size_t i = 8; i < 12 && bytes.size() >= 12; ++i)
            bytes[i] = bytes[i] == 1 ? static_cast<std::uint8_t>(last_ >> (8 * (i - 8))) : bytes[i];
        if (bytes.size() >= 12 && bytes[0] == 'L') { // its own length
            bytes[0] = static_cast<std::uint8_t>(bytes.size());
            bytes[1] = static_cast<std::uint8_t>(bytes.size() >> 8);
            bytes[2] = bytes[3] = 0;
        }
        return received;
    }
    void clearStall() override {}
    std::optional<std::uint16_t> deviceStatus() override { return std::uint16_t{0x2001}; }
    void cancel(std::uint32_t) override {}
    void reset() override {}
    std::vector<Bytes> takeEvents() override { return std::exchange(events, {}); }
    Fault wait(Milliseconds span) override {
        now_ += static_cast<double>(span.count());
        return Fault::none;
    }
    void beginRelease() override {}
    double nowMs() override { return now_; }

private:
    double now_ = 0;
    std::uint32_t last_ = 0;
};

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view input(reinterpret_cast<const char*>(data), size);
    ScriptedBody camera;
    LumixBody body(camera);
    HelperProtocol protocol(body);
    RequestLines lines;
    int confirmed = 0;
    for (std::size_t from = 0; from < input.size();) {
        const std::size_t newline = std::min(input.find('\n', from), input.size());
        const std::string_view piece = input.substr(from, newline - from);
        from = newline + 1;
        const Bytes rest(piece.begin() + (piece.empty() ? 0 : 1), piece.end());
        if (piece.starts_with('<')) {
            camera.transfers.push_back(rest);
        } else if (piece.starts_with('!')) {
            camera.events.push_back(rest);
        } else {
            lines.feed(std::string(piece) + "\n");
            while (const auto line = lines.next()) {
                const double begin = camera.nowMs();
                const std::string answer = protocol.answer(*line);
                check(answer.find('\n') == answer.npos);
                const auto words = nlohmann::json::parse(answer, nullptr, false);
                check(words.is_object());
                check(camera.nowMs() - begin < 3'700'000);
                if (const auto count = words.find("confirmed"); count != words.end()) {
                    check(count->get<int>() >= confirmed);
                    confirmed = count->get<int>();
                }
            }
        }
    }
    const Bytes all(data, data + size);
    if (const auto container = ptp::parse(all))
        check(ptp::pack(*container) == all);
    ptp::parseDeviceInfo(all);
    return 0;
}

#pragma once

#include "lumix-helper/PtpContainer.h"
#include "lumix-helper/PtpTransport.h"

#include <algorithm>
#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <string>
#include <vector>

namespace zenka::test {

/// A Lumix body behind a transport, in a time of its own that passes where it is waited for.
class VirtualBody final : public lumixHelper::PtpTransport {
public:
    using Bytes = lumixHelper::Bytes;
    using Milliseconds = lumixHelper::Milliseconds;
    using Container = lumixHelper::ptp::Container;

    std::vector<std::uint16_t> operations{0x1001, 0x1002, 0x1003, 0x1015, 0x9403, 0x9404};
    std::vector<std::uint16_t> eventsSaid{0x4002, 0x400D};
    std::map<std::uint16_t, Bytes> properties{
        {0x5001, {84}}, {0x5007, {0x20, 3}}, {0x500E, {1, 0}}, {0x500F, {200, 0}}, {0x5013, {1, 0}}};
    std::map<std::uint32_t, std::uint16_t> refusals; ///< codes for properties that are set, and actions
    std::uint16_t openCode = 0x2001;
    double answerMs = 20;
    bool silent = false;
    bool gone = false;
    double stopAtMs = 1e18; ///< the helper is asked to end then
    bool resetHelps = true;
    int stallsNext = 0; ///< so many transfers from it stall
    /// Has the last word on what is sent: what stands in for an answer's transfers.
    std::function<std::vector<Bytes>(std::vector<Bytes>)> mangle = [](std::vector<Bytes> pieces) {
        return pieces;
    };

    // what it was told
    std::vector<std::string> done; ///< "open", "set 02000021=200", "act 03000011", "close"
    std::vector<Bytes> sent;
    int resets = 0;
    int cancels = 0;
    int stallsCleared = 0;
    bool sessionOpen = false;

    std::deque<Bytes> events;
    static Bytes event(std::uint16_t code, std::uint32_t transaction,
                       const std::vector<std::uint32_t>& params = {}) {
        return lumixHelper::ptp::pack({.type = 4,
                                       .code = code,
                                       .transaction = transaction,
                                       .payload = lumixHelper::ptp::packParams(params)});
    }
    std::uint32_t lastTransaction = 0;

    Fault send(const Bytes& bytes, Milliseconds) override {
        if (const Fault fault = ending(); fault != Fault::none)
            return fault;
        sent.push_back(bytes);
        const auto container = lumixHelper::ptp::parse(bytes);
        if (!container)
            return Fault::broken;
        if (silent)
            return Fault::none;
        if (container->type == 2)
            perform(dataOf_, container->payload);
        else if (container->code == 0x9403)
            dataOf_ = *container;
        else
            perform(*container, {});
        return Fault::none;
    }

    Received receive(Milliseconds limit) override {
        if (const Fault fault = ending(); fault != Fault::none)
            return {.fault = fault, .bytes = {}};
        if (stallsNext > 0) {
            --stallsNext;
            return {.fault = Fault::stall, .bytes = {}};
        }
        if (answers_.empty() || answerMs > static_cast<double>(limit.count())) {
            now_ += static_cast<double>(limit.count());
            return {.fault = Fault::timeout, .bytes = {}};
        }
        now_ += answerMs;
        Received received{.fault = Fault::none, .bytes = answers_.front()};
        answers_.pop_front();
        return received;
    }

    void clearStall() override { ++stallsCleared; }
    std::optional<std::uint16_t> deviceStatus() override {
        return silent ? std::nullopt : std::optional<std::uint16_t>(0x2001);
    }
    void cancel(std::uint32_t) override {
        ++cancels;
        dataOf_ = {};
    }
    void reset() override {
        ++resets;
        silent = silent && !resetHelps;
        answers_.clear();
    }
    std::vector<Bytes> takeEvents() override {
        std::vector<Bytes> came(events.begin(), events.end());
        events.clear();
        return came;
    }
    Fault wait(Milliseconds span) override {
        const double end = now_ + static_cast<double>(span.count());
        now_ = std::min(end, std::max(now_, stopAtMs));
        return ending();
    }
    void beginRelease() override { releasing_ = true; }
    double nowMs() override { return now_; }

private:
    Fault ending() const {
        if (gone)
            return Fault::gone;
        return now_ >= stopAtMs && !releasing_ ? Fault::stopped : Fault::none;
    }

    static std::string hex(std::uint32_t number) {
        std::string text;
        for (int shift = 28; shift >= 0; shift -= 4)
            text += "0123456789abcdef"[number >> shift & 15];
        return text;
    }

    static void list(Bytes& bytes, const std::vector<std::uint16_t>& codes) {
        const auto count = static_cast<std::uint8_t>(codes.size());
        bytes.insert(bytes.end(), {count, 0, 0, 0});
        for (const std::uint16_t code : codes)
            bytes.insert(bytes.end(),
                         {static_cast<std::uint8_t>(code), static_cast<std::uint8_t>(code >> 8)});
    }

    Bytes deviceInfo() const {
        Bytes bytes{100, 0, 6, 0, 0, 0, 100, 0, 2, 'P', 0, 0, 0, 0, 0};
        std::vector<std::uint16_t> known;
        for (const auto& [code, value] : properties)
            known.push_back(code);
        for (const auto& codes : {operations, eventsSaid, known})
            list(bytes, codes);
        bytes.insert(bytes.end(), 9, 0); // formats, and names that nobody reads
        return bytes;
    }

    void perform(const Container& command, const Bytes& data) {
        namespace ptp = lumixHelper::ptp;
        std::uint16_t code = 0x2001;
        std::optional<Bytes> payload;
        const auto params = command.params();
        lastTransaction = command.transaction;
        const std::uint32_t first = params.empty() ? 0 : params[0];
        if (command.code == ptp::openSession) {
            done.emplace_back("open");
            code = sessionOpen ? ptp::sessionAlreadyOpen : openCode;
            sessionOpen = sessionOpen || code == ptp::ok;
        } else if (command.code == ptp::closeSession) {
            done.emplace_back("close");
            sessionOpen = false;
        } else if (command.code == ptp::getDeviceInfo) {
            payload = deviceInfo();
        } else if (!sessionOpen) {
            code = 0x2003;
        } else if (command.code == ptp::getDevicePropValue) {
            if (const auto found = properties.find(static_cast<std::uint16_t>(first));
                found != properties.end())
                payload = found->second;
            else
                code = 0x200A;
        } else if (command.code == 0x9403 || command.code == 0x9404) {
            if (const auto refused = refusals.find(first); refused != refusals.end())
                code = refused->second;
            if (command.code == 0x9404)
                done.push_back("act " + hex(first));
            else
                done.push_back("set " + hex(first) + "=" +
                               std::to_string(ptp::number(Bytes(data.begin() + 8, data.end())).value_or(0)));
        } else {
            code = 0x2005;
        }
        std::vector<Bytes> pieces;
        if (payload)
            pieces.push_back(ptp::pack(
                {.type = 2, .code = command.code, .transaction = command.transaction, .payload = *payload}));
        pieces.push_back(ptp::pack({.type = 3, .code = code, .transaction = command.transaction}));
        for (Bytes& piece : mangle(std::move(pieces)))
            answers_.push_back(std::move(piece));
    }

    double now_ = 0;
    bool releasing_ = false;
    Container dataOf_;
    std::deque<Bytes> answers_;
};

} // namespace zenka::test

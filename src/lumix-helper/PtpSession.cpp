#include "lumix-helper/PtpSession.h"

#include <algorithm>
#include <cmath>

namespace zenka::lumixHelper {

namespace {

constexpr std::uint32_t lastTransaction = 0xFFFFFFFE; // the one behind it means "any"
constexpr Milliseconds openLimit{2000};
constexpr Milliseconds closeLimit{500};
constexpr Milliseconds afterStall{500};
constexpr Milliseconds drainLimit{20};
constexpr Milliseconds statusPause{50};
constexpr int statusTries = 10;
constexpr int drainTries = 16;
constexpr std::uint32_t longestContainer = 1U << 20; // no property has as much
constexpr int mostStrays = 32;                       // containers and empty transfers that are passed over

} // namespace

Milliseconds PtpSession::left(double deadline) {
    return Milliseconds(
        static_cast<Milliseconds::rep>(std::ceil(std::max(0.0, deadline - transport_.nowMs()))));
}

PtpAnswer PtpSession::open() {
    if (open_)
        return {.kind = PtpAnswer::Kind::answered, .code = ptp::ok};
    PtpAnswer answer;
    for (int round = 0; round < 2; ++round) {
        if (round > 0)
            transport_.reset();
        transaction_ = 0; // the opening one has this number
        answer = run(ptp::openSession, {1}, nullptr, openLimit);
        if (answer.answered() && answer.code == ptp::sessionAlreadyOpen) { // of one before us that was killed
            run(ptp::closeSession, {}, nullptr, closeLimit);
            transaction_ = 0;
            answer = run(ptp::openSession, {1}, nullptr, openLimit);
            if (answer.answered() && answer.code == ptp::sessionAlreadyOpen)
                answer.code = ptp::ok;
        }
        open_ = answer.ok();
        if (answer.kind != PtpAnswer::Kind::silent)
            break;
    }
    return answer;
}

void PtpSession::close() {
    if (open_)
        run(ptp::closeSession, {}, nullptr, closeLimit);
    open_ = false;
}

PtpAnswer PtpSession::transact(std::uint16_t code, const std::vector<std::uint32_t>& params,
                               Milliseconds limit) {
    return run(code, params, nullptr, limit);
}

PtpAnswer PtpSession::transact(std::uint16_t code, const std::vector<std::uint32_t>& params,
                               const Bytes& data, Milliseconds limit) {
    return run(code, params, &data, limit);
}

PtpAnswer PtpSession::run(std::uint16_t code, const std::vector<std::uint32_t>& params, const Bytes* data,
                          Milliseconds limit) {
    const std::uint32_t transaction = transaction_;
    transaction_ = transaction == lastTransaction ? 1 : transaction + 1;
    const double deadline = transport_.nowMs() + static_cast<double>(limit.count());
    Fault fault = transport_.send(ptp::pack({.type = ptp::command,
                                             .code = code,
                                             .transaction = transaction,
                                             .payload = ptp::packParams(params)}),
                                  limit);
    if (fault == Fault::none && data)
        fault = transport_.send(
            ptp::pack({.type = ptp::data, .code = code, .transaction = transaction, .payload = *data}),
            left(deadline));
    if (fault == Fault::stall)
        return stalled(transaction);
    if (fault != Fault::none)
        return failed(fault, transaction);
    return readAnswer(code, transaction, deadline);
}

PtpAnswer PtpSession::readAnswer(std::uint16_t code, std::uint32_t transaction, double deadline) {
    PtpAnswer answer;
    for (int strays = 0; strays < mostStrays;) {
        std::optional<ptp::Container> container;
        const Fault fault = readContainer(deadline, container);
        if (fault == Fault::stall)
            return stalled(transaction);
        if (fault != Fault::none || !container)
            return failed(fault, transaction);
        if (container->transaction != transaction) {
            ++strays; // of a transaction that was given up
        } else if (container->type == ptp::response) {
            answer.kind = PtpAnswer::Kind::answered;
            answer.code = container->code;
            answer.params = container->params();
            return answer;
        } else if (container->type == ptp::data && container->code == code) {
            answer.data = std::move(container->payload);
            ++strays;
        } else {
            break;
        }
    }
    return failed(Fault::broken, transaction);
}

/// One container, however many transfers it comes in. None with no fault stands for what cannot be read.
PtpSession::Fault PtpSession::readContainer(double deadline, std::optional<ptp::Container>& container) {
    Bytes bytes;
    for (int empty = 0; empty < mostStrays;) {
        auto received = transport_.receive(left(deadline));
        if (received.fault != Fault::none)
            return received.fault;
        empty += received.bytes.empty();
        bytes.insert(bytes.end(), received.bytes.begin(), received.bytes.end());
        if (bytes.empty())
            continue; // the end of a transfer that was a whole number of packets
        const auto length = ptp::claimedLength(bytes);
        if (!length || *length < ptp::headerSize || *length > longestContainer || bytes.size() > *length)
            return Fault::none;
        if (bytes.size() == *length) {
            container = ptp::parse(bytes);
            return Fault::none;
        }
    }
    return Fault::none;
}

/// A device that stalls refuses the transaction; why it may still say.
PtpAnswer PtpSession::stalled(std::uint32_t transaction) {
    const auto status = transport_.deviceStatus();
    transport_.clearStall();
    if (status && *status != ptp::ok && *status != ptp::deviceBusy)
        return {.kind = PtpAnswer::Kind::answered, .code = *status};
    std::optional<ptp::Container> container;
    const double deadline = transport_.nowMs() + static_cast<double>(afterStall.count());
    const Fault fault = readContainer(deadline, container);
    if (fault == Fault::none && container && container->type == ptp::response &&
        container->transaction == transaction && container->code != 0)
        return {.kind = PtpAnswer::Kind::answered, .code = container->code, .params = container->params()};
    return failed(fault == Fault::none ? Fault::broken : fault, transaction);
}

PtpAnswer PtpSession::failed(Fault fault, std::uint32_t transaction) {
    open_ = false;
    if (fault == Fault::gone)
        return {.kind = PtpAnswer::Kind::gone};
    if (fault == Fault::stopped)
        return {.kind = PtpAnswer::Kind::stopped};
    recover(transaction);
    return {.kind = PtpAnswer::Kind::silent};
}

void PtpSession::recover(std::uint32_t transaction) {
    transport_.cancel(transaction);
    for (int i = 0; i < statusTries; ++i) {
        const auto status = transport_.deviceStatus();
        if (!status || *status == ptp::ok || transport_.wait(statusPause) != Fault::none)
            break;
    }
    transport_.clearStall();
    for (int i = 0; i < drainTries && transport_.receive(drainLimit).fault == Fault::none; ++i) {
    }
}

std::vector<ptp::Container> PtpSession::takeEvents() {
    std::vector<ptp::Container> events;
    for (const Bytes& bytes : transport_.takeEvents()) {
        auto container = ptp::parse(bytes);
        if (container && container->type == ptp::event)
            events.push_back(std::move(*container));
    }
    return events;
}

} // namespace zenka::lumixHelper

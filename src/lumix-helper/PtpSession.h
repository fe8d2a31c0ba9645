#pragma once

#include "lumix-helper/PtpContainer.h"
#include "lumix-helper/PtpTransport.h"

#include <cstdint>
#include <optional>
#include <vector>

namespace zenka::lumixHelper {

/// What came of one transaction.
struct PtpAnswer {
    enum class Kind {
        answered, ///< code, params and data are the device's
        silent,   ///< nothing within the limit, or nothing that can be read
        gone,
        stopped,
    };
    Kind kind = Kind::silent;
    std::uint16_t code = 0;
    std::vector<std::uint32_t> params;
    Bytes data;

    bool answered() const { return kind == Kind::answered; }
    bool ok() const { return answered() && code == ptp::ok; }
};

/// Transactions, one at a time. After one that went wrong the pipes are cleared and the session counts as
/// closed; the next opens it anew.
class PtpSession {
public:
    explicit PtpSession(PtpTransport& transport) : transport_(transport) {}
    PtpSession(const PtpSession&) = delete;
    PtpSession& operator=(const PtpSession&) = delete;

    /// Opens the session unless it is open, with a reset of the device in between if it must be. Gives the
    /// last answer; a session that was open already counts as ok.
    PtpAnswer open();
    bool isOpen() const { return open_; }
    /// Ends the session as far as the device goes along.
    void close();

    PtpAnswer transact(std::uint16_t code, const std::vector<std::uint32_t>& params, Milliseconds limit);
    /// With a data phase to the device.
    PtpAnswer transact(std::uint16_t code, const std::vector<std::uint32_t>& params, const Bytes& data,
                       Milliseconds limit);

    /// The readable ones of the events that came since the last call.
    std::vector<ptp::Container> takeEvents();

    PtpTransport& transport() { return transport_; }

private:
    using Fault = PtpTransport::Fault;

    PtpAnswer run(std::uint16_t code, const std::vector<std::uint32_t>& params, const Bytes* data,
                  Milliseconds limit);
    PtpAnswer readAnswer(std::uint16_t code, std::uint32_t transaction, double deadline);
    Fault readContainer(double deadline, std::optional<ptp::Container>& container);
    PtpAnswer stalled(std::uint32_t transaction);
    PtpAnswer failed(Fault fault, std::uint32_t transaction);
    void recover(std::uint32_t transaction);
    Milliseconds left(double deadline);

    PtpTransport& transport_;
    bool open_ = false;
    std::uint32_t transaction_ = 0;
};

} // namespace zenka::lumixHelper

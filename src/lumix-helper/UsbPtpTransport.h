#pragma once

#include "lumix-helper/PtpTransport.h"

#include <array>
#include <atomic>
#include <deque>
#include <memory>
#include <string>
#include <vector>

struct libusb_context;
struct libusb_device_handle;
struct libusb_transfer;

namespace zenka::lumixHelper {

/// The still image interface of a USB device, by libusb. One thread.
class UsbPtpTransport final : public PtpTransport {
public:
    struct Opened {
        std::unique_ptr<UsbPtpTransport> transport; ///< null when the device cannot be had
        std::string fault;                          ///< why, a sentence
    };
    /// The flag ends all waiting when it is set; it outlives the object.
    static Opened open(int bus, int address, const std::atomic<bool>& stop);

    /// Lets the interface go.
    ~UsbPtpTransport() override;
    UsbPtpTransport(const UsbPtpTransport&) = delete;
    UsbPtpTransport& operator=(const UsbPtpTransport&) = delete;

    Fault send(const Bytes& bytes, Milliseconds limit) override;
    Received receive(Milliseconds limit) override;
    void clearStall() override;
    std::optional<std::uint16_t> deviceStatus() override;
    void cancel(std::uint32_t transaction) override;
    void reset() override;
    std::vector<Bytes> takeEvents() override;
    Fault wait(Milliseconds span) override;
    void beginRelease() override { releasing_ = true; }
    double nowMs() override;

    /// The device has left the bus, as far as was seen.
    bool gone() const { return gone_; }

private:
    explicit UsbPtpTransport(const std::atomic<bool>& stop) : stop_(stop) {}

    struct Places { ///< of the interface and its end points
        std::uint8_t interface = 0;
        std::uint8_t in = 0;
        std::uint8_t out = 0;
        std::uint8_t event = 0; ///< 0 where there is none
        std::uint16_t outPacket = 64;
    };
    std::string take(int bus, int address);
    std::string claim();
    bool findPlaces();
    Fault transfer(std::uint8_t endpoint, std::uint8_t* bytes, int length, Milliseconds limit, int& moved);
    Fault control(std::uint8_t type, std::uint8_t request, std::uint8_t* bytes, std::uint16_t length);
    bool stopping() const { return stop_ && !releasing_; }
    void handle(Milliseconds limit);
    void listen();
    void endListening();
    void heard(const libusb_transfer& transfer);

    const std::atomic<bool>& stop_;
    bool releasing_ = false;
    bool gone_ = false;
    libusb_context* context_ = nullptr;
    libusb_device_handle* device_ = nullptr;
    bool claimed_ = false;
    Places places_;
    libusb_transfer* listening_ = nullptr; // for events, all the time
    bool listeningNow_ = false;
    std::array<unsigned char, 64> eventBuffer_{};
    std::deque<Bytes> events_;
    int eventFaults_ = 0;
};

} // namespace zenka::lumixHelper

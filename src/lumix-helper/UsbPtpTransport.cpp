#include "lumix-helper/UsbPtpTransport.h"

#include <absl/strings/str_format.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <libusb.h>
#include <thread>
#include <utility>

namespace zenka::lumixHelper {

namespace {

constexpr Milliseconds slice{50}; ///< a wish to end is seen after so long
constexpr unsigned controlLimitMs = 300;
constexpr Milliseconds claimPause{200};
constexpr int claimTries = 15;
constexpr double cancelLimitMs = 2000;
constexpr std::size_t mostEvents = 1024;
constexpr int mostEventFaults = 8; ///< in a row, then the end point is left alone

constexpr std::uint8_t toClass = 0x21;   // a class request to an interface
constexpr std::uint8_t fromClass = 0xA1; // and one that is answered
constexpr std::uint8_t cancelRequest = 0x64;
constexpr std::uint8_t resetRequest = 0x66;
constexpr std::uint8_t statusRequest = 0x67;
constexpr std::uint16_t cancellation = 0x4001;

/// One transfer that is waited for here.
struct Waited {
    int done = 0;
};

void LIBUSB_CALL noteDone(libusb_transfer* transfer) {
    static_cast<Waited*>(transfer->user_data)->done = 1;
}

PtpTransport::Fault faultOf(int status) {
    using Fault = PtpTransport::Fault;
    switch (status) {
    case LIBUSB_TRANSFER_COMPLETED: return Fault::none;
    case LIBUSB_TRANSFER_STALL: return Fault::stall;
    case LIBUSB_TRANSFER_NO_DEVICE: return Fault::gone;
    case LIBUSB_TRANSFER_TIMED_OUT:
    case LIBUSB_TRANSFER_CANCELLED: return Fault::timeout;
    default: return Fault::broken;
    }
}

std::string words(const char* what, int code) {
    return absl::StrFormat("%s: %s", what, libusb_strerror(code));
}

} // namespace

UsbPtpTransport::Opened UsbPtpTransport::open(int bus, int address, const std::atomic<bool>& stop) {
    std::unique_ptr<UsbPtpTransport> transport(new UsbPtpTransport(stop));
    std::string fault = transport->take(bus, address);
    if (fault.empty())
        fault = transport->claim();
    if (!fault.empty())
        transport.reset();
    return {.transport = std::move(transport), .fault = std::move(fault)};
}

std::string UsbPtpTransport::take(int bus, int address) {
    if (const int code = libusb_init(&context_); code != 0) {
        context_ = nullptr;
        return words("USB cannot be used", code);
    }
    libusb_device** list = nullptr;
    const ssize_t count = libusb_get_device_list(context_, &list);
    std::string fault = absl::StrFormat("no device at bus %d, address %d", bus, address);
    for (ssize_t i = 0; i < count; ++i) {
        if (libusb_get_bus_number(list[i]) != bus || libusb_get_device_address(list[i]) != address)
            continue;
        const int code = libusb_open(list[i], &device_);
        fault = code == 0 ? std::string() : words("the body cannot be opened", code);
        break;
    }
    if (list)
        libusb_free_device_list(list, 1);
    return fault;
}

bool UsbPtpTransport::findPlaces() {
    constexpr std::uint8_t stillImage = 6;
    libusb_config_descriptor* configuration = nullptr;
    if (libusb_get_active_config_descriptor(libusb_get_device(device_), &configuration) != 0)
        return false;
    bool found = false;
    for (int i = 0; i < configuration->bNumInterfaces && !found; ++i) {
        if (configuration->interface[i].num_altsetting < 1)
            continue;
        const libusb_interface_descriptor& face = configuration->interface[i].altsetting[0];
        if (face.bInterfaceClass != stillImage)
            continue;
        Places places{.interface = face.bInterfaceNumber};
        for (int e = 0; e < face.bNumEndpoints; ++e) {
            const libusb_endpoint_descriptor& end = face.endpoint[e];
            const bool in = (end.bEndpointAddress & LIBUSB_ENDPOINT_IN) != 0;
            const int kind = end.bmAttributes & 3;
            if (kind == LIBUSB_TRANSFER_TYPE_BULK) {
                (in ? places.in : places.out) = end.bEndpointAddress;
                if (!in)
                    places.outPacket = std::max<std::uint16_t>(end.wMaxPacketSize & 0x7FF, 1);
            } else if (kind == LIBUSB_TRANSFER_TYPE_INTERRUPT && in) {
                places.event = end.bEndpointAddress;
            }
        }
        found = places.in != 0 && places.out != 0;
        if (found)
            places_ = places;
    }
    libusb_free_config_descriptor(configuration);
    return found;
}

std::string UsbPtpTransport::claim() {
    if (!findPlaces())
        return "the body offers no PTP: set its USB mode to PC(Tether)";
    // services of the desktop that hold a new body are being ended meanwhile
    int code = libusb_claim_interface(device_, places_.interface);
    for (int i = 0; i < claimTries && code == LIBUSB_ERROR_BUSY && !stop_; ++i) {
        std::this_thread::sleep_for(claimPause);
        code = libusb_claim_interface(device_, places_.interface);
    }
    if (code != 0)
        return words("the body cannot be claimed", code);
    claimed_ = true;
    if (places_.event != 0) {
        listening_ = libusb_alloc_transfer(0);
        listen();
    }
    return {};
}

UsbPtpTransport::~UsbPtpTransport() {
    endListening();
    if (claimed_)
        libusb_release_interface(device_, places_.interface);
    if (device_)
        libusb_close(device_);
    if (context_)
        libusb_exit(context_);
}

double UsbPtpTransport::nowMs() {
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

void UsbPtpTransport::handle(Milliseconds limit) {
    const auto micros = std::chrono::duration_cast<std::chrono::microseconds>(limit).count();
    timeval span{.tv_sec = micros / 1'000'000, .tv_usec = micros % 1'000'000};
    libusb_handle_events_timeout_completed(context_, &span, nullptr);
}

// --- bulk

PtpTransport::Fault UsbPtpTransport::transfer(std::uint8_t endpoint, std::uint8_t* bytes, int length,
                                              Milliseconds limit, int& moved) {
    moved = 0;
    if (gone_ || stopping())
        return gone_ ? Fault::gone : Fault::stopped;
    Waited waited;
    libusb_transfer* transfer = libusb_alloc_transfer(0);
    if (!transfer)
        return Fault::broken;
    libusb_fill_bulk_transfer(transfer, device_, endpoint, bytes, length, noteDone, &waited, 0);
    if (const int code = libusb_submit_transfer(transfer); code != 0) {
        libusb_free_transfer(transfer);
        gone_ = code == LIBUSB_ERROR_NO_DEVICE;
        return gone_ ? Fault::gone : Fault::broken;
    }
    const double end = nowMs() + static_cast<double>(limit.count());
    bool cancelled = false;
    double cancelledAt = 0;
    while (!waited.done) {
        if (!cancelled && (stopping() || nowMs() >= end)) {
            cancelled = true;
            cancelledAt = nowMs();
            libusb_cancel_transfer(transfer);
        }
        if (cancelled && nowMs() > cancelledAt + cancelLimitMs) {
            std::fputs("zenka-lumix-helper: the system does not give a transfer back\n", stderr);
            std::_Exit(EXIT_FAILURE); // which takes it back by force
        }
        const double left = cancelled ? 1 : end - nowMs();
        const auto span = Milliseconds(std::max<Milliseconds::rep>(1, static_cast<Milliseconds::rep>(left)));
        timeval time{.tv_sec = 0, .tv_usec = std::min(slice, span).count() * 1000};
        libusb_handle_events_timeout_completed(context_, &time, &waited.done);
    }
    Fault fault = faultOf(transfer->status);
    moved = transfer->actual_length;
    libusb_free_transfer(transfer);
    gone_ = gone_ || fault == Fault::gone;
    if (fault == Fault::timeout && stopping())
        fault = Fault::stopped;
    return fault;
}

PtpTransport::Fault UsbPtpTransport::send(const Bytes& bytes, Milliseconds limit) {
    Bytes copy = bytes;
    int moved = 0;
    Fault fault = transfer(places_.out, copy.data(), static_cast<int>(copy.size()), limit, moved);
    if (fault == Fault::none && moved != static_cast<int>(copy.size()))
        fault = Fault::broken;
    // a last packet that is full would not end the transfer
    if (fault == Fault::none && copy.size() % places_.outPacket == 0)
        fault = transfer(places_.out, copy.data(), 0, limit, moved);
    return fault;
}

PtpTransport::Received UsbPtpTransport::receive(Milliseconds limit) {
    Bytes bytes(mostAtOnce);
    int moved = 0;
    const Fault fault = transfer(places_.in, bytes.data(), static_cast<int>(bytes.size()), limit, moved);
    bytes.resize(static_cast<std::size_t>(std::max(moved, 0)));
    return {.fault = fault, .bytes = std::move(bytes)};
}

// --- control

PtpTransport::Fault UsbPtpTransport::control(std::uint8_t type, std::uint8_t request, std::uint8_t* bytes,
                                             std::uint16_t length) {
    if (gone_)
        return Fault::gone;
    const int code =
        libusb_control_transfer(device_, type, request, 0, places_.interface, bytes, length, controlLimitMs);
    gone_ = code == LIBUSB_ERROR_NO_DEVICE;
    return code >= length ? Fault::none : Fault::broken;
}

void UsbPtpTransport::clearStall() {
    if (gone_)
        return;
    for (const std::uint8_t end : {places_.in, places_.out})
        libusb_clear_halt(device_, end);
}

std::optional<std::uint16_t> UsbPtpTransport::deviceStatus() {
    std::array<std::uint8_t, 4> bytes{}; // its length, and the code
    if (control(fromClass, statusRequest, bytes.data(), bytes.size()) != Fault::none)
        return std::nullopt;
    return static_cast<std::uint16_t>(bytes[2] | bytes[3] << 8);
}

void UsbPtpTransport::cancel(std::uint32_t transaction) {
    std::array<std::uint8_t, 6> bytes{cancellation & 0xFF, cancellation >> 8};
    for (std::size_t i = 0; i < 4; ++i)
        bytes[2 + i] = static_cast<std::uint8_t>(transaction >> (8 * i));
    control(toClass, cancelRequest, bytes.data(), bytes.size());
}

void UsbPtpTransport::reset() {
    control(toClass, resetRequest, nullptr, 0);
    clearStall();
}

// --- events

void UsbPtpTransport::listen() {
    if (!listening_ || listeningNow_ || gone_ || eventFaults_ >= mostEventFaults)
        return;
    libusb_fill_interrupt_transfer(
        listening_, device_, places_.event, eventBuffer_.data(), static_cast<int>(eventBuffer_.size()),
        [](libusb_transfer* transfer) {
            static_cast<UsbPtpTransport*>(transfer->user_data)->heard(*transfer);
        },
        this, 0);
    listeningNow_ = libusb_submit_transfer(listening_) == 0;
}

void UsbPtpTransport::heard(const libusb_transfer& transfer) {
    listeningNow_ = false;
    const Fault fault = faultOf(transfer.status);
    gone_ = gone_ || fault == Fault::gone;
    eventFaults_ = fault == Fault::none ? 0 : eventFaults_ + 1;
    if (fault == Fault::none && transfer.actual_length > 0 && events_.size() < mostEvents)
        events_.emplace_back(transfer.buffer, transfer.buffer + transfer.actual_length);
    if (fault == Fault::none)
        listen();
}

void UsbPtpTransport::endListening() {
    if (!listening_)
        return;
    eventFaults_ = mostEventFaults;
    const double end = nowMs() + 200;
    if (listeningNow_)
        libusb_cancel_transfer(listening_);
    while (listeningNow_ && nowMs() < end)
        handle(Milliseconds{10});
    if (!listeningNow_) // else the process ends with it
        libusb_free_transfer(listening_);
}

std::vector<Bytes> UsbPtpTransport::takeEvents() {
    handle(Milliseconds{0});
    if (!listeningNow_ && listening_ && !gone_ && eventFaults_ > 0 && eventFaults_ < mostEventFaults) {
        libusb_clear_halt(device_, places_.event);
        listen();
    }
    const std::deque<Bytes> came = std::exchange(events_, {});
    return {came.begin(), came.end()};
}

PtpTransport::Fault UsbPtpTransport::wait(Milliseconds span) {
    const double end = nowMs() + static_cast<double>(span.count());
    do {
        if (gone_ || stopping())
            return gone_ ? Fault::gone : Fault::stopped;
        const double left = std::max(0.0, end - nowMs());
        handle(std::min(slice, Milliseconds(static_cast<Milliseconds::rep>(left) + 1)));
    } while (nowMs() < end);
    return Fault::none;
}

} // namespace zenka::lumixHelper

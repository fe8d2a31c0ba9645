#include "lumix-helper/PtpContainer.h"

namespace zenka::lumixHelper::ptp {

namespace {

void put(Bytes& bytes, std::uint32_t value, int size) {
    for (int i = 0; i < size; ++i)
        bytes.push_back(static_cast<std::uint8_t>(value >> (8 * i)));
}

/// Reads numbers one behind the other; past the end there are none.
class Reader {
public:
    explicit Reader(const Bytes& bytes) : bytes_(bytes) {}

    std::optional<std::uint32_t> next(std::size_t size) {
        if (size > bytes_.size() - at_)
            return std::nullopt;
        std::uint32_t value = 0;
        for (std::size_t i = 0; i < size; ++i)
            value |= static_cast<std::uint32_t>(bytes_[at_ + i]) << (8 * i);
        at_ += size;
        return value;
    }

    bool skip(std::size_t size) {
        const bool there = size <= bytes_.size() - at_;
        at_ += there ? size : 0;
        return there;
    }

    /// A counted list of 16-bit codes.
    bool codes(std::vector<std::uint16_t>& list) {
        const auto count = next(4);
        if (!count || *count > (bytes_.size() - at_) / 2)
            return false;
        for (std::uint32_t i = 0; i < *count; ++i)
            list.push_back(static_cast<std::uint16_t>(next(2).value_or(0)));
        return true;
    }

private:
    const Bytes& bytes_;
    std::size_t at_ = 0;
};

} // namespace

std::vector<std::uint32_t> Container::params() const {
    std::vector<std::uint32_t> list;
    list.reserve(payload.size() / 4);
    Reader reader(payload);
    for (std::size_t i = 0; i < payload.size() / 4; ++i)
        list.push_back(reader.next(4).value_or(0));
    return list;
}

Bytes pack(const Container& container) {
    Bytes bytes;
    put(bytes, static_cast<std::uint32_t>(headerSize + container.payload.size()), 4);
    put(bytes, container.type, 2);
    put(bytes, container.code, 2);
    put(bytes, container.transaction, 4);
    bytes.insert(bytes.end(), container.payload.begin(), container.payload.end());
    return bytes;
}

Bytes packParams(const std::vector<std::uint32_t>& params) {
    Bytes bytes;
    for (const std::uint32_t param : params)
        put(bytes, param, 4);
    return bytes;
}

std::optional<std::uint32_t> claimedLength(const Bytes& bytes) {
    return bytes.size() < headerSize ? std::nullopt : Reader(bytes).next(4);
}

std::optional<Container> parse(const Bytes& bytes) {
    if (claimedLength(bytes) != bytes.size())
        return std::nullopt;
    Reader reader(bytes);
    reader.skip(4);
    Container container;
    container.type = static_cast<std::uint16_t>(reader.next(2).value_or(0));
    container.code = static_cast<std::uint16_t>(reader.next(2).value_or(0));
    container.transaction = reader.next(4).value_or(0);
    container.payload.assign(bytes.begin() + headerSize, bytes.end());
    return container;
}

std::optional<std::uint32_t> number(const Bytes& bytes) {
    return bytes.size() == 1 || bytes.size() == 2 || bytes.size() == 4 ? Reader(bytes).next(bytes.size())
                                                                       : std::nullopt;
}

std::optional<DeviceInfo> parseDeviceInfo(const Bytes& bytes) {
    Reader reader(bytes);
    DeviceInfo info;
    if (!reader.skip(8)) // versions and the extension's id
        return std::nullopt;
    const auto letters = reader.next(1); // of the extension's description, two bytes each
    if (!letters || !reader.skip(2 * std::size_t{*letters} + 2) || !reader.codes(info.operations) ||
        !reader.codes(info.events) || !reader.codes(info.properties))
        return std::nullopt;
    return info;
}

} // namespace zenka::lumixHelper::ptp

#include "geo/Bytes.h"

namespace zenka::geo {
namespace {

std::uint32_t byteAt(std::string_view bytes, std::size_t at) {
    return static_cast<unsigned char>(bytes[at]);
}

} // namespace

std::uint32_t u16At(std::string_view bytes, std::size_t at) {
    if (bytes.size() < 2 || at > bytes.size() - 2) {
        return 0;
    }
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8;
}

std::uint32_t u32At(std::string_view bytes, std::size_t at) {
    if (bytes.size() < 4 || at > bytes.size() - 4) {
        return 0;
    }
    return byteAt(bytes, at) | byteAt(bytes, at + 1) << 8 | byteAt(bytes, at + 2) << 16 |
           byteAt(bytes, at + 3) << 24;
}

std::string_view slice(std::string_view bytes, std::size_t from, std::size_t to) {
    if (from >= bytes.size() || to <= from) {
        return {};
    }
    return bytes.substr(from, to - from);
}

} // namespace zenka::geo

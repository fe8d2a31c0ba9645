#include "platform/QrCode.h"

#include <qrencode.h>

#include <memory>

namespace zenka::platform {

QrCode qrCode(const std::string& text) {
    const std::unique_ptr<QRcode, decltype(&QRcode_free)> made(
        QRcode_encodeString8bit(text.c_str(), 0, QR_ECLEVEL_M), QRcode_free);
    QrCode code;
    if (!made)
        return code;
    code.side = made->width;
    const auto count = static_cast<std::size_t>(made->width) * static_cast<std::size_t>(made->width);
    for (std::size_t i = 0; i < count; ++i)
        code.dark.push_back((made->data[i] & 1) != 0); // the lowest bit of a module is its colour
    return code;
}

} // namespace zenka::platform

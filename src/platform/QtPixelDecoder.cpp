#include "platform/QtPixelDecoder.h"

#include <QBuffer>
#include <QByteArray>
#include <QImage>
#include <QImageReader>
#include <QSize>

#include <algorithm>

namespace zenka::platform {

std::optional<ports::Pixels> QtPixelDecoder::decodePng(std::string_view bytes, int width, int height) const {
    constexpr std::string_view signature("\x89PNG\r\n\x1a\n", 8);
    if (!bytes.starts_with(signature)) // which libpng would complain of on the error stream
        return std::nullopt;
    const auto raw = QByteArray::fromRawData(bytes.data(), static_cast<qsizetype>(bytes.size()));
    QBuffer buffer;
    buffer.setData(raw);
    buffer.open(QIODevice::ReadOnly);
    QImageReader reader(&buffer, "png");
    reader.setAutoDetectImageFormat(false);
    if (reader.size() != QSize(width, height))
        return std::nullopt;
    QImage image = reader.read();
    if (image.size() != QSize(width, height))
        return std::nullopt;
    image.convertTo(QImage::Format_RGBA8888);
    if (image.isNull())
        return std::nullopt;
    ports::Pixels pixels{.width = width, .height = height, .rgba = {}};
    const auto line = static_cast<std::size_t>(width) * 4;
    pixels.rgba.resize(line * static_cast<std::size_t>(height));
    for (int y = 0; y < height; ++y)
        std::copy_n(image.constScanLine(y), line,
                    pixels.rgba.begin() + static_cast<std::ptrdiff_t>(line) * y);
    return pixels;
}

} // namespace zenka::platform

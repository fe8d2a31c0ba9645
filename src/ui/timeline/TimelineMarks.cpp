#include "ui/timeline/TimelineMarks.h"

#include <QFontMetricsF>
#include <QPolygonF>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

/// The part of the lane's height that a column takes.
double heightOf(FrameState state) {
    switch (state) {
    case FrameState::past: return 0.25;
    case FrameState::coming: return 0.6;
    case FrameState::noCamera: return 0.4;
    case FrameState::fired:
    case FrameState::skipped:
    case FrameState::dropped: break;
    }
    return 0.9;
}

void drawGlyph(QPainter& painter, FrameState state, double size, const QColor& color) {
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(color);
    const double middle = size / 2;
    switch (state) {
    case FrameState::fired: painter.drawEllipse(QRectF(0.5, 0.5, size - 1, size - 1)); break;
    case FrameState::noCamera:
        painter.setBrush(Qt::NoBrush);
        painter.setPen(QPen(color, 1.5));
        painter.drawEllipse(QRectF(1, 1, size - 2, size - 2));
        break;
    case FrameState::dropped: painter.drawPolygon(QPolygonF({{middle, 0}, {size, size}, {0, size}})); break;
    case FrameState::skipped:
        painter.drawPolygon(QPolygonF({{0, 0}, {size * 0.45, middle}, {0, size}}));
        painter.drawPolygon(QPolygonF({{size * 0.4, 0}, {size * 0.85, middle}, {size * 0.4, size}}));
        painter.drawRect(QRectF(size * 0.85, 0, size * 0.15, size));
        break;
    case FrameState::past:
    case FrameState::coming: break;
    }
}

constexpr int smallGlyph = 5; // pixels

bool troubled(FrameState state) {
    return state == FrameState::dropped || state == FrameState::skipped;
}

int glyphSizeIn(double laneHeight) {
    const int size = std::clamp(static_cast<int>(laneHeight) - 4, 5, 11);
    return size % 2 == 0 ? size - 1 : size;
}

} // namespace

MarkPainter::MarkPainter(QPainter& painter, const Theme& theme, const TimelineLayout& layout)
    : painter_(painter), theme_(theme), layout_(layout), glyphSize_(glyphSizeIn(layout.laneHeight())) {
}

QColor MarkPainter::color(FrameState state) const {
    switch (state) {
    case FrameState::past: return theme_.quiet();
    case FrameState::coming: return theme_.text();
    case FrameState::fired: return theme_.good();
    case FrameState::noCamera: return theme_.quiet();
    case FrameState::skipped: return theme_.warning();
    case FrameState::dropped: return theme_.bad();
    }
    return theme_.text();
}

const QImage& MarkPainter::glyph(FrameState state, bool small) {
    QImage& image = glyphs_[static_cast<std::size_t>(state) + (small ? glyphs_.size() / 2 : 0)];
    const int size = small ? smallGlyph : glyphSize_;
    if (image.isNull()) {
        const double scale = painter_.device() ? painter_.device()->devicePixelRatioF() : 1;
        const int pixels = static_cast<int>(std::ceil(size * scale));
        image = QImage(pixels, pixels, QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(scale);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        drawGlyph(painter, state, size, color(state));
    }
    return image;
}

void MarkPainter::paintFrames(const std::vector<FrameBin>& bins, double laneTop) {
    painter_.setRenderHint(QPainter::Antialiasing, false);
    // The worse over the better: trouble is never hidden.
    for (const FrameState state : {FrameState::past, FrameState::coming, FrameState::noCamera,
                                   FrameState::fired, FrameState::skipped, FrameState::dropped})
        paintColumns(bins, laneTop, state);
    for (const FrameState state :
         {FrameState::noCamera, FrameState::fired, FrameState::skipped, FrameState::dropped})
        paintGlyphs(bins, laneTop, state);
}

void MarkPainter::paintColumns(const std::vector<FrameBin>& bins, double laneTop, FrameState state) {
    columns_.clear();
    const double height = std::max(2.0, std::round(layout_.laneHeight() * heightOf(state)));
    const double top = std::round(laneTop + (layout_.laneHeight() - height) / 2);
    for (const FrameBin& bin : bins) {
        if (bin.state != state)
            continue;
        // Neighbours become one rectangle.
        if (!columns_.empty() && columns_.back().right() >= bin.x)
            columns_.back().setRight(bin.x + 1);
        else
            columns_.emplace_back(bin.x, top, 1, height);
    }
    if (columns_.empty())
        return;
    painter_.setPen(Qt::NoPen);
    painter_.setBrush(color(state));
    painter_.drawRects(columns_.data(), static_cast<int>(columns_.size()));
}

void MarkPainter::paintGlyphs(const std::vector<FrameBin>& bins, double laneTop, FrameState state) {
    const double middle = std::round(laneTop + layout_.laneHeight() / 2);
    double lastRight = -1e9;
    for (std::size_t i = 0; i < bins.size(); ++i) {
        if (bins[i].state != state)
            continue;
        const int before = i > 0 ? bins[i].x - bins[i - 1].x : glyphSize_;
        const int after = i + 1 < bins.size() ? bins[i + 1].x - bins[i].x : glyphSize_;
        const int room = std::min(before, after);
        const bool small = room < glyphSize_ && !troubled(state);
        const int size = small ? smallGlyph : glyphSize_;
        const double left = bins[i].x - (size - 1) / 2.0;
        if (room < size && (!troubled(state) || left < lastRight))
            continue;
        painter_.drawImage(QPointF(left, middle - (size - 1) / 2.0), glyph(state, small));
        lastRight = left + size;
    }
}

void MarkPainter::paintCues(const std::vector<FrameBin>& bins, double laneTop) {
    QFont font;
    font.setPixelSize(std::clamp(static_cast<int>(layout_.laneHeight()) - 3, 7, theme_.small() + 2));
    font.setStyleStrategy(QFont::NoSubpixelAntialias);
    const QFontMetricsF metrics(font);
    const QString note = QStringLiteral("♪");
    const double width = metrics.horizontalAdvance(note);
    const double baseline = laneTop + (layout_.laneHeight() + metrics.capHeight()) / 2;
    painter_.setFont(font);
    double lastRight = -1e9;
    for (const FrameBin& bin : bins) {
        const QColor ink = bin.state == FrameState::past ? theme_.quiet() : theme_.text();
        if (bin.x - width / 2 < lastRight) { // too dense to read: a dash below the note before
            painter_.fillRect(QRectF(bin.x, laneTop + layout_.laneHeight() - 3, 1, 2), ink);
            continue;
        }
        painter_.setPen(ink);
        painter_.drawText(QPointF(bin.x - width / 2, baseline), note);
        lastRight = bin.x + width / 2;
    }
}

} // namespace zenka::ui

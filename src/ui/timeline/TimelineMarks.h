#pragma once

#include "ui/kit/Theme.h"
#include "ui/timeline/TimelineLayout.h"

#include <QImage>
#include <QPainter>

#include <array>
#include <vector>

namespace zenka::ui {

/// Draws the marks of a lane from its bins: a glyph where there is room for one, else a column of pixels
/// whose height tells the state. What went wrong keeps its glyph however dense the frames are.
class MarkPainter {
public:
    MarkPainter(QPainter& painter, const Theme& theme, const TimelineLayout& layout);

    void paintFrames(const std::vector<FrameBin>& bins, double laneTop);
    void paintCues(const std::vector<FrameBin>& bins, double laneTop);

private:
    void paintColumns(const std::vector<FrameBin>& bins, double laneTop, FrameState state);
    void paintGlyphs(const std::vector<FrameBin>& bins, double laneTop, FrameState state);
    const QImage& glyph(FrameState state, bool small);
    QColor color(FrameState state) const;

    QPainter& painter_;
    const Theme& theme_;
    const TimelineLayout& layout_;
    const int glyphSize_;           // pixels, odd
    std::array<QImage, 12> glyphs_; // by state, small ones behind
    std::vector<QRectF> columns_;
};

} // namespace zenka::ui

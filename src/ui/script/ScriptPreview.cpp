#include "ui/script/ScriptPreview.h"

#include <QPainter>
#include <QtQml>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double partWidth = 3;       // pixels
constexpr double previewMargin = 300; // seconds to show beside the outermost of frames and contacts

} // namespace

std::vector<int> density(const std::vector<double>& instants, double from, double to, int parts) {
    std::vector<int> counts(static_cast<std::size_t>(std::max(parts, 0)));
    if (counts.empty() || !(to > from))
        return counts;
    for (const double instant : instants) {
        if (instant < from || instant > to)
            continue;
        const auto part = static_cast<std::size_t>((instant - from) / (to - from) * parts);
        ++counts[std::min(part, counts.size() - 1)];
    }
    return counts;
}

void ScriptPreview::registerTypes() {
    qmlRegisterType<ScriptPreview>("Zenka", 1, 0, "ScriptPreview");
}

void ScriptPreview::followView(ScriptView& view) {
    connect(&view, &ScriptView::compiled, this, [this] { update(); });
}

void ScriptPreview::paintView(QPainter& painter, ScriptView& view, const Theme& theme) {
    if (width() < 4 * partWidth)
        return;
    const rig::SiteDesk& site = view.rig().site();
    const rig::ScriptDesk& desk = view.rig().script();
    const auto& offsets = desk.captureOffsets();
    double from = site.tC1();
    double to = site.tC4();
    if (const auto& bounds = desk.captureBounds()) {
        from = std::clamp(bounds->first, from - ScriptView::previewMargin, from);
        to = std::clamp(bounds->last, to, to + ScriptView::previewMargin);
    }
    from -= previewMargin;
    to += previewMargin;
    const auto xOf = [&](double clock) { return (clock - from) / (to - from) * width(); };

    QFont font;
    font.setPixelSize(theme.small());
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    painter.setFont(font);
    const double label = painter.fontMetrics().height();
    const double cueHeight = 6;
    const double floor = height() - cueHeight - 2;
    const std::vector<int> counts = density(offsets, from, to, static_cast<int>(width() / partWidth));
    const int most = counts.empty() ? 0 : *std::ranges::max_element(counts);
    for (std::size_t i = 0; i < counts.size(); ++i) {
        if (counts[i] == 0)
            continue;
        // A single frame is to be seen beside a hundred, so the height goes by the logarithm.
        const double part = std::log1p(counts[i]) / std::log1p(most);
        const double tall = std::max(4.0, part * (floor - label - 2));
        painter.fillRect(QRectF(static_cast<double>(i) * partWidth, floor - tall, partWidth - 1, tall),
                         theme.accent());
    }
    painter.fillRect(QRectF(0, floor, width(), 1), theme.line());
    for (const script::AudioCue& cue : desk.audioCues()) {
        if (cue.offsetSec >= from && cue.offsetSec <= to)
            painter.fillRect(QRectF(xOf(cue.offsetSec) - 1, floor + 2, 2, cueHeight), theme.quiet());
    }
    // Totality is narrow on this scale: C2 has its name before its line, C3 behind, and MAX has one where
    // there is room.
    struct Contact {
        const char* key;
        double shift; // of the name, in its widths
    };
    std::vector<QRectF> taken;
    for (const Contact& contact : {Contact{"C1", -0.5}, {"C2", -1}, {"C3", 0}, {"C4", -0.5}, {"MAX", -0.5}}) {
        const auto found = site.contactTHours().find(contact.key);
        if (found == site.contactTHours().end())
            continue;
        const double x = xOf(found->second * 3600);
        painter.fillRect(QRectF(x, label, 1, floor - label), theme.text());
        const QString name = QString::fromLatin1(contact.key);
        const double wide = painter.fontMetrics().horizontalAdvance(name);
        const QRectF place(std::clamp(x + contact.shift * wide, 0.0, width() - wide), 0, wide + 2, label);
        if (std::ranges::any_of(taken, [&](const QRectF& other) { return other.intersects(place); }))
            continue;
        painter.setPen(theme.text());
        painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextDontClip, name);
        taken.push_back(place);
    }
}

} // namespace zenka::ui

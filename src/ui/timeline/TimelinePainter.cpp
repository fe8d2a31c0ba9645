#include "ui/timeline/TimelinePainter.h"

#include "ui/timeline/TimelineAxis.h"
#include "ui/timeline/TimelineMarks.h"

#include <QFontMetricsF>

#include <algorithm>
#include <cmath>

namespace zenka::ui {

namespace {

constexpr double thinLane = 8;

QFont fontOf(const QString& family, int pixels, int weight) {
    QFont font;
    if (!family.isEmpty())
        font.setFamily(family);
    font.setPixelSize(pixels);
    font.setWeight(static_cast<QFont::Weight>(weight));
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    return font;
}

QFont nameFont(const Theme& theme) {
    return fontOf({}, theme.small(), theme.weight());
}

QFont timeFont(const Theme& theme) {
    return fontOf(theme.digits(), theme.small(), theme.weight());
}

QColor faded(QColor color, int alpha) {
    color.setAlpha(alpha);
    return color;
}

/// One picture of the timeline.
struct Sheet {
    QPainter& painter;
    const TimelineView& view;
    const TimelineLayout& layout;
    const Theme& theme;

    QRectF plot() const {
        return {layout.labelWidth, layout.contactsHeight, layout.plotWidth(),
                layout.lanesBottom() - layout.contactsHeight};
    }
};

void paintTotality(const Sheet& sheet) {
    double from = 0;
    double to = 0;
    for (const TimelineView::Contact& contact : sheet.view.contacts()) {
        if (contact.key == QLatin1String("C2"))
            from = contact.clock;
        else if (contact.key == QLatin1String("C3"))
            to = contact.clock;
    }
    if (to <= from)
        return;
    const double left = std::max(sheet.layout.xOf(from), sheet.layout.labelWidth);
    const double right = std::min(sheet.layout.xOf(to), sheet.layout.width);
    if (left < right)
        sheet.painter.fillRect(QRectF(left, sheet.plot().top(), right - left, sheet.plot().height()),
                               faded(sheet.theme.accent(), 48));
}

void paintAxis(const Sheet& sheet) {
    if (sheet.layout.axisHeight <= 0)
        return;
    const QFont font = timeFont(sheet.theme);
    const QFontMetricsF metrics(font);
    sheet.painter.setFont(font);
    const double least = metrics.horizontalAdvance(QStringLiteral("00:00:00")) * 1.5;
    for (const TimelineTick& tick : sheet.view.ticks(sheet.layout.plotWidth(), least)) {
        const double x = std::round(sheet.layout.xOf(tick.clock));
        sheet.painter.setPen(sheet.theme.line());
        sheet.painter.drawLine(QPointF(x, sheet.plot().top()), QPointF(x, sheet.plot().bottom() + 4));
        const QString label = QString::fromStdString(tick.label);
        const double half = metrics.horizontalAdvance(label) / 2;
        if (x - half < sheet.layout.labelWidth || x + half > sheet.layout.width)
            continue;
        sheet.painter.setPen(sheet.theme.quiet());
        sheet.painter.drawText(QPointF(x - half, sheet.plot().bottom() + 4 + metrics.ascent()), label);
    }
}

void paintLaneName(const Sheet& sheet, const TimelineLane& lane, double top) {
    const double height = sheet.layout.laneHeight();
    const QRectF room(4, top + 1, sheet.layout.labelWidth - 8, height - 2);
    const bool missing = lane.kind == TimelineLane::Kind::missing;
    const bool unused = lane.kind == TimelineLane::Kind::unused;
    if (missing || unused) {
        sheet.painter.setBrush(Qt::NoBrush);
        sheet.painter.setPen(missing ? QPen(sheet.theme.bad(), 1.5)
                                     : QPen(sheet.theme.quiet(), 1, Qt::DashLine));
        sheet.painter.drawRect(room.adjusted(0.5, 0.5, -0.5, -0.5));
    }
    QFont font = nameFont(sheet.theme);
    font.setPixelSize(std::clamp(static_cast<int>(height) - 2, 6, sheet.theme.small()));
    const QFontMetricsF metrics(font);
    sheet.painter.setFont(font);
    sheet.painter.setPen(missing ? sheet.theme.bad() : unused ? sheet.theme.quiet() : sheet.theme.text());
    sheet.painter.drawText(
        room.adjusted(4, 0, -4, 0), Qt::AlignVCenter | Qt::AlignLeft,
        metrics.elidedText(QString::fromStdString(lane.label), Qt::ElideRight, room.width() - 8));
}

void paintLanes(const Sheet& sheet, MarkPainter& marks) {
    std::vector<FrameBin> bins;
    for (std::size_t i = 0; i < sheet.layout.lanes; ++i) {
        const TimelineLane& lane = sheet.view.lanes()[i];
        const double top = sheet.layout.laneTop(i);
        const double middle = std::round(top + sheet.layout.laneHeight() / 2);
        sheet.painter.setPen(lane.kind == TimelineLane::Kind::unused
                                 ? QPen(sheet.theme.quiet(), 1, Qt::DashLine)
                                 : QPen(sheet.theme.line(), 1));
        sheet.painter.drawLine(QPointF(sheet.layout.labelWidth, middle), QPointF(sheet.layout.width, middle));
        paintLaneName(sheet, lane, top);
        binFrames(sheet.layout, lane, sheet.view.playhead(), bins);
        if (lane.kind == TimelineLane::Kind::cues)
            marks.paintCues(bins, top);
        else
            marks.paintFrames(bins, top);
    }
}

/// Names sit outside of the central phase, where they have room at every zoom, and MAX where it finds some.
void paintContacts(const Sheet& sheet) {
    const QFont font = nameFont(sheet.theme);
    const QFontMetricsF metrics(font);
    sheet.painter.setFont(font);
    double taken = sheet.layout.labelWidth;
    const auto contacts = sheet.view.contacts();
    for (std::size_t i = 0; i < contacts.size(); ++i) {
        const double x = std::round(sheet.layout.xOf(contacts[i].clock));
        if (x < sheet.layout.labelWidth || x > sheet.layout.width)
            continue;
        sheet.painter.setPen(QPen(sheet.theme.accent(), 1));
        sheet.painter.drawLine(QPointF(x, 0), QPointF(x, sheet.plot().bottom()));
        const QString& key = contacts[i].key;
        const double width = metrics.horizontalAdvance(key);
        const bool before = key == QLatin1String("C2") || key == QLatin1String("C4");
        const bool inside = key == QLatin1String("MAX");
        const double left = inside ? x + 4 : before ? x - 4 - width : x + 4;
        const double next =
            i + 1 < contacts.size() ? sheet.layout.xOf(contacts[i + 1].clock) : sheet.layout.width;
        if (left < taken || (inside && left + width > next))
            continue;
        sheet.painter.setPen(sheet.theme.text());
        sheet.painter.drawText(QPointF(left, metrics.ascent() + 1), key);
        taken = left + width + 4;
    }
}

void paintSelection(const Sheet& sheet) {
    const auto& selection = sheet.view.selection();
    if (!selection || selection->lane >= sheet.layout.lanes)
        return;
    const double x = sheet.layout.xOf(sheet.view.lanes()[selection->lane].offsets[selection->frame]);
    if (x < sheet.layout.labelWidth || x > sheet.layout.width)
        return;
    sheet.painter.setPen(QPen(sheet.theme.text(), 2));
    sheet.painter.setBrush(Qt::NoBrush);
    sheet.painter.drawRect(QRectF(std::floor(x) - 5, sheet.layout.laneTop(selection->lane) + 1, 11,
                                  sheet.layout.laneHeight() - 2));
}

void paintPlayhead(const Sheet& sheet) {
    const double x = std::round(sheet.layout.xOf(sheet.view.playhead()));
    const double left = sheet.layout.labelWidth;
    const double right = sheet.layout.width;
    sheet.painter.setPen(Qt::NoPen);
    sheet.painter.setBrush(sheet.theme.accent());
    if (x < left || x > right) { // a pointer to where it is
        const double tip = x < left ? left + 1 : right - 1;
        const double base = x < left ? left + 9 : right - 9;
        const double y = sheet.plot().center().y();
        sheet.painter.drawPolygon(QPolygonF({{tip, y}, {base, y - 6}, {base, y + 6}}));
        return;
    }
    sheet.painter.drawRect(QRectF(x - 1, 0, 3, sheet.plot().bottom()));
    sheet.painter.drawPolygon(QPolygonF({{x - 6, 0}, {x + 7, 0}, {x + 0.5, 9}}));
}

} // namespace

TimelineLayout timelineLayout(const TimelineView& view, const Theme& theme, const QSizeF& size,
                              bool compact) {
    const QFontMetricsF metrics(nameFont(theme));
    double widest = 0;
    std::size_t lanes = view.lanes().size();
    if (compact && lanes > 0 && view.lanes().back().kind == TimelineLane::Kind::cues)
        --lanes;
    for (std::size_t i = 0; i < lanes; ++i)
        widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(view.lanes()[i].label)));
    return {.width = size.width(),
            .height = size.height(),
            .labelWidth = std::round(std::clamp(widest + 18, 48.0, std::max(48.0, size.width() * 0.16))),
            .contactsHeight = std::ceil(metrics.height()) + 2,
            .axisHeight = compact ? 0 : std::ceil(metrics.height()) + 6,
            .lanes = lanes,
            .range = view.range()};
}

double timelineHeight(const TimelineView& view, const Theme& theme, bool compact) {
    const TimelineLayout layout = timelineLayout(view, theme, QSizeF(1000, 1000), compact);
    const double lane = compact ? thinLane : theme.small() + 2;
    return layout.contactsHeight + layout.axisHeight + lane * static_cast<double>(layout.lanes);
}

void paintTimeline(QPainter& painter, const TimelineView& view, const TimelineLayout& layout,
                   const Theme& theme) {
    const Sheet sheet{painter, view, layout, theme};
    painter.save();
    painter.fillRect(QRectF(0, 0, layout.width, layout.height), theme.panel());
    paintTotality(sheet);
    paintAxis(sheet);
    MarkPainter marks(painter, theme, layout);
    paintLanes(sheet, marks);
    painter.setRenderHint(QPainter::Antialiasing, false);
    paintContacts(sheet);
    paintSelection(sheet);
    painter.setRenderHint(QPainter::Antialiasing);
    paintPlayhead(sheet);
    painter.restore();
}

} // namespace zenka::ui

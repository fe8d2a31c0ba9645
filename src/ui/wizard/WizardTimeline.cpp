#include "ui/wizard/WizardTimeline.h"

#include "ui/timeline/TimelineLayout.h"
#include "ui/timeline/TimelineMarks.h"

#include <QFontMetricsF>
#include <QPainter>
#include <QtQml>

#include <algorithm>
#include <cmath>
#include <limits>

namespace zenka::ui {

namespace {

constexpr double around = 20; // seconds shown beside totality in the close-up

struct Contact {
    QString key;
    double clock = 0;
};

std::vector<Contact> contactsOf(const WizardSite& site) {
    std::vector<Contact> contacts;
    contacts.reserve(site.contactTHours.size());
    for (const auto& [key, hours] : site.contactTHours)
        contacts.push_back({QString::fromStdString(key), hours * 3600});
    std::ranges::sort(contacts, {}, &Contact::clock);
    return contacts;
}

std::size_t laneCount(const WizardPreview& preview, bool thin) {
    const auto& lanes = preview.lanes;
    const bool cues = !lanes.empty() && lanes.back().kind == TimelineLane::Kind::cues;
    return lanes.size() - (thin && cues ? 1 : 0);
}

QFont fontOf(const Theme& theme) {
    QFont font;
    font.setPixelSize(theme.small());
    font.setWeight(static_cast<QFont::Weight>(theme.weight()));
    font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
    return font;
}

TimelineRange rangeOf(const WizardView& view, bool closeUp) {
    const auto& hours = view.site().contactTHours;
    const auto c2 = hours.find("C2");
    const auto c3 = hours.find("C3");
    if (!closeUp || c2 == hours.end() || c3 == hours.end())
        return view.preview().whole;
    return {c2->second * 3600 - around, c3->second * 3600 + around};
}

void paintContacts(QPainter& painter, const TimelineLayout& layout, const std::vector<Contact>& contacts,
                   const Theme& theme) {
    const QFontMetricsF metrics(painter.font());
    double taken = layout.labelWidth;
    for (std::size_t i = 0; i < contacts.size(); ++i) {
        const double x = std::round(layout.xOf(contacts[i].clock));
        if (x < layout.labelWidth || x > layout.width)
            continue;
        painter.setPen(QPen(theme.accent(), 1));
        painter.drawLine(QPointF(x, 0), QPointF(x, layout.lanesBottom()));
        const double width = metrics.horizontalAdvance(contacts[i].key);
        const bool before = contacts[i].key == QLatin1String("C2") || contacts[i].key == QLatin1String("C4");
        const double left = before ? x - 4 - width : x + 4;
        const double next = i + 1 < contacts.size() ? layout.xOf(contacts[i + 1].clock)
                                                    : std::numeric_limits<double>::infinity();
        const bool cramped = contacts[i].key == QLatin1String("MAX") && left + width > next;
        if (left < taken || left + width > layout.width || cramped)
            continue;
        painter.setPen(theme.text());
        painter.drawText(QPointF(left, metrics.ascent() + 1), contacts[i].key);
        taken = left + width + 4;
    }
}

} // namespace

void WizardTimeline::registerTypes() {
    qmlRegisterType<WizardTimeline>("Zenka", 1, 0, "WizardTimeline");
}

void WizardTimeline::setCloseUp(bool closeUp) {
    if (std::exchange(closeUp_, closeUp) == closeUp)
        return;
    update();
    Q_EMIT closeUpChanged();
}

void WizardTimeline::setThin(bool thin) {
    if (std::exchange(thin_, thin) == thin)
        return;
    update();
    Q_EMIT closeUpChanged();
    Q_EMIT wantedHeightChanged();
}

double WizardTimeline::wantedHeight() const {
    if (!view() || !colors())
        return 0;
    const double lane = thin_ ? 12 : colors()->small() + 6;
    return QFontMetricsF(fontOf(*colors())).height() + 2 +
           lane * static_cast<double>(std::max<std::size_t>(1, laneCount(view()->preview(), thin_)));
}

void WizardTimeline::followView(WizardView& view) {
    connect(&view, &WizardView::previewChanged, this, [this] {
        update();
        Q_EMIT wantedHeightChanged();
    });
    Q_EMIT wantedHeightChanged();
}

void WizardTimeline::paintView(QPainter& painter, WizardView& view, const Theme& theme) {
    const WizardPreview& preview = view.preview();
    const QFont font = fontOf(theme);
    const QFontMetricsF metrics(font);
    painter.setFont(font);
    const std::size_t lanes = laneCount(preview, thin_);
    double widest = 0;
    for (std::size_t i = 0; i < lanes; ++i)
        widest = std::max(widest, metrics.horizontalAdvance(QString::fromStdString(preview.lanes[i].label)));
    const TimelineLayout layout{.width = width(),
                                .height = height(),
                                .labelWidth = std::round(std::clamp(widest + 12, 40.0, width() * 0.25)),
                                .contactsHeight = std::ceil(metrics.height()) + 2,
                                .lanes = lanes,
                                .range = rangeOf(view, closeUp_)};
    if (layout.range.span() <= 0)
        return;
    const std::vector<Contact> contacts = contactsOf(view.site());
    MarkPainter marks(painter, theme, layout);
    std::vector<FrameBin> bins;
    constexpr double before = -std::numeric_limits<double>::infinity(); // all frames are still to come
    for (std::size_t i = 0; i < lanes; ++i) {
        const TimelineLane& lane = preview.lanes[i];
        const double top = layout.laneTop(i);
        const double middle = std::round(top + layout.laneHeight() / 2);
        painter.setPen(QPen(theme.line(), 1));
        painter.drawLine(QPointF(layout.labelWidth, middle), QPointF(layout.width, middle));
        painter.setPen(theme.text());
        painter.drawText(
            QRectF(0, top, layout.labelWidth - 6, layout.laneHeight()), Qt::AlignVCenter | Qt::AlignLeft,
            metrics.elidedText(QString::fromStdString(lane.label), Qt::ElideRight, layout.labelWidth - 6));
        binFrames(layout, lane, before, bins);
        if (lane.kind == TimelineLane::Kind::cues)
            marks.paintCues(bins, top);
        else
            marks.paintFrames(bins, top);
    }
    painter.setRenderHint(QPainter::Antialiasing, false);
    paintContacts(painter, layout, contacts, theme);
}

} // namespace zenka::ui

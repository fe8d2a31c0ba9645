#include "ui/help/GuideView.h"

#include "rig/RigModel.h"
#include "ui/help/GuidePages.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/Theme.h"

#include <QImage>
#include <QQmlEngine>
#include <QQuickImageProvider>
#include <QQuickItem>
#include <QQuickTextDocument>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QTextFragment>

#include <utility>
#include <vector>

namespace zenka::ui {

namespace {

QString pathOf(const QString& picture) {
    return QStringLiteral(":/zenka/docs/images/") + picture;
}

QTextDocument* documentOf(const QQuickItem* page) {
    const auto* document = page ? page->property("textDocument").value<QQuickTextDocument*>() : nullptr;
    return document ? document->textDocument() : nullptr;
}

class GuidePictures final : public QQuickImageProvider {
public:
    GuidePictures() : QQuickImageProvider(Image) {}

    /// "NAME@ROOM@THEME", so that the engine keeps apart what it has in store. No wider than the room. Any
    /// thread.
    QImage requestImage(const QString& id, QSize* size, const QSize& /*wanted*/) override {
        QImage picture(pathOf(id.section(QLatin1Char('@'), 0, 0)));
        const int width = id.section(QLatin1Char('@'), 1, 1).toInt();
        if (width > 0 && width < picture.width())
            picture = picture.scaledToWidth(width, Qt::SmoothTransformation);
        if (id.section(QLatin1Char('@'), 2, 2) == QLatin1String("Night")) {
            picture.convertTo(QImage::Format_RGB32);
            for (int y = 0; y < picture.height(); ++y) {
                auto* pixels = reinterpret_cast<QRgb*>(picture.scanLine(y));
                for (int x = 0; x < picture.width(); ++x)
                    pixels[x] = qRgb(qGray(pixels[x]) * 2 / 3, 0, 0);
            }
        }
        if (size)
            *size = picture.size();
        return picture;
    }
};

} // namespace

GuideView::GuideView(rig::RigModel& rig, AppView& app, const Theme& theme,
                     std::function<void(const QUrl&)> open, QObject* parent)
    : QObject(parent), rig_(rig), app_(app), theme_(theme), open_(std::move(open)) {
    connect(&theme, &Theme::changed, this, &GuideView::changed);
}

void GuideView::givePicturesTo(QQmlEngine& engine) const {
    engine.addImageProvider(QStringLiteral("guide"), new GuidePictures);
}

void GuideView::open(const QString& file) {
    file_ = file;
    before_.clear();
    Q_EMIT changed();
    Q_EMIT turned();
    app_.openPage(QStringLiteral("Guide"));
}

void GuideView::follow(const QString& link) {
    const QString file = link.section(QLatin1Char('#'), 0, 0);
    const QString anchor = link.section(QLatin1Char('#'), 1);
    if (link.startsWith(QLatin1String("https:"))) {
        open_(QUrl(link));
        return;
    }
    if (!file.isEmpty()) {
        if (!guidePageOf(file))
            return;
        before_.append(std::exchange(file_, file));
        Q_EMIT changed();
        Q_EMIT turned();
    }
    const GuidePage* page = guidePageOf(file_);
    if (const QString heading = page ? headingAt(guideSource(*page), anchor) : QString(); !heading.isEmpty())
        Q_EMIT headingWanted(heading);
}

void GuideView::goBack() {
    if (before_.isEmpty())
        return;
    file_ = before_.takeLast();
    Q_EMIT changed();
    Q_EMIT turned();
}

void GuideView::dress(QQuickItem* page) const {
    page->setFlag(QQuickItem::ItemObservesViewport);
    QTextDocument* document = documentOf(page);
    if (!document)
        return;
    QTextCharFormat link;
    link.setForeground(theme_.accent());
    link.setFontUnderline(true);
    QTextCursor cursor(document);
    for (QTextBlock block = document->begin(); block.isValid(); block = block.next()) {
        std::vector<std::pair<int, int>> links;
        for (auto at = block.begin(); !at.atEnd(); ++at) {
            const QTextFragment fragment = at.fragment();
            const QTextCharFormat format = fragment.charFormat();
            // Each change is told to the page, which asks for this anew.
            if (format.isAnchor() && format.foreground() != link.foreground())
                links.emplace_back(fragment.position(), fragment.position() + fragment.length());
        }
        for (const auto& [first, last] : links) {
            cursor.setPosition(first);
            cursor.setPosition(last, QTextCursor::KeepAnchor);
            cursor.mergeCharFormat(link);
        }
    }
}

int GuideView::positionOf(const QString& heading, QQuickItem* page) {
    const QTextDocument* document = documentOf(page);
    for (QTextBlock block = document ? document->begin() : QTextBlock(); block.isValid();
         block = block.next()) {
        if (block.blockFormat().headingLevel() > 0 && block.text() == heading)
            return block.position();
    }
    return -1;
}

QString GuideView::title() const {
    const GuidePage* page = guidePageOf(file_);
    return page ? QString::fromLatin1(page->title) : QString();
}

QString GuideView::text() const {
    const GuidePage* page = guidePageOf(file_);
    if (!page)
        return {};
    return guideMarkdown(guideSource(*page), [this](const QString& picture) { return addressOf(picture); });
}

void GuideView::setRoom(int room) {
    if (std::exchange(room_, room) != room)
        Q_EMIT changed();
}

QString GuideView::addressOf(const QString& picture) const {
    if (rig_.transport().live() || room_ <= 0)
        return {};
    return QStringLiteral("image://guide/%1@%2@%3").arg(picture).arg(room_).arg(theme_.name());
}

} // namespace zenka::ui

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

class QQmlEngine;
class QQuickItem;

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;
class Theme;

/// The page that Help shows, and the way from one to the next.
class GuideView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString title READ title NOTIFY changed)
    /// Markdown. In a live run it has no pictures, as reading them would hold up the frames.
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// The widest that a picture can be, in pixels.
    Q_PROPERTY(int room READ room WRITE setRoom NOTIFY changed)
    /// A link led here from another page.
    Q_PROPERTY(bool canGoBack READ canGoBack NOTIFY changed)

public:
    /// All of these outlive it; `open` shows an address in the browser.
    GuideView(rig::RigModel& rig, AppView& app, const Theme& theme, std::function<void(const QUrl&)> open,
              QObject* parent);

    /// The engine's pictures "image://guide/…" are those of the pages, in red alone at night.
    void givePicturesTo(QQmlEngine& engine) const;

    /// Opens a page by the name of its file; the way back to others is forgotten.
    void open(const QString& file);
    /// Goes where a link of the page leads.
    Q_INVOKABLE void follow(const QString& link);
    Q_INVOKABLE void goBack();
    /// Gives the links of what a text item shows the colour of the theme; Qt has one of its own for them.
    Q_INVOKABLE void dress(QQuickItem* page) const;
    /// Where a heading begins in it; below 0: nowhere.
    Q_INVOKABLE static int positionOf(const QString& heading, QQuickItem* page);

    QString title() const;
    QString text() const;
    int room() const { return room_; }
    void setRoom(int room);
    bool canGoBack() const { return !before_.isEmpty(); }

Q_SIGNALS:
    void changed();
    /// The page is to be read from its beginning.
    void turned();
    /// The page is to be read from this heading on.
    void headingWanted(const QString& heading);

private:
    QString addressOf(const QString& picture) const;

    rig::RigModel& rig_;
    AppView& app_;
    const Theme& theme_;
    const std::function<void(const QUrl&)> open_;
    QString file_;
    QStringList before_; ///< files that one came from by links, the last one last
    int room_ = 0;
};

} // namespace zenka::ui

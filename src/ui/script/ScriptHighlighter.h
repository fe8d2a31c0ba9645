#pragma once

#include "ui/script/ScriptTokens.h"

#include <QColor>
#include <QObject>
#include <QPointer>
#include <QQuickTextDocument>

#include <memory>

class QSyntaxHighlighter;

namespace zenka::ui {

/// Colours and weights for a script in a text area. The colours come from the theme; with one hue alone
/// weight and slant tell the kinds apart as well.
class ScriptHighlighter : public QObject {
    Q_OBJECT
    Q_PROPERTY(QQuickTextDocument* document READ document WRITE setDocument NOTIFY changed)
    Q_PROPERTY(bool active MEMBER active_ NOTIFY changed)
    Q_PROPERTY(QColor command MEMBER command_ NOTIFY changed)
    Q_PROPERTY(QColor plain MEMBER plain_ NOTIFY changed)
    Q_PROPERTY(QColor quiet MEMBER quiet_ NOTIFY changed)
    Q_PROPERTY(QColor unknown MEMBER unknown_ NOTIFY changed)

public:
    explicit ScriptHighlighter(QObject* parent = nullptr);
    ~ScriptHighlighter() override;

    static void registerTypes();

    QQuickTextDocument* document() const { return document_; }
    void setDocument(QQuickTextDocument* document);

Q_SIGNALS:
    void changed();

private:
    class Painter;
    void update();

    QPointer<QQuickTextDocument> document_;
    std::unique_ptr<Painter> painter_;
    bool active_ = true;
    QColor command_, plain_, quiet_, unknown_;
};

} // namespace zenka::ui

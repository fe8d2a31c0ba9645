#pragma once

#include "ui/ScriptView.h"

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QQuickPaintedItem>

namespace zenka::ui {

/// The strip beside a script: line numbers, and marks on the lines that the compiler speaks of. Paints the
/// rows that are to be seen alone.
class ScriptGutter : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::ScriptView* view MEMBER script_ WRITE setScript NOTIFY changed)
    Q_PROPERTY(double scrolled MEMBER scrolled_ NOTIFY changed)
    Q_PROPERTY(int currentRow MEMBER currentRow_ NOTIFY changed)
    Q_PROPERTY(QFont font MEMBER font_ NOTIFY changed)
    Q_PROPERTY(QColor quiet MEMBER quiet_ NOTIFY changed)
    Q_PROPERTY(QColor text MEMBER text_ NOTIFY changed)
    Q_PROPERTY(QColor warning MEMBER warning_ NOTIFY changed)
    Q_PROPERTY(QColor bad MEMBER bad_ NOTIFY changed)

public:
    explicit ScriptGutter(QQuickItem* parent = nullptr);

    static void registerTypes();

    void setScript(ScriptView* script);
    /// The row of the text at a height in the strip.
    Q_INVOKABLE int rowAtY(double y) const;

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QTextDocument* document() const;
    void follow();

    QPointer<ScriptView> script_;
    double scrolled_ = 0; ///< how far the text has moved up, less its padding
    int currentRow_ = 0;
    QFont font_;
    QColor quiet_, text_, warning_, bad_;
};

} // namespace zenka::ui

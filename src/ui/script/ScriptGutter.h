#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/script/ScriptView.h"

namespace zenka::ui {

/// The strip beside a script: line numbers, and marks on the lines that the compiler speaks of. Paints the
/// rows that are to be seen alone.
class ScriptGutter : public PaintedView<ScriptView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::ScriptView* view READ view WRITE setView NOTIFY viewChanged)
    Q_PROPERTY(double scrolled MEMBER scrolled_ NOTIFY changed)
    Q_PROPERTY(int currentRow MEMBER currentRow_ NOTIFY changed)
    Q_PROPERTY(QFont font MEMBER font_ NOTIFY changed)

public:
    explicit ScriptGutter(QQuickItem* parent = nullptr);

    static void registerTypes();

    /// The row of the text at a height in the strip.
    Q_INVOKABLE int rowAtY(double y) const;

Q_SIGNALS:
    void changed();

private:
    void followView(ScriptView& view) override;
    void paintView(QPainter& painter, ScriptView& view, const Theme& theme) override;

    QTextDocument* document() const;
    void follow();

    double scrolled_ = 0; ///< how far the text has moved up, less its padding
    int currentRow_ = 0;
    QFont font_;
};

} // namespace zenka::ui

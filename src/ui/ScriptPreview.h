#pragma once

#include "ui/ScriptView.h"

#include <QColor>
#include <QFont>
#include <QPointer>
#include <QQuickPaintedItem>

#include <vector>

namespace zenka::ui {

/// Counts of instants by equal parts of a span; those outside of it are not counted.
std::vector<int> density(const std::vector<double>& instants, double from, double to, int parts);

/// A script at a glance: how many frames when, against the contacts, and the cues below them.
class ScriptPreview : public QQuickPaintedItem {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::ScriptView* view MEMBER script_ WRITE setScript NOTIFY changed)
    Q_PROPERTY(QFont font MEMBER font_ NOTIFY changed)
    Q_PROPERTY(QColor bar MEMBER bar_ NOTIFY changed)
    Q_PROPERTY(QColor text MEMBER text_ NOTIFY changed)
    Q_PROPERTY(QColor quiet MEMBER quiet_ NOTIFY changed)
    Q_PROPERTY(QColor line MEMBER line_ NOTIFY changed)

public:
    explicit ScriptPreview(QQuickItem* parent = nullptr);

    static void registerTypes();

    void setScript(ScriptView* script);
    void paint(QPainter* painter) override;

Q_SIGNALS:
    void changed();

private:
    QPointer<ScriptView> script_;
    QFont font_;
    QColor bar_, text_, quiet_, line_;
};

} // namespace zenka::ui

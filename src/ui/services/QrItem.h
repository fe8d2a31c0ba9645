#pragma once

#include "ui/kit/PaintedItem.h"

#include <QString>

namespace zenka::ui {

/// A text as a picture that a phone's camera reads: dark on light in every theme.
class QrItem : public PaintedItem {
    Q_OBJECT
    Q_PROPERTY(QString text READ text WRITE setText NOTIFY textChanged)

public:
    explicit QrItem(QQuickItem* parent = nullptr);

    static void registerTypes();

    QString text() const { return text_; }
    void setText(const QString& text);

    void paint(QPainter* painter) override;

Q_SIGNALS:
    void textChanged();

private:
    QString text_;
};

} // namespace zenka::ui

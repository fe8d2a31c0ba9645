#include "ui/ScriptGutter.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QtQml>

#include <algorithm>

namespace zenka::ui {

ScriptGutter::ScriptGutter(QQuickItem* parent) : QQuickPaintedItem(parent) {
    connect(this, &ScriptGutter::changed, this, [this] { update(); });
}

void ScriptGutter::registerTypes() {
    qmlRegisterType<ScriptGutter>("Zenka", 1, 0, "ScriptGutter");
}

void ScriptGutter::setScript(ScriptView* script) {
    if (script_ == script)
        return;
    if (script_)
        script_->disconnect(this);
    script_ = script;
    if (script_) {
        connect(script_, &ScriptView::compiled, this, [this] { update(); });
        connect(script_, &ScriptView::documentChanged, this, &ScriptGutter::follow);
    }
    follow();
    Q_EMIT changed();
}

QTextDocument* ScriptGutter::document() const {
    return script_ && script_->document() ? script_->document()->textDocument() : nullptr;
}

void ScriptGutter::follow() {
    if (document())
        connect(document()->documentLayout(), &QAbstractTextDocumentLayout::update, this,
                [this] { update(); });
    update();
}

int ScriptGutter::rowAtY(double y) const {
    if (!document())
        return 0;
    const int position =
        document()->documentLayout()->hitTest(QPointF(0, std::max(y + scrolled_, 0.0)), Qt::FuzzyHit);
    return document()->findBlock(std::max(position, 0)).blockNumber();
}

void ScriptGutter::paint(QPainter* painter) {
    const QTextDocument* lines = document();
    if (!lines)
        return;
    const QAbstractTextDocumentLayout* layout = lines->documentLayout();
    for (QTextBlock block = lines->findBlockByNumber(rowAtY(0)); block.isValid(); block = block.next()) {
        const QRectF box = layout->blockBoundingRect(block).translated(0, -scrolled_);
        if (box.top() > height())
            break;
        const int row = block.blockNumber();
        const int severity = script_->diagnosticsList().severityOf(row);
        QFont font = font_;
        font.setBold(row == currentRow_ || severity > 0);
        painter->setFont(font);
        const QRectF place(4, box.top(), width() - 12, box.height());
        painter->setPen(severity == 2        ? bad_
                        : severity == 1      ? warning_
                        : row == currentRow_ ? text_
                                             : quiet_);
        painter->drawText(place, Qt::AlignRight | Qt::AlignVCenter, QString::number(row + 1));
        if (severity > 0) {
            font.setPixelSize(font.pixelSize() * 5 / 4); // the sign is small in its font
            painter->setFont(font);
            painter->drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                              severity == 2 ? QStringLiteral("✖") : QStringLiteral("⚠"));
        }
    }
}

} // namespace zenka::ui

#include "ui/script/ScriptGutter.h"

#include <QAbstractTextDocumentLayout>
#include <QPainter>
#include <QTextBlock>
#include <QTextDocument>
#include <QTextLayout>
#include <QtQml>

#include <algorithm>

namespace zenka::ui {

ScriptGutter::ScriptGutter(QQuickItem* parent) : PaintedView(parent) {
    connect(this, &ScriptGutter::changed, this, [this] { update(); });
}

void ScriptGutter::registerTypes() {
    qmlRegisterType<ScriptGutter>("Zenka", 1, 0, "ScriptGutter");
}

void ScriptGutter::followView(ScriptView& view) {
    connect(&view, &ScriptView::compiled, this, [this] { update(); });
    connect(&view, &ScriptView::documentChanged, this, &ScriptGutter::follow);
    follow();
}

QTextDocument* ScriptGutter::document() const {
    return view() && view()->document() ? view()->document()->textDocument() : nullptr;
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

void ScriptGutter::paintView(QPainter& painter, ScriptView& view, const Theme& theme) {
    const QTextDocument* lines = document();
    if (!lines)
        return;
    const QAbstractTextDocumentLayout* layout = lines->documentLayout();
    for (QTextBlock block = lines->findBlockByNumber(rowAtY(0)); block.isValid(); block = block.next()) {
        const QRectF box = layout->blockBoundingRect(block).translated(0, -scrolled_);
        if (box.top() > height())
            break;
        const int row = block.blockNumber();
        const int severity = view.diagnosticsList().severityOf(row);
        QFont font = font_;
        font.setStyleStrategy(QFont::NoSubpixelAntialias); // its fringes are no colours of the theme
        font.setBold(row == currentRow_ || severity > 0);
        painter.setFont(font);
        const QRectF place(4, box.top(), width() - 12, box.height());
        painter.setPen(severity == 2        ? theme.bad()
                       : severity == 1      ? theme.warning()
                       : row == currentRow_ ? theme.text()
                                            : theme.quiet());
        painter.drawText(place, Qt::AlignRight | Qt::AlignVCenter, QString::number(row + 1));
        if (severity > 0) {
            font.setPixelSize(font.pixelSize() * 5 / 4); // the sign is small in its font
            painter.setFont(font);
            painter.drawText(place, Qt::AlignLeft | Qt::AlignVCenter,
                             severity == 2 ? QStringLiteral("✖") : QStringLiteral("⚠"));
        }
    }
}

} // namespace zenka::ui

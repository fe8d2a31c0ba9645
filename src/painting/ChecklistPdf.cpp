#include "painting/ChecklistPdf.h"

#include <QAbstractTextDocumentLayout>
#include <QBuffer>
#include <QFont>
#include <QMarginsF>
#include <QPageSize>
#include <QPainter>
#include <QPalette>
#include <QPdfWriter>
#include <QString>
#include <QTextDocument>

#include <string>

namespace zenka::painting {

namespace {

constexpr int dotsPerInch = 300;
constexpr double marginMm = 13;
constexpr double textPoints = 10;
constexpr double footPoints = 8;

QString html(const std::string& text) {
    return QString::fromStdString(text).toHtmlEscaped();
}

QString tableOf(const base::PrintedTable& table) {
    if (table.rows.empty())
        return {};
    QString text = QStringLiteral("<table cellpadding='3' cellspacing='0' border='0'><tr>");
    for (const std::string& head : table.heads)
        text += QStringLiteral("<td style='padding-right:22px'><small>%1</small></td>").arg(html(head));
    text += QStringLiteral("</tr>");
    for (const auto& row : table.rows) {
        text += QStringLiteral("<tr>");
        for (std::size_t i = 0; i < row.size(); ++i) {
            // The first two are looked for, the rest is read.
            const QString cell = i < 2 ? QStringLiteral("<b>%1</b>") : QStringLiteral("%1");
            text += QStringLiteral("<td style='padding-right:22px'>%1</td>").arg(cell.arg(html(row[i])));
        }
        text += QStringLiteral("</tr>");
    }
    return text + QStringLiteral("</table>");
}

/// Each box stays on the line of its words.
QString boxesOf(const std::vector<std::string>& boxes) {
    constexpr QChar unbrokenHyphen(0x2011);
    QString text;
    for (const std::string& box : boxes) {
        const QString words = html("☐ " + box).replace(u' ', QChar::Nbsp).replace(u'-', unbrokenHyphen);
        text += words + QStringLiteral(" &nbsp; ");
    }
    return text.isEmpty() ? text : QStringLiteral("<p style='margin:3px 0'>%1</p>").arg(text);
}

QString pageText(const base::PrintedList& list) {
    QString text = QStringLiteral("<p style='font-size:16pt;margin:0'><b>%1</b></p>").arg(html(list.title));
    for (const std::string& line : list.lines)
        text += QStringLiteral("<p style='margin:1px 0'>%1</p>").arg(html(line));
    for (const base::PrintedSection& section : list.sections) {
        text += QStringLiteral("<p style='font-size:11.5pt;margin:9px 0 1px 0'><b>%1</b></p>")
                    .arg(html(section.title));
        text += tableOf(section.table);
        for (const std::string& line : section.lines)
            text += QStringLiteral("<p style='margin:1px 0'>%1</p>").arg(html(line));
        text += boxesOf(section.boxes);
    }
    return text;
}

QFont fontOf(double points) {
    QFont font(QStringLiteral("DejaVu Sans"));
    font.setPointSizeF(points);
    return font;
}

} // namespace

QByteArray checklistPdf(const base::PrintedList& list) {
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QPdfWriter writer(&buffer);
    writer.setResolution(dotsPerInch);
    writer.setPageSize(QPageSize(QPageSize::A4));
    writer.setPageMargins(QMarginsF(marginMm, marginMm, marginMm, marginMm), QPageLayout::Millimeter);
    writer.setTitle(QString::fromStdString(list.title));
    writer.setCreator(QStringLiteral("Zenka"));

    const QFont foot = fontOf(footPoints);
    const double footHeight = QFontMetricsF(foot, &writer).height() * 1.5;
    const QSizeF page(writer.width(), writer.height() - footHeight);
    QTextDocument document;
    document.documentLayout()->setPaintDevice(&writer);
    document.setDefaultFont(fontOf(textPoints));
    document.setDocumentMargin(0);
    document.setHtml(pageText(list));
    document.setPageSize(page);

    QPainter painter(&writer);
    // The desktop's own colours may be light on dark.
    QAbstractTextDocumentLayout::PaintContext context;
    context.palette.setColor(QPalette::Text, Qt::black);
    const int pages = document.pageCount();
    for (int number = 0; number < pages; ++number) {
        if (number > 0)
            writer.newPage();
        painter.save();
        painter.translate(0, -number * page.height());
        context.clip = QRectF(QPointF(0, number * page.height()), page);
        painter.setClipRect(context.clip);
        document.documentLayout()->draw(&painter, context);
        painter.restore();
        painter.setFont(foot);
        painter.drawText(QRectF(0, page.height(), page.width(), footHeight), Qt::AlignRight | Qt::AlignBottom,
                         QStringLiteral("%1 of %2").arg(number + 1).arg(pages));
    }
    painter.end();
    return bytes;
}

} // namespace zenka::painting

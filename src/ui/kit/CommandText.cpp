#include "ui/kit/CommandText.h"

#include "ui/kit/QtText.h"

#include <QChar>
#include <QStringList>

namespace zenka::ui {

namespace {

QString laidOpen(const std::string& command) {
    QString open;
    for (const uint letter : qt(command).toUcs4()) {
        const auto category = QChar::category(static_cast<char32_t>(letter));
        const bool hidden = category == QChar::Other_Control || category == QChar::Other_Format ||
                            category == QChar::Other_Surrogate || category == QChar::Other_PrivateUse ||
                            category == QChar::Other_NotAssigned || category == QChar::Separator_Line ||
                            category == QChar::Separator_Paragraph ||
                            (category == QChar::Separator_Space && letter != ' ');
        const auto point = static_cast<char32_t>(letter);
        open += hidden ? QStringLiteral("\\u{%1}").arg(letter, 0, 16) : QString::fromUcs4(&point, 1);
    }
    return open;
}

} // namespace

QString commandText(std::span<const script::CommandLine> commands) {
    QStringList lines;
    for (const script::CommandLine& command : commands)
        lines.append(QStringLiteral("line %1:  %2").arg(command.lineNo).arg(laidOpen(command.shell)));
    return lines.join(u'\n');
}

} // namespace zenka::ui

#include "ui/help/GuidePages.h"

#include <QFile>
#include <QRegularExpression>
#include <QStringList>

#include <algorithm>

namespace zenka::ui {

namespace {

/// Calls back with each line, and whether it stands within a fence of code.
void eachLine(const QString& source, const std::function<void(const QString& line, bool code)>& take) {
    bool code = false;
    for (const QString& line : source.split(QLatin1Char('\n'))) {
        const bool fence = line.startsWith(QLatin1String("```"));
        take(line, code || fence);
        code = code != fence;
    }
}

bool leadsSomewhere(const QString& address) {
    return address.startsWith(QLatin1Char('#')) || address.startsWith(QLatin1String("https:")) ||
           guidePageOf(address.section(QLatin1Char('#'), 0, 0));
}

QString withOwnLinks(const QString& line) {
    static const QRegularExpression link(QStringLiteral(R"((?<!!)\[([^\]]*)\]\(([^)]*)\))"));
    QString kept;
    qsizetype done = 0;
    for (auto matches = link.globalMatch(line); matches.hasNext();) {
        const auto match = matches.next();
        kept += line.mid(done, match.capturedStart() - done);
        kept += leadsSomewhere(match.captured(2)) ? match.captured(0) : match.captured(1);
        done = match.capturedEnd();
    }
    return kept + line.mid(done);
}

/// As the places that show Markdown on the web make it.
QString anchorOf(const QString& heading) {
    static const QRegularExpression rest(QStringLiteral("[^\\w\\- ]"),
                                         QRegularExpression::UseUnicodePropertiesOption);
    return heading.toLower().remove(rest).replace(QLatin1Char(' '), QLatin1Char('-'));
}

} // namespace

const std::vector<GuidePage>& guidePages() {
    static const std::vector<GuidePage> pages{
        {"openGuide", "Zenka Guide", "guide.md"},
        {"openScriptGuide", "Script Language Guide", "script-language.md"},
        {"openWizardGuide", "Script Wizard", "script-wizard.md"},
        {"openAssistantGuide", "Script Assistant", "script-assistant.md"},
        {"openCameras", "Cameras", "cameras.md"},
        {"openCameraTiming", "Camera Timing", "camera-timing.md"},
        {"openClockAndComputer", "Clock, Computer and Voice", "clock-and-computer.md"},
        {"openRunAnalysis", "What Reached the Card", "run-analysis.md"},
        {"openPrivacy", "What Zenka Sends", "privacy.md"},
        {"openFeatures", "Features & Roadmap", "roadmap.md"},
    };
    return pages;
}

const GuidePage* guidePageOf(const QString& file) {
    const auto& pages = guidePages();
    const auto found = std::ranges::find_if(
        pages, [&file](const GuidePage& page) { return file == QLatin1String(page.file); });
    return found == pages.end() ? nullptr : &*found;
}

QString guideSource(const GuidePage& page) {
    QFile file(QStringLiteral(":/zenka/docs/") + QLatin1String(page.file));
    return file.open(QIODevice::ReadOnly) ? QString::fromUtf8(file.readAll()) : QString();
}

QString guideMarkdown(const QString& source,
                      const std::function<QString(const QString& picture)>& addressOf) {
    static const QRegularExpression image(QStringLiteral(R"(^!\[([^\]]*)\]\(images/([^)/]*)\)$)"));
    QStringList lines;
    eachLine(source, [&](const QString& line, bool code) {
        const auto match = image.match(line);
        if (code || !match.hasMatch()) {
            lines.append(code ? line : withOwnLinks(line));
            return;
        }
        const QString alt = match.captured(1);
        if (const QString address = addressOf(match.captured(2)); !address.isEmpty())
            lines.append({QStringLiteral("![%1](%2)").arg(alt, address), QString()});
        lines.append(QStringLiteral("*%1*").arg(alt));
    });
    return lines.join(QLatin1Char('\n'));
}

QString headingAt(const QString& source, const QString& anchor) {
    static const QRegularExpression marks(QStringLiteral("^#+ +|[*`]"));
    QString heading;
    eachLine(source, [&](const QString& line, bool code) {
        if (code || !line.startsWith(QLatin1Char('#')) || !heading.isEmpty())
            return;
        if (QString words = QString(line).remove(marks); anchorOf(words) == anchor)
            heading = words;
    });
    return heading;
}

} // namespace zenka::ui

#include "ui/kit/AppView.h"

#include "rig/RigModel.h"
#include "ui/kit/DesktopDialogs.h"
#include "ui/kit/LogView.h"
#include "ui/kit/Observe.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QSysInfo>
#include <QUrl>
#include <QVariantMap>

#include <utility>

namespace zenka::ui {

namespace {

/// Sheets that cover the dashboard, which then need not be drawn often.
bool coversDashboard(const QString& sheet) {
    return sheet == QLatin1String("Script") || sheet == QLatin1String("Settings") ||
           sheet == QLatin1String("Wizard") || sheet == QLatin1String("Assistant");
}

/// Bytes of a script that are laid out without holding up a frame by more than some tenths of a second.
constexpr std::size_t longestScriptInRun = 1 << 20;

/// Sheets that are only read.
bool isPage(const QString& sheet) {
    return sheet == QLatin1String("Guide") || sheet == QLatin1String("Keys");
}

} // namespace

AppView::AppView(rig::RigModel& rig, QString version, QObject* parent)
    : QObject(parent), rig_(rig), version_(std::move(version)), desktopDialogs_(desktopHasFileDialogs()) {
    observe(this, rig.keeper().resumableRun().changed(), [this](const auto&) { Q_EMIT promptChanged(); });
    observe(this, rig.keeper().showEclipseDay().changed(), [this](bool) { Q_EMIT promptChanged(); });
    observe(this, rig.script().showWelcome().changed(), [this](bool show) {
        if (show)
            openSheet(QStringLiteral("Welcome"));
    });
}

void AppView::openSheet(const QString& name) {
    if (sheet_ == name)
        return;
    if (name == QLatin1String("Script") && rig_.transport().runActive() &&
        rig_.script().scriptText()->size() > longestScriptInRun) {
        rig_.log().pushLog("This script is too long to be shown in a run: laying it out would hold up the "
                           "frames. Pause the run, then open it.");
        return;
    }
    sheetsBelow_.clear();
    setSheet(name);
}

void AppView::closeSheet() {
    setSheet(sheetsBelow_.isEmpty() ? QString() : sheetsBelow_.takeLast());
}

void AppView::openPage(const QString& name) {
    if (!sheet_.isEmpty() && sheet_ != name && !isPage(sheet_))
        sheetsBelow_.append(sheet_);
    setSheet(name);
}

void AppView::setSheet(const QString& name) {
    if (!sheet_.isEmpty())
        Q_EMIT sheetClosing(sheet_);
    if (sheet_ == QLatin1String("Welcome"))
        rig_.script().dismissWelcome();
    sheet_ = name;
    typing_ = false; // a field that goes with its sheet does not say so
    rig_.renderPace().setSheetCoveringDashboard(coversDashboard(sheet_));
    Q_EMIT sheetChanged();
}

void AppView::leaveLive() {
    closeSheet();
    rig_.transport().useSimulatedTiming();
}

bool AppView::mayClose() {
    if (!rig_.transport().live())
        return true;
    openSheet(QStringLiteral("QuitLive"));
    return false;
}

void AppView::askToQuit() {
    if (mayClose())
        quit();
}

void AppView::quit() {
    QCoreApplication::exit(0); // quit() would ask the window first
}

void AppView::reportBug() {
    openSheet(feedbackGoesOut_() ? QStringLiteral("Feedback") : QStringLiteral("ReportBug"));
}

QVariantList AppView::places() {
    QVariantList rows;
    for (const FilePlace& place : filePlaces(QString::fromLocal8Bit(qgetenv("USER"))))
        rows.append(QVariantMap{{QStringLiteral("name"), place.name},
                                {QStringLiteral("folder"), QUrl::fromLocalFile(place.folder)}});
    return rows;
}

void AppView::openKeys(const QString& keysHere) {
    keysHere_ = keysHere;
    openPage(QStringLiteral("Keys"));
}

QString AppView::bugFacts() const {
    const rig::SiteDesk& site = rig_.site();
    QStringList lines{
        QStringLiteral("Zenka %1 on %2, %3, Qt %4")
            .arg(version_, QSysInfo::prettyProductName(), QSysInfo::currentCpuArchitecture(),
                 QString::fromLatin1(qVersion())),
        QStringLiteral("Eclipse %1, %2")
            .arg(QString::fromStdString(site.eclipseId()),
                 rig_.transport().live() ? QStringLiteral("live clock") : QStringLiteral("simulated clock")),
        QStringLiteral("Script: %1 frames, %2 diagnostics; bodies: %3")
            .arg(rig_.script().captures().size())
            .arg(rig_.script().diagnostics().size())
            .arg(rig_.roster().cameras().size()),
    };
    for (const auto& entry : rig_.log().lines()) {
        const LogLine line = logLine(QString::fromStdString(entry));
        lines.append(QStringLiteral("%1 %2").arg(line.symbol, line.text));
    }
    return lines.join(QLatin1Char('\n'));
}

void AppView::copy(const QString& text) {
    QGuiApplication::clipboard()->setText(text);
}

QString AppView::prompt() const {
    if (rig_.keeper().resumableRun().get())
        return QStringLiteral("resume");
    if (rig_.keeper().showEclipseDay().get())
        return QStringLiteral("eclipseDay");
    return {};
}

QString AppView::promptText() const {
    if (rig_.keeper().resumableRun().get())
        return QStringLiteral(
            "Zenka was armed and running when it last closed. Pick the sequence back up from "
            "where the clock is now. Captures whose moment already passed are skipped, not "
            "re-fired.");
    if (rig_.keeper().showEclipseDay().get())
        return QStringLiteral("It's eclipse day: ") + eclipseDayName() +
               QStringLiteral(". Check site, script and cameras, then arm the real eclipse clock.");
    return {};
}

QString AppView::eclipseDayName() const {
    return QString::fromStdString(rig_.keeper().eclipseDayName());
}

void AppView::acceptPrompt() {
    if (prompt() == QLatin1String("resume"))
        rig_.keeper().resumeRun();
    else
        rig_.keeper().dismissEclipseDay();
}

void AppView::declinePrompt() {
    if (prompt() == QLatin1String("resume"))
        rig_.keeper().clearRunState();
    else
        rig_.keeper().dismissEclipseDay();
}

} // namespace zenka::ui

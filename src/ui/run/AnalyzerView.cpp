#include "ui/run/AnalyzerView.h"

#include "rig/RigModel.h"
#include "rig/cards/AnalyzerWords.h"
#include "ui/kit/AppView.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QDir>

#include <utility>

namespace zenka::ui {

using rig::AnalyzerState;
using Step = AnalyzerState::Step;

namespace {

constexpr QLatin1String sheetName("Analyzer");

QUrl addressOf(const std::filesystem::path& file) {
    return QUrl::fromLocalFile(qt(file.string()));
}

} // namespace

AnalyzerView::AnalyzerView(rig::RigModel& rig, AppView& app, OpenUrl open, QObject* parent)
    : QObject(parent), rig_(rig), app_(app), open_(std::move(open)) {
    observe(this, rig.analyzer().state().changed(), [this](const AnalyzerState&) { stateChanged(); });
    observe(this, rig.analyzer().reportWritten(),
            [this](const std::filesystem::path& report) { open_(addressOf(report)); });
    connect(&app_, &AppView::promptChanged, this, &AnalyzerView::soon);
    connect(&app_, &AppView::sheetChanged, this, &AnalyzerView::sheetChanged);
}

// --- when the sheet opens and closes

void AnalyzerView::stateChanged() {
    const Step step = state().step;
    if (step != Step::working || state().filesFound == 0) // all but the progress of work
        Q_EMIT changed();
    Q_EMIT progressed();
    if (step != Step::verdict)
        setNote({});
    else if (!state().note.empty())
        setNote(qt(state().note)); // of a report that could not be sent
    if (step == Step::idle && sheetOpen_)
        app_.openSheet({});
    soon();
}

/// Not in the middle of a tick: a sheet takes its time to be made.
void AnalyzerView::soon() {
    QMetaObject::invokeMethod(
        this, [this] { look(); }, Qt::QueuedConnection);
}

void AnalyzerView::look() {
    if (state().step != Step::idle && app_.sheet().isEmpty() && app_.prompt().isEmpty() &&
        !rig_.cadence().dropExplainer().get())
        app_.openSheet(sheetName);
}

void AnalyzerView::sheetChanged() {
    const bool wasOpen = std::exchange(sheetOpen_, app_.holds(sheetName));
    if (sheetOpen_)
        return;
    if (wasOpen)
        answer();
    soon();
}

void AnalyzerView::answer() {
    if (state().step == Step::verdict)
        rig_.analyzer().keepLocal();
    else
        rig_.analyzer().cancel();
}

// --- what it shows

const AnalyzerState& AnalyzerView::state() const {
    return rig_.analyzer().state().get();
}

QString AnalyzerView::step() const {
    switch (state().step) {
    case Step::idle: return QStringLiteral("idle");
    case Step::offer: return QStringLiteral("offer");
    case Step::message: return QStringLiteral("message");
    case Step::pickCard:
    case Step::pickCamera:
    case Step::pickRun: return QStringLiteral("pick");
    case Step::working: return QStringLiteral("working");
    case Step::verdict: return QStringLiteral("verdict");
    }
    return {};
}

QString AnalyzerView::summary() const {
    return qt(state().summary);
}

QString AnalyzerView::title() const {
    return qt(state().title);
}

QString AnalyzerView::text() const {
    if (state().step == Step::idle)
        return QStringLiteral(
            "Compares what is on a camera's card with the script. Put the card into a reader, then "
            "press Analyze.");
    return qt(state().text);
}

QStringList AnalyzerView::choices() const {
    QStringList words = qt(state().choices);
    if (const int row = recommended(); row >= 0 && row < words.size())
        words[row] += QStringLiteral(" (recommended)");
    return words;
}

int AnalyzerView::recommended() const {
    return state().recommended;
}

bool AnalyzerView::wantsCard() const {
    return state() == rig::AnalyzerWords::noCard();
}

int AnalyzerView::filesRead() const {
    return state().filesRead;
}

int AnalyzerView::filesFound() const {
    return state().filesFound;
}

bool AnalyzerView::pass() const {
    return state().pass;
}

bool AnalyzerView::hasReport() const {
    return !state().report.empty();
}

bool AnalyzerView::canSend() const {
    return !rig_.analyzer().toSend().empty();
}

QString AnalyzerView::sendFault() const {
    return qt(state().sendFault);
}

void AnalyzerView::setNote(const QString& note) {
    if (note_ == note)
        return;
    note_ = note;
    Q_EMIT noteChanged();
}

QUrl AnalyzerView::folder() const {
    return QUrl::fromLocalFile(QDir(folder_).exists() && !folder_.isEmpty() ? folder_ : QDir::homePath());
}

// --- answers

void AnalyzerView::analyze() {
    if (rig_.transport().live())
        return;
    if (state().step != Step::verdict) // which is read first
        rig_.analyzer().analyzeRun();
    app_.openSheet(sheetName);
}

void AnalyzerView::analyzeFolder(const QUrl& folder) {
    if (!folder.isLocalFile())
        return;
    folder_ = QDir::cleanPath(folder.toLocalFile());
    rig_.analyzer().analyzeFolder(folder_.toStdString());
}

void AnalyzerView::choose(int choice) {
    if (state().step == Step::offer)
        return analyze();
    rig_.analyzer().choose(choice);
}

void AnalyzerView::sendReport(const QString& email) {
    if (canSend())
        rig_.analyzer().sendReport(note_.toStdString(), email.trimmed().toStdString());
}

void AnalyzerView::keepLocal() {
    rig_.analyzer().keepLocal();
}

void AnalyzerView::openReport() {
    if (hasReport())
        open_(addressOf(state().report));
}

} // namespace zenka::ui

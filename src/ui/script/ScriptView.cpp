#include "ui/script/ScriptView.h"

#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"
#include "ui/script/ScriptGutter.h"
#include "ui/script/ScriptHighlighter.h"
#include "ui/script/ScriptPreview.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QQuickItem>
#include <QTextBlock>
#include <QTextCursor>
#include <QTextDocument>
#include <QVariantMap>

#include <algorithm>
#include <utility>

namespace zenka::ui {

namespace {

QString examplesFolder() {
    return QStringLiteral(":/zenka/examples/");
}

/// A path as the disk has it, and as it is shown.
std::string pathOf(const QUrl& file) {
    return QFile::encodeName(file.toLocalFile()).toStdString();
}

QString shown(const std::string& path) {
    return QFile::decodeName(QByteArray::fromStdString(path));
}

std::string plainTextOf(const QTextDocument& document) {
    QString text = document.toRawText(); // the plain text would turn no-break spaces into spaces
    text.replace(QChar::ParagraphSeparator, u'\n');
    return text.toStdString();
}

} // namespace

ScriptView::ScriptView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent)
    : QObject(parent), rig_(rig), desk_(rig.script()), ports_(ports), diagnostics_(nullptr) {
    observe(this, desk_.scriptText().changed(), [this](const std::string& script) {
        if (!editing_)
            show(script);
    });
    const auto file = [this](const auto&) {
        // A file may have the very text that stands; then it is another script all the same.
        if (text() && !editing_ && !replacements_.empty() && replacements_.back().origin != desk_.origin())
            replacements_.push_back({steps_, desk_.origin()});
        Q_EMIT fileChanged();
    };
    observe(this, desk_.scriptFile().changed(), file);
    observe(this, desk_.edited().changed(), file);
    observe(this, desk_.currentScriptName().changed(), file);
    const auto takeCompiled = [this] {
        std::vector<script::ScriptDiag> all = desk_.diagnostics();
        std::ranges::copy(rig_.validator().validationIssues().get(), std::back_inserter(all));
        diagnostics_.take(all, LineMap(desk_.scriptText().get()));
        Q_EMIT compiled();
    };
    observe(this, desk_.compiled(), takeCompiled);
    observe(this, rig_.validator().didValidate().changed(), [takeCompiled](bool) { takeCompiled(); });
    takeCompiled();
}

void ScriptView::registerTypes() {
    ScriptHighlighter::registerTypes();
    ScriptGutter::registerTypes();
    ScriptPreview::registerTypes();
}

QTextDocument* ScriptView::text() const {
    return document_ ? document_->textDocument() : nullptr;
}

void ScriptView::setDocument(QQuickTextDocument* document) {
    if (document_ == document)
        return;
    if (text())
        text()->disconnect(this);
    document_ = document;
    if (text()) {
        // The text area draws what is to be seen alone; by itself it does so only for text that it was
        // given through its own property.
        if (auto* area = qobject_cast<QQuickItem*>(document->parent()))
            area->setFlag(QQuickItem::ItemObservesViewport);
        text()->setUndoRedoEnabled(false);
        show(desk_.scriptText().get());
        text()->setUndoRedoEnabled(true);
        replacements_ = {{0, desk_.origin()}};
        steps_ = 0;
        connect(text(), &QTextDocument::undoCommandAdded, this, [this] {
            // What was undone before can no longer be redone.
            std::erase_if(replacements_, [this](const Replacement& each) { return each.steps > steps_; });
        });
        connect(text(), &QTextDocument::contentsChanged, this, &ScriptView::edit);
        connect(text(), &QObject::destroyed, this, [this] { desk_.keep(); }); // the sheet closes
    }
    Q_EMIT documentChanged();
}

void ScriptView::show(const std::string& script) {
    if (!text())
        return;
    showing_ = true;
    size_ = static_cast<qsizetype>(script.size());
    Q_EMIT sizeChanged();
    QTextCursor cursor(text());
    cursor.beginEditBlock();
    cursor.select(QTextCursor::Document);
    cursor.insertText(QString::fromStdString(script));
    cursor.endEditBlock();
    steps_ = text()->availableUndoSteps();
    replacements_.push_back({steps_, desk_.origin()});
    showing_ = false;
    Q_EMIT replaced();
}

void ScriptView::edit() {
    // Colours are changes of the document, too.
    if (showing_ || !text())
        return;
    std::string script = plainTextOf(*text());
    if (script == desk_.scriptText().get())
        return;
    size_ = static_cast<qsizetype>(script.size());
    editing_ = true;
    desk_.setScriptText(std::move(script));
    followUndo();
    editing_ = false;
    Q_EMIT sizeChanged();
}

void ScriptView::followUndo() {
    steps_ = text()->availableUndoSteps();
    const auto behind =
        std::ranges::find_if(replacements_.rbegin(), replacements_.rend(),
                             [this](const Replacement& each) { return each.steps <= steps_; });
    if (behind != replacements_.rend() && behind->origin != desk_.origin())
        desk_.takeOrigin(behind->origin);
}

QString ScriptView::name() const {
    return QString::fromStdString(desk_.currentScriptName().get());
}

QString ScriptView::fileWords() const {
    if (!hasFile())
        return edited() ? QStringLiteral("edited, in no file yet") : QStringLiteral("in no file yet");
    return edited() ? QStringLiteral("edited, not saved") : QStringLiteral("saved");
}

bool ScriptView::isDefault() const {
    return hasFile() && desk_.scriptFile().get() == desk_.defaultScript();
}

QUrl ScriptView::folder() const {
    std::string path = desk_.scriptFile().get();
    if (const auto paths = desk_.recentScripts(); path.empty() && !paths.empty())
        path = paths.front();
    const QString folder =
        path.empty() ? shown(ports_.folders.documents().string()) : QFileInfo(shown(path)).path();
    return QUrl::fromLocalFile(QFileInfo::exists(folder) ? folder : QDir::homePath());
}

QVariantList ScriptView::recent() const {
    QVariantList rows;
    for (const std::string& path : desk_.recentScripts()) {
        const QFileInfo file(shown(path));
        rows.append(QVariantMap{{QStringLiteral("path"), file.filePath()},
                                {QStringLiteral("name"), file.fileName()},
                                {QStringLiteral("folder"), file.path()}});
    }
    return rows;
}

QVariantList ScriptView::examples() const {
    QVariantList rows;
    for (const QString& file : QDir(examplesFolder()).entryList({QStringLiteral("*.zenka")}, QDir::Files)) {
        QString title = QFileInfo(file).completeBaseName().replace(u'-', u' ');
        if (!title.isEmpty())
            title[0] = title[0].toUpper();
        rows.append(QVariantMap{{QStringLiteral("file"), file}, {QStringLiteral("title"), title}});
    }
    return rows;
}

QString ScriptView::summary() const {
    QStringList words;
    const auto& captures = desk_.captures();
    if (captures.empty())
        words.append(QStringLiteral("no frames"));
    else
        words.append(counted(std::ssize(captures), "frame") + QStringLiteral(" on ") +
                     counted(static_cast<qsizetype>(desk_.visibleCameras().size()), "camera"));
    const auto cues = static_cast<qsizetype>(desk_.audioCues().size());
    words.append(cues == 0 ? QStringLiteral("no cues") : counted(cues, "cue"));
    if (diagnostics_.errors() > 0)
        words.append(counted(diagnostics_.errors(), "error"));
    if (diagnostics_.warnings() > 0)
        words.append(counted(diagnostics_.warnings(), "warning"));
    if (diagnostics_.count() == 0)
        words.append(QStringLiteral("no diagnostics"));
    return words.join(QStringLiteral(", "));
}

QString ScriptView::outside() const {
    const auto& offsets = desk_.captureOffsets();
    const double from = rig_.site().tC1() - previewMargin;
    const double to = rig_.site().tC4() + previewMargin;
    const auto inside = std::ranges::upper_bound(offsets, to) - std::ranges::lower_bound(offsets, from);
    const qsizetype count = static_cast<qsizetype>(offsets.size()) - inside;
    if (count == 0)
        return {};
    return QStringLiteral("%1 more than an hour outside the eclipse: see that this is meant.")
        .arg(counted(count, "frame"));
}

QString ScriptView::validated() const {
    if (!rig_.validator().didValidate().get())
        return {};
    const auto& issues = rig_.validator().validationIssues().get();
    if (issues.empty())
        return QStringLiteral("✓ Validated: nothing stands against it at this site with these cameras.");
    const auto errors = std::ranges::count(issues, "error", &script::ScriptDiag::severity);
    const auto warnings = std::ssize(issues) - errors;
    QStringList found;
    if (errors > 0)
        found.append(counted(errors, "error"));
    if (warnings > 0)
        found.append(counted(warnings, "warning"));
    return QStringLiteral("Validated: %1, listed below.").arg(found.join(QStringLiteral(", ")));
}

void ScriptView::validate() {
    rig_.validator().validateScript();
}

void ScriptView::tell(const QString& message, bool failed) {
    message_ = message;
    failed_ = failed;
    Q_EMIT messageChanged();
    Q_EMIT fileChanged();
}

void ScriptView::newScript() {
    desk_.newScript();
    tell(QStringLiteral("New script. Undo brings the one before back."), false);
}

void ScriptView::open(const QUrl& file) {
    openPath(pathOf(file));
}

void ScriptView::openRecent(const QString& path) {
    openPath(QFile::encodeName(path).toStdString());
}

void ScriptView::openPath(const std::string& path) {
    const QString name = QString::fromStdString(rig::ScriptFiles::nameOf(path));
    tell(QStringLiteral("Reading \"%1\"…").arg(name), false);
    desk_.openFile(path, [view = QPointer(this), name](const std::string& fault) {
        if (view)
            view->tell(fault.empty() ? QStringLiteral("Opened \"%1\".").arg(name)
                                     : QString::fromStdString(fault),
                       !fault.empty());
    });
}

bool ScriptView::save() {
    if (!hasFile())
        return false;
    savePath(desk_.scriptFile().get());
    return true;
}

void ScriptView::saveAs(const QUrl& file) {
    savePath(pathOf(file));
}

QUrl ScriptView::fileIn(const QUrl& folder, const QString& name, const QString& suffix) const {
    const QString typed = name.trimmed();
    if (typed.isEmpty() || typed == QLatin1String(".") || typed == QLatin1String("..") ||
        typed.contains(u'/'))
        return {};
    const QString whole = typed.contains(u'.') ? typed : typed + suffix;
    return QUrl::fromLocalFile(QDir(folder.toLocalFile()).filePath(whole));
}

bool ScriptView::isThere(const QUrl& file) const {
    return QFileInfo::exists(file.toLocalFile());
}

void ScriptView::savePath(const std::string& path) {
    const QString name = QString::fromStdString(rig::ScriptFiles::nameOf(path));
    tell(QStringLiteral("Writing \"%1\"…").arg(name), false);
    desk_.saveFile(path, [view = QPointer(this), name](const std::string& fault) {
        if (view)
            view->tell(fault.empty() ? QStringLiteral("Saved \"%1\".").arg(name)
                                     : QString::fromStdString(fault),
                       !fault.empty());
    });
}

void ScriptView::loadExample(const QString& file) {
    QFile example(examplesFolder() + file);
    if (!example.open(QIODevice::ReadOnly))
        return tell(
            QStringLiteral("There is no example \"%1\" in this build. Open a file instead.").arg(file), true);
    desk_.loadExample(example.readAll().toStdString(), file.toStdString());
    tell(QStringLiteral(
             "Example \"%1\". Read its first lines, they say where it fits. Undo brings your script "
             "back.")
             .arg(file),
         false);
}

void ScriptView::noteWizard(const QString& name) {
    tell(QStringLiteral("\"%1\" of the Script Wizard. Save it to a file to keep it for good.").arg(name),
         false);
}

void ScriptView::noteAssistant() {
    tell(QStringLiteral("The assistant's script. Rehearse it before you trust it. Undo brings yours back."),
         false);
}

void ScriptView::bringBackUnsaved() {
    desk_.bringBackUnsavedText();
    tell(QStringLiteral("Your text is back. Save it to a file to keep it for good."), false);
}

void ScriptView::setDefault(bool isDefault) {
    if (isDefault && !hasFile())
        return tell(
            QStringLiteral("The script is in no file yet. Save it, then it can be the one that each start "
                           "begins with."),
            true);
    desk_.setDefaultScript(isDefault ? desk_.scriptFile().get() : std::string());
    tell(isDefault ? QStringLiteral("Each start begins with \"%1\" from now on.").arg(name())
                   : QStringLiteral("Each start begins with the script of last time."),
         false);
}

int ScriptView::positionOf(int row) const {
    if (!text())
        return 0;
    const QTextBlock block = text()->findBlockByNumber(std::clamp(row, 0, text()->blockCount() - 1));
    const auto tokens = scriptTokens(block.text());
    return block.position() + (tokens.empty() ? 0 : static_cast<int>(tokens.front().start));
}

int ScriptView::rowOfLine(int lineNo) const {
    return LineMap(desk_.scriptText().get()).rowOf(lineNo);
}

int ScriptView::rowAt(int position) const {
    return text() ? text()->findBlock(position).blockNumber() : 0;
}

} // namespace zenka::ui

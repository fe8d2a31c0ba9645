#include "ui/script/AssistantView.h"

#include "base/Text.h"
#include "rig/RigModel.h"
#include "services/ScriptAssistant.h"
#include "ui/kit/AppView.h"
#include "ui/kit/CommandText.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <cstddef>
#include <utility>
#include <vector>

namespace zenka::ui {

namespace {

using services::ScriptAssistant;

constexpr std::size_t mostShownOfScript = 128 << 10; ///< bytes
constexpr std::size_t mostShownInRun = 16 << 10;     ///< that are laid out without holding up a frame
constexpr std::ptrdiff_t mostShownFindings = 200;

} // namespace

AssistantView::AssistantView(rig::RigModel& rig, const ports::Ports& ports, AppView& app, QObject* parent)
    : QObject(parent), rig_(rig), app_(app), assistant_(std::make_unique<ScriptAssistant>(rig, ports)),
      transcript_(nullptr), findings_(nullptr) {
    const auto rows = [this] { follow(); };
    const auto told = [this](const auto&) { Q_EMIT changed(); };
    const auto script = [this](const auto&) { followScript(); };
    observe(this, assistant_->messages().changed(), [rows](const auto&) { rows(); });
    observe(this, assistant_->noted(), rows);
    observe(this, assistant_->busy().changed(), [this](bool) {
        Q_EMIT changed();
        Q_EMIT scriptChanged();
    });
    observe(this, assistant_->error().changed(), told);
    observe(this, assistant_->guided().changed(), told);
    observe(this, assistant_->autoFixes().changed(), told);
    observe(this, assistant_->leftOut().changed(), told);
    observe(this, assistant_->workingScript().changed(), script);
    observe(this, assistant_->findings().changed(), script);
    observe(this, rig.transport().activityChanged(), [this] { Q_EMIT scriptChanged(); });
    observe(this, rig.script().scriptText().changed(), [this](const auto&) { Q_EMIT scriptChanged(); });
}

AssistantView::~AssistantView() = default;

void AssistantView::follow() {
    transcript_.follow(*assistant_);
    Q_EMIT changed();
}

void AssistantView::followScript() {
    const auto& known = assistant_->findings().get();
    std::vector<script::ScriptDiag> shown;
    if (known)
        shown.assign(known->issues.begin(),
                     known->issues.begin() + std::min(std::ssize(known->issues), mostShownFindings));
    findings_.take(shown, LineMap());
    declineCommands(); // they were those of another script
    Q_EMIT changed();
}

void AssistantView::setInput(const QString& input) {
    if (input == input_)
        return;
    input_ = input;
    Q_EMIT inputChanged();
}

bool AssistantView::empty() const {
    return assistant_->messages()->empty();
}

bool AssistantView::busy() const {
    return assistant_->busy().get();
}

QString AssistantView::error() const {
    return qt(assistant_->error()->value_or(""));
}

bool AssistantView::canRepeat() const {
    return assistant_->mayRepeat();
}

bool AssistantView::canUndoNewChat() const {
    return assistant_->mayUndoNewChat();
}

bool AssistantView::guided() const {
    return assistant_->guided().get();
}

void AssistantView::setGuided(bool guided) {
    assistant_->setGuided(guided);
    Q_EMIT changed(); // also when it was refused: the box shows what stands
}

QString AssistantView::progress() const {
    if (!busy())
        return {};
    const bool answered = !empty() && assistant_->messages()->back().role == "assistant";
    if (answered)
        return QStringLiteral("Checking the script…");
    const int fixes = assistant_->autoFixes().get();
    return fixes == 0 ? QStringLiteral("Waiting for the assistant…")
                      : QStringLiteral("Waiting for the assistant, repair %1 of %2…")
                            .arg(fixes)
                            .arg(ScriptAssistant::mostAutoFixes);
}

QString AssistantView::remark() const {
    const std::size_t gone = assistant_->leftOut().get();
    if (gone > 0)
        return QStringLiteral(
                   "The assistant no longer sees the first %1 of this chat: together with the rest "
                   "they are too long to be sent.")
            .arg(counted(static_cast<qsizetype>(gone), "message"));
    return qt(assistant_->scriptRemark());
}

bool AssistantView::hasHost() const {
    return !assistant_->host().empty();
}

QString AssistantView::notice() const {
    if (!hasHost())
        return QStringLiteral(
            "No server is set for the assistant, so nothing can be sent. It can be named by "
            "whoever set Zenka up for you; the Script Wizard needs none.");
    return QStringLiteral(
               "What you write here is sent to %1, and with it the working script, your site with its "
               "contact "
               "times, and the names, models and lenses of your cameras. Nothing is sent before you send a "
               "message. What comes back is only text: read it, and rehearse it before you trust it.")
        .arg(qt(assistant_->host()));
}

QStringList AssistantView::starters() const {
    QStringList list;
    for (const std::string_view starter : ScriptAssistant::starters())
        list.append(qt(starter));
    return list;
}

QString AssistantView::workingScript() const {
    const auto& known = assistant_->findings().get();
    if (readable_)
        return known ? qt(known->summary) : QString();
    return cutText(assistant_->workingScript().get(),
                   rig_.transport().runActive() ? mostShownInRun : mostShownOfScript);
}

void AssistantView::setReadable(bool readable) {
    if (readable_ == readable)
        return;
    readable_ = readable;
    Q_EMIT scriptChanged();
}

QString AssistantView::scriptState() const {
    if (base::trimmed(assistant_->workingScript().get()).empty())
        return QStringLiteral("No script yet");
    return assistant_->workingScript().get() == rig_.script().scriptText().get()
               ? QStringLiteral("The script in the editor")
               : QStringLiteral("The working script, not in the editor yet");
}

QString AssistantView::verdict() const {
    if (base::trimmed(assistant_->workingScript().get()).empty())
        return {};
    const auto& known = assistant_->findings().get();
    if (!known)
        return QStringLiteral("Checking the script…");
    QString words = qt(known->tally);
    if (rig_.transport().live())
        words += QStringLiteral(". A live run is on: nothing is loaded until it is over.");
    else if (known->errors > 0 && !busy() && assistant_->autoFixes().get() >= ScriptAssistant::mostAutoFixes)
        words +=
            QStringLiteral(". The assistant was asked %1 times to mend them; say what is to change, or load "
                           "the script and mend it yourself.")
                .arg(ScriptAssistant::mostAutoFixes);
    return words;
}

bool AssistantView::canLoad() const {
    return assistant_->mayLoad() && !rig_.transport().live();
}

void AssistantView::open() {
    assistant_->open();
    Q_EMIT noticeChanged();
}

void AssistantView::send() {
    if (assistant_->send(input_.trimmed().toStdString(), false))
        setInput({});
}

void AssistantView::sendStarter(int index) {
    const auto all = ScriptAssistant::starters();
    if (index >= 0 && static_cast<std::size_t>(index) < all.size())
        assistant_->send(std::string(all[static_cast<std::size_t>(index)]), false);
}

void AssistantView::cancel() {
    assistant_->cancel();
}

void AssistantView::repeat() {
    assistant_->repeat();
}

void AssistantView::newChat() {
    assistant_->newChat();
    Q_EMIT noticeChanged();
}

void AssistantView::undoNewChat() {
    assistant_->undoNewChat();
}

void AssistantView::load() {
    loadConfirmed({});
}

void AssistantView::confirmCommands() {
    loadConfirmed(std::vector(asked_)); // a copy: asked_ is cleared on the way
}

void AssistantView::declineCommands() {
    asked_.clear();
    commandsToConfirm_.clear();
    Q_EMIT scriptChanged();
}

void AssistantView::loadConfirmed(const std::vector<script::CommandLine>& confirmed) {
    switch (assistant_->tryLoading(confirmed)) {
    case ScriptAssistant::Loading::refused: return;
    case ScriptAssistant::Loading::unconfirmed: {
        const auto& known = assistant_->findings().get();
        if (!known)
            return;
        asked_ = known->commands;
        commandsToConfirm_ = commandText(asked_);
        Q_EMIT scriptChanged();
        return;
    }
    case ScriptAssistant::Loading::loaded: break;
    }
    // The editor takes a script as a step that can be undone only while it is open.
    app_.openSheet(QStringLiteral("Script"));
    if (app_.sheet() != QLatin1String("Script"))
        return; // the log says why
    if (assistant_->loadScript(confirmed) == ScriptAssistant::Loading::loaded) {
        declineCommands();
        Q_EMIT loaded();
    }
}

void AssistantView::copyScript() const {
    AppView::copy(qt(assistant_->workingScript().get()));
}

} // namespace zenka::ui

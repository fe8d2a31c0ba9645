#include "services/ScriptAssistant.h"

#include "base/Text.h"
#include "rig/AssistantContext.h"
#include "services/ServiceAddress.h"

#include <array>
#include <memory>
#include <utility>

namespace zenka::services {

namespace {

constexpr std::array<std::string_view, 6> offeredStarters{
    "Help me build my eclipse capture script. Ask me what you need to know, one question at a time, then "
    "write "
    "it.",
    "Tell me in plain words what my current script does, camera by camera.",
    "Mend what is wrong with my current script, and tell me what you changed.",
    "Write a script for one body with a telephoto lens: partial phases, diamond rings, Baily's beads, and a "
    "corona bracket.",
    "Add a second body with a wide lens to my current script, for a time lapse from first to last contact.",
    "Make my current script safer for my cameras: more room between the frames, fewer of them where they are "
    "too close.",
};

} // namespace

ScriptAssistant::ScriptAssistant(rig::RigModel& rig, const ports::Ports& ports)
    : rig_(rig), ports_(ports), exchange_(ports) {
}

std::span<const std::string_view> ScriptAssistant::starters() {
    return offeredStarters;
}

std::string ScriptAssistant::host() const {
    return serviceAddress(ports_.settings, "");
}

const ScriptAssistant::Note* ScriptAssistant::noteOf(const Msg& message) const {
    const auto found = notes_.find(message.id);
    return found == notes_.end() ? nullptr : &found->second;
}

bool ScriptAssistant::isAutomatic(const Msg& message) const {
    const Note* note = noteOf(message);
    return note && note->fix;
}

std::string ScriptAssistant::shown(const Msg& message) const {
    const Note* note = noteOf(message);
    return note ? note->shown.value_or(message.content) : message.content;
}

std::string ScriptAssistant::check(const Msg& message) const {
    const Note* note = noteOf(message);
    return note ? note->check : std::string();
}

bool ScriptAssistant::refuse(std::string why) {
    error_.set(std::move(why));
    return false;
}

void ScriptAssistant::open() {
    if (messages_->empty())
        takeEditorScript();
}

void ScriptAssistant::takeEditorScript() {
    const std::string& script = rig_.script().scriptText().get();
    const bool fits = script.size() <= mostScriptBytes;
    scriptRemark_ =
        fits ? "" : "The script in the editor is longer than 1 MB, so the assistant does not see it.";
    workingScript_.set(fits ? script : std::string());
    examine(std::nullopt);
}

bool ScriptAssistant::send(const std::string& text, bool isFix) {
    if (busy_.get() || base::trimmed(text).empty())
        return false;
    if (host().empty())
        return refuse(
            "No server is set for the assistant, so nothing was sent; it can be named by whoever set "
            "Zenka up for you.");
    if (text.size() > mostTypedBytes)
        return refuse("This message is longer than the assistant can take. Shorten it, then send it again.");
    if (messages_->size() >= mostMessages || chatBytes_ > mostChatBytes)
        return refuse("This chat has grown too long. Load its script if you want it, then start a new chat.");
    if (messages_->empty()) {
        if (workingScript_.get() != rig_.script().scriptText().get())
            takeEditorScript();
        before_.reset();
    }
    if (!isFix)
        autoFixes_.set(0);
    append("user", text, {.fix = isFix});
    ask();
    return true;
}

void ScriptAssistant::append(const char* role, const std::string& text, Note note) {
    const auto id = base::Uuid::fresh();
    chatBytes_ += text.size();
    notes_[id] = std::move(note);
    messages_.edit([&](auto& messages) { messages.push_back({.id = id, .role = role, .content = text}); });
}

void ScriptAssistant::ask() {
    error_.set(std::nullopt);
    const std::vector<Msg>& all = messages_.get();
    const std::size_t first = firstSent(all);
    leftOut_.set(first);
    AssistantRequest request{.messages = {all.begin() + static_cast<std::ptrdiff_t>(first), all.end()},
                             .guided = guided_.get(),
                             .context = rig::assistantContext({.site = rig_.site(),
                                                               .roster = rig_.roster(),
                                                               .cadence = rig_.cadence(),
                                                               .library = rig_.library(),
                                                               .script = rig_.script()}),
                             .currentScript = workingScript_.get()};
    busy_.set(true);
    exchange_.ask(std::move(request), rig_.site().compileSite(),
                  [this](AssistantAnswer answer, std::optional<ReplyScript> found) {
                      take(std::move(answer), std::move(found));
                  });
}

void ScriptAssistant::take(AssistantAnswer answer, std::optional<ReplyScript> found) {
    if (!answer.error.empty()) {
        error_.set(std::move(answer.error));
        busy_.set(false);
        return;
    }
    Note note;
    if (found)
        note.shown = std::move(found->around);
    append("assistant", answer.reply, std::move(note));
    if (!found) {
        busy_.set(false);
        return;
    }
    scriptRemark_.clear();
    workingScript_.set(std::move(found->script));
    awaitsCheck_ = true;
    examine(messages_->back().id);
}

void ScriptAssistant::examine(std::optional<base::Uuid> message) {
    findings_.set(std::nullopt);
    const auto arrive = lifeline_.guard([this, message, number = ++examined_](ScriptFindings& findings) {
        if (number != examined_)
            return;
        if (message)
            notes_[*message].check = findings.tally;
        findings_.set(std::move(findings));
        noted_.emit();
        if (std::exchange(awaitsCheck_, false))
            repairOrRest();
    });
    rig_.validator().examine(workingScript_.get(), lifeline_.guard([this, arrive](const auto& examined) {
        ports_.queues.background([arrive, examined, &loop = ports_.loop] {
            const auto findings = std::make_shared<ScriptFindings>(findingsOf(*examined));
            loop.post([arrive, findings] { arrive(*findings); });
        });
    }));
}

void ScriptAssistant::repairOrRest() {
    busy_.set(false);
    const auto& findings = findings_.get();
    if (!findings || findings->errors == 0 || autoFixes_.get() >= mostAutoFixes)
        return;
    autoFixes_.set(autoFixes_.get() + 1);
    send(repairRequest(*findings), true);
}

void ScriptAssistant::stop() {
    exchange_.cancel();
    awaitsCheck_ = false;
    busy_.set(false);
}

void ScriptAssistant::cancel() {
    if (!busy_.get())
        return;
    stop();
    if (mayRepeat())
        error_.set("Stopped before an answer came.");
}

bool ScriptAssistant::mayRepeat() const {
    return !busy_.get() && !messages_->empty() && messages_->back().role == "user";
}

void ScriptAssistant::repeat() {
    if (mayRepeat())
        ask();
}

bool ScriptAssistant::setGuided(bool guided) {
    if (guided == guided_.get())
        return true;
    if (!messages_->empty())
        return refuse("Start a new chat to switch modes");
    guided_.set(guided);
    return true;
}

void ScriptAssistant::newChat() {
    if (messages_->empty())
        return;
    stop();
    before_ = Before{.messages = messages_.get(),
                     .notes = std::exchange(notes_, {}),
                     .guided = guided_.get(),
                     .workingScript = workingScript_.get(),
                     .scriptRemark = scriptRemark_,
                     .findings = findings_.get()};
    chatBytes_ = 0;
    autoFixes_.set(0);
    leftOut_.set(0);
    error_.set(std::nullopt);
    messages_.set({});
    takeEditorScript();
}

void ScriptAssistant::undoNewChat() {
    if (!mayUndoNewChat() || !before_)
        return;
    Before before = *std::move(before_);
    before_.reset();
    ++examined_;
    notes_ = std::move(before.notes);
    for (const Msg& message : before.messages)
        chatBytes_ += message.content.size();
    guided_.set(before.guided);
    error_.set(std::nullopt);
    scriptRemark_ = std::move(before.scriptRemark);
    workingScript_.set(std::move(before.workingScript));
    findings_.set(before.findings);
    messages_.set(std::move(before.messages));
    if (!before.findings)
        examine(std::nullopt);
}

bool ScriptAssistant::mayLoad() const {
    return !busy_.get() && findings_.get() && !base::trimmed(workingScript_.get()).empty() &&
           workingScript_.get() != rig_.script().scriptText().get();
}

ScriptAssistant::Loading ScriptAssistant::tryLoading(const std::vector<script::CommandLine>& confirmed) {
    if (rig_.transport().live()) {
        refuse("A live run is on, so nothing was loaded; load the script when it is over.");
        return Loading::refused;
    }
    const auto& findings = findings_.get();
    if (!mayLoad() || !findings) {
        refuse("There is no new script that could be loaded yet.");
        return Loading::refused;
    }
    const auto& commands = findings->commands;
    if (!script::canBeRead(commands)) {
        refuse("This script runs more commands on your computer than one can look through, so it was not "
               "loaded. Ask for one without them.");
        return Loading::refused;
    }
    return commands == confirmed ? Loading::loaded : Loading::unconfirmed;
}

ScriptAssistant::Loading ScriptAssistant::loadScript(const std::vector<script::CommandLine>& confirmed) {
    const Loading loading = tryLoading(confirmed);
    if (loading == Loading::loaded) {
        error_.set(std::nullopt);
        rig_.script().loadExample(workingScript_.get(), "Script of the assistant");
    }
    return loading;
}

} // namespace zenka::services

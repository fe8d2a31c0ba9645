#pragma once

#include "base/Lifeline.h"
#include "base/Published.h"
#include "ports/Ports.h"
#include "rig/RigModel.h"
#include "services/AssistantExchange.h"
#include "services/ScriptFindings.h"

#include <map>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace zenka::services {

/// A chat with a remote language model about a script. It sends the chat, the script and what the rig is to
/// the server, takes the script out of each reply, has it checked, and sends errors back a few times. What
/// comes is text to be looked at: nothing of it reaches the editor before the user loads it. Main thread;
/// what takes long is done aside.
class ScriptAssistant {
public:
    using Msg = AssistantMsg;

    static constexpr int mostAutoFixes = 3;                 ///< in a row
    static constexpr std::size_t mostTypedBytes = 64 << 10; ///< of one message
    static constexpr std::size_t mostMessages = 200;
    static constexpr std::size_t mostChatBytes = 8 << 20;
    static constexpr std::size_t mostScriptBytes = 1 << 20;

    /// Both outlive it.
    ScriptAssistant(rig::RigModel& rig, const ports::Ports& ports);
    ScriptAssistant(const ScriptAssistant&) = delete;
    ScriptAssistant& operator=(const ScriptAssistant&) = delete;

    const base::Published<std::vector<Msg>>& messages() const { return messages_; }
    /// A request is under way, or its reply is being looked at.
    const base::Published<bool>& busy() const { return busy_; }
    /// A sentence for the user; it stands until the next act.
    const base::Published<std::optional<std::string>>& error() const { return error_; }
    /// The assistant leads, question by question; else it does what it is asked.
    const base::Published<bool>& guided() const { return guided_; }
    /// Repairs that were asked for since the user said something.
    const base::Published<int>& autoFixes() const { return autoFixes_; }
    /// The script that the chat is about: the editor's at first, then that of the latest reply with one.
    const base::Published<std::string>& workingScript() const { return workingScript_; }
    /// What is known of it; nothing while it is being looked at.
    const base::Published<std::optional<ScriptFindings>>& findings() const { return findings_; }
    /// Messages at the beginning of the chat that are no longer sent along.
    const base::Published<std::size_t>& leftOut() const { return leftOut_; }

    /// What to begin a chat with.
    static std::span<const std::string_view> starters();
    /// "https://host" of the server, empty when none is set.
    std::string host() const;
    /// A message of Zenka's own, with findings of a check.
    bool isAutomatic(const Msg& message) const;
    /// The message without the script that was taken from it.
    std::string shown(const Msg& message) const;
    /// What came of the check of its script, empty for none.
    std::string check(const Msg& message) const;
    /// Why no script is to be seen though there is one, empty otherwise.
    const std::string& scriptRemark() const { return scriptRemark_; }

    /// Takes the editor's script for a chat that has not begun.
    void open();

    /// Sends a message; false, with a reason in error(), when it was not taken. While a request is under way
    /// none is taken. isFix tells the findings of a check from a user's own message.
    bool send(const std::string& text, bool isFix);
    /// Gives up what is under way.
    void cancel();
    /// The last message has no answer.
    bool mayRepeat() const;
    /// Sends the chat again, ending with the message that has no answer.
    void repeat();

    /// Refused once there are messages.
    bool setGuided(bool guided);
    /// Puts the chat away and begins another.
    void newChat();
    bool mayUndoNewChat() const { return before_.has_value() && messages_->empty(); }
    void undoNewChat();

    enum class Loading {
        loaded,
        refused,     ///< with a reason in error()
        unconfirmed, ///< the script runs commands, and these are not the ones that were confirmed
    };
    /// Whether there is a script for the editor that is not in it already.
    bool mayLoad() const;
    /// What loadScript() would come to, with nothing loaded.
    Loading tryLoading(const std::vector<script::CommandLine>& confirmed = {});
    /// Moves the working script into the editor and compiles it. Its commands, as the user has seen and
    /// confirmed them, are given back here.
    Loading loadScript(const std::vector<script::CommandLine>& confirmed = {});

    /// What isAutomatic(), shown() or check() say of a message has changed.
    sigc::signal<void()>& noted() { return noted_; }

private:
    struct Note {
        bool fix = false;
        std::optional<std::string> shown;
        std::string check;
    };
    /// Of a chat that was put away.
    struct Before {
        std::vector<Msg> messages;
        std::map<base::Uuid, Note> notes;
        bool guided = true;
        std::string workingScript;
        std::string scriptRemark;
        std::optional<ScriptFindings> findings;
    };

    bool refuse(std::string why);
    void takeEditorScript();
    void append(const char* role, const std::string& text, Note note);
    void ask();
    void take(AssistantAnswer answer, std::optional<ReplyScript> found);
    void examine(std::optional<base::Uuid> message);
    void repairOrRest();
    void stop();
    const Note* noteOf(const Msg& message) const;

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    base::Published<std::vector<Msg>> messages_;
    base::Published<bool> busy_{false};
    base::Published<std::optional<std::string>> error_;
    base::Published<bool> guided_{true};
    base::Published<int> autoFixes_{0};
    base::Published<std::string> workingScript_;
    base::Published<std::optional<ScriptFindings>> findings_;
    base::Published<std::size_t> leftOut_{0};
    std::map<base::Uuid, Note> notes_;
    std::string scriptRemark_;
    std::size_t chatBytes_ = 0;
    std::optional<Before> before_;
    bool awaitsCheck_ = false; ///< the request under way ends with the check of its script
    std::size_t examined_ = 0; ///< only the check of the script that stands is taken
    sigc::signal<void()> noted_;
    AssistantExchange exchange_;
    base::Lifeline lifeline_;
};

} // namespace zenka::services

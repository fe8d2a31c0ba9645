#pragma once

#include "script/CommandLines.h"
#include "ui/kit/DiagnosticsList.h"
#include "ui/script/AssistantTranscript.h"

#include <QObject>
#include <QString>
#include <QStringList>

#include <memory>
#include <vector>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;

/// The chat with the script assistant, and the script that it is about. All of it outlives the sheet, so that
/// an answer may come while it is closed.
class AssistantView : public QObject {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::AssistantTranscript* messages READ messages CONSTANT)
    Q_PROPERTY(QString input READ input WRITE setInput NOTIFY inputChanged)
    Q_PROPERTY(bool empty READ empty NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(bool canRepeat READ canRepeat NOTIFY changed)
    Q_PROPERTY(bool canUndoNewChat READ canUndoNewChat NOTIFY changed)
    Q_PROPERTY(bool guided READ guided WRITE setGuided NOTIFY changed)
    Q_PROPERTY(QString progress READ progress NOTIFY changed)
    Q_PROPERTY(QString remark READ remark NOTIFY changed)
    Q_PROPERTY(QString notice READ notice NOTIFY noticeChanged)
    Q_PROPERTY(bool hasHost READ hasHost NOTIFY noticeChanged)
    Q_PROPERTY(QStringList starters READ starters CONSTANT)

    Q_PROPERTY(QString workingScript READ workingScript NOTIFY scriptChanged)
    Q_PROPERTY(bool readable READ readable WRITE setReadable NOTIFY scriptChanged)
    Q_PROPERTY(QString scriptState READ scriptState NOTIFY scriptChanged)
    Q_PROPERTY(QString verdict READ verdict NOTIFY scriptChanged)
    Q_PROPERTY(int errors READ errors NOTIFY scriptChanged)
    Q_PROPERTY(zenka::ui::DiagnosticsList* findings READ findings CONSTANT)
    Q_PROPERTY(bool canLoad READ canLoad NOTIFY scriptChanged)
    Q_PROPERTY(QString commandsToConfirm READ commandsToConfirm NOTIFY scriptChanged)

public:
    AssistantView(rig::RigModel& rig, const ports::Ports& ports, AppView& app, QObject* parent);
    ~AssistantView() override;

    AssistantTranscript* messages() { return &transcript_; }
    /// What is being typed; it outlives the sheet.
    QString input() const { return input_; }
    void setInput(const QString& input);
    bool empty() const;
    bool busy() const;
    QString error() const;
    bool canRepeat() const;
    bool canUndoNewChat() const;
    bool guided() const;
    /// Once there are messages it stays as it is, and error() says so.
    void setGuided(bool guided);
    /// What is being waited for, empty for nothing.
    QString progress() const;
    /// What the assistant does not get to see, empty for nothing.
    QString remark() const;
    /// What is sent, and where to; or that there is nobody to send it to.
    QString notice() const;
    bool hasHost() const;
    QStringList starters() const;

    /// The script that the chat is about, or what it does in plain words; cut where it is very long.
    QString workingScript() const;
    bool readable() const { return readable_; }
    void setReadable(bool readable);
    /// Where it comes from.
    QString scriptState() const;
    /// What came of its check, and what follows from that.
    QString verdict() const;
    int errors() const { return findings_.errors(); }
    DiagnosticsList* findings() { return &findings_; }
    bool canLoad() const;
    /// A line for each command that the script runs, while the user is asked about them; empty otherwise.
    QString commandsToConfirm() const { return commandsToConfirm_; }

    /// The sheet is shown.
    Q_INVOKABLE void open();
    /// Sends what was typed, which stays where it is when it is not taken.
    Q_INVOKABLE void send();
    Q_INVOKABLE void sendStarter(int index);
    Q_INVOKABLE void cancel();
    Q_INVOKABLE void repeat();
    Q_INVOKABLE void newChat();
    Q_INVOKABLE void undoNewChat();
    /// Opens the editor with the script in it; asks first about commands that it runs.
    Q_INVOKABLE void load();
    /// The user has looked at the commands.
    Q_INVOKABLE void confirmCommands();
    Q_INVOKABLE void declineCommands();
    Q_INVOKABLE void copyScript() const;

Q_SIGNALS:
    void inputChanged();
    void changed();
    void noticeChanged();
    void scriptChanged();
    /// The script is in the editor.
    void loaded();

private:
    void follow();
    void followScript();
    void loadConfirmed(const std::vector<script::CommandLine>& confirmed);

    rig::RigModel& rig_;
    AppView& app_;
    const std::unique_ptr<services::ScriptAssistant> assistant_;
    AssistantTranscript transcript_;
    DiagnosticsList findings_;
    QString input_;
    bool readable_ = false;
    std::vector<script::CommandLine> asked_; ///< the commands that the user is asked about
    QString commandsToConfirm_;
};

} // namespace zenka::ui

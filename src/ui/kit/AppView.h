#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QVariantList>

#include <functional>
#include <utility>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// What the window as a whole shows: the open sheet, prompts, and facts about the program.
class AppView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString sheet READ sheet NOTIFY sheetChanged)
    Q_PROPERTY(QString version READ version CONSTANT)
    Q_PROPERTY(bool desktopDialogs READ desktopDialogs CONSTANT)
    Q_PROPERTY(QString bugFacts READ bugFacts NOTIFY sheetChanged)
    Q_PROPERTY(QString keysHere READ keysHere NOTIFY sheetChanged)
    Q_PROPERTY(QString prompt READ prompt NOTIFY promptChanged)
    Q_PROPERTY(QString promptText READ promptText NOTIFY promptChanged)

public:
    AppView(rig::RigModel& rig, QString version, QObject* parent);

    QString sheet() const { return sheet_; }
    /// The sheet is open, or will be once a page to read that lies over it is closed.
    bool holds(const QString& name) const { return sheet_ == name || holdsBelow(name); }
    bool holdsBelow(const QString& name) const { return sheetsBelow_.contains(name); }
    Q_INVOKABLE void openSheet(const QString& name);
    /// Closes the sheet; a page to read gives way to the sheet that it was opened over.
    Q_INVOKABLE void closeSheet();
    /// Ends the live run, behind the deliberate act that its sheet asks for.
    Q_INVOKABLE void leaveLive();
    /// Ends the program, in a live run by the deliberate act of its sheet, which askToQuit() opens. The same
    /// goes for the window's close button: false keeps it open.
    Q_INVOKABLE void quit();
    void askToQuit();
    Q_INVOKABLE bool mayClose();
    /// Opens a sheet that leads back to the one that is open now.
    Q_INVOKABLE void openPage(const QString& name);
    /// Opens the message to the makers where it can be sent, else the facts to be copied.
    void reportBug();
    void setFeedbackGoesOut(std::function<bool()> goesOut) { feedbackGoesOut_ = std::move(goesOut); }
    /// Opens the list of keys, headed by those of the place that one is in.
    void openKeys(const QString& keysHere);

    QString version() const { return version_; }
    /// What helps to understand a fault: version, system, what is set, and the log.
    QString bugFacts() const;
    /// Where files are often put: rows of name and folder.
    Q_INVOKABLE static QVariantList places();
    Q_INVOKABLE static void copy(const QString& text);
    /// Whether the desktop has file dialogs of its own.
    bool desktopDialogs() const { return desktopDialogs_; }
    QString keysHere() const { return keysHere_; }

    /// "resume", "eclipseDay" or empty, with its words.
    QString prompt() const;
    QString promptText() const;
    QString eclipseDayName() const;
    Q_INVOKABLE void acceptPrompt();
    Q_INVOKABLE void declinePrompt();

    /// A text field has the keyboard, so single keys are its own.
    Q_INVOKABLE void setTyping(bool typing) { typing_ = typing; }
    bool typing() const { return typing_; }

Q_SIGNALS:
    void sheetChanged();
    void promptChanged();
    /// The sheet is about to close; what was typed in it should be kept.
    void sheetClosing(const QString& name);
    void menuWanted();
    /// For the script sheet: a command ("newScript", "open", "save"), and a line of the script to go to.
    void scriptCommand(const QString& what);
    void scriptLineWanted(int lineNo);

private:
    void setSheet(const QString& name);

    rig::RigModel& rig_;
    const QString version_;
    QString sheet_;
    QStringList sheetsBelow_; ///< those to go back to, the last one first
    QString keysHere_;
    const bool desktopDialogs_;
    bool typing_ = false;
    std::function<bool()> feedbackGoesOut_ = [] { return false; };
};

} // namespace zenka::ui

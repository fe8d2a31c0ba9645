#pragma once

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>

#include <functional>

namespace zenka::rig {
class RigModel;
struct AnalyzerState;
} // namespace zenka::rig

namespace zenka::ui {

class AppView;

/// The Simulation Analyzer: what it asks, does and found. Its sheet opens by itself with what the analyzer
/// has to say, once no other sheet and no prompt is open and no run is on, and is answered by whatever closes
/// it.
class AnalyzerView : public QObject {
    Q_OBJECT
    /// "idle", "offer", "message", "pick", "working" or "verdict".
    Q_PROPERTY(QString step READ step NOTIFY changed)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString text READ text NOTIFY changed)
    /// Of a pick, the recommended one marked by a word.
    Q_PROPERTY(QStringList choices READ choices NOTIFY changed)
    Q_PROPERTY(int recommended READ recommended NOTIFY changed)
    /// No card was found, so a folder may take its place.
    Q_PROPERTY(bool wantsCard READ wantsCard NOTIFY changed)
    Q_PROPERTY(int filesRead READ filesRead NOTIFY progressed)
    Q_PROPERTY(int filesFound READ filesFound NOTIFY progressed)
    Q_PROPERTY(bool pass READ pass NOTIFY changed)
    Q_PROPERTY(bool hasReport READ hasReport NOTIFY changed)
    /// Somebody is there to whom a report can be sent.
    Q_PROPERTY(bool canSend READ canSend NOTIFY changed)
    /// Why the report could not be sent; empty when nobody has tried.
    Q_PROPERTY(QString sendFault READ sendFault NOTIFY changed)
    /// What is typed to go with the report.
    Q_PROPERTY(QString note READ note WRITE setNote NOTIFY noteChanged)
    /// Where a folder is looked for.
    Q_PROPERTY(QUrl folder READ folder NOTIFY changed)

public:
    /// Opens an address outside of the window.
    using OpenUrl = std::function<void(const QUrl&)>;

    AnalyzerView(rig::RigModel& rig, AppView& app, OpenUrl open, QObject* parent);

    QString step() const;
    QString summary() const;
    QString title() const;
    QString text() const;
    QStringList choices() const;
    int recommended() const;
    bool wantsCard() const;
    int filesRead() const;
    int filesFound() const;
    bool pass() const;
    bool hasReport() const;
    bool canSend() const;
    QString sendFault() const;
    const QString& note() const { return note_; }
    void setNote(const QString& note);
    QUrl folder() const;

    /// Looks for a card and goes on from there, with the sheet open. Not in a live run.
    Q_INVOKABLE void analyze();
    Q_INVOKABLE void analyzeFolder(const QUrl& folder);
    Q_INVOKABLE void choose(int choice);
    /// With an address for an answer, or without.
    Q_INVOKABLE void sendReport(const QString& email);
    Q_INVOKABLE void keepLocal();
    /// Opens the report once more.
    Q_INVOKABLE void openReport();

Q_SIGNALS:
    void changed();
    void progressed();
    void noteChanged();

private:
    const rig::AnalyzerState& state() const;
    void stateChanged();
    void soon();
    void look();
    void sheetChanged();
    void answer();

    rig::RigModel& rig_;
    AppView& app_;
    const OpenUrl open_;
    QString note_;
    QString folder_;         // that was chosen last
    bool sheetOpen_ = false; // or a page that was opened over it
};

} // namespace zenka::ui

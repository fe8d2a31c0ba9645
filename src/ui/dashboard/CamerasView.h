#pragma once

#include "rig/RigModel.h"

#include <QAbstractListModel>
#include <QString>
#include <QVariantList>

#include <map>
#include <string>
#include <vector>

namespace zenka::ui {

/// The bodies of the rig, one card each, and behind them the cameras that the script names and no body
/// answers to.
class CamerasView : public QAbstractListModel {
    Q_OBJECT
    Q_PROPERTY(QVariantList catalogue READ catalogue CONSTANT)
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString emptyText READ emptyText NOTIFY changed)
    Q_PROPERTY(QString offer READ offer NOTIFY changed)
    Q_PROPERTY(QString nextToken READ nextToken NOTIFY changed)
    Q_PROPERTY(bool detecting READ detecting NOTIFY changed)
    Q_PROPERTY(QString detectStep READ detectStep NOTIFY changed)
    Q_PROPERTY(QString alarmText READ alarmText NOTIFY alarmChanged)
    Q_PROPERTY(QString alarmHint READ alarmHint NOTIFY alarmChanged)
    Q_PROPERTY(QString undoText READ undoText NOTIFY changed)

public:
    enum Role {
        idRole = Qt::UserRole,
        missingRole, ///< no body: a name of the script
        labelRole,
        modelRole,
        detailsRole,    ///< "gphoto2 usb:001,004 · connected · 400 mm f/5.6"
        symbolRole,     ///< the state as a shape
        stateRole,      ///< and in a word
        lastFrameRole,  ///< "Pre 62%  ISO 100 f/8 1/500  ✓ 212ms"
        countsRole,     ///< "● 128"
        droppedRole,    ///< "▲ 2 dropped", empty for none
        warningRole,    ///< a sentence, empty for none
        usedRole,       ///< the script has frames for it
        statusLineRole, ///< "● CAM1  Pre 62%  ISO 100 f/8 1/500  ✓ 212ms"
        runRole,        ///< a run is on, in which taking a body away costs frames
        realRole,       ///< a body of glass and metal, which can bear a lens
        lensRole,       ///< empty for none
        lensFaultRole   ///< why no lens can be kept for it; empty when one can
    };

    CamerasView(rig::RigModel& rig, QObject* parent);

    /// Rows of brand and models.
    QVariantList catalogue() const;
    /// "2 bodies, 1 missing"
    QString summary() const;
    QString emptyText() const;
    /// What to offer where the script's cameras have no bodies; empty for nothing.
    QString offer() const;
    /// The label that the next body gets; empty when every camera of the script has a body.
    QString nextToken() const;

    /// Adds a simulated body under the label of the first camera that has none.
    Q_INVOKABLE void add(const QString& model);
    /// A simulated body for each camera of the script that has none.
    Q_INVOKABLE void addForScript();
    /// False when the label is blank or another body has it; the reason is in labelFault.
    Q_INVOKABLE bool setLabel(const QString& id, const QString& label);
    Q_INVOKABLE QString labelFault(const QString& id, const QString& label) const;
    /// An empty one takes it away.
    Q_INVOKABLE void setLens(const QString& id, const QString& lens);
    Q_INVOKABLE void remove(const QString& id);
    /// "CAM1 removed." for the simulated body that undoRemove() brings back, the last one first; empty for
    /// none. A body whose label another one has taken meanwhile is not offered.
    QString undoText() const;
    Q_INVOKABLE void undoRemove();

    /// The pass that looks for real bodies, and what it does now.
    bool detecting() const;
    QString detectStep() const;
    Q_INVOKABLE void cancelDetect();
    /// The bodies that are gone, as one line, and what to do about them; empty for none.
    QString alarmText() const;
    QString alarmHint() const;
    Q_INVOKABLE void acknowledgeAlarm();

    int rowCount(const QModelIndex& parent = {}) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

Q_SIGNALS:
    void changed();
    void removed();
    void alarmChanged();

private:
    struct Row {
        std::string id; ///< of the body, or the name that is missing one
        bool missing = false;
        QString label, model, details, symbol, state, lastFrame, counts, dropped, warning;
        bool used = false;
        bool run = false;
        bool real = false;
        QString lens, lensFault;

        friend bool operator==(const Row&, const Row&) = default;
    };

    std::vector<Row> makeRows() const;
    Row bodyRow(const rig::CameraRoster::Camera& camera) const;
    Row missingRow(const std::string& token) const;
    std::vector<std::string> missingTokens() const;
    /// Whether a body has this very label.
    bool owns(const std::string& label, const QString& otherThan) const;
    rig::CameraRoster::Camera find(const QString& id) const;
    void refresh();
    void noteLine(const std::string& line);

    rig::RigModel& rig_;
    std::vector<Row> rows_;
    std::vector<rig::CameraRoster::Camera> removed_;
    std::map<std::string, QString> lastLines_; // what the log said of a label last, behind the label
};

} // namespace zenka::ui

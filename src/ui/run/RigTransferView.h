#pragma once

#include "rig/transfer/RigTransfer.h"

#include <QObject>
#include <QString>
#include <QStringList>
#include <QUrl>
#include <QVariantList>

#include <optional>
#include <set>
#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;

/// A rig on its way into a file or out of one. What a file holds is shown before anything of it is taken.
class RigTransferView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool importing READ importing NOTIFY changed)
    /// What would be exported.
    Q_PROPERTY(QString summary READ summary NOTIFY changed)
    Q_PROPERTY(QString suggestedName READ suggestedName NOTIFY changed)
    Q_PROPERTY(QUrl folder READ folder NOTIFY changed)
    /// A file was read and waits for a yes: when it was written, rows of what and effect, and what it lacks.
    Q_PROPERTY(bool found READ found NOTIFY changed)
    Q_PROPERTY(QString origin READ origin NOTIFY changed)
    Q_PROPERTY(QVariantList parts READ parts NOTIFY partsChanged)
    Q_PROPERTY(QStringList leftOut READ leftOut NOTIFY changed)
    Q_PROPERTY(bool canImport READ canImport NOTIFY changed)
    /// Why nothing can be imported now, empty when it can.
    Q_PROPERTY(QString importFault READ importFault NOTIFY changed)
    Q_PROPERTY(bool busy READ busy NOTIFY changed)
    Q_PROPERTY(QString message READ message NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)

public:
    RigTransferView(rig::RigModel& rig, const ports::Ports& ports, AppView& app, QObject* parent);

    /// Open the sheet.
    void beginExport() { begin(false); }
    void beginImport() { begin(true); }

    Q_INVOKABLE void exportTo(const QUrl& file);
    Q_INVOKABLE void read(const QUrl& file);
    /// Takes a part with the rest, or leaves it; by its row.
    Q_INVOKABLE void take(int row, bool taken);
    Q_INVOKABLE void import();

    bool importing() const { return importing_; }
    QString summary() const { return summary_; }
    QString suggestedName() const;
    QUrl folder() const;
    bool found() const { return found_.has_value(); }
    QString origin() const;
    QVariantList parts() const;
    QStringList leftOut() const;
    bool canImport() const;
    QString importFault() const;
    bool busy() const { return busy_; }
    QString message() const { return message_; }
    bool failed() const { return failed_; }

Q_SIGNALS:
    void changed();
    void partsChanged();

private:
    void begin(bool importing);
    void forget();
    void tell(const QString& message, bool failed);
    void show(const rig::RigTransfer::Found& found);

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    AppView& app_;
    bool importing_ = false;
    bool busy_ = false;
    QString summary_;
    QString message_;
    bool failed_ = false;
    std::optional<rig::RigTransfer::Found> found_;
    std::vector<rig::RigPartWords> rows_;
    std::set<rig::RigPart> taken_;
};

} // namespace zenka::ui

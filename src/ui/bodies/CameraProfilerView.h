#pragma once

#include "ui/kit/BodyChoice.h"

#include <QObject>
#include <QString>
#include <QVariantList>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// Reading what one body is and offers, and taking it into the operator's library.
class CameraProfilerView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString bodyId READ bodyId NOTIFY changed)
    Q_PROPERTY(QString bodyName READ bodyName NOTIFY changed)
    Q_PROPERTY(bool reading READ reading NOTIFY changed)
    Q_PROPERTY(QString progress READ progress NOTIFY changed)
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed)
    Q_PROPERTY(bool hasResult READ hasResult NOTIFY changed)
    Q_PROPERTY(QString title READ title NOTIFY changed)
    Q_PROPERTY(QString error READ error NOTIFY changed)
    Q_PROPERTY(QVariantList choices READ choices NOTIFY resultChanged)
    Q_PROPERTY(QString libraryText READ libraryText NOTIFY changed)
    Q_PROPERTY(bool known READ known NOTIFY changed)
    Q_PROPERTY(bool mayAdd READ mayAdd NOTIFY changed)
    Q_PROPERTY(QString lens READ lens NOTIFY changed)

public:
    CameraProfilerView(rig::RigModel& rig, QObject* parent);

    /// The sheet is shown.
    Q_INVOKABLE void open();
    Q_INVOKABLE void choose(const QString& cameraId);
    Q_INVOKABLE void read();
    /// Takes the body that was read into the library, under its present label.
    Q_INVOKABLE void add();
    /// An empty one takes it away.
    Q_INVOKABLE void setLens(const QString& lens);

    QString bodyId() const;
    QString bodyName() const;
    bool reading() const;
    QString progress() const;
    /// Why the last press on Read did nothing; empty when it did.
    QString refusal() const { return refusal_; }
    bool hasResult() const;
    /// "Z8, serial number 4004371"
    QString title() const;
    /// Why nothing was read; empty when something was.
    QString error() const;
    /// Rows of name, summary ("55 values, 1/8000 to 30") and all values in the body's own words.
    QVariantList choices() const;

    /// Whether the body that was read is in the library, or why it cannot be.
    QString libraryText() const;
    bool known() const;
    bool mayAdd() const;
    QString lens() const;

Q_SIGNALS:
    void changed();
    void resultChanged();

private:
    /// Of the body that was read; empty for none.
    std::string serial() const;
    std::shared_ptr<cameras::CameraControl> bodyRead() const;

    rig::RigModel& rig_;
    BodyChoice body_;
    BodyChoice read_; // the one that was read last
    QString refusal_;
};

} // namespace zenka::ui

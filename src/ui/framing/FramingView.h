#pragma once

#include "rig/bodies/FramingBook.h"
#include "ui/framing/FramingBursts.h"
#include "ui/framing/FramingChoice.h"
#include "ui/framing/FramingFields.h"
#include "ui/framing/FramingScene.h"
#include "ui/framing/FramingSensors.h"

#include <QObject>
#include <QStringList>
#include <QVariantList>

#include <functional>

namespace zenka::ports {
struct Ports;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// How a body sees Sun, Moon and corona with a lens, and how far the Sun drifts meanwhile.
class FramingView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QStringList bodies READ bodies NOTIFY listsChanged)
    Q_PROPERTY(QStringList sensors READ sensors NOTIFY listsChanged)
    Q_PROPERTY(QStringList moments READ moments NOTIFY listsChanged)
    Q_PROPERTY(QStringList aims READ aims NOTIFY listsChanged)
    Q_PROPERTY(QStringList converters READ converters CONSTANT)
    Q_PROPERTY(QStringList radii READ radii CONSTANT)
    Q_PROPERTY(QStringList trails READ trails CONSTANT)
    Q_PROPERTY(QStringList focals READ focals CONSTANT)
    Q_PROPERTY(int body READ body WRITE setBody NOTIFY changed)
    Q_PROPERTY(int sensor READ sensor WRITE setSensor NOTIFY changed)
    Q_PROPERTY(bool ownSensor READ ownSensor NOTIFY changed)
    Q_PROPERTY(int converter READ converter WRITE setConverter NOTIFY changed)
    Q_PROPERTY(int focal READ focal WRITE setFocal NOTIFY changed)
    Q_PROPERTY(bool tracking READ tracking WRITE setTracking NOTIFY changed)
    Q_PROPERTY(int moment READ moment WRITE setMoment NOTIFY changed)
    Q_PROPERTY(int aim READ aim WRITE setAim NOTIFY changed)
    Q_PROPERTY(int radius READ radius WRITE setRadius NOTIFY changed)
    Q_PROPERTY(int trail READ trail WRITE setTrail NOTIFY changed)
    Q_PROPERTY(QVariantMap texts READ texts NOTIFY changed)
    Q_PROPERTY(QVariantMap faults READ faults NOTIFY changed)
    Q_PROPERTY(QVariantList numbers READ numbers NOTIFY changed)
    Q_PROPERTY(QString verdict READ verdict NOTIFY changed)
    Q_PROPERTY(int verdictLevel READ verdictLevel NOTIFY changed)
    Q_PROPERTY(QString keptText READ keptText NOTIFY changed)
    Q_PROPERTY(QAbstractListModel* bursts READ bursts CONSTANT)
    Q_PROPERTY(QString burstsText READ burstsText NOTIFY changed)

public:
    FramingView(rig::RigModel& rig, const ports::Ports& ports, QObject* parent);

    /// The sheet is shown.
    Q_INVOKABLE void open();
    Q_INVOKABLE void close();
    /// A body of the rig by its id, or a remembered one by its serial number.
    Q_INVOKABLE void choose(const QString& cameraId);
    Q_INVOKABLE void chooseSerial(const QString& serial);

    Q_INVOKABLE void type(const QString& field, const QString& text);
    Q_INVOKABLE void nudge(const QString& field, int steps);
    /// The typing in a field is over: what cannot be read is told, the rest is kept.
    Q_INVOKABLE void check();
    Q_INVOKABLE void pickBurst(int row);

    QStringList bodies() const;
    int body() const { return body_; }
    void setBody(int row);
    /// "Of the body", own figures, the formats, the models.
    QStringList sensors() const;
    int sensor() const;
    void setSensor(int row);
    bool ownSensor() const { return record_.own.has_value(); }
    QStringList converters() const;
    int converter() const;
    void setConverter(int row);
    QStringList focals() const;
    /// The row of the present one or the next below.
    int focal() const;
    void setFocal(int row);
    bool tracking() const { return record_.tracking; }
    void setTracking(bool tracking);
    QStringList moments() const { return moments_; }
    int moment() const;
    void setMoment(int row);
    /// When the camera is pointed at the Sun, for the bursts.
    QStringList aims() const;
    int aim() const { return choice_.aimsAtMax ? 1 : 0; }
    void setAim(int row);
    QStringList radii() const;
    int radius() const { return choice_.radii; }
    void setRadius(int row);
    QStringList trails() const;
    int trail() const { return choice_.trail; }
    void setTrail(int row);
    const QVariantMap& texts() const { return fields_.texts(); }
    const QVariantMap& faults() const { return fields_.faults(); }

    /// Rows of name and value.
    QVariantList numbers() const { return numbers_; }
    QString verdict() const { return verdict_; }
    /// 0 all is well, 1 the corona does not fit, 2 the Sun does not
    int verdictLevel() const;
    QString keptText() const;
    FramingBursts* bursts() const { return bursts_; }
    /// What there is besides the rows.
    QString burstsText() const { return bursts_->text(); }
    const FramingScene& scene() const { return scene_; }

Q_SIGNALS:
    void changed();
    void listsChanged();

private:
    const FramedBody& framed() const { return bodyRows_[static_cast<std::size_t>(body_)]; }
    cameras::Sensor sensorNow() const;
    void keepChoice();
    void look();
    /// Whether there are other contacts now.
    bool followContacts();
    void pick(const std::function<bool(const FramedBody&)>& wanted);
    void take(int row);
    void save();
    void recompute();
    double clockOf(const QString& contact) const;

    rig::RigModel& rig_;
    const ports::Ports& ports_;
    rig::FramingBook book_;
    FramingChoice choice_;
    std::string chosenId_; ///< of the body, for this session
    FramingFields fields_;
    FramingBursts* bursts_;
    std::vector<FramedBody> bodyRows_;
    int body_ = 0;
    cameras::FramingRecord record_;
    bool shown_ = false;
    bool unsaved_ = false;

    QStringList moments_;
    QVariantList numbers_;
    QString verdict_;
    FramingScene scene_;
};

} // namespace zenka::ui

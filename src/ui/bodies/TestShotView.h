#pragma once

#include "ui/kit/ExposureFields.h"

#include <QObject>
#include <QString>

#include <array>
#include <map>
#include <memory>
#include <optional>
#include <string>

namespace zenka::cameras {
class CameraControl;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// A test shot of one body: its settings as they are typed, and what came of it.
class TestShotView : public QObject {
    Q_OBJECT
    Q_PROPERTY(bool hasBody READ hasBody NOTIFY changed)
    Q_PROPERTY(bool hasOthers READ hasOthers NOTIFY changed)
    Q_PROPERTY(QString bodyName READ bodyName NOTIFY changed)
    Q_PROPERTY(QString bodyFacts READ bodyFacts NOTIFY changed)
    Q_PROPERTY(QString iso READ iso NOTIFY changed)
    Q_PROPERTY(QString aperture READ aperture NOTIFY changed)
    Q_PROPERTY(QString shutter READ shutter NOTIFY changed)
    Q_PROPERTY(QString isoFault READ isoFault NOTIFY changed)
    Q_PROPERTY(QString apertureFault READ apertureFault NOTIFY changed)
    Q_PROPERTY(QString shutterFault READ shutterFault NOTIFY changed)
    Q_PROPERTY(QString origin READ origin NOTIFY changed)
    Q_PROPERTY(QString scriptOffer READ scriptOffer NOTIFY changed)
    Q_PROPERTY(bool firing READ firing NOTIFY changed)
    Q_PROPERTY(QString progress READ progress NOTIFY changed)
    Q_PROPERTY(QString refusal READ refusal NOTIFY changed)
    Q_PROPERTY(bool hasResult READ hasResult NOTIFY changed)
    Q_PROPERTY(bool resultGood READ resultGood NOTIFY changed)
    Q_PROPERTY(QString resultText READ resultText NOTIFY changed)
    Q_PROPERTY(QString resultDetail READ resultDetail NOTIFY changed)
    Q_PROPERTY(QString advice READ advice NOTIFY changed)

public:
    TestShotView(rig::RigModel& rig, QObject* parent);

    /// The body that the shot is for.
    Q_INVOKABLE void choose(const QString& cameraId);
    /// The sheet is shown: stays with the body if it is still there, else takes the first one. What was
    /// typed for it and not fired yet stays.
    Q_INVOKABLE void open();
    Q_INVOKABLE void nextBody();

    Q_INVOKABLE void typeIso(const QString& text) { type(ExposureFields::Field::iso, text); }
    Q_INVOKABLE void typeAperture(const QString& text) { type(ExposureFields::Field::aperture, text); }
    Q_INVOKABLE void typeShutter(const QString& text) { type(ExposureFields::Field::shutter, text); }
    /// By standard values, up or down.
    Q_INVOKABLE void nudgeIso(int steps) { nudge(ExposureFields::Field::iso, steps); }
    Q_INVOKABLE void nudgeAperture(int steps) { nudge(ExposureFields::Field::aperture, steps); }
    Q_INVOKABLE void nudgeShutter(int steps) { nudge(ExposureFields::Field::shutter, steps); }
    /// The typing in a field is over: what cannot be read is told.
    Q_INVOKABLE void check();
    /// The settings of the body's next frame in the script.
    Q_INVOKABLE void takeScript();
    Q_INVOKABLE void fire();

    bool hasBody() const { return body() != nullptr; }
    /// There is another body to go on to.
    bool hasOthers() const;
    QString bodyName() const;
    QString bodyFacts() const;
    QString iso() const { return text(ExposureFields::Field::iso); }
    QString aperture() const { return text(ExposureFields::Field::aperture); }
    QString shutter() const { return text(ExposureFields::Field::shutter); }
    QString isoFault() const { return fault(ExposureFields::Field::iso); }
    QString apertureFault() const { return fault(ExposureFields::Field::aperture); }
    QString shutterFault() const { return fault(ExposureFields::Field::shutter); }
    /// Where the settings come from, and what an empty one means.
    QString origin() const;
    /// "C2 −8s", the frame whose settings takeScript() would bring; empty where they stand already.
    QString scriptOffer() const;
    bool firing() const;
    /// "Firing…", "waiting for camera…"
    QString progress() const;
    /// Why the last press on Fire did nothing; empty when it did.
    QString refusal() const { return refusal_; }
    bool hasResult() const;
    bool resultGood() const;
    /// "✓ 212 ms", or what went wrong in a phrase.
    QString resultText() const;
    /// What was asked for, the shutter that was sent, the driver's own note.
    QString resultDetail() const;
    QString advice() const;

Q_SIGNALS:
    void changed();

private:
    using Texts = std::array<std::string, 3>; // by Field
    struct Draft {
        Texts texts;
        Texts faults;
        std::string frame; ///< of the script that they are from; empty for typed ones
        bool typed = false;
    };

    std::shared_ptr<cameras::CameraControl> body() const;
    Draft& draft() { return drafts_[cameraId_]; }
    void begin();
    void type(ExposureFields::Field field, const QString& text);
    void nudge(ExposureFields::Field field, int steps);
    QString text(ExposureFields::Field field) const;
    QString fault(ExposureFields::Field field) const;
    void followBody();
    std::optional<Draft> scriptDraft() const;

    rig::RigModel& rig_;
    std::string cameraId_;
    std::string serial_;
    std::map<std::string, Draft> drafts_; ///< by camera id
    Texts lastTyped_;
    QString refusal_;
};

} // namespace zenka::ui

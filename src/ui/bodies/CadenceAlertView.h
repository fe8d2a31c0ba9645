#pragma once

#include <QObject>
#include <QString>

#include <memory>
#include <string>

namespace zenka::cameras {
class CameraControl;
}

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class AppView;
class GapProfilerView;

/// Why frames dropped in the run that has ended. Its sheet opens by itself once the run is over and no other
/// sheet is open, and is answered by whatever closes it.
class CadenceAlertView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString headline READ headline NOTIFY changed)
    Q_PROPERTY(QString reason READ reason NOTIFY changed)
    Q_PROPERTY(QString basis READ basis NOTIFY changed)
    Q_PROPERTY(QString asymmetry READ asymmetry NOTIFY changed)

public:
    CadenceAlertView(rig::RigModel& rig, AppView& app, GapProfilerView& gapProfiler, QObject* parent);

    /// "CAM1 dropped 40 of 120 frames."
    QString headline() const;
    /// The script's tightest gap beside what the body needs.
    QString reason() const;
    /// How that is known.
    QString basis() const;
    /// Bodies that stand out from the others; empty for none.
    QString asymmetry() const;

    /// Opens the script at the tightest place.
    Q_INVOKABLE void editScript();
    /// Opens the gap profiler for the body.
    Q_INVOKABLE void measure();

Q_SIGNALS:
    void changed();

private:
    std::shared_ptr<cameras::CameraControl> body() const;
    void soon();
    void look();
    void sheetChanged();

    rig::RigModel& rig_;
    AppView& app_;
    GapProfilerView& gapProfiler_;
    std::string cameraName_; // of the last alert
    bool open_ = false;      // the sheet, or a page that was opened over it
};

} // namespace zenka::ui

#pragma once

#include <QObject>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

class Theme;

/// Turns the theme to Night from 10 min before totality to 10 min behind it, where the user asks for it. A
/// theme that is chosen by hand meanwhile stays.
class NightSwitch : public QObject {
    Q_OBJECT

public:
    NightSwitch(rig::RigModel& rig, Theme& theme, QObject* parent);

private:
    void follow();

    rig::RigModel& rig_;
    Theme& theme_;
    bool dark_ = false;
};

} // namespace zenka::ui

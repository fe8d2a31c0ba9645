#pragma once

#include <QObject>
#include <QString>

#include <set>
#include <string>
#include <vector>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// What could stop the rig and is to be mended by hand: batteries, heat, sound. One line at a time, the worst
/// first; what the user has seen is not shown again until it comes anew.
class WarningsView : public QObject {
    Q_OBJECT
    /// Empty for nothing.
    Q_PROPERTY(QString text READ text NOTIFY changed)
    Q_PROPERTY(QString hint READ hint NOTIFY changed)
    Q_PROPERTY(bool critical READ critical NOTIFY changed)

public:
    WarningsView(rig::RigModel& rig, QObject* parent);

    QString text() const;
    QString hint() const;
    bool critical() const;

    Q_INVOKABLE void acknowledge();

Q_SIGNALS:
    void changed();

private:
    struct Warning {
        std::string key; ///< what was seen under it is not shown again
        std::string text;
        std::string hint;
        bool critical = false;
    };
    void collect();

    rig::RigModel& rig_;
    std::vector<Warning> standing_; // not seen yet
    std::set<std::string> seen_;    // keys
};

} // namespace zenka::ui

#pragma once

#include "exposure/ExposureComp.h"

#include <QObject>
#include <QString>
#include <QVariantList>

#include <array>
#include <string>

namespace zenka::rig {
class RigModel;
}

namespace zenka::ui {

/// The rules by which one camera may be compensated, as they are being edited.
class CompRulesView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString token READ token NOTIFY changed)
    Q_PROPERTY(QString origin READ origin NOTIFY changed)
    Q_PROPERTY(QVariantList order READ order NOTIFY changed)
    Q_PROPERTY(bool balanced READ balanced WRITE setBalanced NOTIFY changed)
    Q_PROPERTY(QVariantList limits READ limits NOTIFY changed)
    Q_PROPERTY(QString fault READ fault NOTIFY changed)
    Q_PROPERTY(bool edited READ edited NOTIFY changed)

public:
    CompRulesView(rig::RigModel& rig, QObject* parent);

    QString token() const { return QString::fromStdString(token_); }
    /// Whether these are saved rules or the usual ones.
    QString origin() const;
    /// What may move, first choice first: maps of label, on.
    QVariantList order() const;
    bool balanced() const { return rules_.balanced; }
    void setBalanced(bool balanced);
    /// Pairs of limits as they are typed: maps of name, low, high.
    QVariantList limits() const;
    /// Why they cannot be saved, a sentence; empty when they can.
    QString fault() const;
    /// They differ from what is saved.
    bool edited() const;

    /// Takes up the rules of a camera. What was typed for the same one and not saved stays.
    Q_INVOKABLE void open(const QString& token);
    Q_INVOKABLE void setOn(int place, bool on);
    Q_INVOKABLE void moveUp(int place);
    Q_INVOKABLE void typeLimit(int pair, bool high, const QString& text);
    Q_INVOKABLE bool save();
    Q_INVOKABLE void discard();

Q_SIGNALS:
    void changed();

private:
    void take(const exposure::CompRules& rules);
    /// The rules as typed, or a sentence.
    std::string read(exposure::CompRules& rules) const;

    rig::RigModel& rig_;
    std::string token_;
    exposure::CompRules rules_; // the limits count as typed
    std::array<std::array<QString, 2>, 3> typed_;
};

} // namespace zenka::ui

#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace zenka::services {
class GlanceDesk;
}

namespace zenka::ui {

/// The page for phones nearby: on or off, and where it is.
class GlanceView : public QObject {
    Q_OBJECT
    Q_PROPERTY(int reach READ reach WRITE setReach NOTIFY changed)
    Q_PROPERTY(QStringList addresses READ addresses NOTIFY changed)
    Q_PROPERTY(QString fault READ fault NOTIFY changed)
    Q_PROPERTY(QString words READ words NOTIFY changed)

public:
    GlanceView(services::GlanceDesk& desk, QObject* parent);

    /// 0 off, 1 this computer alone, 2 the local network.
    int reach() const;
    void setReach(int reach);
    QStringList addresses() const;
    QString fault() const;
    QString words() const;

    Q_INVOKABLE void renewAddress();

Q_SIGNALS:
    void changed();

private:
    services::GlanceDesk& desk_;
};

} // namespace zenka::ui

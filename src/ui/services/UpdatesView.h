#pragma once

#include <QObject>
#include <QString>

#include <memory>

namespace zenka::ports {
struct Ports;
}

namespace zenka::services {
class UpdateCheck;
}

namespace zenka::ui {

/// The check for a newer version, for its sheet and for the settings.
class UpdatesView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString words READ words NOTIFY changed)
    Q_PROPERTY(bool asking READ asking NOTIFY changed)
    Q_PROPERTY(QString address READ address WRITE setAddress NOTIFY changed)

public:
    UpdatesView(const ports::Ports& ports, const QString& version, QObject* parent);
    ~UpdatesView() override;

    QString words() const;
    bool asking() const;
    QString address() const;
    void setAddress(const QString& address);
    Q_INVOKABLE void check();

Q_SIGNALS:
    void changed();

private:
    std::unique_ptr<services::UpdateCheck> check_;
};

} // namespace zenka::ui

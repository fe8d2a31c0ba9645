#pragma once

#include <QObject>
#include <QString>
#include <QStringList>

namespace zenka::services {
class ServiceDesk;
}

namespace zenka::ui {

class AppView;

/// A message to the makers. What is typed stays until it has arrived.
class FeedbackView : public QObject {
    Q_OBJECT
    Q_PROPERTY(QString message READ message WRITE setMessage NOTIFY changed)
    Q_PROPERTY(QStringList kinds READ kinds CONSTANT)
    Q_PROPERTY(int kind READ kind WRITE setKind NOTIFY changed)
    /// The facts go with it.
    Q_PROPERTY(bool withFacts READ withFacts WRITE setWithFacts NOTIFY changed)
    /// On the program, as they are sent.
    Q_PROPERTY(QString facts READ facts NOTIFY changed)
    Q_PROPERTY(bool sending READ sending NOTIFY changed)
    /// What came of the last try, or why there was none; empty before.
    Q_PROPERTY(QString words READ words NOTIFY changed)
    Q_PROPERTY(bool failed READ failed NOTIFY changed)

public:
    FeedbackView(services::ServiceDesk& desk, const AppView& app, QObject* parent);

    /// The sheet is shown.
    Q_INVOKABLE void open();
    /// With an address for an answer, or without.
    Q_INVOKABLE void send(const QString& email);

    const QString& message() const { return message_; }
    void setMessage(const QString& message);
    static QStringList kinds();
    int kind() const { return kind_; }
    void setKind(int kind);
    bool withFacts() const { return withFacts_; }
    void setWithFacts(bool withFacts);
    const QString& facts() const { return facts_; }
    bool sending() const { return sending_; }
    const QString& words() const { return words_; }
    bool failed() const { return failed_; }

Q_SIGNALS:
    void changed();
    /// The message has arrived, and its field is to be empty.
    void cleared();

private:
    void tell(const QString& words, bool failed);

    services::ServiceDesk& desk_;
    const AppView& app_;
    QString message_;
    int kind_ = 0;
    bool withFacts_ = false;
    QString facts_;
    bool sending_ = false;
    QString words_;
    bool failed_ = false;
};

} // namespace zenka::ui

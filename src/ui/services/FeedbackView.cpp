#include "ui/services/FeedbackView.h"

#include "services/ServiceDesk.h"
#include "ui/kit/AppView.h"
#include "ui/kit/QtText.h"

#include <QPointer>

#include <array>

namespace zenka::ui {

namespace {

constexpr std::array kindNames{"bug", "wish", "question"};

} // namespace

FeedbackView::FeedbackView(services::ServiceDesk& desk, const AppView& app, QObject* parent)
    : QObject(parent), desk_(desk), app_(app) {
}

QStringList FeedbackView::kinds() {
    return {QStringLiteral("A bug"), QStringLiteral("A wish"), QStringLiteral("A question")};
}

void FeedbackView::open() {
    facts_ = app_.bugFacts();
    if (!sending_)
        words_.clear();
    Q_EMIT changed();
}

void FeedbackView::setMessage(const QString& message) {
    if (message_ == message)
        return;
    message_ = message;
    Q_EMIT changed();
}

void FeedbackView::setKind(int kind) {
    if (kind < 0 || kind >= static_cast<int>(kindNames.size()))
        return;
    kind_ = kind;
    Q_EMIT changed();
}

void FeedbackView::setWithFacts(bool withFacts) {
    withFacts_ = withFacts;
    Q_EMIT changed();
}

void FeedbackView::tell(const QString& words, bool failed) {
    words_ = words;
    failed_ = failed;
    Q_EMIT changed();
}

void FeedbackView::send(const QString& email) {
    if (sending_)
        return;
    if (message_.trimmed().isEmpty()) {
        tell(QStringLiteral("There is no message yet. Type one, then send it."), true);
        return;
    }
    sending_ = true;
    tell(QStringLiteral("Sending…"), false);
    desk_.posts().postContact({.kind = kindNames.at(static_cast<std::size_t>(kind_)),
                               .text = message_.toStdString(),
                               .email = email.trimmed().toStdString(),
                               .facts = withFacts_ ? facts_.toStdString() : std::string()},
                              [view = QPointer(this), sent = message_](const auto& answer) {
                                  if (!view)
                                      return;
                                  view->sending_ = false;
                                  // What was typed in the meantime is another message.
                                  if (answer.sent && view->message_ == sent) {
                                      view->message_.clear();
                                      Q_EMIT view->cleared();
                                  }
                                  view->tell(qt(answer.words), !answer.sent);
                              });
}

} // namespace zenka::ui

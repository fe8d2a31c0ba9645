#include "ui/bodies/ProfilePostView.h"

#include "rig/RigModel.h"
#include "services/ServiceDesk.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <QPointer>

namespace zenka::ui {

ProfilePostView::ProfilePostView(services::ServiceDesk& desk, rig::RigModel& rig, QObject* parent)
    : QObject(parent), desk_(desk), rig_(rig) {
    observe(this, rig.cameraProfiler().cameraProfileResult().changed(),
            [this](const auto&) { profileRead(); });
    observe(this, desk.host().changed(), [this](const auto&) { Q_EMIT changed(); });
}

void ProfilePostView::profileRead() {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    lens_ = result ? qt(result->lens.value_or(std::string())) : QString();
    ++profile_;
    sending_ = false;
    words_.clear();
    Q_EMIT changed();
}

bool ProfilePostView::possible() const {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    return result && !result->choices.empty() && !desk_.host()->empty();
}

void ProfilePostView::setLens(const QString& lens) {
    lens_ = lens;
    Q_EMIT changed();
}

void ProfilePostView::send(const QString& email) {
    const auto& result = rig_.cameraProfiler().cameraProfileResult().get();
    if (sending_ || !possible() || !result)
        return;
    sending_ = true;
    words_ = QStringLiteral("Sending…");
    failed_ = false;
    Q_EMIT changed();
    desk_.posts().submitCameraProfile(*result, email.trimmed().toStdString(), lens_.trimmed().toStdString(),
                                      [view = QPointer(this), profile = profile_](const auto& answer) {
                                          if (!view || view->profile_ != profile)
                                              return;
                                          view->sending_ = false;
                                          view->words_ = qt(answer.words);
                                          view->failed_ = !answer.sent;
                                          Q_EMIT view->changed();
                                      });
}

} // namespace zenka::ui

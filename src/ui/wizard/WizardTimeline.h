#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/wizard/WizardView.h"

namespace zenka::ui {

/// The frames of the wizard's script, a lane for each camera, over the whole eclipse or around totality.
class WizardTimeline : public PaintedView<WizardView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::WizardView* view READ view WRITE setView NOTIFY viewChanged)
    Q_PROPERTY(bool closeUp READ closeUp WRITE setCloseUp NOTIFY closeUpChanged)
    Q_PROPERTY(bool thin READ thin WRITE setThin NOTIFY closeUpChanged)
    Q_PROPERTY(double wantedHeight READ wantedHeight NOTIFY wantedHeightChanged)

public:
    static void registerTypes();

    /// Shows C2 to C3 with the seconds around them.
    bool closeUp() const { return closeUp_; }
    void setCloseUp(bool closeUp);
    /// Thin lanes, without the cues.
    bool thin() const { return thin_; }
    void setThin(bool thin);
    double wantedHeight() const;

Q_SIGNALS:
    void closeUpChanged();
    void wantedHeightChanged();

private:
    void followView(WizardView& view) override;
    void paintView(QPainter& painter, WizardView& view, const Theme& theme) override;

    bool closeUp_ = false;
    bool thin_ = false;
};

} // namespace zenka::ui

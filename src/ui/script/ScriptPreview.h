#pragma once

#include "ui/kit/PaintedItem.h"
#include "ui/script/ScriptView.h"

#include <vector>

namespace zenka::ui {

/// Counts of instants by equal parts of a span; those outside of it are not counted.
std::vector<int> density(const std::vector<double>& instants, double from, double to, int parts);

/// A script at a glance: how many frames when, against the contacts, and the cues below them.
class ScriptPreview : public PaintedView<ScriptView> {
    Q_OBJECT
    Q_PROPERTY(zenka::ui::ScriptView* view READ view WRITE setView NOTIFY viewChanged)

public:
    static void registerTypes();

private:
    void followView(ScriptView& view) override;
    void paintView(QPainter& painter, ScriptView& view, const Theme& theme) override;
};

} // namespace zenka::ui

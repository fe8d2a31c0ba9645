#include "ui/dashboard/VoiceView.h"

#include "rig/RigModel.h"
#include "ui/kit/Observe.h"
#include "ui/kit/QtText.h"

#include <algorithm>

namespace zenka::ui {

VoiceView::VoiceView(rig::RigModel& rig, QObject* parent) : QObject(parent), rig_(rig) {
    observe(this, rig.announcer().saying().changed(), [this](const auto&) { Q_EMIT sayingChanged(); });
    observe(this, rig.announcer().voices().availableVoices().changed(),
            [this](const auto&) { Q_EMIT changed(); });
}

QString VoiceView::saying() const {
    return qt(rig_.announcer().saying().get());
}

bool VoiceView::cues() const {
    return rig_.announcer().audioEnabled().get();
}

void VoiceView::setCues(bool on) {
    rig_.announcer().setAudioEnabled(on);
    Q_EMIT changed();
}

QStringList VoiceView::voices() const {
    const auto best = rig_.announcer().voices().bestVoice();
    QStringList names{best ? QStringLiteral("The best one (%1)").arg(qt(best->name))
                           : QStringLiteral("The best one")};
    for (const ports::Voice& voice : rig_.announcer().voices().availableVoices().get())
        names.append(voice.language.empty()
                         ? qt(voice.name)
                         : QStringLiteral("%1 (%2)").arg(qt(voice.name), qt(voice.language)));
    return names;
}

int VoiceView::voice() const {
    const auto& all = rig_.announcer().voices().availableVoices().get();
    const auto found = std::ranges::find(all, rig_.announcer().voices().chosen(), &ports::Voice::id);
    return found == all.end() ? 0 : static_cast<int>(found - all.begin()) + 1;
}

void VoiceView::setVoice(int row) {
    const auto& all = rig_.announcer().voices().availableVoices().get();
    const auto index = static_cast<std::size_t>(row - 1);
    rig_.announcer().voices().choose(row > 0 && index < all.size() ? all[index].id : std::string());
    Q_EMIT changed();
}

QString VoiceView::lowBattery() const {
    return QString::number(rig_.batteries().lowBatteryThreshold());
}

void VoiceView::typeLowBattery(const QString& text) {
    bool isNumber = false;
    const int percent = text.trimmed().toInt(&isNumber);
    if (isNumber && percent >= 1 && percent <= 100)
        rig_.batteries().setLowBatteryThreshold(percent);
}

bool VoiceView::lowBatteryAudio() const {
    return rig_.batteries().lowBatteryAudio();
}

void VoiceView::setLowBatteryAudio(bool on) {
    rig_.batteries().setLowBatteryAudio(on);
    Q_EMIT changed();
}

bool VoiceView::criticalBatteryAudio() const {
    return rig_.batteries().criticalBatteryAudio();
}

void VoiceView::setCriticalBatteryAudio(bool on) {
    rig_.batteries().setCriticalBatteryAudio(on);
    Q_EMIT changed();
}

void VoiceView::open() {
    rig_.announcer().voices().learnVoices();
}

void VoiceView::test() {
    rig_.announcer().testVoice();
}

} // namespace zenka::ui

#include "rig/bodies/FramingBook.h"

#include "base/Text.h"
#include "rig/shared/SettingsKeys.h"

namespace zenka::rig {

namespace {

std::string keyOf(const std::string& label) {
    return label.empty() ? settingsKeys::framingPlan : settingsKeys::framingPrefix + base::lowered(label);
}

} // namespace

std::optional<cameras::FramingRecord> FramingBook::find(const std::string& serial,
                                                        const std::string& label) const {
    if (inLibrary(serial)) {
        const auto entry = library_.find(serial);
        if (entry && entry->framing)
            return entry->framing;
    }
    const auto text = settings_.text(keyOf(label));
    return text ? cameras::framingFrom(*text) : std::nullopt;
}

void FramingBook::keep(const std::string& serial, const std::string& label,
                       const cameras::FramingRecord& framing) {
    if (!library_.setFraming(serial, framing))
        settings_.setText(keyOf(label), cameras::framingText(framing));
}

FramingBook::ByLabel FramingBook::underLabels() const {
    ByLabel framings;
    const auto note = [&](const std::string& key, const std::string& label) {
        const auto text = settings_.text(key);
        if (const auto framing = text ? cameras::framingFrom(*text) : std::nullopt)
            framings.emplace(label, *framing);
    };
    note(settingsKeys::framingPlan, "");
    const std::string prefix = settingsKeys::framingPrefix;
    for (const std::string& key : settings_.keysBeginningWith(prefix))
        note(key, key.substr(prefix.size()));
    return framings;
}

void FramingBook::merge(const ByLabel& framings) {
    for (const auto& [label, framing] : framings)
        settings_.setText(keyOf(label), cameras::framingText(framing));
}

} // namespace zenka::rig

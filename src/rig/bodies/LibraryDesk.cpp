#include "rig/bodies/LibraryDesk.h"

#include "base/Text.h"

#include <algorithm>
#include <iterator>

namespace zenka::rig {

LibraryDesk::LibraryDesk(const ports::Ports& ports, RigLog& log, CameraRoster& roster)
    : log_(log), roster_(roster),
      library_({.files = ports.files,
                .loop = ports.loop,
                .queues = ports.queues,
                .tell = [&log](const std::string& sentence) { log.pushLog("⚠️ " + sentence); }},
               ports.folders) {
}

void LibraryDesk::restore() {
    if (const auto damage = library_.load())
        log_.pushLog("⚠️ " + *damage);
    for (const Entry& entry : library_.entries())
        roster_.setLabelOfSerial(entry.serial, entry.label);
    changed_.emit();
}

void LibraryDesk::noteLabel(const cameras::CameraControl& camera, const std::string& label) {
    const std::string& serial = camera.serial();
    if (serial.empty() || roster_.serialShared(serial))
        return;
    Entry entry = library_.find(serial).value_or(Entry{.serial = serial});
    entry.model = camera.model();
    entry.label = label;
    put(entry);
}

void LibraryDesk::setLens(const std::string& serial, std::string_view lens) {
    if (!lensFault(serial).empty())
        return;
    const std::string_view text = base::trimmed(lens);
    std::optional<Entry> entry = text.empty() ? library_.find(serial) : entryFor(serial);
    if (!entry)
        return;
    entry->lens = text.empty() ? std::nullopt : std::optional<std::string>(text);
    put(*entry);
}

bool LibraryDesk::setFraming(const std::string& serial, const cameras::FramingRecord& framing) {
    std::optional<Entry> entry = lensFault(serial).empty() ? entryFor(serial) : std::nullopt;
    if (!entry)
        return false;
    entry->framing = framing;
    put(*entry);
    return true;
}

std::optional<LibraryDesk::Entry> LibraryDesk::entryFor(const std::string& serial) const {
    std::optional<Entry> entry = library_.find(serial);
    if (entry)
        return entry;
    if (const auto body = bodyOf(serial))
        entry = Entry{.serial = serial, .model = body->model(), .label = roster_.labelFor(*body)};
    return entry;
}

std::string LibraryDesk::lensFault(const std::string& serial) const {
    if (serial.empty())
        return "This body does not tell its serial number, so no lens can be remembered for it.";
    if (roster_.serialShared(serial))
        return "Two bodies report the serial number " + serial +
               ", so a lens cannot be remembered for one of them. Unplug the other one first.";
    return {};
}

void LibraryDesk::put(const Entry& entry) {
    std::erase_if(forgotten_, [&](const Entry& each) { return each.serial == entry.serial; });
    library_.put(entry);
    changed_.emit();
}

void LibraryDesk::merge(const std::vector<Entry>& entries) {
    for (const Entry& entry : entries) {
        std::erase_if(forgotten_, [&](const Entry& each) { return each.serial == entry.serial; });
        roster_.setLabelOfSerial(entry.serial, entry.label);
    }
    library_.put(entries);
    changed_.emit();
}

void LibraryDesk::forget(const std::string& serial) {
    const auto entry = library_.find(serial);
    if (!entry)
        return;
    forgotten_.push_back(*entry);
    library_.remove(serial);
    if (!bodyOf(serial)) // the script may call one that is here by its label
        roster_.forgetLabelOfSerial(serial);
    changed_.emit();
}

void LibraryDesk::undoForget() {
    if (forgotten_.empty())
        return;
    const Entry entry = forgotten_.back();
    roster_.setLabelOfSerial(entry.serial, entry.label);
    put(entry);
}

CameraRoster::Camera LibraryDesk::bodyOf(const std::string& serial) const {
    const auto& cameras = roster_.cameras();
    const auto found =
        std::ranges::find(cameras, serial, [](const auto& camera) { return camera->serial(); });
    return found == cameras.end() ? nullptr : *found;
}

bool LibraryDesk::isHere(const std::string& serial) const {
    return std::ranges::any_of(roster_.cameras(), [&](const auto& camera) {
        return camera->serial() == serial && camera->connected() && !roster_.isDisconnected(camera->id());
    });
}

std::vector<LibraryDesk::Entry> LibraryDesk::absentLibraryBodies() const {
    std::vector<Entry> absent;
    std::ranges::copy_if(entries(), std::back_inserter(absent),
                         [this](const Entry& entry) { return !isHere(entry.serial); });
    return absent;
}

} // namespace zenka::rig

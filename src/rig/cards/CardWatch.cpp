#include "rig/cards/CardWatch.h"

#include "analysis/SDCard.h"

#include <algorithm>
#include <utility>

namespace zenka::rig {

CardWatch::CardWatch(const ports::Ports& ports) : ports_(ports), queue_(ports.queues.serial("cards")) {
}

CardWatch::~CardWatch() {
    ports_.volumes.watch({});
}

void CardWatch::start() {
    ports_.volumes.watch(lifeline_.guard([this] { volumesChanged(); }));
    look([](const Cards&) {});
}

void CardWatch::look(std::function<void(const Cards&)> done) {
    queue_->post(
        [&volumes = ports_.volumes, &loop = ports_.loop,
         arrive = lifeline_.guard([this, done = std::move(done)](const Cards& found) {
             cards_.set(found);
             done(found);
         })] { loop.post([arrive, found = analysis::SDCard::findDCIMs(volumes)] { arrive(found); }); });
}

void CardWatch::volumesChanged() {
    look([this, before = cards_.get()](const Cards& found) {
        for (const auto& card : found) {
            if (!std::ranges::count(before, card))
                inserted_.emit(card);
        }
    });
}

std::string CardWatch::nameOf(const std::filesystem::path& dcim) {
    return (dcim.filename() == "DCIM" ? dcim.parent_path() : dcim).filename();
}

} // namespace zenka::rig

#include "rig/run/RunStateStore.h"

namespace zenka::rig {

namespace {

constexpr base::Seconds diskLimit{5};

} // namespace

RunStateStore::RunStateStore(const ports::Ports& ports)
    : disk_(ports.files), file_(ports.folders.applicationSupport() / "run-state.json"),
      queue_(ports.queues.serial("zenka.runstate")), writer_(std::make_shared<RunStateWriter>()) {
}

void RunStateStore::save(const RunState& state) {
    queue_->post([&disk = disk_, file = file_, writer = writer_, state] {
        disk.writeAtomically(file, writer->toJson(state));
    });
}

void RunStateStore::clear() {
    queue_->post([&disk = disk_, file = file_] { disk.remove(file); });
}

RunStateStore::Loaded RunStateStore::load() {
    drain();
    const auto text = disk_.read(file_);
    Loaded loaded{.state = text ? runStateFromJson(*text) : std::nullopt};
    loaded.damaged = text && !loaded.state;
    loaded.unreadable = !text && disk_.exists(file_);
    return loaded;
}

bool RunStateStore::drain() {
    return queue_->drain(diskLimit);
}

} // namespace zenka::rig

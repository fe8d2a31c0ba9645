#pragma once

#include "base/Lifeline.h"
#include "platform/LooseThread.h"
#include "ports/AlertSounds.h"
#include "ports/MainLoop.h"

#include <cstdint>
#include <map>
#include <memory>

namespace zenka::platform {

/// Sounds of the desktop's sound theme by libcanberra; the names are those of the freedesktop.org sound
/// naming rules ("bell"). The library may wait for a sound server, so a thread of its own gives it
/// the sounds; the library itself plays them, side by side. Destroying the object ends what still sounds, and
/// waits half a second at most.
class CanberraSounds final : public ports::AlertSounds {
public:
    explicit CanberraSounds(ports::MainLoop& loop);
    CanberraSounds(const CanberraSounds&) = delete;
    CanberraSounds& operator=(const CanberraSounds&) = delete;
    ~CanberraSounds() override;

    void play(const std::string& name, Failed failed) override;

private:
    struct Desk;

    std::uint64_t lastNumber_ = 0;
    std::map<std::uint64_t, Failed> playing_;
    base::Lifeline lifeline_;
    std::shared_ptr<Desk> desk_;
    LooseThread thread_;
};

} // namespace zenka::platform

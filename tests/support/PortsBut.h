#pragma once

#include "ports/Ports.h"

#include <type_traits>

namespace zenka::test {

/// The ports of a machine with others in the place of some, each found by what it is.
template <typename... Others>
ports::Ports portsBut(const ports::Ports& all, Others&... others) {
    const auto pick = [&]<typename Port>(Port& usual) -> Port& {
        Port* picked = &usual;
        const auto consider = [&]<typename Other>(Other& other) {
            if constexpr (std::is_base_of_v<Port, Other>)
                picked = &other;
        };
        (consider(others), ...);
        return *picked;
    };
    return {.clock = pick(all.clock),
            .loop = pick(all.loop),
            .queues = pick(all.queues),
            .fireTimer = pick(all.fireTimer),
            .settings = pick(all.settings),
            .folders = pick(all.folders),
            .files = pick(all.files),
            .keepAwake = pick(all.keepAwake),
            .stallSampler = pick(all.stallSampler),
            .places = pick(all.places),
            .http = pick(all.http),
            .images = pick(all.images),
            .pixels = pick(all.pixels),
            .volumes = pick(all.volumes),
            .children = pick(all.children),
            .serialPorts = pick(all.serialPorts),
            .sensors = pick(all.sensors),
            .speech = pick(all.speech),
            .sounds = pick(all.sounds),
            .audio = pick(all.audio)};
}

} // namespace zenka::test

#pragma once

#include "platform/virtual/VirtualMachine.h"
#include "ports/Ports.h"

namespace zenka::platform {

/// A whole machine in virtual time, but for the disk. What stands on it runs hours in a moment.
struct VirtualPorts {
    VirtualPorts(base::Instant wallStart, ports::Folders& folders, ports::Files& files)
        : VirtualPorts(wallStart, folders, files, nowhere, noHttp) {}

    VirtualPorts(base::Instant wallStart, ports::Folders& folders, ports::Files& files,
                 ports::PlaceLookup& places, ports::HttpClient& http)
        : time(wallStart), all{time,      loop,         queues,  fireTimer, settings, folders, files,
                               keepAwake, stallSampler, places,  http,      images,   pixels,  volumes,
                               children,  serialPorts,  sensors, speech,    sounds,   audio} {}

    VirtualTime time;
    VirtualLoop loop{time};
    VirtualWorkQueues queues{time};
    VirtualFireTimer fireTimer{time};
    MemorySettings settings;
    NoKeepAwake keepAwake;
    NoStallSampler stallSampler;
    NoPlaces nowhere;
    NoHttp noHttp{loop};
    NoImages images;
    NoPixels pixels;
    NoVolumes volumes;
    NoChildren children;
    NoSerialPorts serialPorts;
    NoSensors sensors;
    SilentSpeech speech{loop};
    NoAlertSounds sounds;
    UnknownAudio audio;
    ports::Ports all;
};

} // namespace zenka::platform

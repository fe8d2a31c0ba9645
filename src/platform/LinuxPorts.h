#pragma once

#include "platform/BundledPlaceLookup.h"
#include "platform/CanberraSounds.h"
#include "platform/Exiv2Metadata.h"
#include "platform/LinuxChildProcesses.h"
#include "platform/LinuxClock.h"
#include "platform/LinuxFiles.h"
#include "platform/LinuxFireTimer.h"
#include "platform/LinuxKeepAwake.h"
#include "platform/LinuxMachineNames.h"
#include "platform/LinuxMachineSensors.h"
#include "platform/LinuxProcessTable.h"
#include "platform/LinuxSerialPorts.h"
#include "platform/LinuxSharedLibraries.h"
#include "platform/LinuxStallSampler.h"
#include "platform/LinuxUsbBus.h"
#include "platform/LinuxVolumes.h"
#include "platform/MicrohttpdPageServer.h"
#include "platform/PulseOutput.h"
#include "platform/QtHttpClient.h"
#include "platform/QtMainLoop.h"
#include "platform/QtPixelDecoder.h"
#include "platform/SpeechDispatcher.h"
#include "platform/ThreadWorkQueues.h"
#include "ports/Ports.h"

namespace zenka::platform {

/// The machine as it is, but for the user's settings and folders, which the caller gives. Made on the
/// main thread behind a QCoreApplication.
class LinuxPorts {
public:
    LinuxPorts(ports::Settings& settings, ports::Folders& folders)
        : all{clock,     loop,         queues,  fireTimer, settings, folders, files,
              keepAwake, stallSampler, places,  http,      images,   pixels,  volumes,
              children,  serialPorts,  sensors, speech,    sounds,   audio} {}

    LinuxClock clock;
    QtMainLoop loop;
    LinuxFiles files;
    LinuxFireTimer fireTimer;
    LinuxKeepAwake keepAwake;
    LinuxStallSampler stallSampler;
    BundledPlaceLookup places;
    LinuxChildProcesses children;
    LinuxUsbBus usb;
    LinuxProcessTable processes;
    LinuxSharedLibraries libraries;
    Exiv2Metadata images;
    QtPixelDecoder pixels;
    LinuxVolumes volumes;
    QtHttpClient http{loop};
    MicrohttpdPageServer pages;
    LinuxSerialPorts serialPorts;
    LinuxMachineSensors sensors{clock};
    LinuxMachineNames names;
    SpeechDispatcher speech{loop};
    CanberraSounds sounds{loop};
    PulseOutput audio;
    ThreadWorkQueues queues; ///< ends first, with what is under way on it
    ports::Ports all;
};

} // namespace zenka::platform

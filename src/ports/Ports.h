#pragma once

#include "ports/AlertSounds.h"
#include "ports/AudioOutput.h"
#include "ports/ChildProcess.h"
#include "ports/Clock.h"
#include "ports/Files.h"
#include "ports/FireTimer.h"
#include "ports/Folders.h"
#include "ports/HttpClient.h"
#include "ports/ImageMetadata.h"
#include "ports/KeepAwake.h"
#include "ports/MachineSensors.h"
#include "ports/MainLoop.h"
#include "ports/PixelDecoder.h"
#include "ports/PlaceLookup.h"
#include "ports/SerialPorts.h"
#include "ports/Settings.h"
#include "ports/SpeechOutput.h"
#include "ports/StallSampler.h"
#include "ports/Volumes.h"
#include "ports/WorkQueues.h"

namespace zenka::ports {

/// The ports that the run engine stands on, all of which outlive it.
struct Ports {
    Clock& clock;
    MainLoop& loop;
    WorkQueues& queues;
    FireTimer& fireTimer;
    Settings& settings;
    Folders& folders;
    Files& files;
    KeepAwake& keepAwake;
    StallSampler& stallSampler;
    PlaceLookup& places;
    HttpClient& http;
    ImageMetadata& images;
    PixelDecoder& pixels;
    Volumes& volumes;
    ChildProcesses& children;
    SerialPorts& serialPorts;
    MachineSensors& sensors;
    SpeechOutput& speech;
    AlertSounds& sounds;
    AudioOutput& audio;
};

} // namespace zenka::ports

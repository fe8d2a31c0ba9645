#pragma once

#include "cameras/gphoto2/GPhoto2Machine.h"
#include "cameras/gphoto2/GPhoto2Text.h"

#include <filesystem>
#include <map>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace zenka::cameras {

/// How many shutters bodies of a model have offered elsewhere. Any thread.
class GPhoto2ModelStats {
public:
    void set(std::map<std::string, int> shutterMaxByModel);

    /// Nothing for a model that is not known, or known with too few to be believed.
    std::optional<int> knownGoodShutterCount(const std::string& model) const;

private:
    mutable std::mutex mutex_;
    std::map<std::string, int> shutterMax_;
};

/// The gphoto2 program: where it is, what it is started with, and single runs of it. Any thread; all that
/// runs it waits for it and so does not belong on the main thread.
class GPhoto2Program {
public:
    explicit GPhoto2Program(const GPhoto2Machine& machine);

    const GPhoto2Machine& machine() const { return machine_; }

    GPhoto2ModelStats& modelStats() { return modelStats_; }

    /// A path, or the bare name when it is found nowhere.
    const std::string& binary() const { return binary_; }

    /// How to start it on a port; an empty port for none.
    ports::ChildStart startOf(const std::string& port, std::vector<std::string> arguments) const;

    struct Result {
        int code = 0; ///< exit code; negative when it was not started (-1), timed out (-2) or was ended
        std::string output;
        std::string errorText;

        bool ok() const { return code == 0; }
    };

    /// One run after the daemons have been ended, and a second one when the first could not claim the
    /// device.
    Result run(const std::string& port, const std::vector<std::string>& arguments, base::Seconds timeout);
    /// One run. At the time limit the child is ended.
    Result runOnce(const std::string& port, const std::vector<std::string>& arguments, base::Seconds timeout);

    std::vector<GPhoto2Text::Detected> autodetect();

    struct Alive {
        bool alive = false;
        bool resetRevived = false; ///< it needed a USB reset
    };
    /// Whether a body answers, after a USB reset if it must be and may be.
    Alive aliveWithWedgeRecovery(const std::string& port);

    /// Whether a port may be reset now: not again within the interval. A yes is remembered as a reset.
    bool shouldAttemptUSBReset(const std::string& port, base::Seconds minInterval);

private:
    GPhoto2Machine machine_;
    GPhoto2ModelStats modelStats_;
    std::filesystem::path bundleRoot_; // empty for none
    std::string binary_;
    std::map<std::string, std::string> pluginEnv_;
    std::mutex mutex_;
    std::map<std::string, double> lastReset_; // by port, continuous seconds
};

/// Where things are.
namespace GPhoto2Places {

/// The folder of our own gphoto2 beside the executable; empty when there is none.
std::filesystem::path bundleRoot(const std::filesystem::path& programFolder);
/// The bundle's program, else the first of the candidates that can be executed, else the bare name.
std::string binary(const std::filesystem::path& bundleRoot,
                   std::span<const std::filesystem::path> candidates);
/// CAMLIBS and IOLIBS: of each plug-in folder of the bundle the first version that holds any.
std::map<std::string, std::string> pluginEnv(const std::filesystem::path& bundleRoot);

} // namespace GPhoto2Places

} // namespace zenka::cameras

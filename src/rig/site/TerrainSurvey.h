#pragma once

#include "base/Lifeline.h"
#include "eclipse/TerrainHorizon.h"
#include "ports/HttpClient.h"
#include "ports/MainLoop.h"
#include "ports/PixelDecoder.h"
#include "ports/Settings.h"
#include "ports/WorkQueues.h"
#include "rig/site/TerrainSource.h"

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>

namespace zenka::rig {

/// Finds the horizon of a place from terrain tiles, and buildings on request, of the network. Main thread;
/// pictures and profile are worked on elsewhere.
class TerrainSurvey {
public:
    struct Machine {
        ports::HttpClient& http;
        ports::MainLoop& loop;
        ports::WorkQueues& queues;
        const ports::Settings& settings;
        const ports::PixelDecoder& pixels;
    };

    struct Place {
        double lat = 0;  ///< degrees, north positive
        double lon = 0;  ///< degrees, east positive
        double elev = 0; ///< metres, as far as it is known
    };

    struct Progress {
        std::string words; ///< "Loading 12 terrain tiles…"
        std::size_t done = 0;
        std::size_t of = 0; ///< 0 where nothing is counted

        friend bool operator==(const Progress&, const Progress&) = default;
    };

    struct Outcome {
        eclipse::TerrainHorizon::Result result;
        std::size_t tiles = 0;   ///< that were wanted
        std::size_t missing = 0; ///< of these, the ones that could not be had
        std::string remark;      ///< what is wanting and why, in a sentence; else empty
        /// The place and enough around it is known, so that the profile says something.
        bool usable() const { return result.observerHeightM.has_value(); }
    };

    using Told = std::function<void(const Progress&)>;
    using Done = std::function<void(const Outcome&)>;

    explicit TerrainSurvey(const Machine& machine);
    TerrainSurvey(const TerrainSurvey&) = delete;
    TerrainSurvey& operator=(const TerrainSurvey&) = delete;
    ~TerrainSurvey();

    /// Calls done once, later. One that is under way is cancelled first.
    void compute(const Place& place, bool buildings, Told told, Done done);
    /// Ends what is under way, without a call of done.
    void cancel();
    bool running() const { return job_ != nullptr; }

private:
    struct Job;
    using JobPtr = std::shared_ptr<Job>;

    void begin();
    void askOn();
    void loadTile(std::size_t tile);
    void take(std::size_t tile, const ports::HttpReply& reply);
    void settle(bool had, const std::string& why, bool hopeless);
    void profile();
    void askForBuildings();
    void finish();
    void tell(std::string words, std::size_t of = 0);
    /// Runs a function of the job here, unless another job has taken its place.
    template <typename Function>
    auto still(Function function);

    const Machine machine_;
    std::shared_ptr<ports::WorkQueue> queue_;
    JobPtr job_;
    base::Lifeline lifeline_;
};

} // namespace zenka::rig

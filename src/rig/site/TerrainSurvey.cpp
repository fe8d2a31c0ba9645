#include "rig/site/TerrainSurvey.h"

#include "base/Text.h"
#include "eclipse/TerrainSampling.h"

#include <absl/strings/str_format.h>

#include <optional>
#include <set>
#include <utility>
#include <vector>

namespace zenka::rig {

namespace {

constexpr std::size_t mostAtOnce = 8;
constexpr base::Seconds tileTimeout{15};
constexpr base::Seconds buildingsTimeout{20};
constexpr std::size_t mostTileBytes = 1 << 20;
constexpr std::size_t mostBuildingsBytes = 4 << 20;
/// So many requests in a row without any answer, and the server counts as gone.
constexpr std::size_t mostUnanswered = 8;

std::string reasonOf(const ports::HttpReply& reply) {
    if (!reply.fault.empty())
        return reply.fault;
    if (reply.status == 401 || reply.status == 403)
        return absl::StrFormat("the server does not take the token, status %d", reply.status);
    return absl::StrFormat("the server answered with status %d", reply.status);
}

} // namespace

struct TerrainSurvey::Job {
    Job(const Place& where, bool withBuildings, const ports::Settings& settings, Told tell, Done whenDone)
        : place(where), buildings(withBuildings), source(settings), told(std::move(tell)),
          done(std::move(whenDone)) {}

    const Place place;
    const bool buildings;
    const TerrainSource source;
    const Told told;
    const Done done;
    Outcome outcome;

    std::optional<eclipse::TerrainSampling> sampling; // of the queue, but for its list of tiles once planned
    std::vector<eclipse::TileKey> tiles;
    std::size_t next = 0;
    std::size_t underWay = 0;
    std::size_t settled = 0;
    std::size_t unanswered = 0; // in a row
    bool hopeless = false;
    std::string why; // of the last tile that could not be had
    std::set<ports::HttpClient::RequestId> requests;
};

TerrainSurvey::TerrainSurvey(const Machine& machine)
    : machine_(machine), queue_(machine.queues.serial("zenka.terrain")) {
}

TerrainSurvey::~TerrainSurvey() {
    cancel();
}

template <typename Function>
auto TerrainSurvey::still(Function function) {
    return lifeline_.guard([this, job = std::weak_ptr<Job>(job_), function](auto&&... args) {
        const auto same = job.lock();
        if (same && same == job_)
            function(std::forward<decltype(args)>(args)...);
    });
}

void TerrainSurvey::cancel() {
    if (!job_)
        return;
    for (const auto request : job_->requests)
        machine_.http.cancel(request);
    job_.reset();
}

void TerrainSurvey::compute(const Place& place, bool buildings, Told told, Done done) {
    cancel();
    job_ = std::make_shared<Job>(place, buildings, machine_.settings, std::move(told), std::move(done));
    if (std::string obstacle = job_->source.obstacle(); !obstacle.empty()) {
        job_->outcome.remark = std::move(obstacle) + " Until then the horizon counts as flat.";
        machine_.loop.post(still([this] { finish(); }));
        return;
    }
    queue_->post([job = job_, &loop = machine_.loop, planned = still([this] { begin(); })] {
        job->sampling.emplace(job->place.lat, job->place.lon);
        loop.post(planned);
    });
}

void TerrainSurvey::tell(std::string words, std::size_t of) {
    if (job_->told)
        job_->told({.words = std::move(words), .done = job_->settled, .of = of});
}

void TerrainSurvey::begin() {
    if (const auto& sampling = job_->sampling)
        job_->tiles = sampling->tiles();
    job_->outcome.tiles = job_->tiles.size();
    askOn();
}

void TerrainSurvey::askOn() {
    const std::size_t all = job_->tiles.size();
    tell(absl::StrFormat("Loading %d terrain tiles…", all), all);
    while (job_ && job_->underWay < mostAtOnce && job_->next < all)
        loadTile(job_->next++);
    if (job_ && job_->underWay == 0)
        profile();
}

void TerrainSurvey::loadTile(std::size_t tile) {
    ++job_->underWay;
    ports::HttpRequest request;
    request.url = job_->source.tileAddress(job_->tiles[tile]);
    request.timeout = tileTimeout;
    request.mostBytes = mostTileBytes;
    auto id = std::make_shared<ports::HttpClient::RequestId>();
    *id = machine_.http.send(std::move(request), still([this, id, tile](const ports::HttpReply& reply) {
                                 job_->requests.erase(*id);
                                 take(tile, reply);
                             }));
    job_->requests.insert(*id);
}

void TerrainSurvey::take(std::size_t tile, const ports::HttpReply& reply) {
    if (!reply.ok()) {
        const bool refused = reply.status == 401 || reply.status == 403;
        job_->unanswered = reply.status == 0 ? job_->unanswered + 1 : 0;
        settle(false, reasonOf(reply), refused || job_->unanswered >= mostUnanswered);
        return;
    }
    job_->unanswered = 0;
    const auto read = still([this](bool had) { settle(had, "what came was no terrain tile", false); });
    queue_->post(
        [job = job_, tile, body = reply.body, &loop = machine_.loop, &decoder = machine_.pixels, read] {
            constexpr int side = eclipse::TerrainSampling::tilePixels;
            const auto picture = decoder.decodePng(body, side, side);
            if (picture)
                job->sampling->take(tile, picture->rgba, job->source.encoding(job->place.elev));
            loop.post([read, had = picture.has_value()] { read(had); });
        });
}

/// One more tile is here or will not come. Once it is hopeless the rest is not asked for.
void TerrainSurvey::settle(bool had, const std::string& why, bool hopeless) {
    --job_->underWay;
    ++job_->settled;
    if (!had) {
        ++job_->outcome.missing;
        job_->why = why;
    }
    if (hopeless && !job_->hopeless) {
        job_->hopeless = true;
        job_->outcome.missing += job_->tiles.size() - job_->next + job_->requests.size();
        job_->next = job_->tiles.size();
        job_->underWay -= job_->requests.size();
        for (const auto request : std::exchange(job_->requests, {}))
            machine_.http.cancel(request);
    }
    askOn();
}

void TerrainSurvey::profile() {
    tell("Computing horizon…");
    queue_->post([job = job_, &loop = machine_.loop, known = still([this] {
                                                         job_->outcome.result.observerHeightM =
                                                             job_->sampling->observerHeight();
                                                         askForBuildings();
                                                     })] {
        job->outcome.result.samples = job->sampling->profile();
        loop.post(known);
    });
}

void TerrainSurvey::askForBuildings() {
    Outcome& outcome = job_->outcome;
    if (outcome.tiles == 0)
        outcome.remark = "There are no terrain tiles so near to the pole: the horizon counts as flat.";
    else if (outcome.missing == outcome.tiles)
        outcome.remark =
            "No terrain tile could be had: " + job_->why + ". Until then the horizon counts as flat.";
    else if (!outcome.result.observerHeightM)
        outcome.remark = "The tile of the site itself could not be had: " + job_->why +
                         ". Heights count from the level of the sea, so do not go by this horizon.";
    else if (outcome.missing > 0)
        outcome.remark =
            absl::StrFormat("%d of %d terrain tiles could not be had: %s. There the horizon may be higher.",
                            outcome.missing, outcome.tiles, job_->why);
    if (!job_->buildings || job_->hopeless) {
        finish();
        return;
    }
    tell("Adding buildings…");
    const auto without = [this](const std::string& why) {
        job_->outcome.remark +=
            (job_->outcome.remark.empty() ? "" : " ") + std::string("Buildings are left out: ") + why + ".";
        finish();
    };
    ports::HttpRequest request;
    request.url = job_->source.buildingsAddress(job_->place.lat, job_->place.lon);
    request.timeout = buildingsTimeout;
    request.mostBytes = mostBuildingsBytes;
    if (request.url.empty()) {
        without("they want a token, which Settings has none of");
        return;
    }
    const auto raised =
        still([this, without](bool had) { had ? finish() : without("the answer made no sense"); });
    const auto id =
        machine_.http.send(std::move(request), still([this, without, raised](const ports::HttpReply& reply) {
                               job_->requests.clear();
                               if (!reply.ok()) {
                                   without(reasonOf(reply));
                                   return;
                               }
                               queue_->post([job = job_, body = reply.body, &loop = machine_.loop, raised] {
                                   const auto buildings = buildingsIn(body, job->place.lat, job->place.lon);
                                   if (buildings) {
                                       raiseByBuildings(job->outcome.result.samples, *buildings);
                                       job->outcome.result.source = "terrain + buildings";
                                   }
                                   loop.post([raised, had = buildings.has_value()] { raised(had); });
                               });
                           }));
    job_->requests.insert(id);
}

void TerrainSurvey::finish() {
    const JobPtr job = std::exchange(job_, nullptr);
    job->done(job->outcome);
}

} // namespace zenka::rig

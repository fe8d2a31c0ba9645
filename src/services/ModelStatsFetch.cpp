#include "services/ModelStatsFetch.h"

#include "services/ServiceAddress.h"

#include <nlohmann/json.hpp>

#include <map>
#include <string>
#include <utility>

namespace zenka::services {

namespace {

constexpr base::Seconds statsTimeout{20};
constexpr std::size_t statsMostBytes = 1 << 20;
constexpr int mostShutters = 500; ///< more than any body has

std::map<std::string, int> shutterMaxIn(const ports::HttpReply& reply) {
    std::map<std::string, int> counts;
    const auto answer = nlohmann::json::parse(reply.ok() ? reply.body : "", nullptr, false);
    if (!answer.is_object() || !answer.contains("models") || !answer["models"].is_array())
        return counts;
    for (const auto& model : answer["models"]) {
        if (!model.is_object() || !model.contains("model") || !model["model"].is_string())
            continue;
        const auto count = model.find("shutterMax");
        if (count != model.end() && count->is_number_integer() && *count > 0 && *count <= mostShutters)
            counts[model["model"].get<std::string>()] = count->get<int>();
    }
    return counts;
}

} // namespace

void ModelStatsFetch::primeModelStats() {
    ports::HttpRequest request;
    request.url = serviceAddress(ports_.settings, "/api/camera-profile-stats");
    request.timeout = statsTimeout;
    request.mostBytes = statsMostBytes;
    if (request.url.empty())
        return;
    ports_.http.send(std::move(request), lifeline_.guard([this](const ports::HttpReply& reply) {
        if (auto counts = shutterMaxIn(reply); !counts.empty())
            modelStats_.set(std::move(counts));
    }));
}

} // namespace zenka::services

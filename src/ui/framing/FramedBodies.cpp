#include "ui/framing/FramedBodies.h"

#include "base/Text.h"
#include "rig/RigModel.h"

#include <algorithm>

namespace zenka::ui {

namespace {

std::string nameOf(const std::string& label, const std::string& model, const char* remark) {
    const std::string bare = rig::CameraRoster::bareModel(model);
    return label + (bare == label || bare.empty() ? "" : ", " + bare) + remark;
}

std::string lensOf(const rig::LibraryDesk& library, const std::string& serial) {
    const auto entry = library.find(serial);
    return entry ? entry->lens.value_or("") : "";
}

} // namespace

std::vector<FramedBody> framedBodies(rig::RigModel& rig) {
    const rig::CameraRoster& roster = rig.roster();
    const rig::LibraryDesk& library = rig.library();
    const auto& tokens = rig.script().cameraTokens();
    std::vector<FramedBody> bodies;
    for (const auto& camera : roster.cameras()) {
        const std::string label = roster.labelFor(*camera);
        const bool told = library.lensFault(camera->serial()).empty();
        FramedBody body{.name = nameOf(label, camera->model(), camera->isReal() ? "" : ", simulated"),
                        .serial = told ? camera->serial() : "",
                        .label = label,
                        .model = camera->model(),
                        .lens = told ? lensOf(library, camera->serial()) : "",
                        .id = camera->id()};
        for (const std::string& token : tokens)
            if (roster.cameraMatches(*camera, token))
                body.tokens.push_back(token);
        bodies.push_back(std::move(body));
    }
    std::vector<std::string> missing;
    for (const auto& entry : roster.missingCameras(tokens))
        missing.push_back(entry.token);
    for (const auto& entry : library.absentLibraryBodies()) {
        const auto inRoster = [&](const FramedBody& body) { return body.serial == entry.serial; };
        if (std::ranges::any_of(bodies, inRoster))
            continue;
        FramedBody body{.name = nameOf(entry.label, entry.model, ", not connected"),
                        .serial = entry.serial,
                        .label = entry.label,
                        .model = entry.model,
                        .lens = entry.lens.value_or("")};
        const auto own = [&](const std::string& token) {
            return base::equalIgnoringCase(token, entry.label);
        };
        std::ranges::copy_if(missing, std::back_inserter(body.tokens), own);
        std::erase_if(missing, own);
        bodies.push_back(std::move(body));
    }
    for (const std::string& token : missing)
        bodies.push_back({.name = token + ", no body yet", .label = token, .tokens = {token}});
    bodies.push_back({.name = "No body: a plan"});
    return bodies;
}

std::optional<int> findFramed(const std::vector<FramedBody>& rows, const std::string& id,
                              const std::string& serial, const std::optional<std::string>& label) {
    auto found = rows.end();
    if (!id.empty())
        found = std::ranges::find(rows, id, &FramedBody::id);
    if (found == rows.end() && !serial.empty())
        found = std::ranges::find(rows, serial, &FramedBody::serial);
    if (found == rows.end() && label)
        found = std::ranges::find(rows, *label, &FramedBody::label);
    return found == rows.end() ? std::nullopt : std::optional(static_cast<int>(found - rows.begin()));
}

} // namespace zenka::ui

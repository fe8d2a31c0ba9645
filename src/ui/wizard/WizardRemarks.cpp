#include "ui/wizard/WizardRemarks.h"

#include "base/Text.h"

#include <algorithm>
#include <array>
#include <map>

namespace zenka::ui {

namespace {

using script::WizardChoices;

/// Comments of these beginnings tell what was asked for.
bool merelyTells(std::string_view comment) {
    constexpr std::array<std::string_view, 4> beginnings{"LOW-SUN COMP ON", "HORIZON TRIM ON",
                                                         "NOTE: this site", "Note: frames over 1 s"};
    return std::ranges::any_of(beginnings, [&](std::string_view each) { return comment.starts_with(each); });
}

constexpr std::string_view cameraHeading = "# ───────── CAMERA: ";

std::string cameraOf(std::string_view heading) {
    heading.remove_prefix(cameraHeading.size());
    return std::string(base::trimmed(heading.substr(0, heading.rfind(' '))));
}

/// An issue of a pair of frames without their times: its camera and its reason.
std::string withoutMoments(const std::string& issue) {
    const auto at = std::min(issue.find(": only "), issue.find(" starts "));
    if (at == issue.npos)
        return issue;
    const std::string camera = issue.substr(0, issue.find(": "));
    const std::string reason = issue.substr(at);
    // "only 1.0 s between A and B (the 1.3 s drop floor); ..."
    return camera + reason.substr(std::min({reason.find(" ("), reason.find(": tighter"), reason.find(", but"),
                                            reason.find(". If"), reason.size()}));
}

bool wantsPartials(const WizardChoices& c) {
    return c.partials && c.filter != WizardChoices::Filter::none;
}

} // namespace

void addRemark(std::vector<WizardRemark>& remarks, WizardRemark remark) {
    const auto same = std::ranges::find_if(remarks, [&](const WizardRemark& each) {
        return each.kind == remark.kind && each.text == remark.text;
    });
    if (same == remarks.end())
        remarks.push_back(std::move(remark));
    else
        same->times += remark.times;
}

std::vector<WizardRemark> scriptRemarks(std::string_view text, std::size_t cameras) {
    struct Comment {
        std::string text;
        std::vector<std::string> cameras;
    };
    std::vector<Comment> comments;
    std::string camera;
    std::string said;     // a comment of one line or more
    bool inHeader = true; // the lines that every script begins with
    const auto finish = [&] {
        if (said.empty())
            return;
        auto same = std::ranges::find(comments, said, &Comment::text);
        if (same == comments.end())
            same = comments.insert(comments.end(), {said, {}});
        if (!camera.empty() && std::ranges::find(same->cameras, camera) == same->cameras.end())
            same->cameras.push_back(camera);
        said.clear();
    };
    for (const std::string_view line : base::split(text, '\n')) {
        if (inHeader) {
            inHeader = !line.starts_with("# Camera: ") && !line.starts_with("# Cameras: ");
        } else if (line.starts_with(cameraHeading)) {
            finish();
            camera = cameraOf(line);
        } else if (line.starts_with("#  ")) {
            if (!said.empty())
                said += " " + std::string(base::trimmed(line.substr(1)));
        } else {
            finish();
            if (line.starts_with("# ") && !line.starts_with("# Each camera runs"))
                said = base::trimmed(line.substr(2));
        }
    }
    finish();
    std::vector<WizardRemark> remarks;
    for (const Comment& comment : comments) {
        std::string names;
        if (comment.cameras.size() < cameras)
            for (const std::string& name : comment.cameras)
                names += (names.empty() ? "" : ", ") + name;
        remarks.push_back(
            {.kind = merelyTells(comment.text) ? WizardRemark::Kind::note : WizardRemark::Kind::warning,
             .text = names.empty() ? comment.text : names + ": " + comment.text});
    }
    return remarks;
}

WizardRemark::Kind kindOf(const script::ScriptDiag& diagnostic) {
    return diagnostic.severity == "error" ? WizardRemark::Kind::error : WizardRemark::Kind::warning;
}

std::vector<WizardRemark> issueRemarks(const std::vector<script::ScriptDiag>& issues) {
    std::vector<WizardRemark> remarks;
    std::map<std::string, std::size_t> known; // by camera and reason
    for (const script::ScriptDiag& issue : issues) {
        const auto [place, isNew] = known.try_emplace(withoutMoments(issue.message), remarks.size());
        if (isNew)
            remarks.push_back({.kind = kindOf(issue), .text = issue.message});
        else
            ++remarks[place->second].times;
    }
    return remarks;
}

std::string emptinessReason(const WizardRequest& request, int frames) {
    const WizardSite& site = request.site;
    if (request.plans.empty())
        return "No camera is chosen, so there is nothing to photograph. Tick a camera or type a name.";
    if (!site.seen)
        return "From " + site.label +
               " nothing of this eclipse is seen. Choose another site in Location (Ctrl+L).";
    if (frames > 0)
        return {};
    const bool filters = std::ranges::any_of(
        request.plans, [](const auto& c) { return c.filter != WizardChoices::Filter::none; });
    if (site.central != WizardForm::Central::total && !filters)
        return "There is no frame: this site sees no totality, and without a filter the partial Sun must not "
               "be photographed. Choose a filter.";
    if (site.central != WizardForm::Central::total && std::ranges::none_of(request.plans, wantsPartials))
        return "There is no frame: this site sees no totality, and the partial phases are not ticked. Tick "
               "them.";
    return "There is no frame, for the reasons that follow.";
}

} // namespace zenka::ui

#include "rig/transfer/RigPartWords.h"

#include "base/Text.h"
#include "rig/site/SiteBook.h"

#include <absl/strings/str_format.h>

#include <algorithm>

namespace zenka::rig {

namespace {

/// "3 new, 1 in the place of yours", "nothing new".
class Merge {
public:
    void add(bool known, bool same) {
        if (!known)
            ++fresh_;
        else if (!same)
            ++replaced_;
    }
    template <typename Map>
    void addAll(const Map& map, const Map& here) {
        for (const auto& [key, value] : map) {
            const auto mine = here.find(key);
            add(mine != here.end(), mine != here.end() && mine->second == value);
        }
    }
    std::string words() const {
        std::vector<std::string> words;
        if (fresh_ > 0)
            words.push_back(absl::StrFormat("%d new", fresh_));
        if (replaced_ > 0)
            words.push_back(absl::StrFormat("%d in the place of yours", replaced_));
        return words.empty() ? "nothing new" : base::joined(words);
    }

private:
    int fresh_ = 0;
    int replaced_ = 0;
};

std::string siteEffect(const RigContents::SiteInUse& site, const RigContents& here) {
    const std::string words = absl::StrFormat("%s, %s", site.record.site.label, site.eclipseId);
    if (!here.site || *here.site == site)
        return words + ": as you have it already";
    return absl::StrFormat("%s in the place of %s, %s", words, here.site->record.site.label,
                           here.site->eclipseId);
}

std::string scriptEffect(const RigContents::Script& script, const RigContents& here, bool edited) {
    if (!here.script)
        return "there is none here";
    if (*here.script == script)
        return "as you have it already";
    return absl::StrFormat("in the place of “%s”%s", here.script->name,
                           edited ? ", whose text is kept to be brought back" : "");
}

std::string countedBodies(std::size_t count) {
    return count == 1 ? "1 body" : absl::StrFormat("%d bodies", count);
}

std::string bodiesWords(const RigContents& rig) {
    std::vector<std::string> words;
    if (!rig.bodies.empty())
        words.push_back(countedBodies(rig.bodies.size()));
    if (!rig.framings.empty())
        words.push_back("framings of " +
                        base::counted(static_cast<std::int64_t>(rig.framings.size()), "name"));
    return base::joined(words, " and ");
}

std::string bodiesEffect(const RigContents& rig, const RigContents& here) {
    Merge merge;
    for (const auto& body : rig.bodies) {
        const auto mine = std::ranges::find(here.bodies, body.serial, &cameras::CameraLibraryEntry::serial);
        merge.add(mine != here.bodies.end(), mine != here.bodies.end() && *mine == body);
    }
    merge.addAll(rig.framings, here.framings);
    return merge.words();
}

std::string sitesEffect(const RigContents& rig, const RigContents& here) {
    Merge merge;
    for (const SavedSite& site : rig.savedSites) {
        const auto mine =
            std::ranges::find_if(here.savedSites, [&](const SavedSite& each) { return isSame(each, site); });
        merge.add(mine != here.savedSites.end(), mine != here.savedSites.end() && *mine == site);
    }
    return merge.words();
}

std::string counted(std::size_t count, std::string_view word) {
    return base::counted(static_cast<std::int64_t>(count), word);
}

} // namespace

std::vector<RigPartWords> rigPartWords(const RigContents& rig, std::size_t frames, const RigContents& here,
                                       bool edited) {
    std::vector<RigPartWords> parts;
    const auto merged = [](const auto& theirs, const auto& mine) {
        Merge merge;
        merge.addAll(theirs, mine);
        return merge.words();
    };
    if (rig.site)
        parts.push_back({RigPart::site, "1 site in use", siteEffect(*rig.site, here)});
    if (!rig.savedSites.empty())
        parts.push_back(
            {RigPart::savedSites, counted(rig.savedSites.size(), "saved site"), sitesEffect(rig, here)});
    if (rig.script)
        parts.push_back({RigPart::script,
                         absl::StrFormat("script “%s” with %s", rig.script->name, counted(frames, "frame")),
                         scriptEffect(*rig.script, here, edited)});
    if (!rig.bodies.empty() || !rig.framings.empty())
        parts.push_back({RigPart::bodies, bodiesWords(rig), bodiesEffect(rig, here)});
    if (!rig.rules.empty())
        parts.push_back({RigPart::rules, "exposure rules of " + countedBodies(rig.rules.size()),
                         merged(rig.rules, here.rules)});
    if (!rig.floors.empty())
        parts.push_back({RigPart::floors, "measured floors of " + counted(rig.floors.size(), "model"),
                         merged(rig.floors, here.floors)});
    if (!rig.horizons.empty())
        parts.push_back({RigPart::horizons, "horizons of " + counted(rig.horizons.size(), "place"),
                         "each in the place of the one that you may have there"});
    return parts;
}

std::vector<std::string> rigPartCounts(const RigContents& rig, std::size_t frames) {
    std::vector<std::string> words;
    for (const RigPartWords& part : rigPartWords(rig, frames, rig, false))
        words.push_back(part.what);
    return words;
}

} // namespace zenka::rig

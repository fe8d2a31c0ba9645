#include "ui/framing/FramingBursts.h"

#include "rig/RigModel.h"
#include "ui/kit/QtText.h"

#include <algorithm>
#include <iterator>

namespace zenka::ui {

namespace {

/// More rows than anybody reads would only make the sheet slow.
constexpr std::size_t mostRows = 100;

/// What is said below the rows.
QString burstsText(const FramedBody& body, const std::vector<script::Burst>& all, std::size_t hiddenRows) {
    if (body.tokens.empty() && body.label.empty())
        return QStringLiteral("Bursts belong to a body or a name of the script: pick one above.");
    if (all.empty())
        return QStringLiteral("The script has no frames for it, so there are no bursts.");
    if (hiddenRows > 0)
        return QStringLiteral("and %1 more bursts").arg(hiddenRows);
    const auto singles = std::ranges::count(all, 1, &script::Burst::frames);
    return singles == 0 ? QString()
                        : counted(singles, "frame") +
                              QStringLiteral(" of the script a minute or more apart from the others.");
}

} // namespace

QHash<int, QByteArray> FramingBursts::roleNames() const {
    return {{titleRole, "title"},     {factsRole, "facts"},     {driftRole, "drift"},  {trailRole, "trail"},
            {warningRole, "warning"}, {levelRole, "warnLevel"}, {pickedRole, "picked"}};
}

QVariant FramingBursts::valueOf(const BurstRow& row, int role) const {
    switch (role) {
    case Qt::DisplayRole:
    case titleRole: return row.title;
    case factsRole: return row.facts;
    case driftRole: return row.drift;
    case trailRole: return row.trail;
    case warningRole: return row.warning;
    case levelRole: return row.level;
    case pickedRole: return row.picked;
    default: return {};
    }
}

bool FramingBursts::find(const std::vector<script::Burst>& all, const std::vector<std::string>& tokens) {
    const auto& contacts = rig_.site().contactTHours();
    std::vector<script::Burst> several;
    std::ranges::copy_if(all, std::back_inserter(several),
                         [](const auto& burst) { return burst.frames > 1; });
    // What is shot through the partial phases without a pause leaves a fixed frame in any case: totality
    // alone is what counts then.
    bool totality = false;
    if (contacts.contains("C2") && contacts.contains("C3")) {
        const auto within = script::burstWithin(rig_.script().captures(), tokens, contacts.at("C2") * 3600,
                                                contacts.at("C3") * 3600);
        totality = within.frames > 1 && std::ranges::find(several, within) == several.end();
        if (totality)
            several.insert(several.begin(), within);
    }
    if (several == bursts_)
        return totality;
    bursts_ = std::move(several);
    const auto away = [max = contacts.at("MAX") * 3600](const script::Burst& burst) {
        return std::max({burst.beginSec - max, max - burst.endSec, 0.0});
    };
    const auto nearest = std::ranges::min_element(bursts_, {}, away);
    picked_.reset();
    if (nearest != bursts_.end())
        picked_ = static_cast<std::size_t>(nearest - bursts_.begin());
    return totality;
}

void FramingBursts::look(const FramedBody& body, const FramingFrame& frame, bool aimedAtMax) {
    const rig::SiteDesk& site = rig_.site();
    const auto all = script::burstsOf(rig_.script().captures(), body.tokens);
    const bool totality = find(all, body.tokens);
    const std::size_t shown = std::min(bursts_.size(), mostRows);
    std::vector<BurstRow> rows;
    for (std::size_t i = 0; i < shown; ++i) {
        const script::Burst& burst = bursts_[i];
        const double aimed = aimedAtMax ? site.contactTHours().at("MAX") : burst.beginSec / 3600;
        rows.push_back(burstRow(
            frame, burst,
            rig::burstDrift(site.eclipse(), site.observer(), frame.optics, burst, aimed, frame.wantedRadii)));
        rows.back().picked = picked_ == i;
        if (totality && i == 0)
            rows.back().title = QStringLiteral("Totality, C2 to C3");
    }
    setRows(std::move(rows));
    text_ = burstsText(body, all, bursts_.size() - shown);
}

bool FramingBursts::pick(int row) {
    if (row < 0 || static_cast<std::size_t>(row) >= bursts_.size())
        return false;
    picked_ = static_cast<std::size_t>(row);
    return true;
}

std::optional<script::Burst> FramingBursts::picked() const {
    const std::size_t at = picked_.value_or(bursts_.size());
    return at < bursts_.size() ? std::optional(bursts_[at]) : std::nullopt;
}

} // namespace zenka::ui

#include "eclipse/Catalog.h"

#include "eclipse/CatalogTable.h"
#include "eclipse/ShadowAxis.h"

#include <algorithm>

namespace zenka::embedded {
extern const std::string_view eclipsesCsv;
}

namespace zenka::eclipse {

namespace Catalog {

const std::vector<EclipseRecord>& all() {
    static const std::vector<EclipseRecord> rows = detail::readTable(embedded::eclipsesCsv);
    return rows;
}

bool has(std::string_view id) {
    return std::ranges::find(all(), id, &EclipseRecord::id) != all().end();
}

Eclipse eclipse(std::string_view id) {
    const auto found = std::ranges::find(all(), id, &EclipseRecord::id);
    return Eclipse(found == all().end() ? all().front() : *found);
}

Eclipse nextAfter(base::Instant now) {
    const auto isEarlier = [](const EclipseRecord& a, const EclipseRecord& b) { return a.id < b.id; };
    const EclipseRecord* next = nullptr;
    for (const EclipseRecord& row : all()) {
        if (Eclipse(row).utc(greatestEclipseHours(row)) > now && (!next || isEarlier(row, *next)))
            next = &row;
    }
    return Eclipse(next ? *next : *std::ranges::max_element(all(), isEarlier));
}

} // namespace Catalog

} // namespace zenka::eclipse

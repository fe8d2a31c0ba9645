#include "eclipse/Catalog.h"

#include "eclipse/CatalogTable.h"

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

} // namespace Catalog

} // namespace zenka::eclipse

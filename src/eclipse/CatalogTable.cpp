#include "eclipse/CatalogTable.h"

#include "base/Text.h"
#include "eclipse/Calendar.h"
#include "eclipse/Fault.h"

#include <absl/strings/str_format.h>

#include <array>
#include <string>

namespace zenka::eclipse::detail {

namespace {

constexpr std::array<std::string_view, 12> months = {"January",   "February", "March",    "April",
                                                     "May",       "June",     "July",     "August",
                                                     "September", "October",  "November", "December"};

/// The fields of a line of comma-separated values; a quoted field has its quotes doubled (RFC 4180).
std::vector<std::string> fieldsOf(std::string_view line) {
    std::vector<std::string> fields(1);
    bool quoted = false;
    for (std::size_t i = 0; i < line.size(); ++i) {
        const char c = line[i];
        if (c == '"') {
            if (quoted && i + 1 < line.size() && line[i + 1] == '"') {
                fields.back() += c;
                ++i;
            } else {
                quoted = !quoted;
            }
        } else if (c == ',' && !quoted) {
            fields.emplace_back();
        } else {
            fields.back() += c;
        }
    }
    return fields;
}

/// Gives the fields of a row one after the other.
class Row {
public:
    explicit Row(std::string_view line) : line_(line), fields_(fieldsOf(line)) {
        constexpr std::size_t columns = 3 + 4 + 6 * 4 + 1;
        if (fields_.size() != columns) {
            fault("a row has another number of columns", line_);
        }
    }

    std::string text() { return fields_[next_++]; }

    double number() {
        const std::optional<double> value = base::readNumber(fields_[next_++]);
        if (!value) {
            fault("a number cannot be read", line_);
        }
        return *value;
    }

    std::vector<double> series() {
        std::vector<double> coefficients(4);
        for (double& coefficient : coefficients) {
            coefficient = number();
        }
        return coefficients;
    }

private:
    std::string_view line_;
    std::vector<std::string> fields_;
    std::size_t next_ = 0;
};

EclipseRecord recordOf(std::string_view line) {
    Row row(line);
    EclipseRecord rec;
    rec.id = row.text();
    rec.type = row.text();
    const std::string region = row.text();
    rec.t0Hour = row.number();
    rec.deltaT = row.number();
    rec.tanF1 = row.number();
    rec.tanF2 = row.number();
    rec.x = row.series();
    rec.y = row.series();
    rec.d = row.series();
    rec.l1 = row.series();
    rec.l2 = row.series();
    rec.mu = row.series();
    rec.notes = row.text();

    rec.dateUTC = rec.id;
    const absl::CivilDay date = dateOf(rec.dateUTC);
    const std::string_view month = months[static_cast<std::size_t>(date.month() - 1)];
    const std::string_view shortMonth = month.substr(0, 3);
    // this title was published with the short month, and reports that were written with it are kept
    const bool shortTitle = rec.id == "2044-02-28";
    rec.name = absl::StrFormat("%s Solar Eclipse of %d %s %02d", rec.type, date.year(),
                               shortTitle ? shortMonth : month, date.day());
    rec.shortName = absl::StrFormat("%d %s %02d · %s", date.year(), shortMonth, date.day(), region);
    return rec;
}

} // namespace

std::vector<EclipseRecord> readTable(std::string_view csv) {
    std::vector<EclipseRecord> rows;
    bool heading = true;
    for (std::string_view line : base::splitPieces(csv, '\n')) {
        if (!heading) {
            rows.push_back(recordOf(line));
        }
        heading = false;
    }
    if (rows.empty()) {
        fault("there is no row", "data/eclipses.csv");
    }
    return rows;
}

} // namespace zenka::eclipse::detail

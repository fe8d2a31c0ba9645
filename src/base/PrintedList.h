#pragma once

#include <string>
#include <vector>

namespace zenka::base {

/// Rows of words under heads; each row is as long as the heads.
struct PrintedTable {
    std::vector<std::string> heads;
    std::vector<std::vector<std::string>> rows; ///< empty: no table

    friend bool operator==(const PrintedTable&, const PrintedTable&) = default;
};

/// What is printed one below the other: table, lines, boxes to tick.
struct PrintedSection {
    std::string title;
    PrintedTable table;
    std::vector<std::string> lines;
    std::vector<std::string> boxes;

    friend bool operator==(const PrintedSection&, const PrintedSection&) = default;
};

/// A list for paper, in plain words: what makes it and what draws it know nothing of each other.
struct PrintedList {
    std::string title;
    std::vector<std::string> lines; ///< below the title
    std::vector<PrintedSection> sections;

    friend bool operator==(const PrintedList&, const PrintedList&) = default;
};

} // namespace zenka::base

#pragma once

#include "eclipse/Besselian.h"
#include "webdata/BigPlaces.h"

#include <string>
#include <string_view>
#include <vector>

namespace zenka::webdata {

/// The text of the files of a web data set, docs/web-data.md. Pure: the same program gives the same bytes.

struct DataFile {
    std::string path; ///< below the folder of the set, "eclipses/2024-04-08.json"
    std::string text;
};

/// What does not depend on the eclipses: the page, the schemas, the land of its map.
std::vector<DataFile> fixedFiles();

/// The data of one eclipse, for programs and as a script for the page. Takes about 50 ms. Any thread.
std::vector<DataFile> eclipseFiles(const eclipse::Eclipse& eclipse, const BigPlaces& places);

/// The list of all eclipses in the order of time, likewise.
std::vector<DataFile> catalogueFiles();

} // namespace zenka::webdata

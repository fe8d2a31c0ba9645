// The three data files of src/geo, damaged in any way. The first byte chooses the file.
#include "geo/Gazetteer.h"
#include "geo/TimeZoneAreas.h"
#include "geo/WorldOutlines.h"

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <string_view>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace zenka::geo;
    if (size == 0) {
        return 0;
    }
    const std::string_view bytes(reinterpret_cast<const char*>(data) + 1, size - 1);
    switch (data[0] % 3) {
    case 0: {
        const TimeZoneAreas zones(bytes);
        for (double lat = -80; lat <= 80; lat += 40) {
            for (double lon = -180; lon <= 180; lon += 60) {
                zones.zoneAt(lat, lon);
            }
        }
        break;
    }
    case 1: {
        const Gazetteer places(bytes);
        places.nearest(40, 179, 500);
        places.nearest(-90, 0, 20000);
        if (places.search(bytes.substr(bytes.size() / 2), 5).size() > 5 || places.search("a", 5).size() > 5) {
            std::abort();
        }
        break;
    }
    default: {
        const WorldOutlines outlines(bytes);
        for (const Detail detail : {Detail::coarse, Detail::medium, Detail::fine}) {
            outlines.land(detail, {});
            outlines.coasts(detail, {30, 170, 60, -170});
            outlines.borders(detail, {});
        }
    }
    }
    return 0;
}

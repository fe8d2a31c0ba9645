#include "cli/Carbondale.h"

#include "eclipse/Catalog.h"

namespace zenka::cli {

const eclipse::Eclipse& testEclipse() {
    static const eclipse::Eclipse eclipse = eclipse::Catalog::eclipse("2024-04-08");
    return eclipse;
}

script::CompileContext carbondaleContext() {
    const eclipse::Observer observer{.lat = 37.7273, .lon = -89.2168, .elev = 121};
    return {.eclipse = testEclipse(),
            .observer = observer,
            .contactTHours = script::contactTHours(testEclipse().localCircumstances(observer)),
            .tzId = "UTC"};
}

} // namespace zenka::cli

#pragma once

#include "eclipse/Catalog.h"
#include "script/ZenkaScript.h"

#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace zenka::script {

/// One eclipse at one site, ready to compile for. Scripts of the tests are lists of lines.
class Site {
public:
    Site(std::string_view eclipseId, eclipse::Observer observer, std::string tzId)
        : eclipse_(eclipse::Catalog::eclipse(eclipseId)), context{eclipse_, observer,
                                                                  contactTHours(
                                                                      eclipse_.localCircumstances(observer)),
                                                                  std::move(tzId)} {}

    Site(const Site&) = delete; // the context refers to the member

    CompiledScript compile(const std::vector<std::string>& lines) const {
        std::string text;
        for (const std::string& line : lines)
            text += line + "\n";
        return ZenkaScript::compile(text, context);
    }

    double contact(const std::string& key) const { return context.contactTHours.at(key) * 3600; }
    double sunAltDeg(double offsetSec) const {
        return eclipse_.geometry(offsetSec / 3600, context.observer).altDeg;
    }

private:
    eclipse::Eclipse eclipse_;

public:
    CompileContext context;
};

inline const Site& carbondale() {
    static const Site site("2024-04-08", {37.7273, -89.2168, 121}, "America/Chicago");
    return site;
}

inline const Site& zaragoza() {
    static const Site site("2026-08-12", {41.65, -0.88, 200}, "Europe/Madrid");
    return site;
}

/// 93 percent at most, and the Sun sets as it ends.
inline const Site& paris() {
    static const Site site("2026-08-12", {48.8566, 2.3522, 35}, "Europe/Paris");
    return site;
}

inline std::vector<double> offsets(const CompiledScript& script, double from = 0) {
    std::vector<double> list;
    for (const Capture& capture : script.captures)
        list.push_back(capture.offsetSec - from);
    return list;
}

} // namespace zenka::script

#include "script/References.h"

#include "base/CivilTime.h"
#include "base/Text.h"
#include "script/FieldReader.h"
#include "script/Labels.h"

#include <absl/strings/str_format.h>

#include <cmath>

namespace zenka::script {

namespace {

/// Upper case, with U1 to U4 as C1 to C4.
std::string headOf(std::string_view word) {
    std::string head = base::uppered(word);
    if (head.size() == 2 && head[0] == 'U' && head[1] >= '1' && head[1] <= '4')
        head[0] = 'C';
    return head;
}

bool isBareClock(const std::vector<std::string_view>& pieces) {
    return pieces.size() == 1 && pieces[0].find(':') != std::string_view::npos && pieces[0].front() >= '0' &&
           pieces[0].front() <= '9';
}

} // namespace

References::References(const CompileContext& context, Diagnostics& diagnostics)
    : context_(context), diagnostics_(diagnostics) {
}

std::optional<double> References::resolve(const Moment& moment, int lineNo, std::optional<double> varValue,
                                          std::optional<double> last) {
    std::string reference = moment.reference;
    if (moment.hasVar) {
        if (!varValue) {
            diagnostics_.error(lineNo, "(VAR) used outside a FOR,(VAR) loop");
            return std::nullopt;
        }
        reference = base::replacedAll(reference, varMark, absl::StrFormat("%.4f", *varValue));
    }
    Pieces pieces = base::splitPieces(reference, ' ');
    if (isBareClock(pieces))
        pieces.insert(pieces.begin(), "L");
    const std::string head = pieces.empty() ? std::string() : headOf(pieces.front());

    if (head == "C1" || head == "C2" || head == "MAX" || head == "C3" || head == "C4")
        return contact(head, lineNo);
    if (head == "LAST") {
        if (last)
            return last;
        diagnostics_.warning(lineNo, "LAST used before any timed item, anchoring to maximum");
        return hoursOf("MAX", 0) * 3600;
    }
    if (head == "MAGPRE" || head == "MAGPOST")
        return magnitude(head, pieces, reference, lineNo);
    if (head == "SUNRISE" || head == "SUNSET")
        return horizon(head, lineNo);
    if (head == "A" || head == "L")
        return clockTime(head, {pieces.begin() + 1, pieces.end()}, reference, lineNo);
    diagnostics_.warning(
        lineNo, absl::StrFormat("reference '%s' isn't supported yet, line skipped. Supported: C1–C4, "
                                "MAX, U1–U4, MAGPRE/MAGPOST, SUNRISE, SUNSET, LAST, A/L time.",
                                reference));
    return std::nullopt;
}

std::optional<double> References::contact(const std::string& head, int lineNo) {
    const auto found = context_.contactTHours.find(head);
    if (found != context_.contactTHours.end())
        return found->second * 3600;
    diagnostics_.warning(lineNo, head + " does not occur at this location, line skipped");
    return std::nullopt;
}

std::optional<double> References::magnitude(const std::string& head, const Pieces& pieces,
                                            std::string_view reference, int lineNo) {
    const FieldNumber percent = pieces.size() < 2 ? FieldNumber{} : readFieldNumber(pieces[1]);
    if (percent.kind == FieldNumber::Kind::none) {
        diagnostics_.error(
            lineNo, absl::StrFormat("%s needs its magnitude in the SAME field, separated by a space (e.g. "
                                    "'%s 50' or '%s (VAR)', not '%s,50'). Got '%s', line skipped.",
                                    head, head, head, head, reference));
        return std::nullopt;
    }
    if (percent.kind == FieldNumber::Kind::outOfRange) {
        diagnostics_.error(lineNo,
                           absl::StrFormat("magnitude '%s' is out of range, line skipped", pieces[1]));
        return std::nullopt;
    }
    // Without contacts the window is two hours to either side, so that any context compiles.
    const bool before = head == "MAGPRE";
    auto& search = before ? ingress_ : egress_;
    if (!search && before)
        search.emplace(context_.eclipse, context_.observer, hoursOf("C1", -2), hoursOf("MAX", 0));
    else if (!search)
        search.emplace(context_.eclipse, context_.observer, hoursOf("MAX", 0), hoursOf("C4", 2));
    const auto hours = search->find(percent.value / 100);
    if (hours)
        return *hours * 3600;
    diagnostics_.warning(lineNo, "magnitude " + base::plainNumber(percent.value) + "% not reached on " +
                                     (before ? "ingress" : "egress") + " here");
    return std::nullopt;
}

std::optional<double> References::horizon(const std::string& head, int lineNo) {
    const bool rising = head == "SUNRISE";
    auto& crossing = rising ? sunrise_ : sunset_;
    if (!crossing)
        crossing = sunCrossTHours(rising);
    if (*crossing)
        return **crossing * 3600;
    diagnostics_.warning(lineNo, head + " not found for this site/date, line skipped");
    return std::nullopt;
}

std::optional<double> References::clockTime(const std::string& head, const Pieces& arguments,
                                            std::string_view reference, int lineNo) {
    if (head == "L" && !siteZone_)
        siteZone_ = base::timeZoneOrUtc(context_.tzId);
    const absl::TimeZone utc = absl::UTCTimeZone();
    const auto seconds = absoluteOffsetSeconds(arguments, context_.eclipse.utc(0),
                                               head == "L" ? siteZone_.value_or(utc) : utc);
    if (!seconds)
        diagnostics_.error(lineNo, absl::StrFormat("%s needs a time in the SAME field, e.g. '%s 18:32' or "
                                                   "'%s 18:32:05'. Got '%s', line skipped.",
                                                   head, head, head, reference));
    return seconds;
}

/// Backward from maximum for the rising, forward for the setting, whatever the Sun does at maximum.
std::optional<double> References::sunCrossTHours(bool rising) const {
    constexpr double stepHours = 1.0 / 60;
    constexpr double furthestHours = 16;
    constexpr int halvings = 24;
    const double start = hoursOf("MAX", 0);
    const double step = rising ? -stepHours : stepHours;
    const bool upAtStart = sunIsUp(start);
    double near = start;
    double far = start + step;
    while (sunIsUp(far) == upAtStart) {
        near = far;
        far += step;
        if (!(std::abs(far - start) < furthestHours))
            return std::nullopt;
    }
    for (int i = 0; i < halvings; ++i) {
        const double middle = (near + far) / 2;
        (sunIsUp(middle) == upAtStart ? near : far) = middle;
    }
    return (near + far) / 2;
}

double References::hoursOf(const char* key, double otherwise) const {
    const auto found = context_.contactTHours.find(key);
    return found == context_.contactTHours.end() ? otherwise : found->second;
}

bool References::sunIsUp(double tHours) const {
    return context_.eclipse.geometry(tHours, context_.observer).altDeg > 0;
}

std::optional<double> absoluteOffsetSeconds(const std::vector<std::string_view>& clock, base::Instant base,
                                            const absl::TimeZone& zone) {
    if (clock.empty())
        return std::nullopt;
    const bool dated = clock.size() >= 2 && clock[0].find('-') != std::string_view::npos;
    const auto pieces = base::splitPieces(clock[dated ? 1 : 0], ':');
    const auto hour = pieces.size() < 2 ? std::nullopt : base::readInteger(pieces[0]);
    const auto minute = pieces.size() < 2 ? std::nullopt : base::readInteger(pieces[1]);
    if (!hour || !minute)
        return std::nullopt;
    const int second = pieces.size() > 2 ? base::readInteger(pieces[2]).value_or(0) : 0;

    const absl::CivilSecond here = base::civilTime(base, zone);
    absl::civil_year_t year = here.year();
    int month = here.month();
    int day = here.day();
    if (dated) {
        const auto date = base::splitPieces(clock[0], '-');
        const auto part = [&date](std::size_t i) {
            return date.size() == 3 ? base::readInteger(date[i]) : std::nullopt;
        };
        const auto givenYear = part(0);
        const auto givenMonth = part(1);
        const auto givenDay = part(2);
        if (givenYear && givenMonth && givenDay) {
            year = *givenYear;
            month = *givenMonth;
            day = *givenDay;
        }
    }
    // Hours past 23 and the like run over into the next day.
    const auto wanted = base::instantOf(absl::CivilSecond(year, month, day, *hour, *minute, second), zone);
    return (wanted - base).count();
}

} // namespace zenka::script

#include "cameras/canon/CanonErrors.h"

#include "cameras/canon/canon_bridge.h"

#include <algorithm>
#include <array>

namespace zenka::cameras {

namespace {

struct Name {
    std::uint32_t code;
    std::string_view text;
};

constexpr std::array<Name, 22> errorNames{{
    {96, "invalid parameter"},
    {97, "invalid handle (stale camera session)"},
    {128, "camera not found"},
    {129, "camera busy"},
    {130, "camera invalid"},
    {132, "card full"},
    {135, "no card in camera"},
    {136, "card error"},
    {141, "shutter not released"},
    {36097, "autofocus could not lock (set the lens to MF)"},
    {36098, "camera not ready to shoot"},
    {36099, "mirror lock-up blocked the shot"},
    {36102, "no card in camera"},
    {36103, "card error"},
    {36104, "card is write-protected"},
    {36106, "waiting for the flash to charge"},
    {36107, "no lens attached"},
    {36110, "camera is in movie mode"},
    {36111, "lens is retracted"},
    {40966, "lens cover is closed"},
    {zenka_canon_err_terminated, "Zenka's Canon driver was shut down (restart Zenka)"},
    {zenka_canon_err_session_dead, "the camera ended the USB link. On the body: Wi-Fi OFF, and Choose USB "
                                   "connection app set to Photo Import/Remote Control"},
}};

} // namespace

std::string_view canonErrorName(std::uint32_t code) {
    const auto known = std::ranges::find(errorNames, code, &Name::code);
    return known == errorNames.end() ? "EdsError" : known->text;
}

} // namespace zenka::cameras

#pragma once

#include "ports/SpeechOutput.h"

#include <string>
#include <string_view>
#include <vector>

/// What speech-dispatcher's protocol SSIP makes of texts, numbers and names.
namespace zenka::platform::speechText {

/// A text as one line of valid UTF-8: control characters, line ends among them, become blanks, bytes that
/// are no UTF-8 the replacement character. The protocol ends a message at a line with a lone dot, and the
/// service refuses what is no UTF-8. At most 10,000 bytes, ten minutes of speech;
/// never empty, which libspeechd takes for a write that failed.
std::string speakable(std::string_view text);

/// SSIP's rate (-100 to 100) for a multiple of the user's usual speed, which is SSIP's usualRate. The
/// engines' ends differ; here -100 counts as half and +100 as two and a half times the speed at 0 (espeak-ng
/// has 80, 170 and 449 words a minute).
int ssipRate(double rate, int usualRate);

/// SSIP's volume (-100 to 100) for a part of the full volume.
int ssipVolume(double volume);

/// How well the voices of an output module sound: the more, the better.
int moduleQuality(std::string_view module);

/// The voices of a module by the service's answer to LIST SYNTHESIS_VOICES, lines like
/// "249-English (Great Britain)\ten-GB\tnone". espeak-ng's variants are left out: it gives each language in a
/// hundred timbres ("English+Adam"), 13,000 voices in all.
std::vector<ports::Voice> voicesOf(std::string_view module, std::string_view answer);

/// A language as an IETF tag in its usual case: "en-gb" and "en_GB" give "en-GB".
std::string languageTag(std::string_view language);

/// The language of a POSIX locale ("en_GB.UTF-8") as an IETF tag; empty for "C" and "POSIX".
std::string tagOfLocale(std::string_view locale);

} // namespace zenka::platform::speechText

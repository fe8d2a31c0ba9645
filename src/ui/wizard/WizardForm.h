#pragma once

#include "script/WizardChoices.h"

#include <array>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

/// The form of the script wizard: one table of its fields, and how their values are read from what a person
/// types. The window's rows, the stored answers and the tests all go by the table.
namespace zenka::ui::WizardForm {

using Choices = script::WizardChoices;

enum class Section { partials, edges, corona, cues, lowSun, spacing };
inline constexpr std::array<Section, 6> sections{Section::partials, Section::edges,  Section::corona,
                                                 Section::cues,     Section::lowSun, Section::spacing};

enum class Kind { check, choice, number, whole, shutter, aperture, iso };

using Member = std::variant<bool Choices::*, int Choices::*, double Choices::*, std::string Choices::*,
                            Choices::Filter Choices::*, Choices::PartialCadence Choices::*,
                            Choices::LowSunTrade Choices::*, script::BracketVar Choices::*,
                            script::BracketWeight Choices::*>;

struct Field {
    const char* id; ///< the name of the answer, also in the settings
    Section section;
    Kind kind;
    Member member;
    const char* label;         ///< by itself, as in a sentence
    const char* row = nullptr; ///< the name of the row that it begins; null: it goes on in one
    const char* before = "";   ///< words ahead of the value
    const char* unit = "";     ///< behind it
    double step = 1;           ///< of the arrow keys
    bool mayBeEmpty = false;   ///< empty means something: the filter's own shutter
    bool ofScript = false;     ///< one answer for the whole script, that of the first plan
    bool ofTotality = false;   ///< means nothing without totality
    bool (*applies)(const Choices&) = nullptr; ///< whether the other answers leave it a meaning
};

std::span<const Field> fields();
/// Null for an id that there is not.
const Field* fieldOf(std::string_view id);

enum class Central { none, annular, total };

/// What beside the answers decides which fields have a meaning.
struct Place {
    Central central = Central::total;
    bool firstPlan = true;   ///< the plan that cues and horizon trim are taken from
    std::string firstCamera; ///< whose plan that is

    friend bool operator==(const Place&, const Place&) = default;
};

bool shown(const Field& field, const Choices& choices, const Place& place);

const char* title(Section section);
/// Why fields of a section are left out; empty where none is but for the other answers.
std::string reason(Section section, const Place& place);

/// A value as one would type it; the word of a choice; empty for a box to tick.
std::string textOf(const Field& field, const Choices& choices);
bool ticked(const Field& field, const Choices& choices);

/// Takes a typed value in. A text that cannot be used leaves the value there was and gives a sentence.
std::string read(const Field& field, std::string_view text, Choices& choices);
void tick(const Field& field, bool on, Choices& choices);
/// Moves a value by steps of the arrow keys: along its list where it has one.
void nudge(const Field& field, int steps, Choices& choices);

/// The values that the field's list offers; empty for a plain number.
std::vector<std::string> options(const Field& field, const Choices& choices);
/// The place in that list of the value, or the one nearest to it.
int optionNow(const Field& field, const Choices& choices);
void takeOption(const Field& field, int option, Choices& choices);

/// A sentence where the script takes something else than this answer, or on what the answer means; empty
/// where there is nothing to say. `usable` are the same answers as the generator makes them usable.
struct Note {
    std::string text;
    bool warning = false;

    friend bool operator==(const Note&, const Note&) = default;
};
Note noteOf(const Field& field, const Choices& choices, const Choices& usable, const Place& place);

} // namespace zenka::ui::WizardForm

// One row a property of the model: its title and help, how its value becomes text and back, and what it
// belongs to. The processing tree, `describe` and the edits read the same rows; which rows a class has says
// model/properties/classes.h.
//
//     for (const SProperty* row : FindPropertyClass(object)->rows)
//         if (!row->child) std::cout << GetText(row->label) << Show(*row, context, object);
//
//     const SReading reading = Read(row, context, object, "12 cm");
//     if (!reading.value) ... GetText(reading.refusal);
#pragma once

#include "foundation/date_time.h"
#include "foundation/object.h"
#include "foundation/text_id.h"

#include <cstdint>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

namespace Outils_Valeurs {
class CTrvAdaptors;
}

namespace Metier_Tarvel {
class CTrvSimulationParameters;
class CTrvSimulationTimeAdaptor;
} // namespace Metier_Tarvel

namespace Metier_Tarvel_Proprietes {

using Outils_Objets::CObject;
using Outils_Temps::CDateTime;
using Outils_Texte::EText;
using Outils_Texte::kNoText;

// How a value is written.
enum class EPropertyForm {
    quantity,  // double in the internal unit of an EQuantity; `detail` is the quantity
    number,    // double with a unit that no setting changes, or none; `unit`
    latitude,  // double, degrees
    longitude, // double, degrees
    whole,     // integer
    word,      // integer; `detail` is the EWordList
    flag,      // yes or no
    text,      // free text
    color,     // alpha, red, green and blue as #AARRGGBB
    time,      // simulation time: elapsed or UTC as the settings say
    offset,    // signed length of time
    shown,     // text that only the row's `show` makes; never read
};

struct SForm {
    EPropertyForm form = EPropertyForm::shown;
    int detail = 0;
    EText unit = kNoText;
};

// A value of any row, in the unit of the model. Times and offsets are as the model stores them.
using CPropertyValue = std::variant<bool, std::int64_t, double, std::string, CDateTime>;

// The values that make sense, in the unit of the model, for help and hints. A value outside is taken all the
// same: the rules say before a run what is wrong.
struct SRange {
    double least = -std::numeric_limits<double>::infinity();
    double greatest = std::numeric_limits<double>::infinity();
    bool isLeastExcluded = false;

    constexpr bool Contains(double value) const {
        return (isLeastExcluded ? value > least : value >= least) && value <= greatest;
    }
};
inline constexpr SRange kNotNegative{0.0};
inline constexpr SRange kPositive{0.0, SRange{}.greatest, true};

// The user's way to write values. All must outlive the object. UI thread only.
struct SPropertyContext {
    const Outils_Valeurs::CTrvAdaptors& adaptors;
    const Metier_Tarvel::CTrvSimulationTimeAdaptor& time;
    const Metier_Tarvel::CTrvSimulationParameters& parameters;
};

// A row is a value (`get`, and `set` unless it is only shown), a text (`show`), or the place of other objects
// (`child`). REQUIRES for every function: the object is of the class that has the row.
struct SProperty {
    EText label = kNoText; // title of the row; none where the class of the child has the title
    EText help = kNoText;  // one line: what it means
    SForm form{};
    SRange range{};
    bool isExpert = false; // shown in expert mode only
    bool isList = false;   // of a child: any number of them, each titled by its class
    bool isInline = false; // of a child: its rows fit one line

    CPropertyValue (*get)(const CObject& object) = nullptr;
    // REQUIRES: a value of the type that `get` gives, which the member can hold.
    void (*set)(CObject& object, const CPropertyValue& value) = nullptr;
    bool (*canHold)(const CPropertyValue& value) = nullptr; // null when the member holds every value
    // The member itself, to compare identities.
    const void* (*address)(const CObject& object) = nullptr;
    std::string (*show)(const SPropertyContext& context, const CObject& object) = nullptr;
    // The owned object of this number, from 0; null past the last.
    CObject* (*child)(CObject& object, std::size_t index) = nullptr;
    // Whether the row means something for the object as it is; null for always.
    bool (*isVisible)(const CObject& object) = nullptr;

    constexpr SProperty In(SRange sensible) const {
        SProperty row = *this;
        row.range = sensible;
        return row;
    }
    constexpr SProperty ForExperts() const {
        SProperty row = *this;
        row.isExpert = true;
        return row;
    }
    constexpr SProperty VisibleIf(bool (*predicate)(const CObject&)) const {
        SProperty row = *this;
        row.isVisible = predicate;
        return row;
    }
};

// The owned object of this number; null past the last, and for a row without children.
inline const CObject* GetChild(const SProperty& row, const CObject& object, std::size_t index) {
    return row.child ? row.child(const_cast<CObject&>(object), index) : nullptr;
}

// All rows of an object that is shown on one line: "XV1 1.000 m, XV2 0.000 m, XV3 0.000 m".
std::string ShowLine(const SPropertyContext& context, const CObject& object);
// The text of a value or of a shown row, one line without control characters; of an inline child the line of
// the child. Empty for any other child, and for a list.
std::string Show(const SProperty& row, const SPropertyContext& context, const CObject& object);

struct SReading {
    std::optional<CPropertyValue> value; // what to set
    EText refusal = kNoText;             // without a value: why
};
// Reads what a person typed for the row. The text that is shown reads back to the very value, digits that are
// not shown included; a number may have its unit or none, and a comma for its decimal point. Refused are a
// text that the adaptors refuse, a value that the member cannot hold, a time that has no text, and every text
// for a row without `set`. Changes nothing.
SReading Read(const SProperty& row, const SPropertyContext& context, const CObject& object,
              std::string_view text);

} // namespace Metier_Tarvel_Proprietes

// The enumerations of the model as lists of words. In the objects they are 32-bit integers, since a project
// file may hold any value; the words are numbered texts with consecutive numbers.
#pragma once

#include "foundation/text_id.h"

#include <cstdint>
#include <span>
#include <string_view>

namespace Metier_Tarvel {

// The value of an enumeration is the position in its list.
enum class EWordList {
    algorithm,
    heaveAlgorithm,
    heaveSeaState,
    gpsAltitudeReference,
    zuptMode,
    altitudeMode,
    rejectionMode,
    stdDevMode,
    odometerStdDevMode,
    timeMode,
};

struct SWordList {
    EWordList list;
    std::string_view name;         // under which a grid shares the list among its rows
    Outils_Texte::EText firstText; // number of the text of value 0
    int count;
};

std::span<const SWordList> GetWordLists();
const SWordList& GetWordList(EWordList list);
// The word of a value; "?" for a value outside the list.
std::string_view GetWord(EWordList list, std::int32_t value);

enum EAlgorithm : std::int32_t { algorithmStandard = 0, algorithmBackward = 1 };
enum EHeaveAlgorithm : std::int32_t { heaveNone = 0, heaveRealTime = 1, heaveKelvar = 2 };
enum EGpsAltitudeReference : std::int32_t { altitudeGeoid = 0, altitudeEllipsoid = 1 };
enum EStdDevMode : std::int32_t { stdDevLive = 0, stdDevUserDefined = 1 };
enum ETimeMode : std::int32_t { timeElapsed = 0, timeUtc = 1 };

} // namespace Metier_Tarvel

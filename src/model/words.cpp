#include "model/words.h"

#include "foundation/texts.h"

namespace Metier_Tarvel {

using Outils_Texte::EText;

namespace {

constexpr SWordList kWordLists[] = {
    {EWordList::algorithm, "algorithm", EText::algorithmStandard, 2},
    {EWordList::heaveAlgorithm, "heaveAlgorithm", EText::heaveNone, 3},
    {EWordList::heaveSeaState, "heaveSeaState", EText::seaSlight, 5},
    {EWordList::gpsAltitudeReference, "gpsAltitudeReference", EText::altitudeGeoid, 2},
    {EWordList::zuptMode, "zupt", EText::zuptModeLive, 7},
    {EWordList::altitudeMode, "altitudeMode", EText::altitudeModeLive, 5},
    {EWordList::rejectionMode, "rejection", EText::rejectionModeLive, 4},
    {EWordList::stdDevMode, "stdDev", EText::stdDevModeLive, 2},
    {EWordList::odometerStdDevMode, "odometerStdDev", EText::odometerStdDevDefault, 2},
    {EWordList::timeMode, "timeMode", EText::timeElapsed, 2},
};

} // namespace

std::span<const SWordList> GetWordLists() { return kWordLists; }

const SWordList& GetWordList(EWordList list) { return kWordLists[static_cast<std::size_t>(list)]; }

std::string_view GetWord(EWordList list, std::int32_t value) {
    const SWordList& words = GetWordList(list);
    if (value < 0 || value >= words.count) return "?";
    return Outils_Texte::GetText(words.firstText + value);
}

} // namespace Metier_Tarvel

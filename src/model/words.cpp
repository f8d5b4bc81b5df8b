#include "model/words.h"

#include "foundation/texts.h"

namespace Metier_Tarvel {

namespace {

constexpr SWordList kWordLists[] = {
    {EWordList::algorithm, "algorithm", 10000, 2},
    {EWordList::heaveAlgorithm, "heaveAlgorithm", 10002, 3},
    {EWordList::heaveSeaState, "heaveSeaState", 10005, 5},
    {EWordList::gpsAltitudeReference, "gpsAltitudeReference", 10010, 2},
    {EWordList::zuptMode, "zupt", 338, 7},
    {EWordList::altitudeMode, "altitudeMode", 292, 5},
    {EWordList::rejectionMode, "rejection", 310, 4},
    {EWordList::stdDevMode, "stdDev", 10012, 2},
    {EWordList::odometerStdDevMode, "odometerStdDev", 10014, 2},
    {EWordList::timeMode, "timeMode", 10016, 2},
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

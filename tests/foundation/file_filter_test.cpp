#include "foundation/file_filter.h"

#include <gtest/gtest.h>

using namespace Outils_Fichiers;

namespace {

TEST(FileFilters, PairsBecomeNamesAndPatterns) {
    using CRows = std::vector<SFileFilter>;
    const std::pair<const char*, CRows> rows[] = {
        {"Input|*.tarin;*.txt|All file (*.*)|*.*||",
         CRows{{"Input", {"*.tarin", "*.txt"}}, {"All file", {"*.*"}}}},
        {"A (old) file (*.a)|*.a", CRows{{"A (old) file", {"*.a"}}}},
        {"No patterns||Other|*.b||", CRows{{"Other", {"*.b"}}}},
        {"alone", {}},
        {"||", {}},
        {"", {}},
    };
    for (const auto& [text, filters] : rows) EXPECT_EQ(ParseFileFilters(text), filters) << text;
}

} // namespace

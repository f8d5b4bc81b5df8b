#include "foundation/texts.h"
#include "graph/data_fixture.h"
#include "graph/instant_values.h"

#include <gmock/gmock.h>

using namespace test;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using testing::HasSubstr;

namespace {

class InstantValuesTest : public CDataFixture {
  protected:
    InstantValuesTest() { m_values.emplace(*m_document, m_state, m_adaptors); }
    ~InstantValuesTest() override { m_values.reset(); }

    const SValueRow& Add(std::string_view channel, std::string_view field) {
        EXPECT_TRUE(m_values->Add(Field(channel, field)));
        return m_values->GetRows().back();
    }
    void Load() {
        RunUntil([this] { return !m_values->IsLoading(); });
    }
    SValueCell Cell(std::size_t row, EValueColumn column) {
        return m_values->GetCell(m_values->GetRows().at(row), column);
    }
    std::string Row(std::size_t row, EValueColumn from, EValueColumn to) {
        std::string text;
        for (int column = static_cast<int>(from); column <= static_cast<int>(to); ++column)
            text += Cell(row, static_cast<EValueColumn>(column)).text + "|";
        return text;
    }
    std::vector<std::string> Labels() {
        std::vector<std::string> labels;
        for (const SValueRow& row : m_values->GetRows()) labels.push_back(row.label);
        return labels;
    }

    std::optional<CTrvInstantValues> m_values;
};

using enum EValueColumn;

TEST_F(InstantValuesTest, ValuesAreThoseOfTheCursors) {
    Add("DEPTH", "Depth");
    Add("MORVEX_STD", "Heading");
    SetCursors(12.2);
    Load();
    EXPECT_EQ(Row(0, first, difference), "12.000 m|||");
    EXPECT_EQ(m_values->GetColumns(), (std::vector{field, first}));
    SetCursors(5, 15); // the heading goes from 355 to 5 degrees
    Load();
    EXPECT_EQ(Row(0, first, difference), "5.000 m|15.000 m|10.000 m|");
    EXPECT_EQ(Row(1, first, difference), "355.000 °|5.000 °|10.000 °|");
    EXPECT_THAT(Cell(0, first).why, HasSubstr("packet 5 at byte ")) << "the place of the sample";
    for (const double time : {20.0, 21.0, 22.0, 23.0, 24.0}) m_state.SetCursor(ECursor::first, Seconds(time));
    EXPECT_TRUE(Cell(0, first).isOld);
    Load();
    EXPECT_EQ(Cell(0, first).text, "24.000 m");
    EXPECT_FALSE(Cell(0, first).isOld);

    Recording().timeOffset = Metier_Tarvel::ToStoredTime(Seconds(4));
    m_document->UpdateAllViews(nullptr, hintDataFileTimeOffsetChanged, &Recording());
    Load();
    EXPECT_EQ(Cell(0, first).text, "20.000 m");
}

TEST_F(InstantValuesTest, StatisticsCountEveryPacket) {
    Add("DEPTH", "Depth");
    Add("MORVEX_STD", "Heading");
    Add("MORVEX_STD", "");
    m_values->ShowStatistics(true);
    SetCursors(20, 10);
    Load();
    EXPECT_EQ(Row(0, minimum, count), "10.000 m|20.000 m|15.000 m|3.317 m|15.330 m|11|");
    EXPECT_EQ(Row(1, minimum, mean), "0.000 °|10.000 °|5.000 °|");
    EXPECT_EQ(Cell(2, mean).why, Text(EText::whyNoStatistics));
    SetCursors(5, 15); // through north
    Load();
    EXPECT_EQ(Row(1, minimum, mean), "355.000 °|5.000 °|0.000 °|");
    SetCursors(5);
    EXPECT_EQ(Cell(0, mean).why, Text(EText::whyNoInterval));
    SetCursors(200, 300);
    Load();
    EXPECT_EQ(Cell(0, mean).why, Text(EText::whyNoSamples));
    m_values->ShowStatistics(false);
    EXPECT_EQ(m_values->GetProgress(), std::nullopt);
}

TEST_F(InstantValuesTest, EmptyValuesGiveTheirReason) {
    EXPECT_EQ(m_values->GetNotice(), Text(EText::valuesEmpty));
    Add("GPS_1", "Latitude");
    Add("DEPTH", "Depth");
    Add("MORVEX_STD", "");
    EXPECT_EQ(m_values->GetNotice(), "");
    EXPECT_EQ(Cell(0, first).why, Text(EText::whyNoCursor));
    SetCursors(80, 90);
    Load();
    EXPECT_EQ(Cell(0, first).text, "");
    EXPECT_THAT(Cell(0, first).why, HasSubstr("No data at this time: the channel has "));
    EXPECT_EQ(Cell(0, difference).why, Cell(0, first).why);
    EXPECT_EQ(Cell(2, difference).why, Text(EText::whyNoDifference));

    std::filesystem::remove(Recording().path);
    m_document->UpdateAllViews(nullptr, hintDataFileContentChanged, &Recording());
    Load();
    EXPECT_THAT(Cell(1, first).why, HasSubstr("dive.tarin"));
    EXPECT_EQ(Cell(1, first).text, "");
}

// A channel with gaps between its samples, one with a single packet, and times outside all data.
TEST_F(InstantValuesTest, TwoCursorsOnSparseChannels) {
    Add("GPS_1", "Latitude");
    Add("IMU", "Acc 1");
    m_values->ShowStatistics(true);
    const std::string outside = "No data at this time: the channel has ";
    const struct {
        double from, to;
        std::size_t row;
        bool hasFirst, hasSecond;
        const char* count;
        EText whyNoDeviation; // kNoText: there is one
    } rows[] = {
        {20, 30, 0, true, true, "11", Outils_Texte::kNoText},
        {20.2, 20.8, 0, true, true, "0", EText::whyNoSamples}, // in a gap: the nearest samples, none between
        {20.2, 21.2, 0, true, true, "1", EText::whyOneSample},
        {5, 15, 0, false, true, "6", Outils_Texte::kNoText},
        {-20, -10, 0, false, false, "0", EText::whyNoSamples},
        {500, 600, 0, false, false, "0", EText::whyNoSamples},
        {25, 35, 1, false, false, "1", EText::whyOneSample},
        {kOnlyImu, 35, 1, true, false, "1", EText::whyOneSample},
        {31, 35, 1, false, false, "0", EText::whyNoSamples},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::to_string(row.from) + " to " + std::to_string(row.to));
        SetCursors(row.from, row.to);
        Load();
        for (const auto& [column, has] : {std::pair(first, row.hasFirst), {second, row.hasSecond}}) {
            EXPECT_EQ(!Cell(row.row, column).text.empty(), has);
            EXPECT_EQ(Cell(row.row, column).why.starts_with(outside), !has);
        }
        EXPECT_EQ(!Cell(row.row, difference).text.empty(), row.hasFirst && row.hasSecond);
        EXPECT_EQ(Cell(row.row, count).text, row.count);
        const bool isNone = row.whyNoDeviation != Outils_Texte::kNoText;
        EXPECT_EQ(Cell(row.row, deviation).text.empty(), isNone);
        if (isNone) {
            EXPECT_EQ(Cell(row.row, deviation).why, Text(row.whyNoDeviation));
        }
    }
}

TEST_F(InstantValuesTest, RowsOfARemovedFileGo) {
    auto& external = AddExternal();
    Add("DEPTH", "Depth");
    const auto* layer = Project().dataModel->FindLayer(&external, kDepthNumber);
    ASSERT_TRUE(layer);
    EXPECT_TRUE(m_values->Add(*layer->m_measures.front()));
    ASSERT_EQ(m_values->GetRows().size(), 2u);
    EXPECT_EQ(m_values->GetRows()[1].label, "Depth sensor - Depth - second.tarin");
    EXPECT_FALSE(m_values->CanAdd(Field("DEPTH", "Depth"))) << "it is there";
    EXPECT_FALSE(m_values->CanAdd(external));
    SetCursors(10);
    EXPECT_TRUE(m_document->GetEdits().Do(Edits::kRemoveDataFile, external));
    EXPECT_EQ(Labels(), std::vector<std::string>{"Depth sensor - Depth"});
    Load();
    Close();
    EXPECT_EQ(m_values->GetNotice(), Text(EText::valuesNoProject));
}

TEST_F(InstantValuesTest, LabelsFollowTheSettings) {
    Add("GPS_1", "Latitude");
    const struct {
        bool translate, code;
        const char* label;
    } rows[] = {{true, false, "Gps #1 - Latitude"},
                {true, true, "Gps #1 (GPS_1) - Latitude"},
                {false, true, "GPS_1 - Latitude"},
                {false, false, "GPS_1 - Latitude"}};
    for (const auto& row : rows) {
        m_config.Set(Cnf<"viewValue/translateChannelLabel">, row.translate);
        m_config.Set(Cnf<"viewValue/displayChannelLabel">, row.code);
        m_values->Reformat();
        EXPECT_EQ(m_values->GetRows()[0].label, row.label);
    }
}

TEST_F(InstantValuesTest, MovedRowsAreSavedInTheirOrder) {
    for (const char* name : {"Heading", "Roll", "Pitch"}) Add("MORVEX_STD", name);
    Add("MORVEX_STD", "");
    const auto moved = [this](std::size_t from, std::size_t to) {
        return m_values->Move(*m_values->GetRows()[from].saved, to);
    };
    const std::string state = Labels()[3];
    const std::string h = Labels()[0], r = Labels()[1], p = Labels()[2];
    EXPECT_TRUE(moved(0, 2));
    EXPECT_EQ(Labels(), (std::vector{r, p, h, state}));
    EXPECT_TRUE(moved(2, 0));
    EXPECT_FALSE(moved(0, 0));
    EXPECT_TRUE(moved(0, 9)) << "no row passes those of the other kind";
    EXPECT_FALSE(moved(3, 0));
    EXPECT_EQ(Labels(), (std::vector{r, p, h, state}));
    EXPECT_TRUE(m_document->Save());
    ASSERT_TRUE(m_document->OpenDocument(m_folder / "dive.tarprj"));
    EXPECT_EQ(Labels(), (std::vector{r, p, h, state}));
    EXPECT_TRUE(m_values->Remove(*m_values->GetRows()[1].saved));
    EXPECT_EQ(Labels(), (std::vector{r, h, state}));
}

TEST_F(InstantValuesTest, CopiesTextWithUnitsAndTimes) {
    Add("DEPTH", "Depth");
    SetCursors(5, 7);
    Load();
    const CTrvInstantValue* const row[] = {m_values->GetRows()[0].saved};
    EXPECT_EQ(m_values->CopyText(row), m_values->GetTimes() +
                                           "\nField\tAt the cursor\tAt the second cursor\tDifference\n"
                                           "Depth sensor - Depth\t5.000 m\t7.000 m\t2.000 m\n");
    EXPECT_THAT(m_values->GetTimes(), HasSubstr("Elapsed time"));
}

} // namespace

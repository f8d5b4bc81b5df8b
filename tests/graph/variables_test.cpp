#include "foundation/texts.h"
#include "graph/data_fixture.h"
#include "graph/field_adding.h"
#include "graph/variables.h"

#include <gmock/gmock.h>

using namespace test;
using Outils_Texte::EText;
using testing::HasSubstr;

namespace {

class VariablesTest : public CDataFixture {
  protected:
    VariablesTest() { m_variables.emplace(*m_document, m_state, m_adaptors); }
    ~VariablesTest() override { m_variables.reset(); }

    void Load() {
        RunUntil([this] { return !m_variables->IsLoading(); });
    }
    // By the code in the tool tip.
    const SVariableNode& Channel(std::size_t file, const std::string& code) {
        for (const auto& node : m_variables->GetTree().at(file).children)
            if (node.variable.tip.find("Channel " + code + ",") != std::string::npos) return node;
        throw std::invalid_argument(code);
    }
    const SVariable& Variable(std::size_t file, const std::string& code, const std::string& name) {
        for (const auto& node : Channel(file, code).children)
            if (node.variable.label == name) return node.variable;
        throw std::invalid_argument(name);
    }

    std::optional<CTrvVariables> m_variables;
};

TEST_F(VariablesTest, TreeShowsCountsDatesAndSilence) {
    Load();
    ASSERT_EQ(m_variables->GetTree().size(), 2u);
    EXPECT_EQ(m_variables->GetTree()[0].variable.label, "dive.tarin");
    EXPECT_EQ(m_variables->GetTree()[1].variable.label, "dive.tarout");
    const SVariable& depth = Channel(0, "DEPTH").variable;
    EXPECT_THAT(depth.label, HasSubstr("Depth sensor (101 packets, "));
    EXPECT_FALSE(depth.isSilent);
    EXPECT_THAT(Channel(0, "UTC").variable.label, HasSubstr("no packets"));
    EXPECT_TRUE(Channel(0, "UTC").variable.isSilent);
    const SVariable& field = Variable(0, "DEPTH", "Depth");
    EXPECT_EQ(field.kind, EVariable::height);
    EXPECT_EQ(m_variables->FindField(field), &Field("DEPTH", "Depth"));
    for (const char* part : {"Depth", "DEPTH", "dive.tarin", "Unit: m"})
        EXPECT_THAT(field.tip, HasSubstr(part));
}

TEST_F(VariablesTest, FilterTakesWordsInAnyOrder) {
    const std::string& words = Variable(0, "GPS_1", "Latitude").words;
    const std::pair<const char*, bool> rows[] = {
        {"", true},           {"lat", true},        {"LAT gps", true},      {"gps #1 lat", true},
        {"gps_1", true},      {"dive tarin", true}, {"input lati °", true}, {"depth", false},
        {"lat depth", false}, {"  lat  ", true}};
    for (const auto& [filter, taken] : rows) EXPECT_EQ(MatchesFilter(filter, words), taken) << filter;
}

TEST_F(VariablesTest, ValuesAreOfAskedChannelsOnly) {
    SetCursors(33);
    m_variables->ShowValuesOf({Variable(0, "DEPTH", "Depth").channel});
    Load();
    std::string why;
    EXPECT_EQ(m_variables->GetValue(Variable(0, "DEPTH", "Depth"), why), "33.000 m");
    EXPECT_EQ(m_variables->GetValue(Variable(0, "GPS_1", "Latitude"), why), "");
    EXPECT_THAT(m_variables->DescribeSample(Variable(0, "DEPTH", "Depth")), HasSubstr("packet 33 at byte "));
    m_variables->ShowValuesOf({Variable(0, "GPS_1", "Latitude").channel});
    SetCursors(80);
    Load();
    EXPECT_EQ(m_variables->GetValue(Variable(0, "GPS_1", "Latitude"), why), "");
    EXPECT_THAT(why, HasSubstr("No data at this time"));
}

TEST_F(VariablesTest, RemovedFileTakesItsBranchOnly) {
    auto& external = AddExternal();
    Load();
    ASSERT_EQ(m_variables->GetTree().size(), 3u);
    EXPECT_THAT(Channel(2, "DEPTH").variable.label, HasSubstr(" - second.tarin"));
    EXPECT_TRUE(m_document->GetEdits().Do(Edits::kRemoveDataFile, external));
    EXPECT_EQ(m_variables->GetTree().size(), 2u);
    Load();
    Close();
    EXPECT_TRUE(m_variables->GetTree().empty());
    EXPECT_EQ(m_variables->GetNotice(""), Text(EText::variablesNoProject));
}

// Measures of one kind share a new graph, an enumeration and another kind do not.
TEST_F(VariablesTest, NewGraphsTakeWhatFitsTogether) {
    const FieldList fields{&Field("MORVEX_STD", "Heading"), &Field("MORVEX_STD", "Roll"),
                           &Field("DEPTH", "Depth"), &Field("MORVEX_STD", "")};
    Outils_Plot2D::CPlot2DSettings settings;
    CTrv1DGraphLoader loader(*m_document, m_state, m_adaptors, settings);
    const auto& portlets = loader.GetStack().GetPortlets();
    const auto shown = static_cast<std::size_t>(
        std::ranges::count_if(portlets, [](const auto& own) { return !own->GetCurves().empty(); }));
    ASSERT_GT(shown, 0u);
    EXPECT_EQ(DescribeDrop(Project(), portlets[3].get(), {fields[0]}),
              "Adds Heading to the graph \"Heading\"");
    EXPECT_EQ(AddToNewGraphs(loader, fields), 4u);
    const auto& graphs = Project().graphSettings->graphs;
    EXPECT_EQ(graphs.size(), shown + 3) << "beside the default graphs, which stay";
    EXPECT_EQ(AddToSelectedGraph(loader, {fields[0]}), 1u);
    EXPECT_EQ(graphs.size(), shown + 4) << "the first graph shows latitudes";
    loader.GetStack().Select(3);
    EXPECT_EQ(AddToSelectedGraph(loader, {fields[0]}), 1u);
    EXPECT_EQ(graphs.size(), shown + 4);
    const auto& angles = dynamic_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(*graphs[shown]);
    EXPECT_EQ(angles.curves.size(), 2u);
    EXPECT_EQ(NameFields(fields), "4 fields");
    EXPECT_EQ(DescribeDrop(Project(), nullptr, {fields[2]}), "Makes a new graph of Depth");
}

} // namespace

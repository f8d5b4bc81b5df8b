// What adding and removing data files asks, refuses and takes along.
#include "document/edit_fixture.h"
#include "foundation/files.h"
#include "foundation/paths.h"
#include "foundation/texts.h"

namespace test {

using testing::ElementsAre;
using testing::IsEmpty;
using DataFileEdits = CEditTest;

TEST_F(DataFileEdits, PreparesFilesBeforeAdding) {
    Create();
    const auto good = m_folder / "good.tarin";
    Record(good, 9, 11);
    const auto old = m_folder / "old.tarin";
    std::filesystem::copy_file(good, old);
    test::MakeOutdated(old);
    const auto cut = m_folder / "cut.tarin";
    std::filesystem::copy_file(old, cut);
    std::filesystem::resize_file(cut, 130); // in its list of channels
    const auto text = m_folder / "gps.nmea";
    std::ofstream(text) << std::string(500, 'x');
    const auto depth = m_folder / "depth.txt";
    std::ofstream(depth) << "DEPTH TO VARNE NAV EXTERNAL DATA\n";

    struct SCase {
        std::filesystem::path chosen;
        std::vector<EAnswer> answers;
        bool canUpdate, canConvert;
        std::vector<EText> messages;
        bool added;
    };
    using enum EAnswer;
    const SCase cases[] = {
        {m_folder / "gone.tarin", {}, true, true, {EText::dataFileNotAnalyzed}, false},
        {text, {cancel}, true, true, {EText::unrecognizedDataFile}, false},
        {text, {ok}, true, false, {EText::unrecognizedDataFile}, false},
        {depth, {cancel}, true, true, {EText::convertDataFile}, false},
        {depth, {ok}, true, false, {EText::convertDataFile}, false},
        {old, {cancel}, true, true, {EText::upgradeDataFile}, false},
        {old, {ok}, false, true, {EText::upgradeDataFile}, false},
        {cut, {}, true, true, {EText::dataFileFailed}, false}, // damaged, not of a former layout
        {m_folder / "r.tarin", {}, true, true, {EText::dataFileReferenced}, false},
        {old, {ok}, true, true, {EText::upgradeDataFile}, true},
        {depth, {ok}, true, true, {EText::convertDataFile}, true},
        {good, {}, true, true, {EText::dataFileReferenced}, false}, // the converted file
    };
    for (const SCase& c : cases) {
        const auto before = Parameters().externalFiles.size();
        m_host.m_dataFile = c.chosen;
        m_host.m_answers.assign(c.answers.begin(), c.answers.end());
        m_host.m_repaired = c.canUpdate ? good : std::filesystem::path();
        m_host.m_converted = c.canConvert ? std::optional(good) : std::nullopt;
        EXPECT_EQ(m_edits.Do(Edits::kAddDataFile), c.added) << c.chosen;
        std::vector<std::string> messages;
        for (const EText message : c.messages) messages.push_back(Text(message));
        EXPECT_EQ(m_host.TakeMessages(), messages) << c.chosen;
        EXPECT_EQ(m_view.Take().size(), c.added ? 1u : 0u) << c.chosen;
        EXPECT_EQ(Parameters().externalFiles.size(), before + (c.added ? 1 : 0)) << c.chosen;
    }
    EXPECT_EQ(m_host.m_conversions.back().second, ERawFormat::depth);
    m_host.m_dataFile.reset();
    EXPECT_FALSE(m_edits.Do(Edits::kAddDataFile));
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    // One hour after the main recording, to the precision of the seconds in a UTC packet.
    const auto& file = *Parameters().externalFiles.back();
    EXPECT_EQ(file.path, good);
    EXPECT_LT(std::abs((ToSpan(file.timeOffset) - Seconds(3600)).GetTicks()), 20);
    EXPECT_TRUE(m_document.GetProject()->dataModel->FindLayer(&file, kGpsNumber));
    EXPECT_TRUE(m_host.m_queue.RunUntil(
        [&] { return m_document.GetProject()->dataModel->FindLayer(&file, kGpsNumber)->m_hasData; },
        std::chrono::seconds(30)));
}

TEST_F(DataFileEdits, RemovesOnlyUnusedFiles) {
    Create();
    CTrvDataFile* file = AddFile("e.tarin");
    ASSERT_TRUE(file && m_edits.AddSensor(ESensorKind::gps));
    auto& gps = Get<CTrvSensorGps>();
    auto& external = *file->FindChannelForSensor(gps);
    auto& main = *gps.channel;
    ASSERT_TRUE(m_edits.Do(Edits::kChangeSensorDataFileChannel, gps,
                           external)); // the main file stays without a question
    EXPECT_THAT(m_host.m_messages, IsEmpty());
    m_view.Take();
    ExpectRefused(m_edits.Do(Edits::kRemoveDataFile, *file), EText::dataFileInUse);
    ExpectRefused(m_edits.Do(Edits::kRemoveDataFile, *Parameters().outputFile), EText::dataFileInUse);

    const std::string question =
        Outils_Texte::FormatText(EText::dataFileUnused, {Outils_Fichiers::ToText(file->path)});
    m_host.m_answers = {EAnswer::no};
    EXPECT_TRUE(m_edits.Do(Edits::kChangeSensorDataFileChannel, gps, main));
    EXPECT_THAT(m_host.TakeMessages(), ElementsAre(question));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(11, &gps)));
    EXPECT_EQ(Parameters().externalFiles.size(), 1u);

    // Graph, curve and value on the file go with it, and the views hear of each.
    ASSERT_TRUE(m_edits.Do(Edits::kAdd1DGraphMeasure, Measure("GPS_1", "Altitude")));
    ASSERT_TRUE(m_edits.Do(Edits::kAdd1DGraphMeasure, Measure("DEPTH", "Depth", file)));
    auto& graphs = m_document.GetProject()->graphSettings->graphs;
    auto* mixed = static_cast<CTrv1DGraphMeasure*>(graphs[0].get());
    auto* lonely = static_cast<CTrv1DGraphMeasure*>(graphs[1].get());
    ASSERT_TRUE(m_edits.Do(Edits::kAdd1DCurve, *mixed, Measure("GPS_1", "Altitude", file)));
    EXPECT_EQ(mixed->curves[1]->label, "GPS_1 - Altitude (e.tarin)");
    ASSERT_TRUE(m_edits.Do(Edits::kAddInstantValuesMeasure, Measure("DEPTH", "Depth", file)));
    const CObject* value = m_document.GetProject()->instantValuesSettings->measures.back().get();
    ASSERT_TRUE(m_edits.Do(Edits::kAdd1DGraphEnum, Enum(file)));
    const CObject* states = graphs[2].get();
    ASSERT_TRUE(m_edits.Do(Edits::kAddInstantValuesEnum, Enum()));
    const auto layers = m_document.GetProject()->dataModel->m_layers.size();
    const CObject* curves[] = {mixed->curves[1].get(), lonely->curves[0].get()};
    ASSERT_TRUE(m_edits.Do(Edits::kChangeSensorDataFileChannel, gps, external));
    m_view.Take();
    m_host.m_answers = {EAnswer::yes};
    EXPECT_TRUE(m_edits.Do(Edits::kChangeSensorDataFileChannel, gps, main));
    EXPECT_THAT(m_view.Take(),
                ElementsAre(Update(11, &gps), Update(2, file), Update(44, curves[0]), Update(44, curves[1]),
                            Update(30, lonely), Update(30, states), Update(34, value)));
    EXPECT_TRUE(m_view.m_removedFileWasThere);
    EXPECT_THAT(Parameters().externalFiles, IsEmpty());
    EXPECT_EQ(mixed->curves.size(), 1u);
    EXPECT_TRUE(m_document.GetProject()->instantValuesSettings->measures.empty());
    EXPECT_EQ(m_document.GetProject()->instantValuesSettings->enums.size(), 1u);
    EXPECT_EQ(m_document.GetProject()->dataModel->m_layers.size(), layers / 2);
    m_host.m_queue.RunPending(); // whatever the threads had still to say of the file

    // A file that only a damaged archive brings in is no part of the project: nobody is asked to remove it.
    CTrvDataFile foreign;
    foreign.owner = &Parameters();
    foreign.AddChannel(main.id, "GPS_1", main.sensorClass);
    gps.channel = foreign.channels[0].get();
    EXPECT_TRUE(m_edits.Do(Edits::kChangeSensorDataFileChannel, gps, main));
    EXPECT_THAT(m_view.Take(), ElementsAre(Update(11, &gps)));
    EXPECT_THAT(m_host.m_messages, ElementsAre(question)); // of the removal above
}

} // namespace test

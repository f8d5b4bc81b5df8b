#include "field_writer.h"
#include "foundation/archive.h"
#include "model/project.h"
#include "model/registration.h"
#include "model/rules/rule.h"
#include "sample_project.h"

#include <gtest/gtest.h>

#include <algorithm>

using namespace Metier_Tarvel;
using namespace Outils_Objets;

namespace {

using Bytes = std::vector<std::uint8_t>;

std::unique_ptr<CTrvProject> Load(Bytes bytes, std::filesystem::path path = {}) {
    CClassRegistry registry;
    RegisterModelClasses(registry);
    CMemoryStream stream(std::move(bytes));
    CArchive archive(stream, CArchive::load, &registry, std::move(path));
    return CTrvProject::Load(archive);
}

Bytes Store(const CObject* object, std::filesystem::path path = {}) {
    CMemoryStream stream;
    CArchive archive(stream, CArchive::store, nullptr, std::move(path));
    archive.WriteObject(object);
    archive.Close();
    return stream.GetBytes();
}

const Bytes& Sample() {
    static const Bytes bytes = WriteSampleProject(CurrentVersions(), CurrentVersions());
    return bytes;
}

// 0 when the bytes load.
int CauseOf(Bytes bytes) {
    try {
        Load(std::move(bytes));
    } catch (const CArchiveException& exception) {
        return exception.GetCause();
    }
    return 0;
}

} // namespace

TEST(ProjectArchive, EveryVersionLoadsWithItsDefaultsAndSavesAsCurrent) {
    std::vector<Versions> older{CurrentVersions()};
    for (const auto& [name, current] : CurrentVersions())
        for (int version = 1; version < current; ++version) {
            older.push_back(CurrentVersions());
            older.back()[name] = version;
        }
    Versions oldest;
    for (const auto& [name, current] : CurrentVersions()) oldest[name] = 1;
    older.push_back(oldest);

    for (const Versions& versions : older) {
        std::string differing;
        for (const auto& [name, version] : versions)
            if (version != CurrentVersions().at(name))
                differing += name + " " + std::to_string(version) + " ";
        for (const bool narrow : {false, true}) {
            const auto project = Load(WriteSampleProject(versions, versions, {.narrowText = narrow}));
            ASSERT_TRUE(project) << differing;
            EXPECT_EQ(Store(project.get()), WriteSampleProject(CurrentVersions(), versions)) << differing;
        }
    }
}

// The first object of each class follows the name: its version, then that of its base.
TEST(ProjectArchive, VersionsThatNobodyKnowsAreRefused) {
    const Bytes newClass = {0xFF, 0xFF, 1, 0};
    std::size_t classes = 0;
    for (auto tag = Sample().begin();; ++tag) {
        tag = std::search(tag, Sample().end(), newClass.begin(), newClass.end());
        if (tag == Sample().end()) break;
        if (tag[6] != 'C') continue; // a negative number and a count
        const std::string name(tag + 6, tag + 6 + tag[4]);
        ++classes;
        for (const std::size_t base : {0, 4}) {
            const std::size_t at = static_cast<std::size_t>(tag - Sample().begin()) + 6 + name.size() + base;
            for (const int version : {0, Sample()[at] + 1, 0xFF}) {
                Bytes bytes = Sample();
                bytes[at] = static_cast<std::uint8_t>(version);
                EXPECT_EQ(CauseOf(std::move(bytes)), CArchiveException::badSchema)
                    << name << " " << version << " " << base;
            }
        }
    }
    EXPECT_EQ(classes, 40u) << "a class of project files that the sample lacks";
}

TEST(ProjectArchive, LoadTiesTheTreeTogether) {
    const auto project = Load(Sample());
    CTrvSimulationParameters& parameters = *project->simulationParameters;
    EXPECT_EQ(parameters.nelixConfiguration->owner, &parameters);
    EXPECT_EQ(parameters.rules.size(), 18u);
    EXPECT_EQ(parameters.referencePosition.altitudeKind, 7);
    ASSERT_EQ(parameters.mainInputFile->channels.size(), 9u);
    for (std::size_t i = 0; i < parameters.sensors.size(); ++i) {
        const CTrvSensor& sensor = *parameters.sensors[i];
        EXPECT_EQ(sensor.owner, &parameters);
        EXPECT_EQ(sensor.channel, parameters.mainInputFile->channels[i].get());
        EXPECT_EQ(sensor.channel->file, parameters.mainInputFile.get());
        EXPECT_EQ(parameters.mainInputFile->FindChannelForSensor(sensor), sensor.channel);
        EXPECT_EQ(ToSpan(sensor.timeOffset).GetTicks(), -1000 - static_cast<std::int64_t>(i));
    }
    EXPECT_EQ(project->graphSettings->project, project.get());
    EXPECT_EQ(project->instantValuesSettings->project, project.get());
    EXPECT_EQ(project->instantValuesSettings->measures.at(0)->settings, project->instantValuesSettings.get());
    const auto& graph =
        static_cast<const Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(*project->graphSettings->graphs[1]);
    EXPECT_EQ(graph.curves.at(0)->dataFile, parameters.externalFiles.at(0).get());
}

TEST(ProjectArchive, HoldersAreSetWhateverTheFileNames) {
    const auto project =
        Load(WriteSampleProject(CurrentVersions(), CurrentVersions(), {.nullHolders = true}));
    EXPECT_EQ(Store(project.get()), Sample());
}

TEST(ProjectArchive, ReferencesToOthersMayBeNull) {
    const auto project = Load(Sample());
    for (const auto& sensor : project->simulationParameters->sensors) sensor->channel = nullptr;
    auto& graphs = project->graphSettings->graphs;
    static_cast<Metier_Tarvel_Graphics::CTrv1DGraphEnum&>(*graphs[0]).dataFile = nullptr;
    static_cast<Metier_Tarvel_Graphics::CTrv1DGraphMeasure&>(*graphs[1]).curves[0]->dataFile = nullptr;
    project->instantValuesSettings->measures[0]->dataFile = nullptr;
    const Bytes stored = Store(project.get());
    EXPECT_EQ(Store(Load(stored).get()), stored);
}

// The engine's parameter file has the parameters as its root, and sensors before the files of their channels.
TEST(ProjectArchive, ParametersAloneRoundTrip) {
    const auto project = Load(Sample());
    const Bytes stored = Store(project->simulationParameters.get());
    CClassRegistry registry;
    RegisterModelClasses(registry);
    CMemoryStream stream(stored);
    CArchive archive(stream, CArchive::load, &registry);
    const auto parameters = CTrvSimulationParameters::Load(archive);
    ASSERT_TRUE(parameters);
    EXPECT_EQ(Store(parameters.get()), stored);
}

TEST(ProjectArchive, NullIsNoProject) { EXPECT_FALSE(Load({0, 0})); }

TEST(ProjectArchive, EveryTruncationIsAnEndOfFile) {
    for (std::size_t size = 0; size < Sample().size(); ++size) {
        const int cause =
            CauseOf(Bytes(Sample().begin(), Sample().begin() + static_cast<std::ptrdiff_t>(size)));
        ASSERT_EQ(cause, CArchiveException::endOfFile) << size;
    }
}

// Whatever loads can be checked, stored and destroyed.
TEST(ProjectArchive, DamagedBytesNeverCrash) {
    for (std::size_t at = 0; at < Sample().size(); ++at)
        for (const std::uint8_t flip : {0x01, 0xFF}) {
            Bytes bytes = Sample();
            bytes[at] ^= flip;
            try {
                const auto project = Load(std::move(bytes));
                if (!project) continue;
                Metier_Tarvel_Regles::CTrvRuleReport report;
                project->simulationParameters->Validate(report);
                for (const CTrvDataFile* file : project->simulationParameters->GetDataFiles())
                    file->IsReferenced();
                Store(project.get());
            } catch (const CArchiveException&) {
            }
        }
}

namespace {

// Replaces the last `old` in the sample: the tags of objects are 16-bit words.
Bytes WithReference(std::uint16_t from, std::uint16_t to, std::size_t occurrence) {
    Bytes bytes = Sample();
    for (std::size_t at = 0; at + 1 < bytes.size(); ++at)
        if (bytes[at] == (from & 0xFF) && bytes[at + 1] == from >> 8 && occurrence-- == 0) {
            bytes[at] = to & 0xFF;
            bytes[at + 1] = static_cast<std::uint8_t>(to >> 8);
            return bytes;
        }
    return bytes;
}

} // namespace

// Every word that may be a reference is turned to every object in turn: owners of another kind, elements that
// two lists claim, members that are null.
TEST(ProjectArchive, MisledReferencesNeverCrash) {
    int loaded = 0;
    for (std::uint16_t to = 0; to < 60; to += 3)
        for (std::uint16_t from = 1; from < 100; from += 2)
            for (std::size_t occurrence = 0; occurrence < 2; ++occurrence) {
                try {
                    const auto project = Load(WithReference(from, to, occurrence));
                    if (!project) continue;
                    ++loaded;
                    Metier_Tarvel_Regles::CTrvRuleReport report;
                    project->simulationParameters->Validate(report);
                    Store(project.get());
                } catch (const CArchiveException&) {
                }
            }
    EXPECT_GT(loaded, 0);
}

TEST(ProjectArchive, MandatoryMembersMayNotBeNull) {
    CTrvProject project;
    CTrvSimulationParameters& parameters = *project.simulationParameters;
    parameters.outputFile.reset();
    EXPECT_EQ(CauseOf(Store(&project)), CArchiveException::badIndex);
    parameters.outputFile = std::make_unique<CTrvDataFile>(parameters, "/b.tarout");
    parameters.nelixConfiguration->type.reset();
    EXPECT_EQ(CauseOf(Store(&project)), CArchiveException::badIndex);
    parameters.nelixConfiguration->type = std::make_unique<CTrvNelixType>();
    EXPECT_EQ(CauseOf(Store(&project)), 0);
}

TEST(ProjectArchive, ChannelOfAFileInNoListStaysUsable) {
    CTrvProject project;
    CTrvSimulationParameters& parameters = *project.simulationParameters;
    parameters.mainInputFile->AddChannel(3, "DEPTH", "CTrvSensorDepth");
    CTrvSensor* sensor = parameters.AddSensor(ESensorKind::depth);
    ASSERT_TRUE(sensor);
    CTrvDataFile gone(parameters, "/gone.tarin");
    gone.AddChannel(4, "DEPTH", "CTrvSensorDepth");
    sensor->channel = gone.channels[0].get();
    project.graphSettings->AddEnumGraph("g", &gone, 4, 0, "l");

    const Bytes stored = Store(&project);
    const auto loaded = Load(stored);
    const CTrvDataFileChannel* channel = loaded->simulationParameters->sensors.at(0)->channel;
    EXPECT_EQ(channel->file->path, "/gone.tarin");
    EXPECT_EQ(channel->file->channels.at(0).get(), channel);
    EXPECT_EQ(Store(loaded.get()), stored);

    project.graphSettings->graphs.clear();
    gone.channels[0]->file = nullptr;
    EXPECT_EQ(CauseOf(Store(&project)), CArchiveException::badIndex);
}

TEST(ProjectArchive, DataFilesMoveWithTheProjectFolder) {
    CTrvProject project("/tmp/mission/data/a.tarin", "/tmp/mission/a.tarout");
    const Bytes stored = Store(&project, "/tmp/mission/a.tarprj");
    const auto moved = Load(stored, "/tmp/elsewhere/deep/a.tarprj");
    EXPECT_EQ(moved->simulationParameters->mainInputFile->path, "/tmp/elsewhere/deep/data/a.tarin");
    EXPECT_EQ(moved->simulationParameters->outputFile->path, "/tmp/elsewhere/deep/a.tarout");
    EXPECT_EQ(Store(moved.get(), "/tmp/elsewhere/deep/a.tarprj"), stored);
}

TEST(ProjectArchive, PathsOfTheOriginalPlatformFindTheirFileOrStayAsTheyAre) {
    const std::filesystem::path file = "/m/projects/a.tarprj";
    const struct {
        int version;
        std::string text; // Latin-1
        const char* path; // once loaded
        const char* saved;
    } rows[] = {
        {3, "..\\data\\x.tarin", "/m/data/x.tarin", "..\\data\\x.tarin"},
        {3, "../data/x.tarin", "/m/data/x.tarin", "..\\data\\x.tarin"},
        {3, ".\\a\\.\\b\\..\\x.tarin", "/m/projects/a/x.tarin", ".\\a\\x.tarin"},
        {3, "x.tarin", "/m/projects/x.tarin", ".\\x.tarin"},
        {3, "..\\\xE9t\xE9\\x.tarin", "/m/\u00E9t\u00E9/x.tarin", "..\\\u00E9t\u00E9\\x.tarin"},
        {3, "D:\\data\\x.tarin", "D:\\data\\x.tarin", "D:\\data\\x.tarin"},
        {3, "d:x.tarin", "d:x.tarin", "d:x.tarin"},
        {3, "\\\\server\\x.tarin", "\\\\server\\x.tarin", "\\\\server\\x.tarin"},
        {3, "/m/data/x.tarin", "/m/data/x.tarin", "..\\data\\x.tarin"},
        {3, "/proc/none/x.tarin", "/proc/none/x.tarin", "/proc/none/x.tarin"}, // another volume
        {3, "", "", ""},
        // Not resolved by these versions, and once saved by the present one at the next load.
        {2, "..\\data\\x.tarin", "..\\data\\x.tarin", "..\\data\\x.tarin"},
        {1, "x.tarin", "x.tarin", "x.tarin"},
        {1, "D:\\data\\x.tarin", "D:\\data\\x.tarin", "D:\\data\\x.tarin"},
    };
    const auto pathOf = [](const std::unique_ptr<CTrvProject>& project) {
        return project->simulationParameters->mainInputFile->path;
    };
    for (const auto& row : rows)
        for (const bool narrow : {false, true}) {
            Versions versions = CurrentVersions();
            versions["CTrvDataFile"] = row.version;
            const auto project = Load(
                WriteSampleProject(versions, versions, {.narrowText = narrow, .mainFile = row.text}), file);
            EXPECT_EQ(pathOf(project), row.path) << row.text;
            const Bytes stored = Store(project.get(), file);
            EXPECT_EQ(pathOf(Load(stored)), row.saved) << row.text; // as it stands without a folder
            const Bytes again = Store(Load(stored, file).get(), file);
            EXPECT_EQ(again, Store(Load(again, file).get(), file)) << row.text;
        }
}

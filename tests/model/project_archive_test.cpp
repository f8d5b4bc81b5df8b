#include "foundation/archive.h"
#include "model/project.h"
#include "model/registration.h"
#include "model/rules/rule_report.h"
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

TEST(ProjectArchive, EveryVersionLoadsWithDefaults) {
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
TEST(ProjectArchive, UnknownVersionsAreRefused) {
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

TEST(ProjectArchive, HoldersComeFromTheModel) {
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

TEST(ProjectArchive, TruncatedArchivesAreRefused) {
    EXPECT_FALSE(Load({0, 0}));
    for (std::size_t size = 0; size < Sample().size(); ++size) {
        Bytes bytes = Sample();
        bytes.resize(size);
        ASSERT_EQ(CauseOf(std::move(bytes)), CArchiveException::endOfFile) << size;
    }
}

namespace {

// Whatever loads can be checked, stored and destroyed: the sanitizers are the judges. Whether the bytes load.
bool Exercise(Bytes bytes) {
    try {
        const auto project = Load(std::move(bytes));
        if (!project) return false;
        Metier_Tarvel_Regles::CTrvRuleReport report;
        project->simulationParameters->Validate(report);
        for (const CTrvDataFile* file : project->simulationParameters->GetDataFiles()) file->IsReferenced();
        Store(project.get());
        return true;
    } catch (const CArchiveException&) {
        return false;
    }
}

} // namespace

// Every word that may be a reference is also turned to others: owners of another kind, elements that two
// lists claim, members that are null.
TEST(ProjectArchive, DamagedBytesNeverCrash) {
    int loaded = 0;
    for (std::size_t at = 0; at < Sample().size(); ++at) {
        const std::uint8_t byte = Sample()[at];
        std::vector<int> values{byte ^ 0x01, byte ^ 0xFF};
        if (byte % 2 == 1 && byte < 100 && at + 1 < Sample().size() && Sample()[at + 1] == 0)
            for (int to = 0; to < 60; to += 7) values.push_back(to);
        for (const int value : values) {
            Bytes bytes = Sample();
            bytes[at] = static_cast<std::uint8_t>(value);
            loaded += Exercise(std::move(bytes));
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

TEST(ProjectArchive, UnlistedChannelsStayUsable) {
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

TEST(ProjectArchive, OriginalPathsFindTheirFiles) {
    const std::filesystem::path file = "/m/projects/a.tarprj";
    const std::tuple<int, std::string, const char*, const char*> rows[] = {
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
    for (const auto& [version, text, path, saved] : rows)
        for (const bool narrow : {false, true}) {
            Versions versions = CurrentVersions();
            versions["CTrvDataFile"] = version;
            const auto project =
                Load(WriteSampleProject(versions, versions, {.narrowText = narrow, .mainFile = text}), file);
            EXPECT_EQ(pathOf(project), path) << text;
            const Bytes stored = Store(project.get(), file);
            EXPECT_EQ(pathOf(Load(stored)), saved) << text; // as it stands without a folder
            const Bytes again = Store(Load(stored, file).get(), file);
            for (const char* folder : {"/m/projects/a.tarprj", "/elsewhere/deep/a.tarprj"})
                EXPECT_EQ(Store(Load(again, folder).get(), folder), again) << text;
        }
}

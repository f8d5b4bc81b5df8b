// A document over a recording with a channel for every kind of sensor, whose views and messages are kept.
#pragma once

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "document/edits.h"
#include "document/project_creation.h"
#include "document/scripted_host.h"
#include "foundation/archive.h"
#include "foundation/text_id.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace test {

using namespace Application_Tarvel;
using namespace Metier_Tarvel;
using namespace Metier_Tarvel_DataModel;
using namespace Metier_Tarvel_Graphics;
using Outils_Texte::EText;
using Outils_Texte::GetText;

using Update = std::pair<int, const CObject*>;

// Keeps what the document reports to its views, and whether a removed data file was still in the project.
class CUpdateView : public IDocumentView {
  public:
    explicit CUpdateView(const CTrvDocument& document) : m_document(document) {}
    void OnUpdate(EHint hint, const CObject* object) override {
        if (hint == hintChannelFound || hint == hintDataFileContentChanged) return; // of the threads
        m_updates.push_back({hint, object});
        if (hint == hintDataFileRemoved) {
            const auto files = m_document.GetProject()->simulationParameters->GetDataFiles();
            m_removedFileWasThere = std::ranges::find(files, object) != files.end();
        }
    }
    std::vector<Update> Take() { return std::exchange(m_updates, {}); }
    bool m_removedFileWasThere = false;

  private:
    const CTrvDocument& m_document;
    std::vector<Update> m_updates;
};

class CEditTest : public testing::Test {
  protected:
    CEditTest() { Record(m_folder / "r.tarin", 9, 10); }

    // A recording with a channel for every kind of sensor, whose UTC origin is at `hour`.
    static void Record(const std::filesystem::path& path, int equipment, int hour) {
        constexpr std::string_view channels[] = {"IMU",      "DVL_BT",    "EM_LOG_1",  "GPS_1",
                                                 "DEPTH",    "USBL_1",    "LBL",       "UTC",
                                                 "ODOMETER", "SYNCHRO_1", "NELIX_NAV", "PLATFORM_ORIENT"};
        CTestRecording recording(path);
        ASSERT_TRUE(recording.GetWriter().Create(path, channels));
        recording.Imu(0, equipment);
        recording.Gps(0.1, 48.5, -4.5, 10);
        recording.Utc(0.2, 2024, hour, 0, 0.2f);
        ASSERT_TRUE(recording.GetWriter().Close());
    }
    void Create() {
        std::string message;
        auto project = CreateProject({m_folder / "r.tarin", m_folder / "p.tarprj"}, message);
        ASSERT_TRUE(project) << message;
        ASSERT_TRUE(m_document.NewFromProject(std::move(project), m_folder / "p.tarprj"));
        m_view.Take();
    }
    CTrvSimulationParameters& Parameters() { return *m_document.GetProject()->simulationParameters; }
    template <class Sensor>
    Sensor& Get() {
        for (const auto& sensor : Parameters().sensors)
            if (auto* found = dynamic_cast<Sensor*>(sensor.get())) return *found;
        throw std::runtime_error("no such sensor");
    }
    // The measure of the main file's channel, or of another file's.
    const CTrvMeasureDef& Measure(std::string_view channel, std::string_view name,
                                  const CTrvDataFile* file = nullptr) {
        if (!file) file = Parameters().mainInputFile.get();
        for (const auto& layer : m_document.GetProject()->dataModel->m_layers)
            for (const auto& measure : layer->m_measures)
                if (layer->m_dataFile == file && layer->m_name == channel && measure->m_name == name)
                    return *measure;
        throw std::runtime_error("no such measure");
    }
    const CTrvEnumDef& Enum(const CTrvDataFile* file = nullptr) {
        if (!file) file = Parameters().mainInputFile.get();
        for (const auto& layer : m_document.GetProject()->dataModel->m_layers)
            if (layer->m_dataFile == file && !layer->m_enums.empty()) return *layer->m_enums.front();
        throw std::runtime_error("no enumeration");
    }
    CTrvDataFile* AddFile(const char* name, int hour = 11) {
        Record(m_folder / name, 9, hour);
        m_host.m_dataFile = m_folder / name;
        return m_edits.Do(Edits::kAddDataFile) ? Parameters().externalFiles.back().get() : nullptr;
    }
    std::vector<std::uint8_t> Bytes() {
        Outils_Objets::CMemoryStream stream;
        Outils_Objets::CArchive archive(stream, Outils_Objets::CArchive::store, nullptr, m_folder / "copy");
        archive.WriteObject(m_document.GetProject());
        archive.Close();
        return {stream.GetBytes().begin(), stream.GetBytes().end()};
    }
    // An edit that must leave document and model as they were, with this message.
    void ExpectRefused(bool done, EText message) {
        EXPECT_FALSE(done) << Text(message);
        EXPECT_THAT(m_host.TakeMessages(), testing::ElementsAre(Text(message)));
        EXPECT_THAT(m_view.Take(), testing::IsEmpty()) << Text(message);
    }

    CTemporaryFolder m_folder;
    CScriptedHost m_host;
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    CTrvDocument m_document{m_host, m_host.m_queue, m_configuration, false};
    CUpdateView m_view{m_document};
    CTrvDocumentEdits m_edits = m_document.GetEdits();
    struct SRegistration {
        explicit SRegistration(CEditTest& test) { test.m_document.AddView(&test.m_view); }
    } m_registration{*this};
};

} // namespace test

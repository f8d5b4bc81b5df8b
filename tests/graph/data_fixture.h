// A document over a small dive whose every value is known: depth in metres and time in seconds are the same
// number, the heading turns through north, the result goes north-east.
#pragma once

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "document/edits.h"
#include "document/scripted_host.h"
#include "graph/fabricated.h"
#include "graph/view_state.h"
#include "values/adaptors.h"
#include "xpf/tarout_layouts.h"

#include <algorithm>
#include <optional>
#include <stdexcept>

namespace test {

using namespace Application_Tarvel;
using namespace Presentation_Tarvel_Graphics;
using Metier_Tarvel_DataModel::CTrvDataLayer;
using Metier_Tarvel_DataModel::CTrvFieldDef;

constexpr int kDiveEnd = 100;               // seconds, of depth and result
constexpr int kGpsBegin = 10, kGpsEnd = 60; // seconds
constexpr int kOnlyImu = 30;                // the date of a single inertial packet
constexpr double kFirstLatitude = 45, kFirstLongitude = -4, kDegreesPerSecond = 1e-5;
constexpr double kFirstHeading = 350; // degrees at time zero, one degree a second

class CDataFixture : public testing::Test {
  protected:
    CDataFixture() {
        {
            CTestRecording recording(m_folder / "dive.tarin");
            for (int t = 0; t <= kDiveEnd; ++t) recording.Depth(t, static_cast<float>(t));
            for (int t = kGpsBegin; t <= kGpsEnd; ++t)
                recording.Gps(t, kFirstLatitude + t * kDegreesPerSecond,
                              kFirstLongitude + t * kDegreesPerSecond, 0);
            recording.Imu(kOnlyImu, 9);
        }
        constexpr std::string_view computed[] = {"MORVEX_STD"};
        Enregistrement::CRecordingWriter result;
        EXPECT_TRUE(result.Create(m_folder / "dive.tarout", computed));
        for (int t = 0; t <= kDiveEnd; ++t) {
            const auto packet = MakeResult(t, kFirstLatitude + t * kDegreesPerSecond);
            packet->SetDouble(kLongitude, kFirstLongitude + t * kDegreesPerSecond);
            const auto& layout = Persistance_Xpf::kMorvexStdLayout;
            packet->SetDouble(layout.IndexOf("Heading"), std::fmod(kFirstHeading + t, 360));
            packet->SetDouble(layout.IndexOf("Std. dev. north"), 3);
            packet->SetDouble(layout.IndexOf("Std. dev. east"), 4);
            EXPECT_TRUE(result.Write("MORVEX_STD", *packet));
        }
        EXPECT_TRUE(result.Close());
        m_adaptors.Configure(m_config);
        m_document.emplace(m_host, m_host.m_queue, m_config, false);
        auto project =
            std::make_unique<Metier_Tarvel::CTrvProject>(m_folder / "dive.tarin", m_folder / "dive.tarout");
        EXPECT_TRUE(m_document->NewFromProject(std::move(project), m_folder / "dive.tarprj"));
        // An opened project has all its files analysed.
        EXPECT_TRUE(m_document->OpenDocument(m_folder / "dive.tarprj"));
        RunUntil([this] { return HasData("MORVEX_STD") && HasData("GPS_1") && HasData("DEPTH"); });
        RunUntil([this] { return !m_document->IsAnalysing(); });
        m_host.m_queue.RunPending();
    }

    void RunUntil(const std::function<bool()>& done) {
        EXPECT_TRUE(m_host.m_queue.RunUntil(done, std::chrono::seconds(60)));
    }
    bool HasData(std::string_view channel) {
        return std::ranges::any_of(Project().dataModel->m_layers, [&](const auto& layer) {
            return layer->m_name == channel && layer->m_hasData;
        });
    }
    // Without saving.
    void Close() {
        m_host.m_answers.push_back(EAnswer::no);
        EXPECT_TRUE(m_document->CloseDocument());
    }
    Metier_Tarvel::CTrvProject& Project() { return *m_document->GetProject(); }
    Metier_Tarvel::CTrvSimulationParameters& Parameters() { return *Project().simulationParameters; }
    Metier_Tarvel::CTrvDataFile& Recording() { return *Parameters().mainInputFile; }
    // By the codes of channel and field.
    const CTrvFieldDef& Field(std::string_view channel, std::string_view name) {
        for (const auto& layer : Project().dataModel->m_layers) {
            if (layer->m_name != channel) continue;
            for (const auto& measure : layer->m_measures)
                if (measure->m_name == name) return *measure;
            for (const auto& state : layer->m_enums)
                if (state->m_name == name || name.empty()) return *state;
        }
        throw std::invalid_argument("no such field");
    }
    // A second recording, as an external file.
    Metier_Tarvel::CTrvDataFile& AddExternal() {
        {
            CTestRecording recording(m_folder / "second.tarin");
            for (int t = 0; t <= kDiveEnd; ++t) recording.Depth(t, 1);
        }
        m_host.m_dataFile = m_folder / "second.tarin";
        EXPECT_TRUE(m_document->GetEdits().Do(Edits::kAddDataFile));
        RunUntil([this] { return !m_document->IsAnalysing(); });
        return *Parameters().externalFiles.back();
    }
    void SetCursors(std::optional<double> first, std::optional<double> second = {}) {
        const auto toTime = [](std::optional<double> at) -> std::optional<CDateTimeSpan> {
            if (!at) return std::nullopt;
            return Seconds(*at);
        };
        m_state.SetCursor(ECursor::first, toTime(first));
        m_state.SetCursor(ECursor::second, toTime(second));
    }

    CTemporaryFolder m_folder;
    Outils_Configuration::CTrvCnfConfigFile m_config;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    CScriptedHost m_host;
    CViewState m_state;
    std::optional<CTrvDocument> m_document;
};

} // namespace test

// A session without a window over real files: a document with a recording and a result, and the graphs on it.
#pragma once

#include "config/config_file.h"
#include "document/scripted_host.h"
#include "graph/fabricated.h"
#include "graph/loader.h"
#include "recording/recording_writer.h"
#include "support/temporary_folder.h"

#include <gtest/gtest.h>

namespace test {

using namespace Persistance_Xpf;
using Outils_Configuration::Cnf;

// The curves of a default graph.
inline constexpr std::size_t kRecording = 0, kResult = 1;

// A recording of five minutes with the unit's own navigation, a result of its first two minutes, and a
// document on both.
class Dive : public testing::Test {
  protected:
    Dive() {
        constexpr std::string_view recorded[] = {"NELIX_NAV", "DEPTH"};
        Enregistrement::CRecordingWriter recording;
        EXPECT_TRUE(recording.Create(m_folder / "dive.tarin", recorded));
        CXpfTarinNelixNavPacketV2 navigation;
        CXpfTarinDepthPacketV1 depth;
        for (int second = 0; second <= 300; ++second) {
            navigation.SetDate(0, Seconds(second));
            navigation.SetDouble(4, 43 + second * 1e-4);
            EXPECT_TRUE(recording.Write("NELIX_NAV", navigation));
            depth.SetDate(0, Seconds(second));
            depth.SetUInt8(2, second >= 200); // the first state ends
            EXPECT_TRUE(second % 100 != 0 || recording.Write("DEPTH", depth));
        }
        EXPECT_TRUE(recording.Close());
        BeginResult();
        Compute(0, 120);
        m_adaptors.Configure(m_config);
    }
    ~Dive() override {
        m_loader.reset();
        m_document.reset();
    }

    void BeginResult() {
        constexpr std::string_view computed[] = {"MORVEX_STD"};
        EXPECT_TRUE(m_result.Create(m_folder / "dive.tarout", computed));
    }
    void Compute(int from, int to, double value = 43.5) {
        for (int second = from; second <= to; ++second)
            EXPECT_TRUE(m_result.Write("MORVEX_STD", *MakeResult(second, value)));
        EXPECT_TRUE(m_result.Flush());
    }
    void Open() {
        m_document.emplace(m_host, m_host.m_queue, m_config, false);
        auto project =
            std::make_unique<Metier_Tarvel::CTrvProject>(m_folder / "dive.tarin", m_folder / "dive.tarout");
        m_document->NewFromProject(std::move(project), m_folder / "dive.tarprj");
        m_loader.emplace(*m_document, m_viewState, m_adaptors, m_settings);
        m_loader->SetOnChanged([this](bool) { ++m_changes; });
        m_loader->SetViewSize({1000, 700}, 1);
    }
    void OpenAndLoad() {
        Open();
        Load();
    }
    bool RunUntil(const std::function<bool()>& done) {
        return m_host.m_queue.RunUntil(done, std::chrono::seconds(60));
    }
    void Load() {
        EXPECT_TRUE(RunUntil([this] { return !m_loader->IsLoading(); }));
    }
    void Tell(EHint hint, Metier_Tarvel::CTrvDataFile* file = nullptr) {
        m_document->UpdateAllViews(nullptr, hint, file);
    }
    Metier_Tarvel::CTrvSimulationParameters& Parameters() {
        return *m_document->GetProject()->simulationParameters;
    }
    Metier_Tarvel::CTrvDataFile& Result() { return *Parameters().outputFile; }
    Metier_Tarvel::CTrvDataFile& Recording() { return *Parameters().mainInputFile; }
    CTrv1DGraphStack& Stack() { return m_loader->GetStack(); }
    std::pair<double, double> Shown() {
        return {Stack().GetPeriod().start.GetTotalSeconds(), Stack().GetPeriod().end.GetTotalSeconds()};
    }
    CTrv1DGraphDataSource& Source(std::size_t portlet, std::size_t curve) {
        std::vector<CTrv1DGraphDataSource*> sources;
        Stack().GetPortlets()[portlet]->ForEachSource([&](auto& source) { sources.push_back(&source); });
        return *sources.at(curve);
    }
    std::size_t CurveCount() { return Stack().GetPortlets()[0]->GetPlot().GetSeries().size(); }
    // The time of the last point of a curve of the first graph.
    double LastTime(std::size_t curve) {
        double x = 0, y = 0;
        auto& source = Source(0, curve);
        if (source.GetCount() == 0 || !source.GetPoint(source.GetCount() - 1, x, y)) return -1;
        const auto [start, end] = Shown();
        return start + x / 100 * (end - start);
    }

    test::CTemporaryFolder m_folder;
    Enregistrement::CRecordingWriter m_result;
    Outils_Configuration::CTrvCnfConfigFile m_config;
    Outils_Valeurs::CTrvAdaptors m_adaptors;
    Outils_Plot2D::CPlot2DSettings m_settings;
    CScriptedHost m_host;
    std::optional<CTrvDocument> m_document;
    CViewState m_viewState;
    std::optional<CTrv1DGraphLoader> m_loader;
    int m_changes = 0;
};

using Period = std::pair<double, double>;

} // namespace test

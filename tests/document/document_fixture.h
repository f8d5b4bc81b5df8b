// A document over a real recording, with scripted answers and the test engine.
#pragma once

#include "config/config_file.h"
#include "dataaccess/test_recording.h"
#include "document/document.h"
#include "document/project_creation.h"
#include "document/scripted_host.h"
#include "foundation/files.h"
#include "foundation/text_id.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <string>
#include <vector>

namespace test {

// Writes down the hints that the document gives its views.
class CRecordingView : public IDocumentView {
  public:
    void OnUpdate(EHint hint, const Outils_Objets::CObject*) override { m_hints.push_back(hint); }
    bool Saw(EHint hint) const { return std::find(m_hints.begin(), m_hints.end(), hint) != m_hints.end(); }
    std::vector<EHint> m_hints;
};

// An inertial packet each hundredth of a second, a position each second, and the UTC at 0.2 s.
inline void Record(CTestRecording& recording, int from, int to) {
    for (int i = from; i < to; ++i) {
        recording.Imu(i * 0.01, 14, i % 6000);
        if (i % 100 == 50) recording.Gps(i * 0.01, 48.5, -4.5, 10);
        if (i == 20) recording.Utc(0.2, 2024, 10, 0, 0.2f);
    }
    recording.Flush();
}

inline std::vector<std::uint8_t> BytesOf(const std::filesystem::path& path) {
    return Outils_Fichiers::ReadWholeFile(path, 1 << 20).value_or(std::vector<std::uint8_t>());
}

// A document, a recording of three seconds, and the test engine. No temporary files of other tests are seen.
class CDocumentFixture : public testing::Test {
  protected:
    CDocumentFixture() {
        std::filesystem::create_directory(m_temporary);
        ::setenv("TMPDIR", m_temporary.c_str(), 1);
        m_host.m_programFolder = TEST_ENGINE_FOLDER;
        m_configuration.Set(Outils_Configuration::Cnf<"process/morvex">, "test_engine");
        m_document.AddView(&m_view);
        CTestRecording recording(m_recording);
        Record(recording, 0, 300);
    }
    ~CDocumentFixture() override {
        EXPECT_EQ(m_host.m_waitCursors, 0);
        ::unsetenv("TMPDIR");
    }

    // A new project over the recording, saved as "p.tarprj".
    void Create() {
        std::string message;
        auto project = CreateProject({m_recording, m_project}, message);
        ASSERT_TRUE(project) << message;
        ASSERT_TRUE(m_document.NewFromProject(std::move(project), m_project));
        m_host.m_queue.RunPending();
    }
    bool PumpUntil(const std::function<bool()>& done) {
        return m_host.m_queue.RunUntil(done, std::chrono::seconds(30));
    }
    void PumpRunToItsEnd() {
        while (m_document.IsSimulationRunning()) m_host.m_queue.RunOne(std::chrono::milliseconds(10));
        m_host.m_queue.RunPending();
    }
    // The way of the next engines (test_engine.cpp), and the file that they give as their result.
    void UseEngine(const char* mode, const std::filesystem::path& result = {}) {
        ::setenv("TEST_ENGINE", mode, 1);
        ::setenv("TEST_ENGINE_RESULT", result.c_str(), 1);
        ::setenv("TEST_ENGINE_TARGET", m_result.c_str(), 1);
    }
    std::vector<std::filesystem::path> ParameterFiles() const {
        std::vector<std::filesystem::path> files;
        for (const auto& entry : std::filesystem::directory_iterator(m_temporary))
            files.push_back(entry.path());
        return files;
    }

    test::CTemporaryFolder m_folder;
    std::filesystem::path m_temporary = m_folder / "temporary";
    std::filesystem::path m_recording = m_folder / "r.tarin";
    std::filesystem::path m_project = m_folder / "p.tarprj";
    std::filesystem::path m_result = m_folder / "p.tarout";
    test::CScriptedHost m_host;
    Outils_Configuration::CTrvCnfConfigFile m_configuration;
    CRecordingView m_view;
    CTrvDocument m_document{m_host, m_host.m_queue, m_configuration, false};
};

} // namespace test

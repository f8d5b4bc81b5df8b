// A session without a user: a frame over a folder of its own, whose dialogs are answered by a script.
#pragma once

#include "app/event_loop_target.h"
#include "app/window_session.h"
#include "dataaccess/test_recording.h"
#include "document/project_creation.h"
#include "foundation/text_id.h"

#include <QSettings>
#include <QTest>

#include <gmock/gmock.h>

#include <cstdlib>
#include <deque>
#include <functional>

namespace test {

using namespace Application_Tarvel;
using Outils_Configuration::Cnf;

class CScriptedDialogs final : public IDialogs {
  public:
    std::deque<EAnswer> m_answers;                            // ok when there is none
    std::deque<std::optional<std::filesystem::path>> m_paths; // cancelled when there is none
    std::vector<std::string> m_messages;
    std::vector<QUrl> m_links;
    bool m_linkOpens = true;
    int m_abouts = 0;

    EAnswer ShowMessage(QWidget*, const std::string& text, EButtons, EIcon) override {
        m_messages.push_back(text);
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr); // no question under a wait cursor
        return Take(m_answers, EAnswer::ok);
    }
    std::vector<std::filesystem::path> AskPath(QWidget*, const SPathQuestion&) override {
        const auto path = Take(m_paths, {});
        return path ? std::vector{*path} : std::vector<std::filesystem::path>();
    }
    void ShowAbout(QWidget*, const CVersionInfo&) override { ++m_abouts; }
    // Fill the dialog in and answer it; cancelled when there is none.
    std::function<bool(Dialogue_Tarvel::CNewProjectWizard&)> m_wizard;
    std::function<bool(Dialogue_Tarvel::CNewFromBatchParametersDlg&)> m_batch;
    std::function<bool(Dialogue_Tarvel::CDataFileChooser&)> m_file;
    std::function<bool(Dialogue_Tarvel::CDataFileChannelChooser&)> m_channel;
    std::function<bool(Dialogue_Tarvel::CRoughMisalignmentChooser&)> m_rough;
    std::function<bool(Dialogue_Tarvel::CTrvSettingsDlg&)> m_settings;
    bool Show(QWidget*, Dialogue_Tarvel::CNewProjectWizard& d) override { return m_wizard && m_wizard(d); }
    bool Show(QWidget*, Dialogue_Tarvel::CNewFromBatchParametersDlg& d) override {
        return m_batch && m_batch(d);
    }
    bool Show(QWidget*, Dialogue_Tarvel::CDataFileChooser& d) override { return m_file && m_file(d); }
    bool Show(QWidget*, Dialogue_Tarvel::CDataFileChannelChooser& d) override {
        return m_channel && m_channel(d);
    }
    bool Show(QWidget*, Dialogue_Tarvel::CRoughMisalignmentChooser& d) override {
        return m_rough && m_rough(d);
    }
    bool Show(QWidget*, Dialogue_Tarvel::CTrvSettingsDlg& d) override { return m_settings && m_settings(d); }
    std::function<bool(Dialogue_Tarvel::CRelinkDialog&)> m_relink;
    bool Show(QWidget*, Dialogue_Tarvel::CRelinkDialog& d) override { return m_relink && m_relink(d); }
    std::function<bool(Presentation_Tarvel_Graphics::CForm&)> m_form;
    bool Show(QWidget*, Presentation_Tarvel_Graphics::CForm& d) override { return m_form && m_form(d); }
    std::function<bool(Dialogue_Tarvel::CToolDialog&)> m_tool;
    bool Show(QWidget*, Dialogue_Tarvel::CToolDialog& d) override { return m_tool && m_tool(d); }
    bool OpenLink(const QUrl& link) override {
        m_links.push_back(link);
        return m_linkOpens;
    }
    std::vector<std::string> TakeMessages() { return std::exchange(m_messages, {}); }

  private:
    template <class T>
    static T Take(std::deque<T>& values, T value) {
        if (values.empty()) return value;
        value = std::move(values.front());
        values.pop_front();
        return value;
    }
};

class Session : public testing::Test {
  protected:
    Session() {
        std::filesystem::create_directory(m_folder / "temporary");
        ::setenv("TMPDIR", (m_folder / "temporary").c_str(), 1);
        m_application.GetConfiguration().Set(Cnf<"process/morvex">, TEST_ENGINE);
        MakeFrame();
    }
    ~Session() override {
        m_session.reset();
        EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
        EXPECT_TRUE(m_dialogs.m_messages.empty()) << m_dialogs.m_messages[0];
        ::unsetenv("TMPDIR");
    }

    // A new frame in place of the present one, over what the settings keep.
    void MakeFrame() {
        m_session.reset();
        m_session = std::make_unique<CWindowSession>(m_application, m_target, m_dialogs, m_settings);
        m_frame = &m_session->GetFrame();
    }
    // Writes a small recording and a project over it.
    std::filesystem::path MakeProject(const std::string& name) {
        const auto path = m_folder / (name + ".tarprj");
        {
            CTestRecording recording(m_folder / (name + ".tarin"));
            for (int i = 0; i < 100; ++i) {
                recording.Imu(i * 0.01, 14);
                if (i % 10 == 5) recording.Gps(i * 0.01, 48.5, -4.5, 10);
            }
        }
        std::string message;
        auto project = CreateProject({m_folder / (name + ".tarin"), path}, message);
        EXPECT_TRUE(project) << message;
        Outils::CMessageQueue queue;
        CTrvDocument document(m_session->GetHost(), queue, m_application.GetConfiguration(),
                              false); // beside the frame's
        EXPECT_TRUE(document.NewFromProject(std::move(project), path));
        return path;
    }
    bool PumpUntil(const std::function<bool()>& done) { return QTest::qWaitFor(done, 30'000); }
    QAction& Action(int command) { return m_frame->GetAction(command); }
    template <class T>
    T& Child(const char* name) {
        T* child = m_frame->findChild<T*>(name);
        EXPECT_TRUE(child) << name;
        return *child;
    }

    CTemporaryFolder m_folder;
    CTrvApp m_application{m_folder / "VarneNav"};
    CEventLoopTarget m_target;
    CScriptedDialogs m_dialogs;
    QSettings m_settings{QString::fromStdString((m_folder / "settings.ini").string()), QSettings::IniFormat};
    std::unique_ptr<CWindowSession> m_session;
    CTrvProjectMainFrame* m_frame = nullptr; // of the session
};

} // namespace test

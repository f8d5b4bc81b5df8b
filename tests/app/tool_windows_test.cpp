// The window of the tools, and the ways of the main frame that lead to it.
#include "app/session.h"
#include "app/tool_windows.h"
#include "dialogs/export_tools.h"
#include "dialogs/file_updater.h"
#include "dialogs/import_tools.h"
#include "views/grid_view.h"

#include <QClipboard>
#include <QDropEvent>
#include <QListWidget>
#include <QMimeData>
#include <QPlainTextEdit>
#include <QPushButton>

using namespace Application_Tarvel;
using namespace Dialogue_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Texte::EText;
using test::CTestRecording;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

std::string Message(EText text) { return std::string(Outils_Texte::GetText(text)); }

class ToolWindows : public test::Session {
  protected:
    ToolWindows() {
        std::ofstream(m_folder / "gps.nmea") << "$GPGGA,\n$GPGST,\n$GPZDA,\n";
        m_application.GetConfiguration().Set(Cnf<"process/nmea2Tarin">, (m_folder / "tool.sh").string());
        m_application.GetConfiguration().Set(Cnf<"process/tarin2Txt">, (m_folder / "tool.sh").string());
    }
    // A tool that does as the shell script says after the word "start". $last is its target.
    void Install(const std::string& script) {
        std::ofstream(m_folder / "tool.sh") << "#!/bin/sh\nfor last; do :; done\nread word\n"
                                            << script << '\n';
        std::filesystem::permissions(m_folder / "tool.sh", std::filesystem::perms::owner_all);
    }
    void Open(ERawFormat format = ERawFormat::nmea) {
        m_looks = std::make_unique<CFileLooks>(m_target);
        m_logic = std::make_unique<CTrvSimpleImporterDlg>(
            SToolServices{m_session->GetHost(), m_application.GetConfiguration(), *m_looks,
                          m_application.GetAdaptors(), false},
            format, std::vector{m_folder / "gps.nmea"});
        m_window = std::make_unique<CToolWindow>(nullptr, *m_logic);
        m_window->show();
    }
    template <class T>
    T& Find() {
        return *m_window->findChild<T*>();
    }
    QString StartText() {
        for (const auto* button : m_window->findChildren<QPushButton*>())
            if (button->isDefault()) return button->text();
        return {};
    }
    void Press(QWidget& widget, Qt::Key key) { QTest::keyClick(&widget, key); }

    std::unique_ptr<CFileLooks> m_looks;
    std::unique_ptr<CTrvSimpleImporterDlg> m_logic;
    std::unique_ptr<CToolWindow> m_window;
};

} // namespace

TEST_F(ToolWindows, EnterStartsAndTheEndCloses) {
    Install("echo 'message warning \"odd line\"'; echo x > \"$last\"");
    Open();
    Press(Find<CTrvGridView>(), Qt::Key_Return);
    EXPECT_EQ(StartText(), "&Cancel");
    EXPECT_TRUE(PumpUntil([&] { return !m_window->isVisible(); }));
    EXPECT_EQ(m_window->result(), QDialog::Accepted);
    EXPECT_EQ(m_logic->GetOutcome(), EOutcome::done);
    ASSERT_EQ(Find<QListWidget>().count(), 1);
    EXPECT_EQ(Find<QListWidget>().item(0)->text(), "WARNING : odd line");
    QTest::keyClick(&Find<QListWidget>(), Qt::Key_C, Qt::ControlModifier);
}

TEST_F(ToolWindows, EscapeClosesOnlyWhenNothingRuns) {
    Install("echo 'message info up'; read word; exit 1");
    Open();
    Press(Find<CTrvGridView>(), Qt::Key_Return);
    Press(*m_window, Qt::Key_Escape);
    EXPECT_THAT(m_dialogs.TakeMessages(), ElementsAre(Message(EText::stopToolFirst)));
    EXPECT_TRUE(m_window->isVisible());
    Press(Find<CTrvGridView>(), Qt::Key_Return); // the button is Cancel now
    EXPECT_TRUE(PumpUntil([&] { return !m_logic->IsRunning(); }));
    EXPECT_TRUE(PumpUntil([&] { return StartText() == "&Start"; }));
    EXPECT_TRUE(m_window->isVisible());
    Press(*m_window, Qt::Key_Escape);
    EXPECT_FALSE(m_window->isVisible());
    EXPECT_EQ(m_window->result(), QDialog::Rejected);
}

TEST_F(ToolWindows, FaultHasTheFocusAndTheCommandLineFollows) {
    Open(ERawFormat::kolt);
    auto& grid = Find<CTrvGridView>();
    m_logic->Write(static_cast<int>(EImportField::beacon), "300");
    Press(grid, Qt::Key_Return);
    EXPECT_THAT(m_dialogs.TakeMessages(), ElementsAre(Message(EText::beaconRange)));
    EXPECT_EQ(grid.GetSelected()->GetTitle(), "Beacon number");
    auto& line = Find<QPlainTextEdit>();
    EXPECT_TRUE(line.isHidden());
    for (auto* button : m_window->findChildren<QPushButton*>())
        if (button->isCheckable()) button->click();
    EXPECT_THAT(line.toPlainText().toStdString(), HasSubstr("/beacon 300"));
    m_logic->Write(static_cast<int>(EImportField::beacon), "12");
    EXPECT_THAT(line.toPlainText().toStdString(), HasSubstr("/beacon 12 "));
}

TEST_F(ToolWindows, DroppedLogBecomesASensor) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("p")));
    auto& parameters = *m_frame->GetDocument().GetProject()->simulationParameters;
    ASSERT_TRUE(m_frame->GetDocument().GetEdits().AddSensor(Metier_Tarvel::ESensorKind::gps));
    m_dialogs.m_tool = [&](CToolDialog& dialog) {
        auto& importer = dynamic_cast<CTrvSimpleImporterDlg&>(dialog);
        std::filesystem::copy_file(m_folder / "p.tarin", importer.GetTarget());
        Install("cp '" + (m_folder / "p.tarin").string() + "' \"$last\"");
        m_dialogs.m_answers = {EAnswer::ok};
        EXPECT_TRUE(dialog.Start());
        while (dialog.IsRunning()) dialog.Wait(std::chrono::milliseconds(20));
        return dialog.HasEnded();
    };
    QMimeData data;
    data.setUrls({QUrl::fromLocalFile(QString::fromStdString((m_folder / "gps.nmea").string()))});
    QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_frame, &enter);
    QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
    QCoreApplication::sendEvent(m_frame, &event);
    ASSERT_TRUE(PumpUntil([&] { return parameters.externalFiles.size() == 1; }))
        << testing::PrintToString(m_dialogs.TakeMessages());
    ASSERT_TRUE(PumpUntil([&] { return parameters.sensors.size() == 2; }))
        << m_frame->GetOutput().toPlainText().toStdString();
    EXPECT_EQ(parameters.externalFiles[0]->path, m_folder / "gps.tarin");
    EXPECT_EQ(parameters.sensors[1]->channel->file, parameters.externalFiles[0].get());
    EXPECT_THAT(m_dialogs.TakeMessages(),
                ElementsAre(Message(EText::convertDataFile), Message(EText::toolTargetExists)));
    EXPECT_THAT(m_frame->GetOutput().toPlainText().toStdString(),
                HasSubstr("Sensor added: Gps on channel GPS_1"));
    m_frame->GetDocument().SetModifiedFlag(false);
}

TEST_F(ToolWindows, FailedConversionAddsNothing) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("p")));
    Install("echo 'message error \"no position in it\"'; exit 1");
    m_dialogs.m_tool = [](CToolDialog& dialog) {
        dialog.Start();
        while (dialog.IsRunning()) dialog.Wait(std::chrono::milliseconds(20));
        return dialog.HasEnded();
    };
    m_frame->AddDataFile(m_folder / "gps.nmea");
    EXPECT_THAT(m_frame->GetDocument().GetProject()->simulationParameters->externalFiles, testing::IsEmpty());
    EXPECT_THAT(m_dialogs.TakeMessages(),
                ElementsAre(Message(EText::convertDataFile), HasSubstr("no position in it")));
}

TEST_F(ToolWindows, ExportOffersTheFilesOfTheProject) {
    EXPECT_FALSE(Action(commandExport).isEnabled());
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("p")));
    Install("echo x > \"$last\"");
    std::string sources;
    m_dialogs.m_tool = [&](CToolDialog& dialog) {
        for (const auto& shown : dialog.GetFields().GetShown(static_cast<int>(EExportField::source)))
            sources += shown + '\n';
        EXPECT_TRUE(dialog.Start());
        while (dialog.IsRunning()) dialog.Wait(std::chrono::milliseconds(20));
        return dialog.HasEnded();
    };
    Action(commandExport).trigger();
    EXPECT_EQ(sources, "Input file: p.tarin\nOutput file: p.tarout\n");
    ASSERT_EQ(m_dialogs.m_links.size(), 1u);
    EXPECT_TRUE(m_dialogs.m_links[0].toLocalFile().endsWith("/p.csv"));
}

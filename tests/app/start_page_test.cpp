// The window without a project, and files that come to it from outside.
#include "app/main_frame.h"
#include "app/rough_picture.h"
#include "app/start_page.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/choosers.h"
#include "dialogs/relink.h"
#include "session.h"

#include <QAbstractButton>
#include <QDockWidget>
#include <QDropEvent>
#include <QMimeData>

#include <set>

using namespace Application_Tarvel;

namespace {

class StartPage : public test::Session {
  protected:
    CTrvStartPage& Page() { return *m_frame->findChild<CTrvStartPage*>(); }
    std::vector<QAbstractButton*> Buttons() {
        std::vector<QAbstractButton*> buttons;
        for (auto* button : Page().findChildren<QAbstractButton*>())
            if (!button->isHidden()) buttons.push_back(button);
        return buttons;
    }
    void Drop(const std::vector<std::filesystem::path>& files) {
        QMimeData data;
        QList<QUrl> links;
        for (const auto& file : files) links << QUrl::fromLocalFile(QString::fromStdString(file.string()));
        data.setUrls(links);
        QDragEnterEvent enter({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_frame, &enter);
        QDropEvent event({10, 10}, Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
        QApplication::sendEvent(m_frame, &event);
    }
};

TEST_F(StartPage, OpensWhatWasOpenedLast) {
    m_frame->show();
    EXPECT_TRUE(Page().isVisible());
    EXPECT_EQ(Buttons().size(), 2U); // no project yet, and no sample
    const auto path = MakeProject("mission");
    ASSERT_TRUE(m_frame->OpenProject(path));
    EXPECT_FALSE(Page().isVisible());
    EXPECT_TRUE(m_frame->GetView().isVisible());

    MakeFrame();
    m_frame->show();
    ASSERT_EQ(Buttons().size(), 3U);
    EXPECT_EQ(Buttons()[2]->text(), "mission");
    // The date comes when the disk has told it.
    EXPECT_TRUE(PumpUntil([&] { return Buttons()[2]->toolTip().contains(", "); }));
    EXPECT_TRUE(Buttons()[2]->toolTip().startsWith(QString::fromStdString(m_folder.GetPath().string())));
    Buttons()[2]->click();
    EXPECT_TRUE(m_frame->HasProject());
    EXPECT_FALSE(Page().isVisible());
}

TEST_F(StartPage, AsksForARecordingOrAProject) {
    int asked = 0;
    m_dialogs.m_wizard = [&asked](Dialogue_Tarvel::CNewProjectWizard&) {
        ++asked;
        return false;
    };
    m_dialogs.m_paths = {MakeProject("mission")};
    Buttons()[0]->click();
    EXPECT_EQ(asked, 1);
    Buttons()[1]->click();
    EXPECT_TRUE(m_frame->HasProject());
}

TEST_F(StartPage, DroppedRecordingsJoinTheOpenProject) {
    const auto path = MakeProject("mission");
    MakeProject("second");
    ASSERT_TRUE(m_frame->OpenProject(path));
    auto& run = *m_frame->GetDocument().GetProject()->simulationParameters;
    Drop({m_folder / "second.tarin"});
    ASSERT_TRUE(PumpUntil([&] { return !run.externalFiles.empty(); }));
    EXPECT_EQ(run.externalFiles[0]->path, m_folder / "second.tarin");
    EXPECT_EQ(m_frame->GetProcessing().GetSelected()->GetObject(), run.externalFiles[0].get());
}

TEST_F(StartPage, OffersToFindMissingFiles) {
    const auto path = MakeProject("mission");
    std::filesystem::create_directory(m_folder / "moved");
    std::filesystem::rename(m_folder / "mission.tarin", m_folder / "moved/mission.tarin");
    for (const bool agrees : {false, true}) {
        m_dialogs.m_answers = {agrees ? EAnswer::yes : EAnswer::no};
        m_dialogs.m_relink = [&](Dialogue_Tarvel::CRelinkDialog& dialog) {
            EXPECT_TRUE(agrees);
            dialog.Choose(0, m_folder / "moved/mission.tarin");
            return dialog.OnOK();
        };
        ASSERT_TRUE(m_frame->OpenProject(path));
        EXPECT_EQ(m_dialogs.TakeMessages(),
                  std::vector{std::string(Outils_Texte::GetText(Outils_Texte::EText::relinkQuestion))});
        EXPECT_EQ(m_frame->GetDocument().IsModified(), agrees);
    }
    EXPECT_TRUE(PumpUntil([&] { return !m_frame->GetDocument().IsAnalysing(); }));
    EXPECT_FALSE(Action(commandRelink).isEnabled());
    EXPECT_TRUE(m_frame->GetDocument().Save());
}

TEST_F(StartPage, ADataFileIsTakenFromAnotherPlace) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
    const auto& run = *m_frame->GetDocument().GetProject()->simulationParameters;
    MakeProject("copy");
    for (const std::size_t row : {0U, 1U}) { // recording, result
        const auto place = m_folder / (row == 0 ? "copy.tarin" : "elsewhere.tarout");
        m_dialogs.m_file = [&](Dialogue_Tarvel::CDataFileChooser& chooser) {
            chooser.Select(row);
            return true;
        };
        m_dialogs.m_paths = {place};
        Action(commandMoveFile).trigger();
        EXPECT_EQ((row == 0 ? run.mainInputFile : run.outputFile)->path, place);
    }
    EXPECT_TRUE(PumpUntil([&] { return !m_frame->GetDocument().IsAnalysing(); }));
    EXPECT_TRUE(m_frame->GetDocument().Save());
}

TEST_F(StartPage, PutsPanelsBack) {
    m_frame->show();
    const auto state = [this] {
        QList<bool> shown;
        for (const int command : {commandOutputPanel, commandStandardBar, commandProcessingPanel})
            shown << m_frame->IsBarShown(command);
        for (const auto* panel : m_frame->findChildren<QDockWidget*>())
            shown << (m_frame->dockWidgetArea(const_cast<QDockWidget*>(panel)) == Qt::BottomDockWidgetArea);
        return shown;
    };
    const auto first = state();
    for (const int command : {commandOutputPanel, commandStandardBar}) m_frame->ToggleBar(command);
    m_frame->addDockWidget(Qt::BottomDockWidgetArea, m_frame->findChild<QDockWidget*>("processingPanel"));
    EXPECT_NE(state(), first);
    Action(commandResetLayout).trigger();
    EXPECT_EQ(state(), first);
}

TEST_F(StartPage, DrawsEveryPlaceOfTheUnit) {
    std::set<QByteArray> pictures;
    for (int logo = 0; logo < 6; ++logo)
        for (int connector = 0; connector < 6; ++connector) {
            if (logo / 2 == connector / 2) continue;
            CRoughPicture picture(false);
            picture.SetSides(logo, connector);
            picture.resize(picture.sizeHint());
            const QImage image = picture.grab().toImage();
            pictures.insert({reinterpret_cast<const char*>(image.constBits()), image.sizeInBytes()});
        }
    EXPECT_EQ(pictures.size(), 24U);
}

} // namespace

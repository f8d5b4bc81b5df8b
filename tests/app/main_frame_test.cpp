#include "app/main_frame.h"

#include "dialogs/project_dialogs.h"
#include "foundation/texts.h"
#include "plot/text.h"
#include "session.h"

#include <QAction>
#include <QApplication>
#include <QContextMenuEvent>
#include <QDockWidget>
#include <QDropEvent>
#include <QKeyEvent>
#include <QLabel>
#include <QMenu>
#include <QMenuBar>
#include <QMimeData>
#include <QProgressBar>
#include <QPushButton>
#include <QToolBar>

#include <set>

using namespace Application_Tarvel;
using Outils_Plot2D::Text;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

using Outils_Texte::EText;

using MainFrame = test::Session;

// All actions that the menus offer, with those of submenus.
void Collect(const QList<QAction*>& actions, std::multiset<QAction*>& found) {
    for (QAction* action : actions)
        if (action->menu())
            Collect(action->menu()->actions(), found);
        else if (!action->isSeparator())
            found.insert(action);
}

QString MenuTitles(const CTrvProjectMainFrame& frame) {
    QStringList titles;
    for (const QAction* action : frame.menuBar()->actions())
        if (action->isVisible()) titles << action->text();
    return titles.join(u' ');
}

TEST_F(MainFrame, EveryCommandHasAPlaceATextAndKeys) {
    std::set<int> ids;
    std::set<QString> shortcuts;
    std::multiset<QAction*> offered;
    Collect(m_frame->menuBar()->actions(), offered);
    for (const SCommandRow& row : GetCommands()) {
        EXPECT_TRUE(ids.insert(row.id).second) << row.id;
        EXPECT_TRUE(Text(row.text) != "?" && Text(row.tip) != "?") << row.id;
        QAction& action = Action(row.id);
        EXPECT_EQ(offered.count(&action), 1u) << row.id;
        const QString keys = action.shortcut().toString();
        EXPECT_EQ(keys.isEmpty(), *row.shortcut == '\0') << row.id;
        EXPECT_TRUE(keys.isEmpty() || shortcuts.insert(keys).second) << row.id;
        EXPECT_TRUE(!keys.isEmpty() || row.caption || Text(row.text).contains(u'&')) << row.id;
        for (const QKeySequence& key : QKeySequence::listFromString(row.graphKeys))
            EXPECT_TRUE(key == action.shortcut() || !shortcuts.contains(key.toString())) << row.id;
        EXPECT_TRUE(action.toolTip().contains(u'(') || (keys.isEmpty() && !*row.graphKeys)) << row.id;
        EXPECT_EQ(action.icon().isNull(), row.glyph == EGlyph::none) << row.id;
        EXPECT_TRUE(row.bar == EBar::none || row.glyph != EGlyph::none) << row.id;
    }
    EXPECT_EQ(offered.size(), GetCommands().size());
    for (const SMenuRow& row : GetMenus())
        EXPECT_TRUE(Text(row.text).contains(u'&')) << Text(row.text).toStdString();
}

TEST_F(MainFrame, IconsDifferAndFade) {
    std::vector<QImage> pictures;
    for (int glyph = 1; glyph < static_cast<int>(EGlyph::count); ++glyph) {
        const QIcon icon = GetIcon(static_cast<EGlyph>(glyph));
        const QImage picture = icon.pixmap(32, 32).toImage();
        EXPECT_EQ(std::count(pictures.begin(), pictures.end(), picture), 0) << glyph;
        EXPECT_NE(picture, icon.pixmap(32, 32, QIcon::Disabled).toImage()) << glyph;
        pictures.push_back(picture);
    }
}

TEST_F(MainFrame, WhatTheMenusOfferFollowsTheProject) {
    EXPECT_EQ(MenuTitles(*m_frame), "&File &Tools &?");
    EXPECT_FALSE(Action(commandSave).isEnabled() || Action(commandProcess).isEnabled());
    m_dialogs.m_paths = {MakeProject("mission")};
    Action(commandOpen).trigger();
    EXPECT_EQ(MenuTitles(*m_frame), "&File &Simulation &Display &Tools &?");
    EXPECT_EQ(m_frame->GetEquipment(), 14);
    EXPECT_TRUE(Action(commandSave).isEnabled() && Action(commandProcess).isEnabled());
    EXPECT_EQ(m_frame->windowTitle(), "mission[*] - VARNE NAV");
    EXPECT_FALSE(m_frame->isWindowModified());
    m_frame->GetDocument().ProjectChanged(hintSimulationParametersChanged, nullptr);
    EXPECT_TRUE(m_frame->isWindowModified());
    Action(commandSave).trigger();
    EXPECT_FALSE(m_frame->isWindowModified());
    m_dialogs.m_paths = {m_folder / "second[*].tarprj"};
    Action(commandSaveAs).trigger();
    EXPECT_EQ(m_frame->windowTitle(), "second[*][*][*] - VARNE NAV");

    Action(commandModePan).trigger();
    EXPECT_EQ(m_frame->GetView().GetMode(), EView1DMode::pan);
    EXPECT_TRUE(Action(commandModePan).isChecked() && !Action(commandModeSelect).isChecked());
    EXPECT_FALSE(Action(commandDeleteCurve).isEnabled()) << "no curve is selected";
    const bool legends = m_frame->GetView().AreLegendsVisible();
    Action(commandLegends).trigger();
    EXPECT_EQ(m_frame->GetView().AreLegendsVisible(), !legends);
    EXPECT_EQ(Action(commandLegends).isChecked(), !legends);

    m_frame->GetDocument().CloseDocument();
    EXPECT_EQ(m_frame->windowTitle(), "Untitled[*] - VARNE NAV");
    EXPECT_FALSE(Action(commandSave).isEnabled());
}

// The graphs' keys and their context menu do what the rows of the table say.
TEST_F(MainFrame, GraphCommandsAreReached) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("p")));
    CTrvView1D& view = m_frame->GetView();
    auto& stack = view.GetStack();
    auto& graph =
        dynamic_cast<Presentation_Tarvel_Graphics::CTrv1DGraphMeasurePortlet&>(*stack.GetSelected());
    const auto seconds = [](double value) { return Outils_Temps::CDateTimeSpan::FromSeconds(value); };
    const struct {
        int command;
        const char* key;
        double start, end, low, high;
    } rows[] = {{commandZoomHorizontal, "+", 250, 750, 0, 100},
                {commandScrollRight, "Right", 250, 1250, 0, 100},
                {commandScrollLeft, "Left", -250, 750, 0, 100},
                {commandUnzoomHorizontal, "-", -500, 1500, 0, 100},
                {commandZoomVertical, "Ctrl++", 0, 1000, 25, 75},
                {commandUnzoomVertical, "Ctrl+-", 0, 1000, -50, 150},
                {commandScrollUp, "", 0, 1000, 25, 125},
                {commandScrollDown, "", 0, 1000, -25, 75}};
    for (const auto& row : rows)
        for (const bool byKey : {false, true}) {
            view.GetLoader().ShowPeriod({seconds(0), seconds(1000)});
            graph.SetRange(0, 100);
            if (!byKey)
                Action(row.command).trigger();
            else if (const QKeySequence key(row.key); !key.isEmpty()) {
                QKeyEvent event(QEvent::KeyPress, key[0].key(), key[0].keyboardModifiers());
                QCoreApplication::sendEvent(&view, &event);
            } else
                continue;
            EXPECT_EQ(stack.GetPeriod().start, seconds(row.start)) << row.command;
            EXPECT_EQ(stack.GetPeriod().end, seconds(row.end)) << row.command;
            EXPECT_EQ(graph.GetMinimum(), row.low) << row.command;
            EXPECT_EQ(graph.GetMaximum(), row.high) << row.command;
        }

    QContextMenuEvent event(QContextMenuEvent::Keyboard, QPoint(), QPoint());
    QCoreApplication::sendEvent(view.viewport(), &event);
    auto* menu = qobject_cast<QMenu*>(QApplication::activePopupWidget());
    ASSERT_TRUE(menu);
    std::multiset<QAction*> offered;
    Collect(menu->actions(), offered);
    for (const SCommandRow& row : GetCommands())
        EXPECT_EQ(offered.count(&Action(row.id)), row.graphMenu == EContext::none ? 0u : 1u) << row.id;
    menu->close();
}

TEST_F(MainFrame, RecentProjectsAreOffered) {
    std::vector<std::filesystem::path> projects;
    for (const char* name : {"a", "b", "c", "d & e", "f"}) projects.push_back(MakeProject(name));
    for (const auto& project : projects) EXPECT_TRUE(m_frame->OpenProject(project));
    EXPECT_EQ(m_frame->GetRecentFiles().GetFirst(), projects[4]);
    EXPECT_EQ(Action(commandFirstRecent).text(), "&1 f.tarprj");
    EXPECT_EQ(Action(commandFirstRecent + 1).text(), "&2 d && e.tarprj");
    EXPECT_EQ(m_frame->GetRecentFiles().GetFiles().size(), 4u);
    Action(commandFirstRecent + 3).trigger(); // "b", which moves to the front
    EXPECT_EQ(m_frame->GetDocument().GetPathName(), projects[1]);

    MakeFrame(); // the list outlives the session
    EXPECT_THAT(m_frame->GetRecentFiles().GetFiles(),
                ElementsAre(projects[1], projects[4], projects[3], projects[2]));
    std::filesystem::remove(projects[4]);
    Action(commandFirstRecent + 1).trigger();
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 1u);
    EXPECT_THAT(m_frame->GetRecentFiles().GetFiles(), ElementsAre(projects[1], projects[3], projects[2]));
    EXPECT_FALSE(Action(commandFirstRecent + 3).isVisible());
}

TEST_F(MainFrame, KeepsItsPlacesAndPanels) {
    m_frame->show();
    for (const int command :
         {commandMenuBar, commandStandardBar, commandToolsBar, commandProcessingPanel, commandOutputPanel}) {
        EXPECT_TRUE(Action(command).isChecked()) << command;
        Action(command).trigger();
        EXPECT_FALSE(m_frame->IsBarShown(command) || Action(command).isChecked()) << command;
    }
    Action(commandMenuBar).trigger();
    Action(commandToolsBar).trigger();
    Action(commandProcessingPanel).trigger();
    m_frame->addDockWidget(Qt::RightDockWidgetArea, &Child<QDockWidget>("processingPanel"));
    m_frame->resize(1000, 700);
    EXPECT_TRUE(m_frame->close());

    MakeFrame();
    m_frame->show();
    EXPECT_EQ(m_frame->size(), QSize(1000, 700));
    EXPECT_TRUE(Child<QToolBar>("standardBar").isHidden());
    EXPECT_FALSE(Child<QToolBar>("toolsBar").isHidden());
    EXPECT_FALSE(Action(commandOutputPanel).isChecked());
    EXPECT_EQ(m_frame->dockWidgetArea(&Child<QDockWidget>("processingPanel")), Qt::RightDockWidgetArea);

    m_settings.setValue("mainFrame/geometry", QByteArray("rubbish"));
    m_settings.setValue("mainFrame/state", QByteArray("more rubbish"));
    MakeFrame();
    m_frame->show();
    EXPECT_TRUE(Action(commandOutputPanel).isChecked());
    EXPECT_EQ(m_frame->dockWidgetArea(&Child<QDockWidget>("processingPanel")), Qt::LeftDockWidgetArea);
}

TEST_F(MainFrame, ARunIsShownAndGuarded) {
    ::setenv("TEST_ENGINE", "wait", 1);
    m_frame->show();
    EXPECT_TRUE(m_frame->GetProcessing().isHidden());
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("run")));
    EXPECT_TRUE(m_frame->GetProcessing().isVisible());
    auto& button = *m_frame->GetProcessing().findChild<QPushButton*>();
    auto& progress = Child<QProgressBar>("progress");
    EXPECT_EQ(button.text(), "Process");
    EXPECT_FALSE(progress.isVisible());

    button.click();
    EXPECT_EQ(button.text(), "Stop processing");
    EXPECT_EQ(Action(commandProcess).text(), Text(EText::stop));
    EXPECT_TRUE(progress.isVisible());
    const auto output = [&] { return m_frame->GetOutput().toPlainText(); };
    EXPECT_TRUE(PumpUntil([&] { return output().endsWith("????? : odd\n"); }));
    EXPECT_EQ(output(), "INFO : parameters \"read\"\n????? : odd\n");
    EXPECT_EQ(progress.value(), 100);

    EXPECT_FALSE(m_frame->close());
    EXPECT_THAT(m_dialogs.TakeMessages(), ElementsAre(Outils_Texte::GetText(EText::stopBeforeExit)));
    EXPECT_TRUE(m_frame->isVisible() && m_frame->HasProject());

    // Nobody asks after the end but the view itself.
    Action(commandProcess).trigger();
    EXPECT_TRUE(PumpUntil([&] { return button.text() == "Process"; }));
    EXPECT_FALSE(progress.isVisible() || m_frame->IsRunning());
    EXPECT_EQ(progress.value(), 0);
    EXPECT_EQ(Action(commandProcess).text(), Text(EText::start));
    Action(commandClearOutput).trigger();
    EXPECT_EQ(output(), "");
    EXPECT_TRUE(m_frame->close());
    ::unsetenv("TEST_ENGINE");
}

TEST_F(MainFrame, ClosingAsksAboutChanges) {
    m_frame->show();
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("p")));
    m_frame->GetDocument().ProjectChanged(hintSimulationParametersChanged, nullptr);
    m_dialogs.m_answers = {EAnswer::cancel, EAnswer::no};
    EXPECT_FALSE(m_frame->close());
    EXPECT_FALSE(m_settings.contains("mainFrame/state"));
    EXPECT_TRUE(m_frame->close());
    EXPECT_TRUE(m_settings.contains("mainFrame/state"));
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 2u);
}

TEST_F(MainFrame, TakesDroppedFiles) {
    const auto project = MakeProject("dropped");
    const auto drop = [&](const QList<QUrl>& links) {
        QMimeData data;
        data.setUrls(links);
        QDragEnterEvent enter({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        QCoreApplication::sendEvent(m_frame, &enter);
        QDropEvent event({5, 5}, Qt::CopyAction, &data, Qt::LeftButton, {});
        if (enter.isAccepted()) QCoreApplication::sendEvent(m_frame, &event);
        return enter.isAccepted();
    };
    const QUrl opened = QUrl::fromLocalFile(QString::fromStdString(project.string()));
    const QUrl recording = QUrl::fromLocalFile("/somewhere/r.tarin");
    EXPECT_FALSE(drop({QUrl("ftp://somewhere/r.tarin")}));
    EXPECT_FALSE(drop({opened, recording}));
    // Of a recording a project is made.
    std::vector<std::filesystem::path> proposed;
    m_dialogs.m_wizard = [&](Dialogue_Tarvel::CNewProjectWizard& wizard) {
        proposed = wizard.GetInputFiles();
        return false;
    };
    EXPECT_TRUE(drop({recording}));
    EXPECT_TRUE(PumpUntil([&] { return !proposed.empty(); }));
    EXPECT_THAT(proposed, ElementsAre("/somewhere/r.tarin"));
    EXPECT_TRUE(drop({opened}));
    EXPECT_TRUE(PumpUntil([&] { return m_frame->HasProject(); }));
}

TEST_F(MainFrame, HelpIsOfferedWhenThereIsAny) {
    EXPECT_FALSE(Action(commandUserGuide).isEnabled());
    std::ofstream(m_folder / "VARNE NAV 2.4 User Guide.pdf") << "a guide";
    MakeFrame();
    EXPECT_TRUE(Action(commandUserGuide).isEnabled());
    Action(commandUserGuide).trigger();
    Action(commandContactSupport).trigger();
    Action(commandAbout).trigger();
    ASSERT_EQ(m_dialogs.m_links.size(), 2u);
    EXPECT_TRUE(m_dialogs.m_links[0].isLocalFile() && m_dialogs.m_links[1].scheme() == "mailto");
    EXPECT_TRUE(m_dialogs.m_links[1].toEncoded().toLower().contains("version:%202.4.0%0d%0abuild%20number:"));
    EXPECT_EQ(m_dialogs.m_abouts, 1);
    // No menu looks at the disk: a missing file is reported when the user asks for it.
    std::filesystem::remove(m_folder / "VARNE NAV 2.4 User Guide.pdf");
    m_frame->UpdateFrame();
    EXPECT_TRUE(Action(commandUserGuide).isEnabled());
    m_dialogs.m_linkOpens = false;
    Action(commandUserGuide).trigger();
    Action(commandContactSupport).trigger();
    EXPECT_THAT(m_dialogs.TakeMessages(),
                ElementsAre(testing::StartsWith("Error while opening the user guide."),
                            testing::StartsWith("Failed to prepare the e-mail.")));
}

TEST_F(MainFrame, OutputGrowsAtItsEnd) {
    CTrvOutputWnd output;
    output.AppendLine("first");
    output.moveCursor(QTextCursor::Start);
    output.AppendLine("second\nthird \xFF");
    EXPECT_EQ(output.toPlainText(), QString::fromUtf8("first\nsecond\nthird \uFFFD\n"));
    EXPECT_TRUE(output.textCursor().atEnd());
    // What a child sends as one line without end is shown whole, in lines that can be laid out.
    output.clear();
    output.AppendLine(std::string(10'000, 'x'));
    EXPECT_EQ(output.toPlainText().count(u'x'), 10'000);
    EXPECT_EQ(output.blockCount(), 4);
}

TEST_F(MainFrame, OutputShowsTheTimeOfEachText) {
    CTrvOutputWnd output;
    const QTime morning(8, 30, 15), night(23, 59, 59);
    output.AppendLine("first\nits second line", morning);
    output.AppendLine("\nafter an empty line", night);
    const QTime none;
    const QTime expected[] = {morning, none, night, none, none};
    ASSERT_EQ(output.blockCount(), 5);
    for (int line = 0; line < 5; ++line) EXPECT_EQ(output.GetTime(line), expected[line]) << line;
    EXPECT_EQ(output.GetTime(5), none);
    output.clear();
    EXPECT_EQ(output.GetTime(0), none);
}

} // namespace

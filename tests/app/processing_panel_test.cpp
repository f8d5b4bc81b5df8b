// The processing panel and its dialogs, driven by keys and commands.
#include "app/main_frame.h"
#include "dialogs/choosers.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/rough_misalignment.h"
#include "dialogs/settings_dialog.h"
#include "document/edits.h"
#include "foundation/files.h"
#include "plot/text.h"
#include "session.h"
#include "views/grid_view.h"

#include <QAbstractItemModelTester>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QToolButton>

using namespace Application_Tarvel;
using namespace Presentation_Tarvel_Grid;
using Metier_Tarvel_Proprietes::SProperty;
using testing::ElementsAre;
namespace Rows = Metier_Tarvel_Proprietes::Rows;

namespace {

using Outils_Texte::EText;
using Outils_Texte::GetText;

class ProcessingPanel : public test::Session {
  protected:
    void Open() {
        ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
        m_frame->show();
    }
    Metier_Tarvel::CTrvSimulationParameters& Run() {
        return *m_frame->GetDocument().GetProject()->simulationParameters;
    }
    CTrvViewProcessing& Panel() { return m_frame->GetProcessing(); }
    CTrvGridView& Grid() { return Panel().GetGrid(); }
    CHGItem& Row(const Outils_Objets::CObject& object, const SProperty& property) {
        return *Panel().GetTree().Find(&object, &property);
    }
    template <class Editor>
    Editor* FindEditor() {
        for (auto* editor : Grid().viewport()->findChildren<Editor*>())
            if (editor->isVisible()) return editor;
        return nullptr;
    }
    // Types over the value of the row and presses the key.
    void Type(const CHGItem& row, const char* text, Qt::Key key) {
        Grid().Select(row);
        Grid().setFocus();
        QTest::keyClick(&Grid(), Qt::Key_F2);
        auto* editor = FindEditor<QLineEdit>();
        ASSERT_TRUE(editor) << row.GetTitle();
        editor->selectAll();
        QTest::keyClicks(editor, QString::fromUtf8(text));
        QTest::keyClick(editor, key);
    }
};

TEST_F(ProcessingPanel, EditsValuesByKeys) {
    Open();
    Type(Row(Run(), Rows::kDefaultOutputRate), "12,5", Qt::Key_Return);
    EXPECT_EQ(Run().defaultOutputRate, 12.5);
    EXPECT_EQ(FindEditor<QLineEdit>(), nullptr);
    EXPECT_TRUE(m_frame->isWindowModified());
    // Tab goes on to the next value that can be edited.
    Type(Row(Run(), Rows::kBegin), "0:00:01", Qt::Key_Tab);
    EXPECT_EQ(Panel().GetSelected(), &Row(Run(), Rows::kEnd));
    auto* editor = FindEditor<QLineEdit>();
    ASSERT_TRUE(editor);
    const auto end = Run().end;
    QTest::keyClicks(editor, "7");
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_EQ(Run().end, end);
    EXPECT_EQ(FindEditor<QLineEdit>(), nullptr);

    Grid().Select(Row(Run(), Rows::kAlgorithm));
    QTest::keyClick(&Grid(), Qt::Key_F2);
    auto* list = FindEditor<QComboBox>();
    ASSERT_TRUE(list);
    const int other = Run().algorithm == 0 ? 1 : 0;
    list->setCurrentIndex(other);
    Q_EMIT list->activated(other);
    EXPECT_EQ(Run().algorithm, other);
}

TEST_F(ProcessingPanel, KeepsTheEditorOfARefusedText) {
    Open();
    const double rate = Run().defaultOutputRate;
    Type(Row(Run(), Rows::kDefaultOutputRate), "fast", Qt::Key_Return);
    EXPECT_THAT(m_dialogs.TakeMessages(), ElementsAre("Invalid value"));
    auto* editor = FindEditor<QLineEdit>();
    ASSERT_TRUE(editor);
    EXPECT_EQ(editor->selectedText(), QStringLiteral("fast"));
    QTest::keyClicks(editor, "20");
    QTest::keyClick(editor, Qt::Key_Return);
    EXPECT_EQ(Run().defaultOutputRate, 20.0);
    EXPECT_NE(rate, 20.0);
}

// The model of the window system holds its promises, and no edit moves selection or expanded rows.
TEST_F(ProcessingPanel, CallsTheFocusBackToARefusedText) {
    Open();
    QApplication::setActiveWindow(m_frame);
    Grid().Select(Row(Run(), Rows::kDefaultOutputRate));
    Grid().setFocus();
    QTest::keyClick(&Grid(), Qt::Key_F2);
    auto* editor = FindEditor<QLineEdit>();
    ASSERT_TRUE(editor);
    const double before = Run().defaultOutputRate;
    editor->selectAll();
    QTest::keyClicks(editor, "often");
    m_frame->GetOutput().setFocus();
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 1U);
    EXPECT_TRUE(PumpUntil([&] { return editor->hasFocus(); }));
    EXPECT_EQ(editor->selectedText(), "often");
    // A good text is taken on the way out.
    QTest::keyClicks(editor, "3");
    m_frame->GetOutput().setFocus();
    EXPECT_NE(before, 3);
    EXPECT_EQ(Run().defaultOutputRate, 3);
    EXPECT_EQ(FindEditor<QLineEdit>(), nullptr);
}

TEST_F(ProcessingPanel, ResetsNothing) {
    Open();
    QAbstractItemModelTester tester(Grid().model(), QAbstractItemModelTester::FailureReportingMode::Fatal);
    auto edits = m_frame->GetDocument().GetEdits();
    Action(commandAddGps).trigger();
    Action(commandAddZupt).trigger();
    ASSERT_EQ(Run().zupts.size(), 1u);
    const CHGItem* zupt = Panel().GetTree().Find(Run().zupts[0].get());
    EXPECT_EQ(Panel().GetSelected(), zupt); // what was added is selected
    const CHGItem& begin = Row(Run(), Rows::kBegin);
    Grid().Select(begin);
    const int expanded = Grid().model()->rowCount();
    edits.Do(Edits::kAddOutputRate);
    Grid().Select(begin);
    edits.Do(Edits::kRemoveZupt, *Run().zupts[0]);
    Panel().Add([] {}); // adds nothing; what came before is not its work
    EXPECT_EQ(Panel().GetSelected(), &begin);
    EXPECT_EQ(&Row(Run(), Rows::kBegin), &begin);
    EXPECT_EQ(Grid().model()->rowCount(), expanded);
    Grid().Select(*Panel().GetTree().Find(Run().outputRates[0].get()));
    QTest::keyClick(&Grid(), Qt::Key_Delete);
    EXPECT_TRUE(Run().outputRates.empty());
}

TEST_F(ProcessingPanel, LeadsToTheFaults) {
    Open();
    EXPECT_FALSE(Action(commandNextFault).isEnabled());
    Action(commandAddZupt).trigger();
    auto& zupt = *Run().zupts[0];
    Type(Row(zupt, Rows::kFrom), "0:00:05", Qt::Key_Return);
    Type(Row(zupt, Rows::kTo), "0:00:01", Qt::Key_Return);
    ASSERT_TRUE(Action(commandNextFault).isEnabled());
    for (const int command : {commandNextFault, commandBatchFile}) {
        m_frame->ToggleBar(commandProcessingPanel);
        Action(command).trigger();
        EXPECT_TRUE(m_frame->IsBarShown(commandProcessingPanel)) << command;
        m_dialogs.TakeMessages(); // of the refused command file
    }
    Grid().Select(*Panel().GetTree().GetParametersItem());
    auto& faults = Child<QToolButton>("faults");
    EXPECT_TRUE(faults.isVisibleTo(m_frame));
    const auto& from = Row(zupt, Rows::kFrom);
    const auto index = Grid().model()->index(0, 0); // any row that is right
    EXPECT_FALSE(Grid().model()->data(index, Qt::ForegroundRole).isValid());
    Grid().Select(*Panel().GetTree().GetParametersItem());
    Panel().ToggleProcess();
    EXPECT_FALSE(m_frame->IsRunning());
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 1u);
    EXPECT_EQ(Panel().GetSelected(), &from);
    EXPECT_TRUE(Grid().currentIndex().data(Qt::ForegroundRole).isValid());
    EXPECT_TRUE(Grid()
                    .currentIndex()
                    .data(Qt::ToolTipRole)
                    .toString()
                    .contains(Outils_Plot2D::ToQString(from.GetFault())));
    faults.click();
    EXPECT_EQ(Panel().GetSelected(), &Row(zupt, Rows::kTo));
    Type(Row(zupt, Rows::kTo), "0:00:09", Qt::Key_Return);
    EXPECT_FALSE(Action(commandNextFault).isEnabled());
    EXPECT_FALSE(faults.isVisibleTo(m_frame));
}

TEST_F(ProcessingPanel, CopiesRowsAsText) {
    Open();
    Grid().Select(Row(Run(), Rows::kDefaultOutputRate));
    QTest::keyClick(&Grid(), Qt::Key_C, Qt::ControlModifier);
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QStringLiteral("Default output rate\t1.000 Hz"));
    Grid().Select(*Panel().GetTree().GetParametersItem());
    QTest::keyClick(&Grid(), Qt::Key_C, Qt::ControlModifier);
    const QString text = QGuiApplication::clipboard()->text();
    EXPECT_TRUE(text.startsWith("Simulation parameters\n  Algorithm\t")) << text.toStdString();
    EXPECT_TRUE(text.contains("\n    Latitude\t")) << text.toStdString();
}

TEST_F(ProcessingPanel, OffersWhatTheUnitHas) {
    Open();
    const int all[] = {commandAddGps,          commandAddDvl,         commandAddEMLog,
                       commandAddDepth,        commandAddUsbl,        commandAddLbl,
                       commandAddOdometer,     commandAddEventMarker, commandAddPlatformOrientation,
                       commandAddRejection,    commandAddZupt,        commandAddOutputRate,
                       commandAddAltitudeMode, commandAddFiltering,   commandRemove};
    const struct {
        int equipment;
        const char* offered; // by the list above
    } rows[] = {
        {9, "111111111111111"},  {1, "100000000101101"},  {2, "100000000101101"},  {13, "100000110111001"},
        {15, "100000110111001"}, {18, "100000110111001"}, {14, "100000011111001"}, {0, "111111111111111"},
    };
    for (const auto& row : rows) {
        m_session->GetHost().UpdateMenuForEquipment(row.equipment);
        m_frame->UpdateFrame();
        std::string offered;
        for (const int command : all) offered += Action(command).isVisible() ? '1' : '0';
        EXPECT_EQ(offered, row.offered) << row.equipment;
    }
}

TEST_F(ProcessingPanel, MakesAProjectByTheWizard) {
    Open();
    const auto recording = m_folder / "mission.tarin";
    m_dialogs.m_wizard = [&](Dialogue_Tarvel::CNewProjectWizard& wizard) {
        wizard.ChooseInputFiles({recording});
        EXPECT_EQ(wizard.projectName, "mission");
        wizard.projectName = "second";
        Dialogue_Tarvel::EProjectField focus{};
        return wizard.OnOK(focus);
    };
    Action(commandNew).trigger();
    EXPECT_EQ(m_frame->GetDocument().GetPathName().filename(), "second.tarprj");
    ASSERT_TRUE(m_frame->HasProject());
    EXPECT_EQ(Panel().GetSelected(), Panel().GetTree().GetParametersItem());

    m_dialogs.m_rough = [](Dialogue_Tarvel::CRoughMisalignmentChooser& chooser) {
        return chooser.SetLogo(1) && chooser.SetConnector(2);
    };
    auto& configuration = *Run().nelixConfiguration;
    Grid().EditRow(Row(configuration, Rows::kRoughMisalignment));
    EXPECT_EQ(configuration.roughMisalignment, 10);
    m_dialogs.m_wizard = {}; // cancelled
    m_dialogs.m_answers = {EAnswer::no};
    Action(commandNew).trigger();
    EXPECT_EQ(m_frame->GetDocument().GetPathName().filename(), "second.tarprj");
    EXPECT_EQ(m_dialogs.TakeMessages().size(), 1u);
}

TEST_F(ProcessingPanel, ShowsNewUnitsAtOnce) {
    Open();
    const auto before = Outils_Fichiers::ReadWholeFile(m_frame->GetDocument().GetPathName(), 1 << 20);
    auto& altitude = Row(Run().referencePosition, Rows::kAltitude);
    const std::string meters = altitude.GetValue();
    for (const char* unit : {"foot (ft)", "meter (m)"}) {
        m_dialogs.m_settings = [unit](Dialogue_Tarvel::CTrvSettingsDlg& dialog) {
            const auto find = [](const auto& self, const CHGItem& parent,
                                 std::string_view title) -> CHGItem* {
                for (std::size_t i = 0; CHGItem* child = parent.GetChild(i); ++i) {
                    if (child->GetTitle() == title) return child;
                    if (CHGItem* found = self(self, *child, title)) return found;
                }
                return nullptr;
            };
            CHGItem* section = find(find, dialog.GetGrid().GetRoot(), "Altitude");
            EXPECT_EQ(find(find, *section, "Unit")->Write(unit), "");
            dialog.OnOK();
            return true;
        };
        Action(commandSettings).trigger();
        EXPECT_EQ(altitude.GetValue() == meters, std::string_view(unit) == "meter (m)");
    }
    EXPECT_FALSE(m_frame->isWindowModified());
    EXPECT_TRUE(m_frame->GetDocument().Save());
    EXPECT_EQ(Outils_Fichiers::ReadWholeFile(m_frame->GetDocument().GetPathName(), 1 << 20), before);
}

} // namespace

// What a person without a mouse or without sight meets: every control has a name and is reached by Tab, and
// no two commands have one key.
#include "app/main_frame.h"
#include "dialogs/choosers.h"
#include "dialogs/export_tools.h"
#include "dialogs/file_updater.h"
#include "dialogs/import_tools.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/relink.h"
#include "dialogs/rough_misalignment.h"
#include "dialogs/settings_dialog.h"
#include "graph/forms.h"
#include "session.h"

#include <QAccessible>
#include <QApplication>
#include <QPushButton>
#include <QRadioButton>
#include <QTimer>
#include <QToolBar>

#include <map>
#include <set>

using namespace Application_Tarvel;
using namespace Dialogue_Tarvel;

namespace {

QString NameOf(QWidget& widget) {
    QAccessibleInterface* control = QAccessible::queryAccessibleInterface(&widget);
    return control ? control->text(QAccessible::Name) : QString();
}

std::string Describe(const QWidget& widget) {
    std::string text = widget.metaObject()->className();
    for (const QWidget* above = widget.parentWidget(); above; above = above->parentWidget())
        text += std::string(" in ") + above->metaObject()->className();
    return text;
}

// A proxy has the focus in the place of its owner; the tool bars are reached by their menu twins.
bool IsReachedByTab(const QWidget& widget) {
    if (!(widget.focusPolicy() & Qt::TabFocus) || !widget.isEnabled() || widget.focusProxy()) return false;
    for (const QWidget* above = &widget; above; above = above->parentWidget())
        if (qobject_cast<const QToolBar*>(above)) return false;
    return true;
}

// Looks at every control of the window, and goes through all of it by Tab.
void Examine(QWidget& window) {
    std::set<QWidget*> expected;
    for (auto* widget : window.findChildren<QWidget*>()) {
        if (!widget->isVisible() || widget->window() != &window || !IsReachedByTab(*widget)) continue;
        EXPECT_FALSE(NameOf(*widget).isEmpty()) << Describe(*widget);
        // Of a set of choices Tab reaches the chosen one, and arrows the others.
        if (const auto* radio = qobject_cast<QRadioButton*>(widget); radio && !radio->isChecked()) continue;
        expected.insert(widget);
    }
    EXPECT_FALSE(expected.empty());
    std::set<QWidget*> reached;
    for (std::size_t i = 0; i < 4 * expected.size() + 4; ++i) {
        QWidget* focus = window.focusWidget();
        if (!focus) focus = &window;
        reached.insert(focus);
        QTest::keyClick(focus, Qt::Key_Tab);
    }
    for (QWidget* widget : expected) EXPECT_TRUE(reached.contains(widget)) << Describe(*widget);
}

class Accessibility : public test::Session {
  protected:
    // Examines the dialog that `show` opens, and gives it up.
    template <class Show>
    void ExamineDialog(Show show) {
        bool wasSeen = false;
        QTimer::singleShot(0, [&wasSeen] {
            auto* dialog = QApplication::activeModalWidget();
            ASSERT_TRUE(dialog);
            wasSeen = true;
            Examine(*dialog);
            dialog->close();
        });
        EXPECT_FALSE(show());
        EXPECT_TRUE(wasSeen);
    }
};

TEST_F(Accessibility, OfTheWindow) {
    m_frame->show();
    QApplication::setActiveWindow(m_frame);
    Examine(*m_frame); // the start page
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
    Examine(*m_frame);
}

TEST_F(Accessibility, OfEveryDialog) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
    auto& host = m_session->GetHost();
    auto& document = m_frame->GetDocument();
    auto& run = *document.GetProject()->simulationParameters;
    run.AddSensor(Metier_Tarvel::ESensorKind::gps);
    CWindowDialogs dialogs;
    const auto& configuration = m_application.GetConfiguration();
    CNewProjectWizard wizard(host, configuration, document.GetFileLooks());
    wizard.ChooseInputFiles({m_folder / "mission.tarin"});
    ExamineDialog([&] { return dialogs.Show(nullptr, wizard); });
    CNewFromBatchParametersDlg batch(host, configuration, document.GetFileLooks());
    ExamineDialog([&] { return dialogs.Show(nullptr, batch); });
    CDataFileChooser files(run);
    ExamineDialog([&] { return dialogs.Show(nullptr, files); });
    CDataFileChannelChooser channel(run, *run.sensors[0]);
    ExamineDialog([&] { return dialogs.Show(nullptr, channel); });
    CRoughMisalignmentChooser rough(0, 14);
    ExamineDialog([&] { return dialogs.Show(nullptr, rough); });
    CTrvSettingsDlg settings(host, m_application.GetConfiguration(), m_application.GetAdaptors(), true);
    ExamineDialog([&] { return dialogs.Show(nullptr, settings); });
    CRelinkDialog relink(document);
    ExamineDialog([&] { return dialogs.Show(nullptr, relink); });
    Presentation_Tarvel_Graphics::CDateForm date(m_frame->GetView().GetLoader());
    ExamineDialog([&] { return dialogs.Show(nullptr, date); });
}

TEST_F(Accessibility, OfEveryTool) {
    ASSERT_TRUE(m_frame->OpenProject(MakeProject("mission")));
    auto& document = m_frame->GetDocument();
    std::ofstream(m_folder / "any.log") << "$GPZDA,\n";
    CWindowDialogs dialogs;
    for (const bool isExpert : {false, true}) {
        const SToolServices services{m_session->GetHost(), m_application.GetConfiguration(),
                                     document.GetFileLooks(), m_application.GetAdaptors(), isExpert};
        for (std::size_t format = 0; format < GetImportFormats().size(); ++format) {
            CTrvSimpleImporterDlg importer(services, static_cast<ERawFormat>(format), {m_folder / "any.log"});
            ExamineDialog([&] { return dialogs.Show(nullptr, importer); });
        }
        const auto project = GetExportProject(*document.GetProject()->simulationParameters);
        CTrvSimpleExporterDlg exporter(services, project, {});
        ExamineDialog([&] { return dialogs.Show(nullptr, exporter); });
        CTrvFileUpdaterDlg updater(services, {m_folder / "mission.tarin"});
        ExamineDialog([&] { return dialogs.Show(nullptr, updater); });
    }
}

TEST_F(Accessibility, WizardBeginsAtTheChoiceOfARecording) {
    CFileLooks looks(m_target);
    CNewProjectWizard wizard(m_session->GetHost(), m_application.GetConfiguration(), looks);
    QTimer::singleShot(0, [] {
        auto* dialog = QApplication::activeModalWidget();
        ASSERT_TRUE(dialog);
        EXPECT_TRUE(qobject_cast<QPushButton*>(dialog->focusWidget())); // Enter chooses
        dialog->close();
    });
    EXPECT_FALSE(CWindowDialogs().Show(nullptr, wizard));
}

TEST_F(Accessibility, NoKeyHasTwoCommands) {
    std::map<QKeySequence, QString> owners;
    for (const QAction* action : m_frame->findChildren<QAction*>()) {
        if (action->shortcutContext() != Qt::WindowShortcut) continue;
        for (const QKeySequence& key : action->shortcuts()) {
            const auto [place, isNew] = owners.emplace(key, action->text());
            EXPECT_TRUE(isNew) << key.toString().toStdString() << ": " << place->second.toStdString() << ", "
                               << action->text().toStdString();
        }
    }
    EXPECT_GT(owners.size(), 20U);
}

} // namespace

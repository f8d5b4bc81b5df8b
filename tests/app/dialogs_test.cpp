#include "app/dialogs.h"

#include "dataaccess/test_recording.h"
#include "dialogs/rough_misalignment.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QApplication>
#include <QFileDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QPushButton>
#include <QSettings>
#include <QTest>
#include <QTimer>

using namespace Application_Tarvel;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

// Runs `act` on the dialog of this kind that opens next.
template <class Dialog, class Act>
void OnNext(Act act) {
    QTimer::singleShot(0, [act] {
        auto* dialog = qobject_cast<Dialog*>(QApplication::activeModalWidget());
        ASSERT_TRUE(dialog);
        act(*dialog);
    });
}

TEST(Dialogs, EveryButtonIsAnAnswerAndEscapeChangesNothing) {
    constexpr auto escape = QMessageBox::NoButton;
    using enum QMessageBox::StandardButton;
    const std::tuple<EButtons, QMessageBox::StandardButton, EAnswer> rows[] = {
        {EButtons::ok, Ok, EAnswer::ok},
        {EButtons::ok, escape, EAnswer::ok},
        {EButtons::okCancel, Ok, EAnswer::ok},
        {EButtons::okCancel, escape, EAnswer::cancel},
        {EButtons::yesNo, Yes, EAnswer::yes},
        {EButtons::yesNo, No, EAnswer::no},
        {EButtons::yesNoCancel, Yes, EAnswer::yes},
        {EButtons::yesNoCancel, No, EAnswer::no},
        {EButtons::yesNoCancel, Cancel, EAnswer::cancel},
        {EButtons::yesNoCancel, escape, EAnswer::cancel}};
    CWindowDialogs dialogs;
    const std::string text = "Save changes to <b>p</b> & q?\n\nSecond line";
    for (const auto& [buttons, pressed, answer] : rows) {
        OnNext<QMessageBox>([&](QMessageBox& box) {
            EXPECT_EQ(box.text(), ToQString(text));
            EXPECT_EQ(box.textFormat(), Qt::PlainText);
            pressed == escape ? QTest::keyClick(&box, Qt::Key_Escape) : box.button(pressed)->click();
        });
        EXPECT_EQ(dialogs.ShowMessage(nullptr, text, buttons, EIcon::question), answer);
    }
}

TEST(Dialogs, AProjectIsSavedUnderItsExtension) {
    const test::CTemporaryFolder folder;
    CWindowDialogs dialogs;
    const auto save = [&](const char* typed) {
        OnNext<QFileDialog>([&](QFileDialog& dialog) {
            auto* name = dialog.findChild<QLineEdit*>("fileNameEdit");
            EXPECT_EQ(name->text(), "old.tarprj");
            EXPECT_EQ(dialog.nameFilters(), QStringList("VARNE NAV project files (*.tarprj)"));
            name->setText(typed);
            QTest::keyClick(name, typed ? Qt::Key_Return : Qt::Key_Escape);
        });
        return dialogs.AskPath(nullptr, {EPathKind::save, EText::saveTitle, EText::projectFilter, "tarprj",
                                         folder / "old.tarprj"});
    };
    EXPECT_EQ(save("new"), std::vector{folder / "new.tarprj"});
    EXPECT_EQ(save("new.tarprj"), std::vector{folder / "new.tarprj"});
    EXPECT_TRUE(save(nullptr).empty());
}

TEST(Dialogs, SizesAndFoldersAreKept) {
    const test::CTemporaryFolder folder;
    QSettings settings(ToQString(folder / "settings.ini"), QSettings::IniFormat);
    CWindowDialogs dialogs(&settings);
    for (const bool again : {false, true}) {
        OnNext<QFileDialog>([&](QFileDialog& dialog) {
            const QString last = ToQString(std::filesystem::path(folder / ""));
            EXPECT_EQ(dialog.directory() == QDir(last), again);
            dialog.setDirectory(last);
            dialog.findChild<QLineEdit*>("fileNameEdit")->setText("p");
            QTest::keyClick(&dialog, Qt::Key_Return);
        });
        dialogs.AskPath(nullptr, {EPathKind::save, EText::saveTitle, EText::projectFilter, "tarprj"});
        OnNext<QDialog>([&](QDialog& dialog) {
            EXPECT_EQ(dialog.size() == QSize(701, 503), again);
            dialog.resize(701, 503);
            dialog.reject();
        });
        Dialogue_Tarvel::CRoughMisalignmentChooser rough(0, 14);
        EXPECT_FALSE(dialogs.Show(nullptr, rough));
    }
}

} // namespace

#include "app/dialog_parts.h"
#include "app/dialogs.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/relink.h"
#include "foundation/paths.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QFileDialog>
#include <QFormLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>

#include <memory>

namespace Application_Tarvel {

using namespace Dialogue_Tarvel;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;

namespace {

QString AskFolder(QWidget* parent, const QString& present) {
    return QFileDialog::getExistingDirectory(parent, WithoutKey(EText::wizardFolder), present);
}

// Name and folder of a new project, the same in both dialogs that make one.
struct SPlaceLines {
    QLineEdit* name;
    CPathLine* folder;

    SPlaceLines(QDialog& dialog, QFormLayout& form, EText nameLabel, EText folderLabel) {
        name = new QLineEdit(&dialog);
        name->setAccessibleName(WithoutKey(EText::wizardName));
        folder = new CPathLine(&dialog, WithoutKey(EText::wizardFolder), [this, &dialog] {
            const QString chosen = AskFolder(&dialog, folder->GetLine().text());
            if (!chosen.isEmpty()) folder->GetLine().setText(chosen);
        });
        form.addRow(Text(nameLabel), name);
        form.addRow(Text(folderLabel), folder);
    }
    void Show(const CProjectDialog& logic) const {
        name->setText(ToQString(logic.projectName));
        folder->GetLine().setText(ToQString(logic.projectFolder));
    }
    void Take(CProjectDialog& logic) const {
        logic.projectName = name->text().toStdString();
        logic.projectFolder = ToPath(folder->GetLine().text());
    }
};

void TickOffers(QTreeWidget& list, const CNewProjectWizard& logic) {
    const QSignalBlocker quiet(list);
    for (int i = 0; i < list.topLevelItemCount(); ++i) {
        QTreeWidgetItem& row = *list.topLevelItem(i);
        if (const QVariant offer = row.data(0, Qt::UserRole); offer.isValid())
            row.setCheckState(0, logic.GetFindings().offers[offer.toUInt()].isTaken ? Qt::Checked
                                                                                    : Qt::Unchecked);
    }
}

// Shows the findings in the list; the row that the user has chosen stays.
void ShowFindings(QTreeWidget& list, const CNewProjectWizard& logic) {
    const QSignalBlocker quiet(list);
    const int current = list.indexOfTopLevelItem(list.currentItem());
    list.clear();
    for (const auto& found : logic.DescribeFindings()) {
        auto* row = AddRow(list, found.title, found.value);
        row->setFirstColumnSpanned(found.value.empty()); // a sentence
        if (!found.offer) continue;
        row->setData(0, Qt::UserRole, static_cast<int>(*found.offer));
        row->setToolTip(0, Text(EText::surveySensorTip));
    }
    TickOffers(list, logic);
    list.resizeColumnToContents(0);
    list.setCurrentItem(list.topLevelItem(current));
}

} // namespace

bool CWindowDialogs::Show(QWidget* parent, CNewProjectWizard& logic) {
    CDialog dialog(parent, Text(EText::wizardTitle), m_settings);
    auto* form = new QFormLayout;
    CPathLine* files = nullptr;
    CPathLine* configuration = nullptr;
    std::unique_ptr<SPlaceLines> place;
    files = new CPathLine(&dialog, WithoutKey(EText::wizardInput), [&] {
        const auto chosen = AskPath(
            &dialog,
            {EPathKind::openSeveral, EText::wizardInput, CNewProjectWizard::kInputFilter, "tarin",
             logic.GetInputFiles().empty() ? std::filesystem::path() : logic.GetInputFiles().front()});
        if (chosen.empty()) return;
        logic.ChooseInputFiles(chosen);
        files->GetLine().setText(ToQString(logic.GetInputLine()));
        place->Show(logic);
        place->name->setFocus();
    });
    files->SetChosenOnly();
    files->GetLine().setText(ToQString(logic.GetInputLine()));
    configuration = new CPathLine(&dialog, WithoutKey(EText::wizardConfiguration), [&] {
        const auto chosen = AskPath(&dialog, {EPathKind::open, EText::wizardConfiguration,
                                              CNewProjectWizard::kConfigurationFilter, "txt",
                                              ToPath(configuration->GetLine().text())});
        if (!chosen.empty()) configuration->GetLine().setText(ToQString(chosen.front()));
    });
    form->addRow(Text(EText::wizardInput), files);
    form->addRow(Text(EText::wizardConfiguration), configuration);
    place = std::make_unique<SPlaceLines>(dialog, *form, EText::wizardName, EText::wizardFolder);
    place->Show(logic);
    dialog.Add(form);
    QTreeWidget* findings =
        MakeList(&dialog, EText::surveyTitle, EText::gridValueColumn, Text(EText::surveyName));
    findings->setMinimumHeight(300); // the channels of most recordings
    QObject::connect(findings, &QTreeWidget::itemChanged, &dialog, [&](QTreeWidgetItem* row) {
        const QVariant offer = row->data(0, Qt::UserRole);
        if (!offer.isValid()) return;
        logic.Take(offer.toUInt(), row->checkState(0) == Qt::Checked);
        TickOffers(*findings, logic);
    });
    dialog.Add(findings);
    logic.Survey([&] { ShowFindings(*findings, logic); });
    ShowFindings(*findings, logic);
    if (logic.GetInputFiles().empty())
        files->setFocus();
    else
        place->name->setFocus();
    const bool made = dialog.Run([&] {
        logic.insConfigurationFile = ToPath(configuration->GetLine().text());
        place->Take(logic);
        EProjectField focus = EProjectField::files;
        if (logic.OnOK(focus)) return true;
        files->GetLine().setText(ToQString(logic.GetInputLine())); // a conversion has replaced them
        QWidget* const fields[] = {files, configuration, place->name, place->folder};
        fields[static_cast<std::size_t>(focus)]->setFocus();
        return false;
    });
    logic.Survey({}); // its rows go
    return made;
}

bool CWindowDialogs::Show(QWidget* parent, CNewFromBatchParametersDlg& logic) {
    CDialog dialog(parent, Text(CNewFromBatchParametersDlg::kTitle), m_settings);
    QTreeWidget* list =
        MakeList(&dialog, CNewFromBatchParametersDlg::kColumns[0], CNewFromBatchParametersDlg::kColumns[1],
                 Text(CNewFromBatchParametersDlg::kTitle));
    for (const auto& row : logic.GetRows()) AddRow(*list, row.id, Outils_Fichiers::ToText(row.path));
    list->setCurrentItem(list->topLevelItem(0));
    auto* choose = new QPushButton(Text(EText::browse), &dialog);
    choose->setAccessibleName(Text(EText::wizardBrowseTip));
    const auto change = [&] {
        const int index = list->indexOfTopLevelItem(list->currentItem());
        if (index < 0) return;
        const auto& row = logic.GetRows()[static_cast<std::size_t>(index)];
        const auto chosen = AskPath(&dialog, {row.isOutput ? EPathKind::save : EPathKind::open,
                                              CNewFromBatchParametersDlg::kColumns[1],
                                              CNewFromBatchParametersDlg::GetFilter(row),
                                              CNewFromBatchParametersDlg::GetExtension(row), row.path});
        if (!chosen.empty() && logic.ChooseFile(row.id, chosen.front()))
            list->currentItem()->setText(1, ToQString(chosen.front()));
    };
    QObject::connect(choose, &QPushButton::clicked, &dialog, change);
    QObject::connect(list, &QTreeWidget::itemActivated, &dialog, change);
    auto* form = new QFormLayout;
    const SPlaceLines place(dialog, *form, CNewFromBatchParametersDlg::kLabels[0],
                            CNewFromBatchParametersDlg::kLabels[1]);
    place.Show(logic);
    dialog.Add(list);
    auto* below = new QHBoxLayout;
    below->addStretch();
    below->addWidget(choose);
    dialog.Add(below);
    dialog.Add(form);
    return dialog.Run([&] {
        place.Take(logic);
        EProjectField focus = EProjectField::files;
        if (logic.OnOK(focus)) return true;
        QWidget* const fields[] = {list, list, place.name, place.folder};
        fields[static_cast<std::size_t>(focus)]->setFocus();
        return false;
    });
}

bool CWindowDialogs::Show(QWidget* parent, CRelinkDialog& logic) {
    CDialog dialog(parent, Text(EText::relinkTitle), m_settings);
    auto* hint = new QLabel(Text(EText::relinkHint), &dialog);
    hint->setWordWrap(true);
    QTreeWidget* list = MakeList(&dialog, EText::path, EText::relinkPlaceColumn, Text(EText::relinkTitle));
    const auto show = [&] {
        for (int i = 0; const auto& row : logic.GetRows()) {
            QTreeWidgetItem* item = list->topLevelItem(i++);
            item->setText(1, row.place.empty() ? Text(EText::relinkStillMissing) : ToQString(row.place));
            item->setToolTip(1, item->text(1));
        }
    };
    for (const auto& row : logic.GetRows())
        AddRow(*list, Outils_Fichiers::ToText(row.file->path), {})->setTextAlignment(0, Qt::AlignLeft);
    list->setTextElideMode(Qt::ElideMiddle);
    list->setColumnWidth(0, 340);
    list->setMinimumWidth(680);
    list->setCurrentItem(list->topLevelItem(0));
    show();
    auto* choose = new QPushButton(Text(EText::relinkChoose), &dialog);
    const auto change = [&] {
        const int index = list->indexOfTopLevelItem(list->currentItem());
        if (index < 0) return;
        const auto row = static_cast<std::size_t>(index);
        const auto chosen = AskPath(&dialog, logic.GetQuestion(row));
        if (chosen.empty()) return;
        logic.Choose(row, chosen.front());
        show();
    };
    QObject::connect(choose, &QPushButton::clicked, &dialog, change);
    QObject::connect(list, &QTreeWidget::itemActivated, &dialog, change);
    auto* top = new QVBoxLayout;
    top->addWidget(hint);
    dialog.Add(top);
    dialog.Add(list);
    auto* below = new QHBoxLayout;
    below->addWidget(choose);
    below->addStretch();
    dialog.Add(below);
    return dialog.Run([&] { return logic.OnOK(); });
}

} // namespace Application_Tarvel

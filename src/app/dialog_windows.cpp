#include "app/dialogs.h"
#include "config/config_file.h"
#include "dialogs/choosers.h"
#include "dialogs/project_dialogs.h"
#include "dialogs/rough_misalignment.h"
#include "dialogs/settings_dialog.h"
#include "foundation/texts.h"
#include "graph/forms.h"
#include "plot/text.h"
#include "views/grid_view.h"

#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QLineEdit>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QToolButton>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Application_Tarvel {

using namespace Dialogue_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToPath;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

// A dialog with OK and Cancel under what the caller puts into it. Tab goes through it in the order of adding.
class CDialog : public QDialog {
  public:
    CDialog(QWidget* parent, const QString& title) : QDialog(parent) {
        setWindowTitle(title);
        m_layout = new QVBoxLayout(this);
    }
    void Add(QWidget* widget) { m_layout->addWidget(widget, 1); }
    void Add(QLayout* layout) { m_layout->addLayout(layout); }
    // OK ends the dialog when `onOK` says so. Enter presses it unless the dialog has a use of its own for it.
    bool Run(const std::function<bool()>& onOK = {}, bool enterIsOK = true) {
        auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, this);
        connect(buttons, &QDialogButtonBox::accepted, this, [this, onOK] {
            if (!onOK || onOK()) accept();
        });
        connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
        for (QAbstractButton* button : buttons->buttons())
            static_cast<QPushButton*>(button)->setAutoDefault(enterIsOK);
        buttons->button(QDialogButtonBox::Ok)->setDefault(enterIsOK);
        m_layout->addWidget(buttons);
        return exec() == Accepted;
    }

  private:
    QVBoxLayout* m_layout;
};

// A line with a button that chooses for it.
class CPathLine final : public QWidget {
  public:
    CPathLine(QWidget* parent, const QString& name, std::function<void()> choose) : QWidget(parent) {
        auto* layout = new QHBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        m_line = new QLineEdit(this);
        m_line->setAccessibleName(name);
        m_line->setMinimumWidth(380);
        auto* button = m_button = new QToolButton(this);
        button->setText(Text(EText::browse));
        button->setToolTip(Text(EText::wizardBrowseTip));
        button->setAccessibleName(QStringLiteral("%1 %2").arg(Text(EText::wizardBrowseTip), name));
        button->setFocusPolicy(Qt::StrongFocus);
        connect(button, &QToolButton::clicked, this, [choose = std::move(choose)] { choose(); });
        layout->addWidget(m_line, 1);
        layout->addWidget(button);
        setFocusProxy(m_line);
    }
    QLineEdit& GetLine() const { return *m_line; }
    void FocusButton() { m_button->setFocus(); }

  private:
    QLineEdit* m_line;
    QToolButton* m_button;
};

constexpr QSize kFrameRoom(20, 60); // around a dialog on the screen: title bar and borders

QString WithoutKey(EText text) { return Text(text).remove(QLatin1Char('&')); }

QString AskFolder(QWidget* parent, const QString& present) {
    return QFileDialog::getExistingDirectory(parent, WithoutKey(EText::wizardFolder), present);
}

// Name and folder of a new project, the same in both dialogs that make one.
struct SPlaceLines {
    QLineEdit* name;
    CPathLine* folder;

    SPlaceLines(QDialog& dialog, QFormLayout& form) {
        name = new QLineEdit(&dialog);
        name->setAccessibleName(WithoutKey(EText::wizardName));
        folder = new CPathLine(&dialog, WithoutKey(EText::wizardFolder), [this, &dialog] {
            const QString chosen = AskFolder(&dialog, folder->GetLine().text());
            if (!chosen.isEmpty()) folder->GetLine().setText(chosen);
        });
        form.addRow(Text(EText::wizardName), name);
        form.addRow(Text(EText::wizardFolder), folder);
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

// A list of rows with two columns, of which one is selected.
QTreeWidget* MakeList(QWidget* parent, EText first, EText second, const QString& name) {
    auto* list = new QTreeWidget(parent);
    list->setHeaderLabels({Text(first), Text(second)});
    list->setRootIsDecorated(false);
    list->setAlternatingRowColors(true);
    list->setUniformRowHeights(true);
    list->setAccessibleName(name);
    list->setMinimumSize(480, 200);
    return list;
}
void AddRow(QTreeWidget& list, const std::string& first, const std::string& second) {
    auto* row = new QTreeWidgetItem(&list, {ToQString(first), ToQString(second)});
    row->setToolTip(0, ToQString(first));
    row->setToolTip(1, ToQString(second));
}

} // namespace

bool CWindowDialogs::Show(QWidget* parent, CNewProjectWizard& logic) {
    CDialog dialog(parent, Text(EText::wizardTitle));
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
    });
    files->GetLine().setReadOnly(true);
    files->GetLine().setPlaceholderText(Text(EText::wizardHint));
    files->GetLine().setText(ToQString(logic.GetInputLine()));
    configuration = new CPathLine(&dialog, WithoutKey(EText::wizardConfiguration), [&] {
        const auto chosen = AskPath(&dialog, {EPathKind::open, EText::wizardConfiguration,
                                              CNewProjectWizard::kConfigurationFilter, "txt",
                                              ToPath(configuration->GetLine().text())});
        if (!chosen.empty()) configuration->GetLine().setText(ToQString(chosen.front()));
    });
    form->addRow(Text(EText::wizardInput), files);
    form->addRow(Text(EText::wizardConfiguration), configuration);
    place = std::make_unique<SPlaceLines>(dialog, *form);
    place->Show(logic);
    dialog.Add(form);
    if (logic.GetInputFiles().empty())
        files->FocusButton(); // without a recording there is nothing to type
    else
        place->name->setFocus();
    return dialog.Run([&] {
        logic.insConfigurationFile = ToPath(configuration->GetLine().text());
        place->Take(logic);
        EProjectField focus = EProjectField::files;
        if (logic.OnOK(focus)) return true;
        files->GetLine().setText(ToQString(logic.GetInputLine())); // a conversion has replaced them
        QWidget* const fields[] = {files, configuration, place->name, place->folder};
        fields[static_cast<std::size_t>(focus)]->setFocus();
        return false;
    });
}

bool CWindowDialogs::Show(QWidget* parent, CNewFromBatchParametersDlg& logic) {
    CDialog dialog(parent, Text(CNewFromBatchParametersDlg::kTitle));
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
    const SPlaceLines place(dialog, *form);
    place.Show(logic);
    dialog.Add(list);
    dialog.Add(choose);
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

bool CWindowDialogs::Show(QWidget* parent, CDataFileChannelChooser& logic) {
    CDialog dialog(parent, Text(EText::channelChooserTitle));
    QTreeWidget* list = MakeList(&dialog, CDataFileChannelChooser::kColumns[0],
                                 CDataFileChannelChooser::kColumns[1], Text(EText::channelChooserTitle));
    for (const auto& row : logic.GetRows()) AddRow(*list, row.channel, row.file);
    if (logic.GetSelection())
        list->setCurrentItem(list->topLevelItem(static_cast<int>(*logic.GetSelection())));
    list->resizeColumnToContents(0);
    if (logic.GetRows().empty()) {
        auto* empty = new QLabel(Text(EText::chooserEmpty), &dialog);
        empty->setWordWrap(true);
        dialog.Add(empty);
    }
    dialog.Add(list);
    const auto ok = [&] {
        const int index = list->indexOfTopLevelItem(list->currentItem());
        logic.Select(index < 0 ? std::nullopt : std::optional(static_cast<std::size_t>(index)));
        return logic.OnOK() != nullptr;
    };
    QObject::connect(list, &QTreeWidget::itemActivated, &dialog, [&] {
        if (ok()) dialog.accept();
    });
    return dialog.Run(ok);
}

bool CWindowDialogs::Show(QWidget* parent, CRoughMisalignmentChooser& logic) {
    CDialog dialog(parent, Text(CRoughMisalignmentChooser::kTitle));
    auto* sides = new QHBoxLayout;
    QButtonGroup* groups[2];
    const auto show = [&] {
        groups[0]->button(logic.GetLogo())->setChecked(true);
        for (int side = 0; side < kSideCount; ++side)
            groups[1]->button(side)->setEnabled(logic.IsConnectorEnabled(side));
        groups[1]->button(logic.GetConnector())->setChecked(true);
    };
    for (int set = 0; set < 2; ++set) {
        auto* box = new QGroupBox(Text(CRoughMisalignmentChooser::kGroups[set]), &dialog);
        auto* layout = new QVBoxLayout(box);
        groups[set] = new QButtonGroup(box);
        for (int side = 0; side < kSideCount; ++side) {
            auto* button = new QRadioButton(ToQString(logic.GetLabel(side)), box);
            layout->addWidget(button);
            groups[set]->addButton(button, side);
        }
        QObject::connect(groups[set], &QButtonGroup::idClicked, &dialog, [&, set](int side) {
            static_cast<void>(set == 0 ? logic.SetLogo(side) : logic.SetConnector(side));
            show();
        });
        sides->addWidget(box);
    }
    show();
    dialog.Add(sides);
    return dialog.Run();
}

namespace {

// A line of a form on the screen: a text, or a choice of colours.
QWidget* MakeFormField(QWidget& parent, const Presentation_Tarvel_Graphics::SFormLine& line) {
    QWidget* field = nullptr;
    if (line.choices.empty()) {
        field = new QLineEdit(ToQString(line.text), &parent);
        field->setMinimumWidth(260);
    } else {
        auto* list = new QComboBox(&parent);
        for (const auto& choice : line.choices) {
            QPixmap swatch(list->iconSize());
            swatch.fill(QColor::fromRgba(choice.colour));
            list->addItem(swatch, Text(choice.name));
        }
        list->setCurrentIndex(static_cast<int>(line.choice));
        field = list;
    }
    field->setAccessibleName(WithoutKey(line.label));
    if (line.help != Outils_Texte::kNoText) field->setToolTip(Text(line.help));
    return field;
}

void TakeFormField(const QWidget& field, Presentation_Tarvel_Graphics::SFormLine& line) {
    if (const auto* text = qobject_cast<const QLineEdit*>(&field))
        line.text = text->text().toStdString();
    else if (const auto* list = qobject_cast<const QComboBox*>(&field))
        line.choice = static_cast<std::size_t>(list->currentIndex());
}

} // namespace

bool CWindowDialogs::Show(QWidget* parent, Presentation_Tarvel_Graphics::CForm& logic) {
    CDialog dialog(parent, WithoutKey(logic.GetTitle()).remove(QStringLiteral("...")));
    auto* form = new QFormLayout;
    std::vector<QWidget*> fields;
    for (const auto& line : logic.GetLines()) {
        fields.push_back(MakeFormField(dialog, line));
        form->addRow(Text(line.label), fields.back());
    }
    dialog.Add(form);
    if (auto* first = qobject_cast<QLineEdit*>(fields.front())) first->selectAll();
    return dialog.Run([&] {
        for (std::size_t i = 0; i < fields.size(); ++i) TakeFormField(*fields[i], logic.GetLines()[i]);
        const auto refusal = logic.OnOK();
        if (!refusal) return true;
        ShowMessage(&dialog, refusal->message, EButtons::ok, EIcon::exclamation);
        fields[refusal->line]->setFocus();
        if (auto* text = qobject_cast<QLineEdit*>(fields[refusal->line])) text->selectAll();
        return false;
    });
}

bool CWindowDialogs::Show(QWidget* parent, CTrvSettingsDlg& logic) {
    CDialog dialog(parent, Text(EText::settingsTitle));
    auto& configuration = logic.GetConfiguration();
    auto* grid = new CTrvGridView(logic.GetGrid(), logic.GetQuestions(), &dialog);
    grid->setAccessibleName(Text(EText::settingsTitle));
    grid->ResizeTitles(configuration.Get(Cnf<"settingsDialog/firstColumnWidth">));
    const auto& root = logic.GetGrid().GetRoot();
    for (std::size_t i = 0; const auto* section = root.GetChild(i); ++i)
        grid->SetItemExpanded(*section, true);
    if (const auto* first = root.GetChild(0)) grid->Select(*first);
    dialog.Add(grid);
    const QSize size(configuration.Get(Cnf<"settingsDialog/width">),
                     configuration.Get(Cnf<"settingsDialog/height">));
    dialog.resize(size.boundedTo(dialog.screen()->availableSize() - kFrameRoom));
    const bool accepted = dialog.Run({}, false); // Enter edits a value
    configuration.Set(Cnf<"settingsDialog/width">, dialog.width());
    configuration.Set(Cnf<"settingsDialog/height">, dialog.height());
    configuration.Set(Cnf<"settingsDialog/firstColumnWidth">, grid->GetTitleWidth());
    delete grid; // before the grid that it shows
    if (accepted) logic.OnOK();
    return accepted;
}

} // namespace Application_Tarvel

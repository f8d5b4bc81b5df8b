#include "app/commands.h"
#include "app/dialog_parts.h"
#include "app/dialogs.h"
#include "app/icons.h"
#include "app/rough_picture.h"
#include "config/config_file.h"
#include "dialogs/choosers.h"
#include "dialogs/rough_misalignment.h"
#include "dialogs/settings_dialog.h"
#include "foundation/texts.h"
#include "graph/forms.h"
#include "plot/pens.h"
#include "plot/text.h"
#include "views/grid_view.h"

#include <QApplication>
#include <QButtonGroup>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QFileDialog>
#include <QFormLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPainter>
#include <QPixmap>
#include <QPushButton>
#include <QRadioButton>
#include <QScreen>
#include <QStyle>
#include <QTreeWidget>
#include <QVBoxLayout>

namespace Application_Tarvel {

using namespace Dialogue_Tarvel;
using Outils_Configuration::Cnf;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;

namespace {

constexpr QSize kFrameRoom(20, 60); // around a dialog on the screen: title bar and borders

QIcon GetRoleIcon(EDataFileRole role) {
    const QStyle& style = *QApplication::style();
    switch (role) {
    case EDataFileRole::mainInput: return style.standardIcon(QStyle::SP_FileIcon);
    case EDataFileRole::output: return GetIcon(EGlyph::process);
    case EDataFileRole::external: return style.standardIcon(QStyle::SP_FileLinkIcon);
    }
    return {};
}

// Shows the rows of the chooser as `add` puts each into the list.
template <class Chooser, class Add>
bool ShowChooser(QWidget* parent, QSettings* settings, EText title, Chooser& logic, Add add) {
    CDialog dialog(parent, Text(title), settings);
    QTreeWidget* list = MakeList(&dialog, Chooser::kColumns[0], Chooser::kColumns[1], Text(title));
    for (const auto& row : logic.GetRows()) add(*list, row);
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

} // namespace

bool CWindowDialogs::Show(QWidget* parent, CDataFileChooser& logic) {
    return ShowChooser(parent, m_settings, EText::fileChooserTitle, logic,
                       [](QTreeWidget& list, const SDataFileRow& row) {
                           AddRow(list, row.name, row.folder)->setIcon(0, GetRoleIcon(row.role));
                       });
}

bool CWindowDialogs::Show(QWidget* parent, CDataFileChannelChooser& logic) {
    return ShowChooser(
        parent, m_settings, EText::channelChooserTitle, logic,
        [](QTreeWidget& list, const SChannelRow& row) { AddRow(list, row.channel, row.file); });
}

bool CWindowDialogs::Show(QWidget* parent, CRoughMisalignmentChooser& logic) {
    CDialog dialog(parent, Text(CRoughMisalignmentChooser::kTitle), m_settings);
    auto* sides = new QHBoxLayout;
    QButtonGroup* groups[2];
    std::function<void()> draw;
    const auto show = [&] {
        groups[0]->button(logic.GetLogo())->setChecked(true);
        for (int side = 0; side < kSideCount; ++side)
            groups[1]->button(side)->setEnabled(logic.IsConnectorEnabled(side));
        groups[1]->button(logic.GetConnector())->setChecked(true);
        draw();
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
    auto* picture = new CRoughPicture(GetUnitsOf(logic.GetEquipment()) == EUnits::land, &dialog);
    picture->setFocusPolicy(Qt::NoFocus);
    sides->addWidget(picture, 1);
    draw = [&, picture] { picture->SetSides(logic.GetLogo(), logic.GetConnector()); };
    show();
    dialog.Add(sides);
    return dialog.Run();
}

namespace {

QPixmap MakeColourSwatch(Outils_Plot2D::Colour colour, const QComboBox& list) {
    QPixmap swatch(list.iconSize());
    swatch.fill(QColor::fromRgba(colour));
    return swatch;
}

QPixmap MakeLineSwatch(Outils_Plot2D::ELineStyle style, const QComboBox& list) {
    QPixmap swatch(list.iconSize());
    swatch.fill(list.palette().color(QPalette::Base));
    QPainter painter(&swatch);
    painter.setPen(
        Outils_Plot2D::CPlot2DPen(list.palette().color(QPalette::Text).rgba(), 2, style).GetNative());
    painter.drawLine(0, swatch.height() / 2, swatch.width(), swatch.height() / 2);
    return swatch;
}

// A line of a form on the screen: a text, or a choice of colours or styles.
QWidget* MakeFormField(QWidget& parent, const Presentation_Tarvel_Graphics::SFormLine& line) {
    QWidget* field = nullptr;
    if (line.choices.empty()) {
        field = new QLineEdit(ToQString(line.text), &parent);
        field->setMinimumWidth(260);
    } else {
        auto* list = new QComboBox(&parent);
        const bool areLines = line.choices.back().look.style != Outils_Plot2D::ELineStyle::solid;
        if (areLines) list->setIconSize({3 * list->iconSize().width(), list->iconSize().height()});
        for (const auto& choice : line.choices)
            list->addItem(areLines ? MakeLineSwatch(choice.look.style, *list)
                                   : MakeColourSwatch(choice.look.colour, *list),
                          Text(choice.name));
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
    CDialog dialog(parent, WithoutKey(logic.GetTitle()).remove(QStringLiteral("...")), m_settings);
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
    CDialog dialog(parent, Text(EText::settingsTitle), nullptr); // the configuration has its size
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

#include "app/command_bars.h"

#include "app/main_frame.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QAction>
#include <QActionGroup>
#include <QMenu>
#include <QMenuBar>
#include <QToolBar>

namespace Application_Tarvel {

using Outils_Plot2D::Text;

namespace {

// A tool tip that names the keys too.
QString MakeToolTip(const SCommandRow& row) {
    const char* first = *row.shortcut ? row.shortcut : row.graphKeys;
    const auto sequences = QKeySequence::listFromString(QString::fromLatin1(first));
    const QString keys = sequences.isEmpty() ? QString() : sequences[0].toString(QKeySequence::NativeText);
    return keys.isEmpty() ? Text(row.tip) : QStringLiteral("%1 (%2)").arg(Text(row.tip), keys);
}

// Paints nothing as long as the picture is the same.
void ShowGlyph(QAction& action, EGlyph glyph) {
    const int number = static_cast<int>(glyph);
    if (action.data().toInt() == number) return;
    action.setData(number);
    action.setIcon(GetIcon(glyph));
}

} // namespace

CTrvCommandBars::CTrvCommandBars(CTrvProjectMainFrame& frame) : m_frame(frame) {
    MakeActions();
    MakeMenus();
}

void CTrvCommandBars::MakeActions() {
    auto* modes = new QActionGroup(&m_frame);
    for (const SCommandRow& row : GetCommands()) {
        auto* action = m_actions[row.id] = new QAction(GetIcon(row.glyph), Text(row.text), &m_frame);
        action->setObjectName(QStringLiteral("command%1").arg(row.id));
        action->setShortcut(QKeySequence(QString::fromLatin1(row.shortcut)));
        action->setStatusTip(Text(row.tip));
        action->setToolTip(MakeToolTip(row));
        action->setCheckable(row.tickedWhen != nullptr);
        action->setIconVisibleInMenu(!row.tickedWhen); // a tick says more
        if (row.menu == EMenu::mouse) modes->addAction(action);
        QObject::connect(action, &QAction::triggered, &m_frame, [this, &row] {
            if (row.menu == EMenu::add)
                m_frame.GetProcessing().Add([&] { row.run(m_frame); });
            else
                row.run(m_frame);
            m_frame.UpdateFrame();
        });
        m_frame.addAction(action); // its keys work while menu and bars are hidden
    }
}

void CTrvCommandBars::MakeMenus() {
    for (const SMenuRow& row : GetMenus()) {
        auto* menu = m_menus[row.menu] = new QMenu(Text(row.text), &m_frame);
        menu->setToolTipsVisible(true);
        if (row.parent != row.menu) continue;
        m_frame.menuBar()->addMenu(menu);
        menu->menuAction()->setVisible(row.alsoWithoutProject);
        QObject::connect(menu, &QMenu::aboutToShow, &m_frame, &CTrvProjectMainFrame::UpdateFrame);
    }
    const auto parentOf = [](EMenu menu) { return GetMenus()[static_cast<std::size_t>(menu)].parent; };
    for (const SCommandRow& row : GetCommands()) {
        QMenu* menu = m_menus[row.menu];
        const bool first = menu->isEmpty();
        if (QMenu* parent = m_menus[parentOf(row.menu)]; first && parent != menu) {
            if (row.newGroup && !parent->isEmpty() && !parent->actions().last()->menu())
                parent->addSeparator();
            parent->addMenu(menu);
        }
        if (row.newGroup && !first) menu->addSeparator();
        menu->addAction(m_actions[row.id]);
    }
    m_frame.menuBar()->setAccessibleName(Text(EText::menuBarTitle));
}

QToolBar* CTrvCommandBars::MakeToolBar(EBar bar, const char* name, EText title) {
    QToolBar* toolBar = m_frame.addToolBar(Text(title));
    toolBar->setObjectName(QString::fromLatin1(name));
    toolBar->setAccessibleName(Text(title));
    toolBar->setIconSize(QSize(20, 20));
    for (const SCommandRow& row : GetCommands()) {
        if (row.bar != bar) continue;
        if (row.newGroup && !toolBar->actions().isEmpty()) toolBar->addSeparator();
        toolBar->addAction(m_actions[row.id]);
    }
    return toolBar;
}

void CTrvCommandBars::ServeGraphs() {
    CTrvView1D& view = m_frame.GetView();
    auto* menu = new QMenu(&m_frame);
    std::map<EMenu, QMenu*> submenus;
    for (const SCommandRow& row : GetCommands()) {
        QAction* action = m_actions[row.id];
        for (const QKeySequence& key : QKeySequence::listFromString(QString::fromLatin1(row.graphKeys)))
            view.AddCommandKey(key, action);
        if (row.graphMenu == EContext::none) continue;
        QMenu* target = menu;
        if (row.graphMenu == EContext::submenu) {
            QMenu*& submenu = submenus[row.menu];
            if (!submenu) submenu = menu->addMenu(Text(GetMenus()[static_cast<std::size_t>(row.menu)].text));
            target = submenu;
        }
        target->addAction(action);
    }
    view.SetContextMenu(menu);
}

void CTrvCommandBars::ServeProcessing() {
    auto* menu = new QMenu(&m_frame);
    for (const SCommandRow& row : GetCommands()) {
        if (!row.inProcessingMenu) continue;
        if (row.newGroup && !menu->isEmpty()) menu->addSeparator();
        menu->addAction(m_actions[row.id]);
    }
    m_frame.GetProcessing().SetContextMenu(menu);
}

void CTrvCommandBars::ShowAllMenus() {
    for (const auto& [id, menu] : m_menus) menu->menuAction()->setVisible(true);
}

void CTrvCommandBars::Update() {
    const EUnits units = GetUnitsOf(m_frame.GetEquipment());
    for (const SCommandRow& row : GetCommands()) {
        QAction& action = GetAction(row.id);
        if (row.units != EUnits::all) action.setVisible(Includes(row.units, units));
        action.setEnabled(!row.enabledWhen || row.enabledWhen(m_frame));
        if (row.tickedWhen) action.setChecked(row.tickedWhen(m_frame));
        if (row.glyphNow) ShowGlyph(action, row.glyphNow(m_frame));
        if (!row.caption) continue;
        const QString caption = row.caption(m_frame);
        action.setText(caption);
        action.setVisible(!caption.isEmpty());
    }
}

} // namespace Application_Tarvel

// How the main window is put together and kept in line with the document.
#include "app/appearance.h"
#include "app/main_frame.h"
#include "app/status_bar.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QDockWidget>
#include <QMenuBar>
#include <QScreen>
#include <QSettings>
#include <QSignalBlocker>
#include <QToolBar>
#include <QVBoxLayout>

#include <algorithm>

namespace Application_Tarvel {

using Outils_Texte::EText;

using Outils_Configuration::Cnf;

namespace {

constexpr int kStateVersion = 1; // of the window's layout: counts up when bars or panels are renamed
constexpr const char* kGeometryKey = "mainFrame/geometry";
constexpr const char* kStateKey = "mainFrame/state";
constexpr QSize kFirstSize(1280, 800);
constexpr QSize kProcessingSize(320, 500);
constexpr QSize kOutputSize(600, 140);

// A tool tip for those who look, with the keys that make it needless.
QString MakeToolTip(const SCommandRow& row) {
    const QString keys = QKeySequence(QString::fromLatin1(row.shortcut)).toString(QKeySequence::NativeText);
    return keys.isEmpty() ? Text(row.tip) : QStringLiteral("%1 (%2)").arg(Text(row.tip), keys);
}

// Paints nothing anew as long as the picture is the same.
void ShowGlyph(QAction& action, EGlyph glyph) {
    const int number = static_cast<int>(glyph);
    if (action.data().toInt() == number) return;
    action.setData(number);
    action.setIcon(GetIcon(glyph));
}

// Stands between a panel and its content: the panel has its size also while the content is hidden, and shows
// and hides without a say in that.
class CPanelSpace final : public QWidget {
  public:
    CPanelSpace(QWidget* content, QSize size) : m_size(size) {
        auto* layout = new QVBoxLayout(this);
        layout->setContentsMargins(0, 0, 0, 0);
        layout->addWidget(content);
    }
    QSize sizeHint() const override { return m_size; }

  private:
    const QSize m_size;
};

} // namespace

CTrvProjectMainFrame::CTrvProjectMainFrame(CTrvApp& application, Outils::IMessageTarget& target,
                                           IDialogs& dialogs, QSettings& settings)
    : m_application(application),
      m_dialogs(dialogs),
      m_settings(settings),
      m_receiver(target, this),
      m_recentFiles(settings),
      m_document(*this, target, application.GetConfiguration()) {
    setObjectName("mainFrame");
    setWindowIcon(GetProductIcon());
    setAcceptDrops(true);
    setDockNestingEnabled(true);
    ApplyAppearance();

    m_view = new CTrvView1D(m_document, application.GetAdaptors(), application.GetPlotSettings(), this);
    setCentralWidget(m_view);
    m_processing = new CTrvViewProcessing(m_document);
    m_output = new CTrvOutputWnd;
    m_statusBar = new CTrvStatusBar(this);
    setStatusBar(m_statusBar);

    MakeActions();
    MakeMenus();
    MakeToolBar(EBar::standard, "standardBar", EText::standardBarTitle);
    MakeToolBar(EBar::tools, "toolsBar", EText::toolsBarTitle);
    MakePanel(commandProcessingPanel, "processingPanel", EText::processingTitle, m_processing,
              kProcessingSize, Qt::LeftDockWidgetArea);
    MakePanel(commandOutputPanel, "outputPanel", EText::outputTitle, m_output, kOutputSize,
              Qt::BottomDockWidgetArea);
    m_output->addAction(&GetAction(commandClearOutput));
    resize(kFirstSize.boundedTo(screen()->availableSize()));
    RestoreWindow();

    connect(m_view, &CTrvView1D::StateChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    m_document.AddView(this);
    UpdateFrame();
    m_view->setFocus();
}

CTrvProjectMainFrame::~CTrvProjectMainFrame() {
    m_document.RemoveView(this);
    for (auto& [command, bar] : m_bars) bar->disconnect(this);
    // The views leave the document before it goes, and nothing is shown on a window that is half gone.
    delete m_view;
    delete m_processing;
    m_output = nullptr;
    m_statusBar = nullptr;
}

void CTrvProjectMainFrame::MakeActions() {
    auto* modes = new QActionGroup(this);
    for (const SCommandRow& row : GetCommands()) {
        auto* action = m_actions[row.id] = new QAction(GetIcon(row.glyph), Text(row.text), this);
        action->setObjectName(QStringLiteral("command%1").arg(row.id));
        action->setShortcut(QKeySequence(QString::fromLatin1(row.shortcut)));
        action->setStatusTip(Text(row.tip));
        action->setToolTip(MakeToolTip(row));
        action->setCheckable(row.tickedWhen != nullptr);
        action->setIconVisibleInMenu(!row.tickedWhen); // a tick says more
        if (row.menu == EMenu::mouse) modes->addAction(action);
        connect(action, &QAction::triggered, this, [this, &row] { RunCommand(row); });
        addAction(action); // its keys work while menu and bars are hidden
    }
}

void CTrvProjectMainFrame::MakeMenus() {
    for (const SMenuRow& row : GetMenus()) {
        auto* menu = m_menus[row.menu] = new QMenu(Text(row.text), this);
        menu->setToolTipsVisible(false);
        if (row.parent != row.menu) continue;
        menuBar()->addMenu(menu);
        menu->menuAction()->setVisible(row.alsoWithoutProject);
        connect(menu, &QMenu::aboutToShow, this, &CTrvProjectMainFrame::UpdateFrame);
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
    menuBar()->setAccessibleName(Text(EText::menuBarTitle));
    RegisterBar(commandMenuBar, menuBar());
}

QToolBar* CTrvProjectMainFrame::MakeToolBar(EBar bar, const char* name, EText title) {
    QToolBar* toolBar = addToolBar(Text(title));
    toolBar->setObjectName(QString::fromLatin1(name));
    toolBar->setAccessibleName(Text(title));
    toolBar->setIconSize(QSize(20, 20));
    for (const SCommandRow& row : GetCommands()) {
        if (row.bar != bar) continue;
        if (row.newGroup && !toolBar->actions().isEmpty()) toolBar->addSeparator();
        toolBar->addAction(m_actions[row.id]);
    }
    RegisterBar(bar == EBar::standard ? commandStandardBar : commandToolsBar, toolBar);
    connect(toolBar, &QToolBar::visibilityChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    return toolBar;
}

QDockWidget* CTrvProjectMainFrame::MakePanel(int command, const char* name, EText title, QWidget* content,
                                             QSize size, Qt::DockWidgetArea area) {
    auto* panel = new QDockWidget(Text(title), this);
    panel->setObjectName(QString::fromLatin1(name));
    panel->setAccessibleName(Text(title));
    content->setAccessibleName(Text(title));
    panel->setWidget(new CPanelSpace(content, size));
    addDockWidget(area, panel);
    RegisterBar(command, panel);
    connect(panel, &QDockWidget::visibilityChanged, this, &CTrvProjectMainFrame::UpdateFrame);
    return panel;
}

void CTrvProjectMainFrame::RegisterBar(int command, QWidget* bar) { m_bars[command] = bar; }

bool CTrvProjectMainFrame::IsBarShown(int command) const { return !m_bars.at(command)->isHidden(); }

void CTrvProjectMainFrame::ToggleBar(int command) {
    QWidget* bar = m_bars.at(command);
    bar->setVisible(bar->isHidden());
}

void CTrvProjectMainFrame::RestoreWindow() {
    // What cannot be restored, after a change of the panels or a damaged file, leaves the first layout.
    restoreGeometry(m_settings.value(kGeometryKey).toByteArray());
    restoreState(m_settings.value(kStateKey).toByteArray(), kStateVersion);
}

void CTrvProjectMainFrame::StoreWindow() {
    m_settings.setValue(kGeometryKey, saveGeometry());
    m_settings.setValue(kStateKey, saveState(kStateVersion));
}

void CTrvProjectMainFrame::ApplyAppearance() {
    ApplyPalette(m_application.GetConfiguration().Get(Cnf<"general/appearance">));
}

void CTrvProjectMainFrame::UpdateMenuForEquipment(std::int32_t equipment) {
    m_equipment = equipment;
    for (const SMenuRow& row : GetMenus())
        if (m_menus.contains(row.menu)) m_menus[row.menu]->menuAction()->setVisible(true);
}

void CTrvProjectMainFrame::RunCommand(const SCommandRow& row) {
    row.run(*this);
    UpdateFrame();
}

void CTrvProjectMainFrame::UpdateFrame() {
    const auto& path = m_document.GetPathName();
    if (path != m_knownPath) {
        m_knownPath = path;
        if (!path.empty()) m_recentFiles.Add(path);
    }
    QString name = path.empty() ? Text(EText::untitled) : ToQString(path.stem());
    name.replace(QStringLiteral("[*]"), QStringLiteral("[*][*]")); // no mark, but a name
    setWindowTitle(QStringLiteral("%1[*] - %2").arg(name, Text(EText::product)));
    setWindowModified(m_document.IsModified());
    m_statusBar->SetMessage(Text(m_running ? EText::running : EText::ready));

    for (const SCommandRow& row : GetCommands()) {
        QAction& action = GetAction(row.id);
        action.setEnabled(!row.enabledWhen || row.enabledWhen(*this));
        if (row.tickedWhen) action.setChecked(row.tickedWhen(*this));
        if (row.glyphNow) ShowGlyph(action, row.glyphNow(*this));
        if (!row.caption) continue;
        const QString caption = row.caption(*this);
        action.setText(caption);
        action.setVisible(!caption.isEmpty());
    }
}

} // namespace Application_Tarvel

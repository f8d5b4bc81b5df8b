#include "app/tool_windows.h"

#include "app/dialogs.h"
#include "config/config_file.h"
#include "foundation/texts.h"
#include "plot/text.h"
#include "processing/message_line.h"
#include "processing/notification.h"
#include "views/grid_view.h"

#include <QApplication>
#include <QClipboard>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QVBoxLayout>

namespace Application_Tarvel {

using namespace Dialogue_Tarvel;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr int kPollPeriod = 100;       // milliseconds
constexpr int kMostMessages = 5000;    // in the list; the output panel has all
constexpr QSize kScreenMargin(20, 60); // around the window: title bar and borders
constexpr int kLeastGridRows = 12, kLeastMessageRows = 4;

QString WithoutKey(EText text) { return Text(text).remove(QLatin1Char('&')); }

} // namespace

CToolWindow::CToolWindow(QWidget* parent, CToolDialog& logic) : QDialog(parent), m_logic(logic) {
    setWindowTitle(Text(logic.GetTitle()));
    MakeContent();
    m_logic.SetListener(this);
    m_timer.setInterval(kPollPeriod);
    connect(&m_timer, &QTimer::timeout, this, &CToolWindow::Poll);
    RestoreSize();
    ShowState();
    if (const auto* first = m_logic.GetGrid().GetRoot().GetChild(0)) m_grid->Select(*first);
    m_grid->setFocus();
}

CToolWindow::~CToolWindow() {
    m_logic.SetListener(nullptr);
    delete m_grid; // before the grid that it shows
}

void CToolWindow::MakeContent() {
    auto* layout = new QVBoxLayout(this);
    auto* panes = new QSplitter(Qt::Vertical, this);
    panes->setChildrenCollapsible(false);
    m_grid = new CTrvGridView(m_logic.GetGrid(), m_logic.GetQuestions(), panes);
    m_grid->setAccessibleName(windowTitle());
    m_grid->setMinimumHeight(fontMetrics().height() * kLeastGridRows);
    m_grid->installEventFilter(this);
    m_messages = new QListWidget(panes);
    m_messages->setAccessibleName(Text(EText::toolMessages));
    m_messages->setSelectionMode(QAbstractItemView::ExtendedSelection);
    m_messages->setMinimumHeight(fontMetrics().height() * kLeastMessageRows);
    m_messages->setWordWrap(true);
    m_messages->setIconSize(QSize(fontMetrics().height(), fontMetrics().height()));
    panes->setStretchFactor(0, 3);
    panes->setStretchFactor(1, 1);
    layout->addWidget(panes, 1);
    m_commandLine = new QPlainTextEdit(this);
    m_commandLine->setReadOnly(true);
    m_commandLine->setAccessibleName(WithoutKey(EText::toolCommandLine));
    m_commandLine->setMaximumHeight(fontMetrics().height() * 5);
    m_commandLine->hide();
    layout->addWidget(m_commandLine);
    m_progress = new QProgressBar(this);
    m_progress->setRange(0, 100);
    m_progress->setAccessibleName(windowTitle());
    layout->addWidget(m_progress);

    auto* buttons = new QHBoxLayout;
    auto* showLine = new QPushButton(Text(EText::toolCommandLine), this);
    showLine->setCheckable(true);
    auto* copy = new QPushButton(Text(EText::toolCopyMessages), this);
    m_start = new QPushButton(Text(EText::toolStart), this);
    m_close = new QPushButton(Text(EText::toolClose), this);
    for (QPushButton* button : {showLine, copy, m_close}) button->setAutoDefault(false);
    m_start->setDefault(true);
    buttons->addWidget(showLine);
    buttons->addWidget(copy);
    buttons->addStretch(1);
    buttons->addWidget(m_start);
    buttons->addWidget(m_close);
    layout->addLayout(buttons);

    connect(showLine, &QPushButton::toggled, this, [this](bool on) {
        m_commandLine->setVisible(on);
        ShowCommandLine();
    });
    connect(m_grid->model(), &QAbstractItemModel::dataChanged, this, &CToolWindow::ShowCommandLine);
    connect(copy, &QPushButton::clicked, this, &CToolWindow::CopyMessages);
    connect(m_start, &QPushButton::clicked, this, &CToolWindow::StartOrCancel);
    connect(m_close, &QPushButton::clicked, this, &CToolWindow::reject);
    auto* copyKey = new QShortcut(QKeySequence::Copy, m_messages, nullptr, nullptr, Qt::WidgetShortcut);
    connect(copyKey, &QShortcut::activated, this, &CToolWindow::CopyMessages);
}

void CToolWindow::RestoreSize() {
    const auto& configuration = m_logic.GetConfiguration();
    const auto keys = m_logic.GetSizeKeys();
    m_grid->ResizeTitles(configuration.Get(keys.column));
    const QSize size(configuration.Get(keys.width), configuration.Get(keys.height));
    resize(size.expandedTo(minimumSizeHint()).boundedTo(screen()->availableSize() - kScreenMargin));
}

void CToolWindow::StoreSize() {
    auto& configuration = m_logic.GetConfiguration();
    const auto keys = m_logic.GetSizeKeys();
    configuration.Set(keys.width, width());
    configuration.Set(keys.height, height());
    configuration.Set(keys.column, m_grid->GetTitleWidth());
}

bool CToolWindow::eventFilter(QObject* watched, QEvent* event) {
    if (watched == m_grid && event->type() == QEvent::KeyPress) {
        const auto* key = static_cast<QKeyEvent*>(event);
        if (key->key() == Qt::Key_Return || key->key() == Qt::Key_Enter) {
            StartOrCancel();
            return true;
        }
    }
    return QDialog::eventFilter(watched, event);
}

void CToolWindow::StartOrCancel() {
    if (m_logic.IsRunning()) {
        m_logic.Cancel();
    } else {
        m_messages->clear();
        if (m_logic.Start()) {
            m_timer.start();
        } else if (const auto* fault = m_logic.GetFaultItem()) {
            m_grid->Select(*fault);
            m_grid->setFocus();
        }
    }
    ShowState();
}

void CToolWindow::Poll() {
    m_logic.Poll();
    ShowState();
}

void CToolWindow::ShowState() {
    const bool runs = m_logic.IsRunning();
    m_start->setText(Text(runs ? EText::toolCancel : EText::toolStart));
    m_close->setEnabled(!runs);
    m_progress->setEnabled(runs);
    m_progress->setValue(m_logic.GetProgress());
    const auto left = m_logic.GetTimeLeft();
    m_progress->setFormat(
        left ? ToQString(Outils_Texte::FormatText(EText::toolTimeLeft, {std::to_string(m_logic.GetProgress()),
                                                                        std::to_string(left->count())}))
             : QStringLiteral("%p %"));
    ShowCommandLine();
    if (runs) return;
    m_timer.stop();
    if (!m_logic.HasEnded()) return;
    StoreSize();
    accept();
}

void CToolWindow::ShowCommandLine() {
    if (m_commandLine->isHidden()) return;
    const QString line = ToQString(m_logic.GetCommandLine());
    if (line != m_commandLine->toPlainText()) m_commandLine->setPlainText(line);
}

void CToolWindow::OnToolMessage(int level, const std::string& text) {
    constexpr QStyle::StandardPixmap kIcons[] = {QStyle::SP_MessageBoxInformation,
                                                 QStyle::SP_MessageBoxWarning, QStyle::SP_MessageBoxCritical};
    auto* row = new QListWidgetItem(ToQString(Communication_Processus::FormatMessageLine(level, text)));
    if (level >= 0 && level < static_cast<int>(std::size(kIcons)))
        row->setIcon(style()->standardIcon(kIcons[level]));
    m_messages->addItem(row);
    if (m_messages->count() > kMostMessages) delete m_messages->takeItem(0);
    m_messages->scrollToBottom();
}

// The selected ones, or all.
void CToolWindow::CopyMessages() {
    const bool isAll = m_messages->selectedItems().isEmpty();
    QStringList lines;
    for (int row = 0; row < m_messages->count(); ++row)
        if (isAll || m_messages->item(row)->isSelected()) lines << m_messages->item(row)->text();
    QApplication::clipboard()->setText(lines.join(u'\n'));
}

void CToolWindow::reject() {
    if (!m_logic.Close()) return;
    StoreSize();
    QDialog::reject();
}

bool CWindowDialogs::Show(QWidget* parent, CToolDialog& logic) {
    // The wizard may be open: this one is over it.
    QWidget* const above = QApplication::activeModalWidget();
    CToolWindow window(above ? above : parent, logic);
    return window.exec() == QDialog::Accepted;
}

} // namespace Application_Tarvel

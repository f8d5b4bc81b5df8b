#include "views/view_value.h"

#include "config/config_file.h"
#include "foundation/texts.h"
#include "plot/text.h"

#include <QAction>
#include <QClipboard>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPainter>
#include <QProgressBar>
#include <QTimerEvent>
#include <QToolButton>
#include <QVBoxLayout>

#include <algorithm>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Configuration::Cnf;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr auto kWidth = Cnf<"viewValue/firstColumnWidth">;
constexpr int kPollPeriod = 100; // ms
constexpr int kMargin = 12;      // pixels about a notice
constexpr int kPercent = 100;
constexpr int kDarkLightness = 128; // of 255: below it a palette is dark

} // namespace

// --- The list

CValuesList::CValuesList(QWidget* parent) : QTreeView(parent) {
    setRootIsDecorated(false);
    setUniformRowHeights(true);
    setSelectionMode(ExtendedSelection);
    setSelectionBehavior(SelectRows);
    setDragDropMode(InternalMove);
    setDropIndicatorShown(true);
    setFrameShape(NoFrame);
    setAllColumnsShowFocus(true);
    setTextElideMode(Qt::ElideMiddle); // the field is at the end of its label
    setContextMenuPolicy(Qt::ActionsContextMenu);
    setAccessibleName(Text(EText::instantValuesTitle));
    setAccessibleDescription(Text(EText::valuesHelp));
    header()->setStretchLastSection(false);
    header()->setSectionsMovable(false);
}

void CValuesList::SetNotice(const QString& notice) {
    m_notice = notice;
    viewport()->update();
}

void CValuesList::MarkDrop(bool on) {
    m_isMarked = on;
    viewport()->update();
}

void CValuesList::paintEvent(QPaintEvent* event) {
    QTreeView::paintEvent(event);
    QPainter painter(viewport());
    if (!m_notice.isEmpty()) {
        painter.setPen(palette().color(QPalette::Disabled, QPalette::Text));
        const QRect room = viewport()->rect().adjusted(kMargin, kMargin, -kMargin, -kMargin);
        painter.drawText(room, Qt::AlignCenter | Qt::TextWordWrap, m_notice);
    }
    if (!m_isMarked) return;
    painter.setPen(QPen(palette().color(QPalette::Highlight), 2));
    painter.drawRect(viewport()->rect().adjusted(1, 1, -1, -1));
}

// --- The panel

CTrvViewValue::CTrvViewValue(CTrvDocument& document, CViewState& state,
                             Outils_Configuration::CTrvCnfConfigFile& configuration,
                             const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent)
    : QWidget(parent),
      m_values(document, state, adaptors),
      m_configuration(configuration),
      m_model(m_values),
      m_times(new QLabel(this)),
      m_list(new CValuesList(this)),
      m_foot(new QWidget(this)),
      m_progress(new QProgressBar(m_foot)) {
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_times->setWordWrap(true);
    m_times->setMargin(3);
    m_times->setTextInteractionFlags(Qt::TextSelectableByMouse);
    layout->addWidget(m_times);
    layout->addWidget(m_list, 1);
    layout->addWidget(m_foot);
    auto* foot = new QHBoxLayout(m_foot);
    foot->setContentsMargins(0, 0, 0, 0);
    m_progress->setRange(0, kPercent);
    m_progress->setFormat(Text(EText::statisticsRunning).replace(QStringLiteral("%1"), QStringLiteral("%p")));
    m_progress->setAccessibleName(Text(EText::showStatistics).remove(u'&'));
    foot->addWidget(m_progress, 1);
    auto* stop = new QToolButton(m_foot);
    stop->setText(Text(EText::stopStatistics));
    foot->addWidget(stop);
    connect(stop, &QToolButton::clicked, this, [this] { m_values.StopStatistics(); });
    m_list->setModel(&m_model);
    m_list->setColumnWidth(0, m_configuration.Get(kWidth));
    MakeActions();
    m_values.SetOnChanged([this] { m_model.FollowRows(); }, [this] { OnValuesChanged(); });
    m_model.SetDark(palette().color(QPalette::Base).lightness() < kDarkLightness);
    m_model.FollowRows();
    OnValuesChanged();
}

CTrvViewValue::~CTrvViewValue() {
    m_configuration.Set(kWidth, m_list->columnWidth(0));
    m_values.SetOnChanged({}, {});
    delete m_list; // before the model that it shows
}

void CTrvViewValue::MakeActions() {
    const auto add = [this](EText text, const char* key, auto run) {
        auto* action = new QAction(Text(text), m_list);
        action->setShortcut(QKeySequence(QString::fromLatin1(key)));
        action->setShortcutContext(Qt::WidgetShortcut);
        connect(action, &QAction::triggered, this, run);
        m_list->addAction(action);
        return action;
    };
    add(EText::copyValues, "Ctrl+C", [this] { CopyRows(); });
    add(EText::selectAllValues, "Ctrl+A", [this] { m_list->selectAll(); });
    add(EText::moveValuesUp, "Alt+Up", [this] { MoveRows(-1); });
    add(EText::moveValuesDown, "Alt+Down", [this] { MoveRows(1); });
    add(EText::removeValues, "Del", [this] { RemoveRows(); });
    m_statistics = add(EText::showStatistics, "", [this](bool on) { ShowStatistics(on); });
    m_statistics->setCheckable(true);
    m_statistics->setToolTip(Text(EText::showStatisticsTip));
}

void CTrvViewValue::ShowStatistics(bool show) {
    m_statistics->setChecked(show);
    m_values.ShowStatistics(show);
}

std::vector<const CTrvInstantValue*> CTrvViewValue::GetSelected() const {
    QModelIndexList rows = m_list->selectionModel()->selectedRows();
    std::ranges::sort(rows, {}, [](const QModelIndex& index) { return index.row(); });
    std::vector<const CTrvInstantValue*> selected;
    for (const QModelIndex& row : rows) selected.push_back(m_model.GetSaved(row));
    return selected;
}

// Without a selection everything.
void CTrvViewValue::CopyRows() {
    auto rows = GetSelected();
    if (rows.empty())
        for (const SValueRow& row : m_values.GetRows()) rows.push_back(row.saved);
    QGuiApplication::clipboard()->setText(ToQString(m_values.CopyText(rows)));
}

void CTrvViewValue::RemoveRows() {
    for (const CTrvInstantValue* saved : GetSelected()) m_values.Remove(*saved);
}

void CTrvViewValue::MoveRows(int places) {
    auto rows = GetSelected();
    if (places > 0) std::ranges::reverse(rows);
    const auto placeOf = [this](const CTrvInstantValue* saved) {
        return static_cast<int>(m_values.Find(saved) - m_values.GetRows().data());
    };
    int limit = places > 0 ? m_model.rowCount() : -1; // the row before, which the next one does not pass
    for (const CTrvInstantValue* saved : rows) {
        const int wanted = placeOf(saved) + places;
        const int place = places > 0 ? std::min(wanted, limit - 1) : std::max(wanted, limit + 1);
        m_values.Move(*saved, static_cast<std::size_t>(place));
        limit = placeOf(saved);
    }
}

void CTrvViewValue::Reformat() { m_values.Reformat(); }

void CTrvViewValue::OnValuesChanged() {
    m_model.FollowValues();
    m_times->setText(ToQString(m_values.GetTimes()));
    m_times->setVisible(!m_values.GetRows().empty());
    m_list->SetNotice(ToQString(m_values.GetNotice()));
    ShowColumns();
    ShowProgress();
}

void CTrvViewValue::ShowColumns() {
    const auto columns = m_values.GetColumns();
    for (int column = 0; column < m_model.columnCount(); ++column) {
        const bool isShown = std::ranges::find(columns, static_cast<EValueColumn>(column)) != columns.end();
        if (m_list->isColumnHidden(column) != isShown) continue;
        m_list->setColumnHidden(column, !isShown);
        if (column > 0) m_list->resizeColumnToContents(column);
    }
    // A single value has the room that the names leave.
    m_list->header()->setStretchLastSection(columns.size() <= 2);
}

void CTrvViewValue::ShowProgress() {
    const auto progress = m_values.GetProgress();
    m_foot->setVisible(progress.has_value());
    if (!progress) return m_poll.stop();
    m_progress->setValue(static_cast<int>(*progress * kPercent));
    if (!m_poll.isActive()) m_poll.start(kPollPeriod, this);
}

void CTrvViewValue::timerEvent(QTimerEvent* event) {
    if (event->timerId() == m_poll.timerId()) m_values.Poll();
}

void CTrvViewValue::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) {
        m_model.SetDark(palette().color(QPalette::Base).lightness() < kDarkLightness);
        m_list->viewport()->update();
    }
    QWidget::changeEvent(event);
}

} // namespace Application_Tarvel

#include "views/view_processing.h"

#include "config/config_file.h"
#include "document/document.h"
#include "foundation/texts.h"
#include "plot/text.h"
#include "views/grid_view.h"

#include <QContextMenuEvent>
#include <QMenu>
#include <QPushButton>
#include <QTimerEvent>
#include <QVBoxLayout>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Grid;
using Outils_Configuration::Cnf;
using Outils_Plot2D::Text;
using Outils_Texte::EText;

namespace {

constexpr EText textProcess = EText::processLabel;
constexpr EText textStopProcessing = EText::stopProcessingLabel;
constexpr QRgb kRowColours[] = {0xFFF5FAFF, 0xFFD2E6FA}; // on a light ground
constexpr int kPollPeriod = 500;                         // ms
constexpr int kButtonHeight = 23;                        // pixels, unless the font needs more
constexpr QPoint kMenuPlace{5, 5};                       // of a menu that the keyboard asks for
constexpr auto kWidth = Cnf<"viewProcessing/firstColumnWidth">;

} // namespace

CTrvViewProcessing::CTrvViewProcessing(CTrvDocument& document,
                                       Outils_Configuration::CTrvCnfConfigFile& configuration,
                                       const Outils_Valeurs::CTrvAdaptors& adaptors, QWidget* parent)
    : QWidget(parent),
      m_document(document),
      m_configuration(configuration),
      m_tree(document, adaptors),
      m_grid(new CTrvGridView(m_tree.GetGrid(), document.GetHost(), this)),
      m_button(new QPushButton(this)),
      m_extents(document, [this] { m_tree.GetGrid().Changed(m_tree.GetGrid().GetRoot()); }) {
    m_tree.SetExtents(
        [this](const Metier_Tarvel::CTrvDataFileChannel& channel) -> std::optional<CProcessingTree::SExtent> {
            const auto* extent = m_extents.Find({channel.file, channel.id});
            if (!extent) return std::nullopt;
            return CProcessingTree::SExtent{extent->count, extent->first, extent->last};
        });
    auto* layout = new QVBoxLayout(this);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    m_grid->setAccessibleName(Text(EText::processingGridName));
    m_grid->setContextMenuPolicy(Qt::NoContextMenu); // the panel answers for it
    layout->addWidget(m_grid, 1);
    m_button->setMinimumHeight(kButtonHeight);
    m_button->setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Fixed);
    layout->addWidget(m_button);
    m_grid->ResizeTitles(m_configuration.Get(kWidth));
    m_grid->SetFaultColor(
        QColor::fromRgba(m_configuration.Get(Cnf<"viewProcessing/badParameterColor">).argb));
    connect(m_button, &QPushButton::clicked, this, &CTrvViewProcessing::ToggleProcess);
    connect(m_grid, &CTrvGridView::SelectionMoved, this, &CTrvViewProcessing::StateChanged);
    connect(m_grid, &CTrvGridView::DialogRequested, this, &CTrvViewProcessing::DialogRequested);
    connect(m_grid, &CTrvGridView::RemoveRequested, this, &CTrvViewProcessing::RemoveSelected);
    m_document.AddView(this);
    UpdateButton(false);
    PaintRows();
    ShowProject();
}

CTrvViewProcessing::~CTrvViewProcessing() {
    m_document.RemoveView(this);
    m_configuration.Set(kWidth, m_grid->GetTitleWidth());
    delete m_grid; // before the tree that it shows
}

CHGItem* CTrvViewProcessing::GetSelected() const { return m_grid->GetSelected(); }

void CTrvViewProcessing::SelectNextFault() {
    if (const CHGItem* item = m_tree.FindNextFault(GetSelected())) Show(*item);
}

void CTrvViewProcessing::SelectFirstFault() {
    if (const CHGItem* item = m_tree.FindNextFault(nullptr)) Show(*item);
}

void CTrvViewProcessing::Show(const CHGItem& item) {
    Q_EMIT ShowRequested();
    m_grid->Select(item);
    m_grid->setFocus();
}

void CTrvViewProcessing::ShowObject(const Outils_Objets::CObject* object) {
    const CHGItem* item = m_tree.Find(object);
    if (!item && m_tree.GetParametersItem() && m_tree.GetParametersItem()->GetObject() == object)
        item = m_tree.GetParametersItem();
    if (!item) return;
    // What is wrong with the object may be a row below it, or of another object.
    if (item->HasFaultBelow() || item->GetFault().empty())
        if (const CHGItem* fault = m_tree.FindNextFault(item)) item = fault;
    Show(*item);
}

void CTrvViewProcessing::Add(const std::function<void()>& add) {
    m_tree.TakeAdded(); // of the analysis, which moves nobody's selection
    add();
    const CHGItem* item = m_tree.TakeAdded();
    if (!item) return;
    m_grid->SetItemExpanded(*item, true);
    Show(*item);
}

void CTrvViewProcessing::Reformat() { m_tree.Reformat(); }

void CTrvViewProcessing::ToggleProcess() {
    if (m_document.IsSimulationRunning()) {
        m_document.StopSimulation();
    } else {
        if (!m_document.StartSimulation()) SelectFirstFault();
        m_poll.start(kPollPeriod, this);
    }
    UpdateButton(m_document.IsSimulationRunning());
}

void CTrvViewProcessing::OnUpdate(EHint hint, const Outils_Objets::CObject* object) {
    switch (hint) {
    case hintRefresh: return ShowProject();
    case hintRunStarted: UpdateButton(true); break;
    case hintRunEnded: UpdateButton(false); break;
    default: break;
    }
    if (hint == hintDataFileContentChanged) m_extents.Refresh(object);
    m_tree.OnUpdate(hint, object);
    FollowSensors();
    Q_EMIT StateChanged();
}

void CTrvViewProcessing::FollowSensors() {
    std::set<Presentation_Tarvel_Graphics::SChannelKey> channels;
    if (const auto* project = m_document.GetProject())
        for (const auto& sensor : project->simulationParameters->sensors)
            if (sensor->channel) channels.insert({sensor->channel->file, sensor->channel->id});
    m_extents.Follow(channels);
}

void CTrvViewProcessing::ShowProject() {
    m_tree.Rebuild();
    FollowSensors();
    const bool hasProject = m_document.GetProject() != nullptr;
    setVisible(hasProject);
    if (hasProject) {
        const CHGItem& root = m_tree.GetGrid().GetRoot();
        for (std::size_t i = 0; const CHGItem* item = root.GetChild(i); ++i) Expand(*item);
        m_grid->Select(*m_tree.GetParametersItem());
    }
    Q_EMIT StateChanged();
}

// All but the objects of the collections, and what has its values on its own line.
void CTrvViewProcessing::Expand(const CHGItem& item) {
    if (item.GetChildCount() == 0 || !item.GetValue().empty()) return;
    m_grid->SetItemExpanded(item, true);
    if (m_tree.IsCollection(item)) return;
    for (std::size_t i = 0; const CHGItem* child = item.GetChild(i); ++i) Expand(*child);
}

void CTrvViewProcessing::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) PaintRows();
    QWidget::changeEvent(event);
}

void CTrvViewProcessing::PaintRows() {
    QPalette rows;
    if (palette().color(QPalette::Base).lightness() > 128) {
        rows.setColor(QPalette::Base, kRowColours[0]);
        rows.setColor(QPalette::AlternateBase, kRowColours[1]);
    }
    m_grid->setPalette(rows);
}

void CTrvViewProcessing::timerEvent(QTimerEvent* event) {
    if (event->timerId() != m_poll.timerId()) return QWidget::timerEvent(event);
    const bool running = m_document.IsSimulationRunning();
    UpdateButton(running);
    if (!running) m_poll.stop();
}

void CTrvViewProcessing::contextMenuEvent(QContextMenuEvent* event) {
    if (!m_menu) return;
    const bool isKey = event->reason() == QContextMenuEvent::Keyboard;
    m_menu->popup(isKey ? mapToGlobal(kMenuPlace) : event->globalPos());
}

void CTrvViewProcessing::UpdateButton(bool running) {
    m_button->setText(Text(running ? textStopProcessing : textProcess));
}

} // namespace Application_Tarvel

#include "views/view_1d.h"

#include "config/config_file.h"
#include "document/edits.h"
#include "foundation/texts.h"
#include "graph/field_drop.h"
#include "graph/hit_test.h"
#include "graph/stack_text.h"
#include "plot/text.h"
#include "views/view_1d_interactors.h"
#include "views/view_1d_tip.h"

#include <QAction>
#include <QContextMenuEvent>
#include <QHelpEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QPaintEvent>
#include <QPainter>
#include <QScrollBar>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <utility>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using namespace std::chrono_literals;
using Outils_Configuration::Cnf;
using Outils_Plot2D::Text;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;

namespace {

constexpr int kScrollStep = 40; // pixels
// Turns of the wheel that are nearer to each other than this belong together.
constexpr auto kWheelPause = 500ms;
constexpr auto kDescriptionPause = 300ms;
constexpr auto kNoticePause = 300ms;
constexpr auto kGrowthPause = 100ms;

} // namespace

CTrvView1D::CTrvView1D(CTrvDocument& document, CViewState& viewState,
                       Outils_Configuration::CTrvCnfConfigFile& configuration,
                       const Outils_Valeurs::CTrvAdaptors& adaptors, Outils_Plot2D::CPlot2DSettings& settings,
                       QWidget* parent)
    : CInteractorView(parent),
      m_configuration(configuration),
      m_loader(document, viewState, adaptors, settings),
      m_steps(document, viewState, [this](EText text) { Q_EMIT Notice(Text(text)); }),
      m_coverage(document, [this] { OnCoverageChanged(); }),
      m_tip(std::make_unique<CTrvView1DTip>(*this)) {
    setFocusPolicy(Qt::StrongFocus);
    setFrameShape(QFrame::NoFrame);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
    setAccessibleName(Text(EText::graphs));
    setAccessibleDescription(Text(EText::graphsHelp));
    verticalScrollBar()->setSingleStep(kScrollStep);
    m_wheelEnd.setSingleShot(true);
    m_wheelEnd.setInterval(kWheelPause);
    connect(&m_wheelEnd, &QTimer::timeout, this, &CTrvView1D::EndWheel);
    m_description.setSingleShot(true);
    m_description.setInterval(kDescriptionPause);
    connect(&m_description, &QTimer::timeout, this, [this] {
        setAccessibleDescription(ToQString(DescribeStack(GetStack(), GetViewState())) + u' ' +
                                 Text(EText::graphsHelp));
    });
    m_notices.setSingleShot(true);
    m_notices.setInterval(kNoticePause);
    connect(&m_notices, &QTimer::timeout, this, [this] {
        if (m_loader.UpdateNotices()) m_notices.start();
        Redraw();
    });
    m_growth.setInterval(kGrowthPause);
    connect(&m_growth, &QTimer::timeout, this, [this] { m_loader.LookForGrowth(); });
    m_loader.SetOnChanged([this](bool layout) { OnLoaderChanged(layout); });
    m_subscription = viewState.Listen([this](EViewChange change) {
        if (change == EViewChange::cursor) RedrawOverlay();
        if (!m_description.isActive()) m_description.start();
    });
    Reformat();
    SetMode(EView1DMode::select);
}

CTrvView1D::~CTrvView1D() { m_loader.SetOnChanged({}); }

void CTrvView1D::SetMode(EView1DMode mode) {
    m_mode = mode;
    switch (mode) {
    case EView1DMode::select: SetInteractor(std::make_unique<CTrvView1DInteractorSelect>(*this)); break;
    case EView1DMode::pan: SetInteractor(std::make_unique<CTrvView1DInteractorPan>(*this)); break;
    case EView1DMode::zoom: SetInteractor(std::make_unique<CTrvView1DInteractorZoom>(*this)); break;
    }
    Q_EMIT StateChanged();
}

void CTrvView1D::SetLegendsVisible(bool visible) {
    m_configuration.Set(Cnf<"view1D/showGraphLegends">, visible);
    m_loader.SetLegendsVisible(visible);
    Q_EMIT StateChanged();
}

void CTrvView1D::SetEcho(bool on) {
    m_configuration.Set(Cnf<"viewValue/echoToGraph">, on);
    m_echo = on;
    RedrawOverlay();
    Q_EMIT StateChanged();
}

void CTrvView1D::Reformat() {
    m_cursorLook.colour = m_configuration.Get(Cnf<"view1D/cursor/color">).argb;
    m_cursorLook.width = static_cast<float>(m_configuration.Get(Cnf<"view1D/cursor/width">));
    m_cursorLook.echoColour = m_configuration.Get(Cnf<"view1D/echo/color">).argb;
    m_cursorLook.echoWidth = static_cast<float>(m_configuration.Get(Cnf<"view1D/echo/width">));
    m_cursorLook.echoSize = static_cast<float>(m_configuration.Get(Cnf<"view1D/echo/size">));
    m_echo = m_configuration.Get(Cnf<"viewValue/echoToGraph">);
    m_loader.Reformat();
    Q_EMIT StateChanged();
}

SPoint CTrvView1D::ToStack(QPointF position) const {
    return {static_cast<float>(position.x()),
            static_cast<float>(position.y() + verticalScrollBar()->value())};
}

const Outils_Plot2D::STheme& CTrvView1D::GetTheme() const {
    return palette().color(QPalette::Base).lightness() < 128 ? Outils_Plot2D::kDarkTheme
                                                             : Outils_Plot2D::kLightTheme;
}

SGraphHit CTrvView1D::Hit(QPointF position) const {
    return static_cast<float>(position.y()) < GetStackHeight() ? HitTest(GetStack(), ToStack(position))
                                                               : SGraphHit();
}

std::optional<SStripHit> CTrvView1D::HitStrip(QPointF position) const {
    return Presentation_Tarvel_Graphics::HitStrip(
        m_coverage, GetStack(), GetStripRect(),
        {static_cast<float>(position.x()), static_cast<float>(position.y())});
}

float CTrvView1D::GetStackHeight() const { return static_cast<float>(viewport()->height()) - m_stripHeight; }

SRect CTrvView1D::GetStripRect() const {
    return {0, GetStackHeight(), static_cast<float>(viewport()->width()), m_stripHeight};
}

void CTrvView1D::OnCoverageChanged() {
    // Called by the constructor, too.
    const float height = m_loader.HasProject() ? GetStripHeight(m_coverage) : 0;
    if (std::exchange(m_stripHeight, height) != height)
        FitToWindow();
    else
        Redraw();
}

void CTrvView1D::DrawOverlay(QPainter& painter) {
    painter.save();
    painter.setClipRect(QRectF(0, 0, viewport()->width(), static_cast<double>(GetStackHeight())));
    painter.translate(0, -verticalScrollBar()->value());
    CGraphics graphics(painter);
    graphics.SetTheme(GetTheme());
    DrawCursors(GetStack(), graphics, GetViewState(), m_cursorLook, m_echo);
    painter.restore();
}

void CTrvView1D::SelectPortlet(int index) {
    const bool alone = GetStack().IsAlone() && index != GetStack().GetSelectedIndex();
    GetStack().Select(index);
    if (alone) m_loader.Relayout(); // another one is shown now
    ShowSelected();
    Redraw();
    Q_EMIT StateChanged();
}

void CTrvView1D::ChangeSelectedHeight(float pixels) {
    CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet) return;
    portlet->SetUserHeight(std::max(1.0f, portlet->GetRect().height + pixels));
    m_loader.Relayout();
}

void CTrvView1D::SelectSerie(Outils_Plot2D::CPlot2DSerie* serie) {
    for (const auto& portlet : GetStack().GetPortlets()) portlet->GetPlot().SetSelectedSerie(nullptr);
    if (CTrv1DGraphPortlet* selected = GetStack().GetSelected()) selected->GetPlot().SetSelectedSerie(serie);
    Redraw();
    Q_EMIT StateChanged();
}

// After the last, none.
void CTrvView1D::SelectNextCurve() {
    CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet) return;
    const auto& series = portlet->GetPlot().GetSeries();
    const auto place = std::ranges::find(series, portlet->GetPlot().GetSelectedSerie(),
                                         [](const auto& own) { return own.get(); });
    const auto next = place == series.end() ? series.begin() : place + 1;
    SelectSerie(next == series.end() ? nullptr : next->get());
}

void CTrvView1D::SetCurveVisible(CTrv1DGraphPortlet& portlet, Outils_Plot2D::CPlot2DSerie& serie,
                                 bool visible) {
    serie.SetVisible(visible);
    portlet.OnDataChanged();
    m_loader.Relayout();
}

bool CTrvView1D::HasSelectedCurve() const {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    return portlet && portlet->GetPlot().GetSelectedSerie();
}

Metier_Tarvel_Graphics::CTrv1DCurve* CTrvView1D::TakeSelectedCurve() {
    if (!HasSelectedCurve() || !m_loader.SaveDefaults()) return nullptr;
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    const auto* shown = portlet ? portlet->GetCurve(portlet->GetPlot().GetSelectedSerie()) : nullptr;
    auto* graph = shown ? shown->graph : nullptr;
    if (!graph) return nullptr;
    const auto place = std::ranges::find(
        graph->curves, shown, [](const auto& own) -> const auto* { return own.get(); });
    return place == graph->curves.end() ? nullptr : place->get();
}

bool CTrvView1D::Ask(EText question, const std::string& name) {
    return m_loader.GetDocument().GetHost().ShowMessage(Outils_Texte::FormatText(question, {name}),
                                                        EButtons::yesNo, EIcon::question) == EAnswer::yes;
}

void CTrvView1D::RemoveSelected() {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    const auto* shown = FindSelectedShown();
    const bool isMeasure = dynamic_cast<const CTrv1DGraphMeasurePortlet*>(portlet);
    if (!isMeasure || !HasSelectedCurve() || !shown) return RemoveSelectedGraph();
    if (!Ask(EText::removeCurveQuestion, shown->name)) return;
    // The document reports the edit to the loader, which destroys the serie.
    if (const auto* curve = TakeSelectedCurve())
        m_loader.GetDocument().GetEdits().Do(Edits::kRemove1DCurve, *curve);
    Q_EMIT StateChanged();
}

void CTrvView1D::RemoveSelectedGraph() {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet || !Ask(EText::removeGraphQuestion, portlet->GetTitle()) || !m_loader.SaveDefaults()) return;
    portlet = GetStack().GetSelected();
    if (portlet && portlet->GetGraph())
        m_loader.GetDocument().GetEdits().Do(Edits::kRemove1DGraph, *portlet->GetGraph());
    Q_EMIT StateChanged();
}

// The selected curve, or the first of the selected graph that is visible.
const SCurveDescription* CTrvView1D::FindSelectedShown() const {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet) return nullptr;
    const Outils_Plot2D::CPlot2DSerie* serie = portlet->GetPlot().GetSelectedSerie();
    portlet->ForEachVisible([&](const Outils_Plot2D::CPlot2DSerie& own, const CTrv1DGraphDataSource&) {
        if (!serie) serie = &own;
    });
    return portlet->FindShown(serie);
}

void CTrvView1D::StepCursor(int samples) {
    const auto* shown = FindSelectedShown();
    if (shown && shown->channel.file) m_steps.Step(shown->channel, samples);
}

void CTrvView1D::StepToChange(bool forward) {
    const auto* shown = FindSelectedShown();
    const bool isMeasure = GetStack().GetSelectedMeasure();
    if (shown && shown->channel.file && !isMeasure)
        m_steps.StepToChange(shown->channel, shown->field, forward);
}

void CTrvView1D::SetSecondCursorHere() {
    GetViewState().SetCursor(ECursor::second, GetViewState().GetCursor(ECursor::first));
}

void CTrvView1D::BeginWheel() {
    GetViewState().BeginGesture();
    m_wheelEnd.start();
}

void CTrvView1D::EndWheel() {
    if (!m_wheelEnd.isActive() && sender() != &m_wheelEnd) return;
    m_wheelEnd.stop();
    GetViewState().EndGesture();
    Q_EMIT StateChanged();
}

bool CTrvView1D::CanDrop(QPointF position, const Outils_Objets::CObject& field) const {
    const auto* project = m_loader.GetDocument().GetProject();
    return project &&
           Presentation_Tarvel_Graphics::CanDrop(*project, PortletAt(GetStack(), ToStack(position)), field);
}

// A default graph that shows nothing is not saved: a field for it gets a graph of its own.
bool CTrvView1D::Drop(QPointF position, const Outils_Objets::CObject& field) {
    if (!CanDrop(position, field)) return false;
    setFocus();
    const CTrv1DGraphPortlet* portlet = PortletAt(GetStack(), ToStack(position));
    m_loader.SaveDefaults();
    if (IndexOf(GetStack(), portlet) < 0) portlet = nullptr;
    return Presentation_Tarvel_Graphics::Drop(m_loader.GetDocument(), portlet, field);
}

bool CTrvView1D::viewportEvent(QEvent* event) {
    if (event->type() != QEvent::ToolTip) return CInteractorView::viewportEvent(event);
    m_tip->Show(*static_cast<QHelpEvent*>(event));
    return true;
}

void CTrvView1D::changeEvent(QEvent* event) {
    if (event->type() == QEvent::PaletteChange) Redraw();
    CInteractorView::changeEvent(event);
}

void CTrvView1D::ShowSelected() {
    const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
    if (!portlet) return;
    const int top = static_cast<int>(portlet->GetRect().y);
    const int bottom = static_cast<int>(std::ceil(portlet->GetRect().Bottom()));
    QScrollBar& bar = *verticalScrollBar();
    const int page = static_cast<int>(GetStackHeight());
    if (bottom > bar.value() + page) bar.setValue(bottom - page);
    if (top < bar.value()) bar.setValue(top);
}

void CTrvView1D::Redraw() {
    m_backingValid = false;
    viewport()->update();
}

void CTrvView1D::OnLoaderChanged(bool layout) {
    if (layout) UpdateScrollBar();
    if (!m_loader.HasProject()) m_steps.Cancel();
    Redraw();
    if (!m_loader.IsResultGrowing())
        m_growth.stop();
    else if (!m_growth.isActive())
        m_growth.start();
    if (!m_description.isActive()) m_description.start();
    if (!m_notices.isActive() && m_loader.GetDocument().IsAnalysing()) m_notices.start();
    // A drag shows many views: only what changes a command is reported.
    const auto& viewState = GetViewState();
    const SOffered offered = {viewState.CanGoBack(), viewState.CanGoForward(), viewState.HasPeriod()};
    if (std::exchange(m_offered, offered) != offered || layout) Q_EMIT StateChanged();
}

void CTrvView1D::FitToWindow() {
    m_loader.SetViewSize({static_cast<float>(viewport()->width()), std::max(GetStackHeight(), 1.0f)},
                         devicePixelRatioF());
    UpdateScrollBar();
    Redraw();
}

void CTrvView1D::UpdateScrollBar() {
    const int height = static_cast<int>(std::ceil(GetStack().GetHeight()));
    const int page = static_cast<int>(GetStackHeight());
    verticalScrollBar()->setPageStep(page);
    verticalScrollBar()->setRange(0, std::max(0, height - page));
}

void CTrvView1D::contextMenuEvent(QContextMenuEvent* event) {
    event->accept();
    if (!m_menu || !m_loader.HasProject()) return;
    QPoint position = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
        const SRect area = portlet ? portlet->GetPlottingRect() : SRect{};
        position = QPoint(static_cast<int>(area.x), static_cast<int>(area.y) - verticalScrollBar()->value());
    } else if (const CTrv1DGraphPortlet* portlet = PortletAt(GetStack(), ToStack(position))) {
        GetStack().Select(portlet);
        Redraw();
        Q_EMIT StateChanged();
    }
    m_menu->popup(viewport()->mapToGlobal(position));
}

void CTrvView1D::keyPressEvent(QKeyEvent* event) {
    // Some keyboards have a sign such as "+" on a Shift level: there Shift is no part of the command.
    const bool isSign = event->key() > Qt::Key_Space && event->key() < Qt::Key_A;
    const auto modifiers = event->modifiers() & ~(isSign ? Qt::KeypadModifier | Qt::ShiftModifier
                                                         : Qt::KeyboardModifiers(Qt::KeypadModifier));
    const QKeySequence pressed(QKeyCombination(modifiers, static_cast<Qt::Key>(event->key())));
    for (const auto& [key, action] : m_keys) {
        if (key != pressed) continue;
        action->trigger(); // ignored while it is disabled
        return event->accept();
    }
    CInteractorView::keyPressEvent(event);
}

void CTrvView1D::resizeEvent(QResizeEvent*) { FitToWindow(); }

void CTrvView1D::scrollContentsBy(int, int) { Redraw(); }

void CTrvView1D::paintEvent(QPaintEvent* event) {
    const double ratio = devicePixelRatioF();
    if (m_backing.size() != viewport()->size() * ratio || m_backing.devicePixelRatio() != ratio) {
        m_backing = QImage(viewport()->size() * ratio, QImage::Format_RGB32);
        m_backing.setDevicePixelRatio(ratio);
        FitToWindow(); // also when the window came to a screen of another density
    }
    if (!m_backingValid) PaintBacking();
    QPainter painter(viewport());
    painter.drawImage(QPointF(), m_backing);
    if (GetInteractor()) GetInteractor()->Draw(painter);
    event->accept();
}

void CTrvView1D::PaintBacking() {
    const auto& theme = GetTheme();
    m_backing.fill(QColor::fromRgba(theme.around));
    m_backingValid = true;
    QPainter painter(&m_backing);
    if (!m_loader.HasProject()) {
        painter.setPen(QColor::fromRgba(theme.notice));
        painter.drawText(viewport()->rect(), Qt::AlignCenter | Qt::TextWordWrap, Text(EText::noProject));
        return;
    }
    const int top = verticalScrollBar()->value();
    painter.translate(0, -top);
    CGraphics graphics(painter);
    graphics.SetTheme(theme);
    DrawStack(GetStack(), graphics,
              {0, static_cast<float>(top), static_cast<float>(viewport()->width()), GetStackHeight()}, true);
    painter.translate(0, top);
    DrawStrip(m_coverage, GetStack(), graphics, GetStripRect());
}

} // namespace Application_Tarvel

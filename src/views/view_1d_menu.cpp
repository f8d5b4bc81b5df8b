// The menu of the graphs, and the picture of them on the clipboard.
#include "views/view_1d.h"

#include "plot/text.h"

#include <QBuffer>
#include <QClipboard>
#include <QContextMenuEvent>
#include <QGuiApplication>
#include <QImage>
#include <QMenu>
#include <QMimeData>
#include <QPainter>
#include <QScrollBar>
#include <QSvgGenerator>

#include <cmath>

namespace Application_Tarvel {

using Outils_Texte::EText;

using namespace Presentation_Tarvel_Graphics;

namespace {

// An entry of the menu, under the title of a submenu or of none.
struct SEntry {
    EText submenu; // or none
    EText text;
    void (CTrvView1D::*run)();
    bool (*isChecked)(CTrvView1D&); // null: no tick
};

constexpr SEntry kEntries[] = {
    {EText::horizontalScale, EText::zoom, &CTrvView1D::ZoomHorizontal, nullptr},
    {EText::horizontalScale, EText::unzoom, &CTrvView1D::UnzoomHorizontal, nullptr},
    {EText::horizontalScale, EText::rightScroll, &CTrvView1D::ScrollRight, nullptr},
    {EText::horizontalScale, EText::leftScroll, &CTrvView1D::ScrollLeft, nullptr},
    {EText::verticalScale, EText::zoom, &CTrvView1D::ZoomVertical, nullptr},
    {EText::verticalScale, EText::unzoom, &CTrvView1D::UnzoomVertical, nullptr},
    {EText::verticalScale, EText::upScroll, &CTrvView1D::ScrollUp, nullptr},
    {EText::verticalScale, EText::downScroll, &CTrvView1D::ScrollDown, nullptr},
    {EText::none, EText::horizontalViewAll, &CTrvView1D::ViewAll, nullptr},
    {EText::none, EText::graphLegends, &CTrvView1D::ToggleLegends,
     [](CTrvView1D& view) { return view.AreLegendsVisible(); }},
    {EText::none, EText::echo, &CTrvView1D::ToggleEcho, [](CTrvView1D& view) { return view.HasEcho(); }},
    {EText::none, EText::copy, &CTrvView1D::CopyToClipboard, nullptr},
    {EText::none, EText::deleteCurve, &CTrvView1D::DeleteSelectedCurve, nullptr},
};

} // namespace

void CTrvView1D::contextMenuEvent(QContextMenuEvent* event) {
    QPoint position = event->pos();
    if (event->reason() == QContextMenuEvent::Keyboard) {
        const CTrv1DGraphPortlet* portlet = GetStack().GetSelected();
        const SRect area = portlet ? portlet->GetPlottingRect() : SRect{};
        position = QPoint(static_cast<int>(area.x), static_cast<int>(area.y) - verticalScrollBar()->value());
    } else if (const CTrv1DGraphPortlet* portlet = GetStack().PortletAt(ToStack(position))) {
        GetStack().Select(portlet);
        Redraw();
    }
    ShowContextMenu(viewport()->mapToGlobal(position));
    event->accept();
}

void CTrvView1D::ShowContextMenu(QPoint position) {
    auto* menu = new QMenu(this);
    menu->setAttribute(Qt::WA_DeleteOnClose);
    QMenu* target = menu;
    EText submenu = EText::none;
    for (const SEntry& entry : kEntries) {
        if (entry.submenu != submenu)
            target = entry.submenu != EText::none ? menu->addMenu(Text(entry.submenu)) : menu;
        submenu = entry.submenu;
        QAction* action =
            target->addAction(Text(entry.text), this, [this, run = entry.run] { (this->*run)(); });
        if (!entry.isChecked) continue;
        action->setCheckable(true);
        action->setChecked(entry.isChecked(*this));
    }
    menu->setEnabled(m_loader.HasProject());
    menu->popup(position);
}

void CTrvView1D::CopyToClipboard() {
    const QSize size(viewport()->width(), static_cast<int>(std::ceil(GetStack().GetHeight())));
    if (size.isEmpty()) return;
    const SRect everything = {0, 0, static_cast<float>(size.width()), static_cast<float>(size.height())};
    const auto draw = [&](QPaintDevice& device) {
        QPainter painter(&device);
        CGraphics graphics(painter);
        GetStack().Draw(graphics, everything, false);
    };
    QByteArray vector;
    QBuffer buffer(&vector);
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(size);
    generator.setViewBox(QRect(QPoint(), size));
    draw(generator);

    QImage image(size * 2, QImage::Format_RGB32);
    image.setDevicePixelRatio(2);
    image.fill(Qt::white);
    draw(image);

    auto* mime = new QMimeData;
    mime->setData(QStringLiteral("image/svg+xml"), vector);
    mime->setImageData(image);
    QGuiApplication::clipboard()->setMimeData(mime);
}

} // namespace Application_Tarvel

#include "views/stack_pictures.h"

#include "foundation/texts.h"
#include "graph/stack_text.h"
#include "plot/text.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>
#include <QPageLayout>
#include <QPainter>
#include <QPrinter>

#include <cmath>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;
using Outils_Plot2D::ToQString;
using Outils_Texte::EText;
using Outils_Texte::FormatText;

namespace {

// From the left and upper edge of the stack to its right and lower one.
QSize GetPictureSize(const CTrv1DGraphStack& stack) {
    float width = 0;
    for (const CTrv1DGraphPortlet* portlet : stack.GetShown())
        width = std::max(width, portlet->GetRect().Right());
    return {static_cast<int>(std::ceil(width)), static_cast<int>(std::ceil(stack.GetHeight()))};
}

} // namespace

SPictureData MakePictureData(const SPictureContent& content) {
    const QSize size = GetPictureSize(content.stack);
    return {size, [&content, size](QPainter& painter) {
                painter.fillRect(QRect(QPoint(), size), QColor::fromRgba(Outils_Plot2D::kLightTheme.ground));
                CGraphics graphics(painter);
                DrawStack(content.stack, graphics,
                          {0, 0, static_cast<float>(size.width()), static_cast<float>(size.height())}, false);
                DrawCursors(content.stack, graphics, content.viewState, content.look, content.echo);
            }};
}

bool SavePicture(const SPictureContent& content, const std::filesystem::path& path) {
    return SavePicture(MakePictureData(content), path);
}

ECopyEnd CopyToClipboard(const SPictureContent& content) {
    auto mime = std::make_unique<QMimeData>();
    if (!AddPicture(MakePictureData(content), *mime)) return ECopyEnd::noPicture;
    mime->setText(ToQString(WriteValues(content.stack, content.viewState)));
    QClipboard* clipboard = QGuiApplication::clipboard();
    clipboard->setMimeData(mime.release());
    // Another program may hold it.
    const QMimeData* held = clipboard->mimeData();
    return held && held->hasFormat(QLatin1String(kPictureTypes[0])) ? ECopyEnd::done : ECopyEnd::noClipboard;
}

void PrintPages(const SPictureContent& content, QPrinter& printer, const SPageMargins& margins,
                const std::string& header) {
    const auto toFloat = [](auto value) { return static_cast<float>(value); };
    printer.setFullPage(false);
    printer.setPageMargins(QMarginsF(0, 0, 0, 0), QPageLayout::Millimeter);
    const QRectF paper = printer.paperRect(QPrinter::DevicePixel),
                 page = printer.pageRect(QPrinter::DevicePixel);
    const SPageMetrics metrics = {{toFloat(paper.width()), toFloat(paper.height())},
                                  {toFloat(page.x() - paper.x()), toFloat(page.y() - paper.y())},
                                  {toFloat(printer.logicalDpiX()), toFloat(printer.logicalDpiY())}};
    const SPrintedPages pages = ComputePages(metrics, margins, content.stack);
    QPainter painter(&printer);
    if (!painter.isActive()) return;
    CGraphics graphics(painter);
    const SRect& box = pages.box;
    // As high as a line of text of the graphs on that paper.
    const auto portlets = content.stack.GetShown();
    const float scale = portlets.empty() ? 1 : box.width / portlets.front()->GetRect().width;
    QFont font = Outils_Plot2D::DefaultFont();
    font.setPixelSize(std::max(1, static_cast<int>(toFloat(font.pixelSize()) * scale)));
    const float line = graphics.GetFontHeight(font) * 1.5f;
    for (std::size_t i = 0; i < pages.pages.size(); ++i) {
        if (i > 0) printer.newPage();
        DrawPage(content.stack, graphics, pages, i);
        if (box.y < line) continue;
        Outils_Plot2D::SStringFormat format;
        graphics.DrawString(header, font, Outils_Plot2D::SPoint{box.x, box.y - line}, format,
                            graphics.GetTheme().text);
        format.align = Outils_Plot2D::StringAlignment::Far;
        graphics.DrawString(
            FormatText(EText::pageNumber, {std::to_string(i + 1), std::to_string(pages.pages.size())}), font,
            Outils_Plot2D::SPoint{box.Right(), box.y - line}, format, graphics.GetTheme().text);
    }
}

} // namespace Application_Tarvel

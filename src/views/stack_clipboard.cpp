#include "views/stack_clipboard.h"

#include "graph/stack_picture.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QSvgGenerator>

#include <cmath>

namespace Application_Tarvel {

using namespace Presentation_Tarvel_Graphics;

void CopyToClipboard(const CTrv1DGraphStack& stack, int width) {
    const QSize size(width, static_cast<int>(std::ceil(stack.GetHeight())));
    if (size.isEmpty()) return;
    const SRect everything = {0, 0, static_cast<float>(size.width()), static_cast<float>(size.height())};
    const auto draw = [&](QPaintDevice& device) {
        QPainter painter(&device);
        CGraphics graphics(painter);
        DrawStack(stack, graphics, everything, false);
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

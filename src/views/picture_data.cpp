#include "views/picture_data.h"

#include <QBuffer>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

namespace Application_Tarvel {

namespace {

constexpr int kDensity = 2; // pixels of a bitmap for one of the picture
constexpr double kPointsPerPixel = 0.75;
constexpr int kPointsPerInch = 72;

} // namespace

std::unique_ptr<QMimeData> MakePictureData(QSize size, const std::function<void(QPainter& painter)>& draw) {
    if (size.isEmpty()) return nullptr;
    auto data = std::make_unique<QMimeData>();
    const auto add = [&](const char* type, const auto& write) {
        QByteArray bytes;
        QBuffer buffer(&bytes);
        buffer.open(QIODevice::WriteOnly);
        write(buffer);
        buffer.close();
        data->setData(QString::fromLatin1(type), bytes);
    };
    add("image/svg+xml", [&](QBuffer& buffer) {
        QSvgGenerator generator;
        generator.setOutputDevice(&buffer);
        generator.setSize(size);
        generator.setViewBox(QRect(QPoint(), size));
        QPainter painter(&generator);
        draw(painter);
    });
    add("application/pdf", [&](QBuffer& buffer) {
        QPdfWriter writer(&buffer);
        writer.setResolution(kPointsPerInch);
        writer.setPageSize(
            QPageSize(QSizeF(size) * kPointsPerPixel, QPageSize::Point, {}, QPageSize::ExactMatch));
        writer.setPageMargins(QMarginsF());
        QPainter painter(&writer);
        painter.scale(kPointsPerPixel, kPointsPerPixel);
        draw(painter);
    });
    add("image/png", [&](QBuffer& buffer) {
        QImage image(size * kDensity, QImage::Format_RGB32);
        image.setDevicePixelRatio(kDensity);
        image.fill(Qt::white);
        {
            QPainter painter(&image);
            draw(painter);
        }
        image.save(&buffer, "PNG");
    });
    return data;
}

} // namespace Application_Tarvel

#include "views/picture_data.h"

#include "plot/text.h"

#include <QBuffer>
#include <QClipboard>
#include <QGuiApplication>
#include <QImage>
#include <QMimeData>
#include <QPainter>
#include <QPdfWriter>
#include <QSaveFile>
#include <QSvgGenerator>

#include <iterator>
#include <memory>

namespace Application_Tarvel {

namespace {

constexpr int kDensity = 2; // pixels of a bitmap for one of the picture
constexpr double kPointsPerPixel = 0.75;
constexpr int kPointsPerInch = 72;

void WriteSvg(const SPictureData& picture, QBuffer& buffer) {
    QSvgGenerator generator;
    generator.setOutputDevice(&buffer);
    generator.setSize(picture.size);
    generator.setViewBox(QRect(QPoint(), picture.size));
    QPainter painter(&generator);
    picture.draw(painter);
}

void WritePdf(const SPictureData& picture, QBuffer& buffer) {
    QPdfWriter writer(&buffer);
    writer.setResolution(kPointsPerInch);
    const QSizeF points = QSizeF(picture.size) * kPointsPerPixel;
    writer.setPageSize(QPageSize(points, QPageSize::Point, {}, QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
    painter.scale(kPointsPerPixel, kPointsPerPixel);
    picture.draw(painter);
}

void WritePng(const SPictureData& picture, QBuffer& buffer) {
    QImage image(picture.size * kDensity, QImage::Format_RGB32);
    image.setDevicePixelRatio(kDensity);
    image.fill(Qt::white);
    {
        QPainter painter(&image);
        picture.draw(painter);
    }
    image.save(&buffer, "PNG");
}

// In the order of the types, with the endings of files.
struct SForm {
    const char* ending;
    void (*write)(const SPictureData&, QBuffer&);
};
constexpr SForm kForms[] = {{".svg", WriteSvg}, {".pdf", WritePdf}, {".png", WritePng}};
static_assert(std::size(kForms) == std::size(kPictureTypes));

} // namespace

QByteArray MakePictureBytes(const SPictureData& picture, std::size_t type) {
    QByteArray bytes;
    if (picture.size.isEmpty()) return bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    kForms[type].write(picture, buffer);
    return bytes;
}

bool CopyPicture(const SPictureData& picture) {
    if (picture.size.isEmpty()) return false;
    auto data = std::make_unique<QMimeData>();
    for (std::size_t type = 0; type < std::size(kPictureTypes); ++type)
        data->setData(QString::fromLatin1(kPictureTypes[type]), MakePictureBytes(picture, type));
    QGuiApplication::clipboard()->setMimeData(data.release());
    return true;
}

bool SavePicture(const SPictureData& picture, const std::filesystem::path& path) {
    const QString ending = Outils_Plot2D::ToQString(path.extension()).toLower();
    std::size_t type = 0;
    for (std::size_t i = 0; i < std::size(kForms); ++i)
        if (ending == QLatin1String(kForms[i].ending)) type = i;
    const QByteArray bytes = MakePictureBytes(picture, type);
    QSaveFile file(Outils_Plot2D::ToQString(path));
    return !bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           file.commit();
}

} // namespace Application_Tarvel

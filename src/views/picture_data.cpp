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

constexpr int kDensity = 2;        // pixels of a bitmap for one of the picture
constexpr int kPdfResolution = 96; // units an inch: one is a pixel of the screen

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
    writer.setResolution(kPdfResolution);
    const QSizeF points = QSizeF(picture.size) * (72.0 / kPdfResolution);
    writer.setPageSize(QPageSize(points, QPageSize::Point, {}, QPageSize::ExactMatch));
    writer.setPageMargins(QMarginsF());
    QPainter painter(&writer);
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

QByteArray MakePictureBytes(const SPictureData& picture, EPictureFormat format) {
    QByteArray bytes;
    if (picture.size.isEmpty()) return bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    kForms[static_cast<std::size_t>(format)].write(picture, buffer);
    return bytes;
}

bool AddPicture(const SPictureData& picture, QMimeData& data) {
    if (picture.size.isEmpty()) return false;
    for (std::size_t type = 0; type < std::size(kPictureTypes); ++type)
        data.setData(QString::fromLatin1(kPictureTypes[type]),
                     MakePictureBytes(picture, static_cast<EPictureFormat>(type)));
    return true;
}

bool CopyPicture(const SPictureData& picture) {
    auto data = std::make_unique<QMimeData>();
    if (!AddPicture(picture, *data)) return false;
    QGuiApplication::clipboard()->setMimeData(data.release());
    return true;
}

bool SavePicture(const SPictureData& picture, const std::filesystem::path& path) {
    const QString ending = Outils_Plot2D::ToQString(path.extension()).toLower();
    std::size_t type = 0;
    for (std::size_t i = 0; i < std::size(kForms); ++i)
        if (ending == QLatin1String(kForms[i].ending)) type = i;
    const QByteArray bytes = MakePictureBytes(picture, static_cast<EPictureFormat>(type));
    QSaveFile file(Outils_Plot2D::ToQString(path));
    return !bytes.isEmpty() && file.open(QIODevice::WriteOnly) && file.write(bytes) == bytes.size() &&
           file.commit();
}

} // namespace Application_Tarvel

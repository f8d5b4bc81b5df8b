// A picture of any kind as a file or for the clipboard. UI thread.
#pragma once

#include <QByteArray>
#include <QSize>

#include <filesystem>
#include <functional>

class QMimeData;
class QPainter;

namespace Application_Tarvel {

// What a picture shows: `draw` paints it from the painter's origin.
struct SPictureData {
    QSize size; // pixels
    std::function<void(QPainter& painter)> draw;
};

// The clipboard's name of a form is also that of its bytes; png has two pixels for one.
inline constexpr const char* kPictureTypes[] = {"image/svg+xml", "application/pdf", "image/png"};

enum class EPictureFormat { svg, pdf, png }; // in the order of the types

// Empty for an empty size.
QByteArray MakePictureBytes(const SPictureData& picture, EPictureFormat format);
// Adds all forms to what goes to the clipboard. False, and nothing is added, for an empty size.
bool AddPicture(const SPictureData& picture, QMimeData& data);
// The same on the clipboard.
bool CopyPicture(const SPictureData& picture);
// By the ending of the name, SVG for an unknown one. False when the file could not be written; it is then as
// it was.
bool SavePicture(const SPictureData& picture, const std::filesystem::path& path);

} // namespace Application_Tarvel

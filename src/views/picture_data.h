// A picture of any kind as a file or for the clipboard. UI thread.
#pragma once

#include <QByteArray>
#include <QSize>

#include <filesystem>
#include <functional>

class QPainter;

namespace Application_Tarvel {

// What a picture shows: `draw` paints it from the painter's origin.
struct SPictureData {
    QSize size; // pixels
    std::function<void(QPainter& painter)> draw;
};

// The clipboard's name of a form is also that of its bytes; png has two pixels for one.
inline constexpr const char* kPictureTypes[] = {"image/svg+xml", "application/pdf", "image/png"};

// The bytes of the form of this place in the list. Empty for an empty size.
QByteArray MakePictureBytes(const SPictureData& picture, std::size_t type);
// In all forms. False for an empty size.
bool CopyPicture(const SPictureData& picture);
// By the ending of the name, SVG for an unknown one. False when the file could not be written; it is then as
// it was.
bool SavePicture(const SPictureData& picture, const std::filesystem::path& path);

} // namespace Application_Tarvel

// Pictures of the graphs, light whatever the screen is: files, clipboard, paper. UI thread; the layout of the
// screen is as before on return.
#pragma once

#include "graph/pages.h"
#include "graph/stack_picture.h"
#include "views/picture_data.h"

#include <QByteArray>

#include <filesystem>
#include <string>

class QPrinter;

namespace Application_Tarvel {

// What a picture shows: all shown graphs, as they are laid out on the screen, with the cursors over them.
struct SPictureContent {
    const Presentation_Tarvel_Graphics::CTrv1DGraphStack& stack;
    const Presentation_Tarvel_Graphics::CViewState& viewState;
    Presentation_Tarvel_Graphics::SCursorLook look;
    bool echo = true;
};

// Refers to `content`, which must outlive it. Empty when there is nothing to draw.
SPictureData MakePictureData(const SPictureContent& content);
// By the ending of the name, SVG for an unknown one. False when the file could not be written; it is then as
// it was.
bool SavePicture(const SPictureContent& content, const std::filesystem::path& path);

enum class ECopyEnd { done, noPicture, noClipboard };
// The picture in all formats, and the values at the cursor as text.
ECopyEnd CopyToClipboard(const SPictureContent& content);

// Draws all pages on a printer, each with the header and its number. The header is left out where the upper
// margin has no room for it.
void PrintPages(const SPictureContent& content, QPrinter& printer,
                const Presentation_Tarvel_Graphics::SPageMargins& margins, const std::string& header);

} // namespace Application_Tarvel

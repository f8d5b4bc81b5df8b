// The pictures of commands, drawn in code: sharp at any size, in the colours of the palette in force.
#pragma once

#include <QIcon>

namespace Application_Tarvel {

enum class EGlyph {
    none,
    newProject,
    open,
    save,
    process,
    stop,
    zoomHorizontal,
    unzoomHorizontal,
    scrollLeft,
    scrollRight,
    viewAll,
    zoomVertical,
    unzoomVertical,
    scrollUp,
    scrollDown,
    legends,
    select,
    pan,
    zoomPeriod,
    clear,
    count
};

// A null icon for `none`. An icon made once follows later changes of the palette and the screen.
QIcon GetIcon(EGlyph glyph);
// The program's own.
QIcon GetProductIcon();

} // namespace Application_Tarvel

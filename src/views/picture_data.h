// A picture as data for the clipboard. UI thread.
#pragma once

#include <QSize>

#include <functional>
#include <memory>

class QMimeData;
class QPainter;

namespace Application_Tarvel {

// As SVG, PDF and PNG, the last with two pixels for one. `draw` paints a picture of `size` from the painter's
// origin; it is called for each form. Null for an empty size.
std::unique_ptr<QMimeData> MakePictureData(QSize size, const std::function<void(QPainter& painter)>& draw);

} // namespace Application_Tarvel

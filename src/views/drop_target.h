// Where fields of the dictionary can be dropped. The drag is the program's own, done with the mouse: nothing
// of the platform's takes part. UI thread.
#pragma once

#include <QPoint>
#include <QString>

#include <vector>

class QWidget;

namespace Metier_Tarvel_DataModel {
class CTrvFieldDef;
}

namespace Application_Tarvel {

using Fields = std::vector<const Metier_Tarvel_DataModel::CTrvFieldDef*>;

// Points are in the coordinates of the target's window.
class ITrvViewMetadataDropTarget {
  public:
    virtual ~ITrvViewMetadataDropTarget() = default;
    // At least one of the fields fits there.
    virtual bool CanDrop(QPoint point, const Fields& fields) const = 0;
    // Shows what a drop here would do.
    virtual void DragOver(QPoint, const Fields&) {}
    virtual void DragLeave() {}
    // Takes the fields that fit; false when none was taken.
    virtual bool Drop(QPoint point, const Fields& fields) = 0;
    virtual QWidget& GetWindow() const = 0;
    // What a drop would do, or why none is possible.
    virtual QString GetHint(QPoint point, const Fields& fields) const = 0;
};

} // namespace Application_Tarvel

// The two views that take fields from the tree of variables. UI thread.
#pragma once

#include "views/drop_target.h"
#include "views/view_1d.h"
#include "views/view_value.h"

namespace Application_Tarvel {

// A graph that takes the kind of a field gets it as a curve; beside the graphs it becomes a new graph.
class CGraphsDropTarget final : public ITrvViewMetadataDropTarget {
  public:
    // `view` must outlive the target.
    explicit CGraphsDropTarget(CTrvView1D& view) : m_view(view) {}

    bool CanDrop(QPoint point, const Fields& fields) const override;
    bool Drop(QPoint point, const Fields& fields) override;
    QWidget& GetWindow() const override { return *m_view.viewport(); }
    QString GetHint(QPoint point, const Fields& fields) const override;

  private:
    const CTrv1DGraphPortlet* FindPortlet(QPoint point) const;

    CTrvView1D& m_view;
};

class CValuesDropTarget final : public ITrvViewMetadataDropTarget {
  public:
    // `panel` must outlive the target.
    explicit CValuesDropTarget(CTrvViewValue& panel) : m_panel(panel) {}

    bool CanDrop(QPoint point, const Fields& fields) const override;
    bool Drop(QPoint point, const Fields& fields) override;
    void DragOver(QPoint, const Fields&) override { m_panel.GetList().MarkDrop(true); }
    void DragLeave() override { m_panel.GetList().MarkDrop(false); }
    QWidget& GetWindow() const override { return m_panel; }
    QString GetHint(QPoint point, const Fields& fields) const override;

  private:
    Fields FindNew(const Fields& fields) const;

    CTrvViewValue& m_panel;
};

} // namespace Application_Tarvel

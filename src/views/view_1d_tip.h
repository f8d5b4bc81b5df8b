// The tooltip of the graphs: a curve's names in the file, and where its sample at the cursor lies in that. UI
// thread; the place is searched in the background, and shown once it is known.
#pragma once

#include "dataaccess/view_queries.h"

#include <QPoint>
#include <QString>

#include <memory>

class QHelpEvent;

namespace Application_Tarvel {

class CTrvView1D;

class CTrvView1DTip {
  public:
    // `view` must outlive the tip.
    explicit CTrvView1DTip(CTrvView1D& view);
    ~CTrvView1DTip();
    CTrvView1DTip(const CTrvView1DTip&) = delete;
    CTrvView1DTip& operator=(const CTrvView1DTip&) = delete;

    void Show(const QHelpEvent& event);

  private:
    // `date`: of the packet, on the clock of the recording.
    void OnPlace(QPoint at, const QString& text, const SPacketPlace& place, CDateTimeSpan date);

    CTrvView1D& m_view;
    std::unique_ptr<CAsyncQueryManager> m_queries;
    std::shared_ptr<CAsyncQuery> m_query; // under way, or null
};

} // namespace Application_Tarvel

// One drag of fields with the mouse, from the tree of variables to whoever takes them. UI thread.
#pragma once

#include "views/drop_target.h"

#include <functional>
#include <memory>
#include <vector>

namespace Application_Tarvel {

class CFieldDrag {
  public:
    ~CFieldDrag() { Cancel(); }

    // Targets are asked in the order in which they were added.
    void AddTarget(std::unique_ptr<ITrvViewMetadataDropTarget> target) {
        m_targets.push_back(std::move(target));
    }
    bool IsActive() const { return static_cast<bool>(m_find); }
    // `find` gives the dragged fields that still exist, each time it is asked.
    void Begin(std::function<Fields()> find);
    // The mouse is there, in pixels of the screen.
    void Move(QPoint global);
    // The button was released there.
    void Drop(QPoint global);
    // Nothing is dropped.
    void Cancel();

  private:
    ITrvViewMetadataDropTarget* FindTarget(QPoint global) const;
    void SetCurrent(ITrvViewMetadataDropTarget* target);
    void End();

    std::vector<std::unique_ptr<ITrvViewMetadataDropTarget>> m_targets;
    ITrvViewMetadataDropTarget* m_current = nullptr; // one of the targets
    std::function<Fields()> m_find;                  // empty while there is no drag
};

} // namespace Application_Tarvel

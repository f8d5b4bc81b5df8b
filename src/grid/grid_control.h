// The rows of one grid, the lists of words that its rows share, and who hears of changes. UI thread.
#pragma once

#include "grid/item.h"

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Presentation_Tarvel_Grid {

// The view of a grid. The calls come in pairs around each change of the rows.
class IGridListener {
  public:
    virtual ~IGridListener() = default;
    virtual void OnInserting(const CHGItem& parent, std::size_t index) = 0;
    virtual void OnInserted() = 0;
    virtual void OnRemoving(const CHGItem& item) = 0;
    virtual void OnRemoved() = 0;
    // Title, value, fault or visibility of the item, or of rows under it, may be new.
    virtual void OnChanged(const CHGItem& item) = 0;
    virtual void OnResetting() = 0;
    virtual void OnReset() = 0;
};

class CHierarchicalGridControl {
  public:
    CHierarchicalGridControl();
    CHierarchicalGridControl(const CHierarchicalGridControl&) = delete;
    CHierarchicalGridControl& operator=(const CHierarchicalGridControl&) = delete;

    // Not shown; the rows under it are the first level.
    CHGItem& GetRoot() const { return *m_root; }
    // Null for none. Must outlive the grid or be taken back.
    void SetListener(IGridListener* listener) { m_listener = listener; }

    // Puts the item, with the rows under it, among the rows of `parent`; at the end for a larger index.
    CHGItem& Insert(CHGItem& parent, std::size_t index, std::unique_ptr<CHGItem> item);
    // REQUIRES: an item of this grid other than the root.
    void Remove(CHGItem& item);
    void Changed(const CHGItem& item);
    // Takes other rows in the place of all.
    void Reset(std::vector<std::unique_ptr<CHGItem>> rows);

    // The list of this name, shared by all who ask; the first to ask has it made.
    std::span<const std::string> GetList(std::string_view name,
                                         const std::function<std::vector<std::string>()>& make);

  private:
    std::unique_ptr<CHGItem> m_root;
    IGridListener* m_listener = nullptr;
    std::map<std::string, std::vector<std::string>, std::less<>> m_lists;
};

} // namespace Presentation_Tarvel_Grid

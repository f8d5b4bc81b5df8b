#include "grid/grid_control.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Grid {

namespace {

class CRoot final : public CHGItem {
  public:
    CRoot() : CHGItem(ERowKind::section) {}
    std::string GetTitle() const override { return {}; }
};

} // namespace

CHierarchicalGridControl::CHierarchicalGridControl() : m_root(std::make_unique<CRoot>()) {}

CHGItem& CHierarchicalGridControl::Insert(CHGItem& parent, std::size_t index, std::unique_ptr<CHGItem> item) {
    CHGItem& added = *item;
    const std::size_t place = std::min(index, parent.GetChildCount());
    if (m_listener) m_listener->OnInserting(parent, place);
    parent.Insert(place, std::move(item));
    if (m_listener) m_listener->OnInserted();
    return added;
}

void CHierarchicalGridControl::Remove(CHGItem& item) {
    if (m_listener) m_listener->OnRemoving(item);
    const std::unique_ptr<CHGItem> taken = item.GetParent()->Take(item.GetIndex());
    if (m_listener) m_listener->OnRemoved();
}

void CHierarchicalGridControl::Changed(const CHGItem& item) {
    if (m_listener) m_listener->OnChanged(item);
}

void CHierarchicalGridControl::Reset(std::vector<std::unique_ptr<CHGItem>> rows) {
    if (m_listener) m_listener->OnResetting();
    m_root->m_children.clear();
    for (auto& row : rows) m_root->Add(std::move(row));
    if (m_listener) m_listener->OnReset();
}

std::span<const std::string>
CHierarchicalGridControl::GetList(std::string_view name,
                                  const std::function<std::vector<std::string>()>& make) {
    const auto found = m_lists.find(name);
    return found != m_lists.end() ? found->second : m_lists.emplace(name, make()).first->second;
}

} // namespace Presentation_Tarvel_Grid

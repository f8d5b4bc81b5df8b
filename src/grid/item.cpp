#include "grid/item.h"

#include "foundation/paths.h"

#include <algorithm>
#include <utility>

namespace Presentation_Tarvel_Grid {

std::string CHGItem::Write(std::string_view) { return {}; }

bool CHGItem::HasFaultBelow() const {
    return std::ranges::any_of(
        m_children, [](const auto& child) { return !child->GetFault().empty() || child->HasFaultBelow(); });
}

std::string CHGItem::Choose(int choice) {
    const auto choices = GetChoices();
    if (choice < 0 || static_cast<std::size_t>(choice) >= choices.size()) return {};
    return Write(choices[static_cast<std::size_t>(choice)]);
}

std::string CHGItem::WritePaths(const std::vector<std::filesystem::path>& paths) {
    return Write(Outils_Fichiers::ToText(paths.front()));
}

void CHGItem::Insert(std::size_t index, std::unique_ptr<CHGItem> child) {
    const std::size_t place = std::min(index, m_children.size());
    child->m_parent = this;
    m_children.insert(m_children.begin() + static_cast<std::ptrdiff_t>(place), std::move(child));
    Number(place);
}

std::unique_ptr<CHGItem> CHGItem::Take(std::size_t index) {
    std::unique_ptr<CHGItem> taken = std::move(m_children[index]);
    m_children.erase(m_children.begin() + static_cast<std::ptrdiff_t>(index));
    taken->m_parent = nullptr;
    Number(index);
    return taken;
}

void CHGItem::Number(std::size_t from) {
    for (std::size_t i = from; i < m_children.size(); ++i) m_children[i]->m_index = i;
}

} // namespace Presentation_Tarvel_Grid

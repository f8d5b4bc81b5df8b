// One row of the two-column grid: a title on the left, a value on the right, and rows under it. What a row
// shows and how it is written says its class; how it is painted and edited says the view. UI thread.
#pragma once

#include "document/document_host.h"
#include "foundation/object.h"

#include <filesystem>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace Presentation_Tarvel_Grid {

using Outils_Objets::CObject;

enum class ERowKind {
    section,    // a title and rows
    staticText, // a value that nobody edits
    edit,       // a value typed as text
    list,       // one of GetChoices
    color,      // "#AARRGGBB", picked by a dialog
    file,       // a path, picked by a dialog or typed
    dialog,     // a value that a dialog of its own chooses: the view asks its owner
};

class CHierarchicalGridControl;

class CHGItem {
  public:
    explicit CHGItem(ERowKind kind) : m_kind(kind) {}
    virtual ~CHGItem() = default;
    CHGItem(const CHGItem&) = delete;
    CHGItem& operator=(const CHGItem&) = delete;

    ERowKind GetKind() const { return m_kind; }
    virtual std::string GetTitle() const = 0;
    // Shown pale in the place of a value: what is known of a sensor, a count. Empty for none.
    virtual std::string GetNote() const { return {}; }
    // The text on the right; empty for a section without one.
    virtual std::string GetValue() const { return {}; }
    // What stands on the right: the value, or the note in its place.
    std::string GetShown() const {
        std::string value = GetValue();
        return value.empty() ? GetNote() : value;
    }
    // Meaning, unit, range and default, one line each.
    virtual std::string GetHelp() const { return {}; }
    // Why the value is wrong; empty when it is right. A section says the fault of its own object.
    virtual std::string GetFault() const { return {}; }
    virtual bool IsEditable() const { return false; }
    // Whether a row below is wrong.
    virtual bool HasFaultBelow() const;
    // Whether the row is shown at all, as the values stand.
    virtual bool IsVisible() const { return true; }
    // The words of a list, shared by all rows of its kind; empty for every other row.
    virtual std::span<const std::string> GetChoices() const { return {}; }
    // The chosen word; -1 for a value outside the list.
    virtual int GetChoice() const { return -1; }
    // What a file row asks for; null for every other row.
    virtual const Application_Tarvel::SPathQuestion* GetPathQuestion() const { return nullptr; }
    // Takes what a person typed or picked, for a list the word. Gives the message of a refusal, after which
    // all is as it was; empty when the value was taken, also when it is the present one.
    // REQUIRES: IsEditable.
    virtual std::string Write(std::string_view text);
    // The same for the word of a list by its number.
    virtual std::string Choose(int choice);
    // The same for the paths that the dialog of a file row gave. REQUIRES: at least one.
    virtual std::string WritePaths(const std::vector<std::filesystem::path>& paths);
    // The object of the model that the row stands for or belongs to; null for none.
    virtual const CObject* GetObject() const { return nullptr; }

    CHGItem* GetParent() const { return m_parent; }
    // Null past the last. The rows stay owned by their parent.
    CHGItem* GetChild(std::size_t index) const {
        return index < m_children.size() ? m_children[index].get() : nullptr;
    }
    std::size_t GetChildCount() const { return m_children.size(); }
    // The number among the rows of its parent. O(1).
    std::size_t GetIndex() const { return m_index; }

    // For an item that is not in a grid yet; later the grid inserts and removes.
    template <class Item>
    Item& Add(std::unique_ptr<Item> child) {
        Item& added = *child;
        Insert(m_children.size(), std::move(child));
        return added;
    }

  protected:
    void Insert(std::size_t index, std::unique_ptr<CHGItem> child);

  private:
    friend class CHierarchicalGridControl;
    std::unique_ptr<CHGItem> Take(std::size_t index);
    void Number(std::size_t from);

    const ERowKind m_kind;
    CHGItem* m_parent = nullptr;
    std::size_t m_index = 0;
    std::vector<std::unique_ptr<CHGItem>> m_children;
};

} // namespace Presentation_Tarvel_Grid

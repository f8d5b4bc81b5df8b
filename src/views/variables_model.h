// The tree of variables as a model of the window system, and its filter: column 0 has the names, column 1 the
// values at the cursor. UI thread.
#pragma once

#include "graph/variables.h"
#include "views/sync_model.h"

#include <QIcon>
#include <QSortFilterProxyModel>

#include <memory>
#include <string>
#include <vector>

namespace Application_Tarvel {

using Presentation_Tarvel_Graphics::CTrvVariables;
using Presentation_Tarvel_Graphics::EVariable;
using Presentation_Tarvel_Graphics::SVariable;
using Presentation_Tarvel_Graphics::SVariableNode;

// A letter on a ground, which both differ from kind to kind. For `dark` palettes it is lighter.
QIcon MakeVariableIcon(EVariable kind, bool dark);

class CVariablesModel final : public TSyncModel<QAbstractItemModel> {
    Q_OBJECT

  public:
    static constexpr int kName = 0;
    static constexpr int kValue = 1;

    // `variables` must outlive the model.
    explicit CVariablesModel(CTrvVariables& variables, QObject* parent = nullptr);
    ~CVariablesModel() override;

    // Takes the tree / the values. To be called when the variables report a change.
    void FollowTree();
    void FollowValues();
    // Makes the icons for the palette in force.
    void MakeIcons(bool dark);
    // Null for an index of none. Valid until the next FollowTree.
    const SVariable* GetVariable(const QModelIndex& index) const;

    QModelIndex index(int row, int column, const QModelIndex& parent = {}) const override;
    QModelIndex parent(const QModelIndex& index) const override;
    int rowCount(const QModelIndex& parent = {}) const override;
    int columnCount(const QModelIndex& = {}) const override { return 2; }
    QVariant data(const QModelIndex& index, int role) const override;
    QVariant headerData(int section, Qt::Orientation orientation, int role) const override;
    Qt::ItemFlags flags(const QModelIndex& index) const override;

  private:
    struct SNode;
    using Nodes = std::vector<std::unique_ptr<SNode>>;

    SNode& NodeOf(const QModelIndex& index) const;
    QModelIndex IndexOf(const SNode& node, int column) const;
    static std::unique_ptr<SNode> MakeNode(SNode& parent, const SVariableNode& from);
    void Follow(SNode& node, const std::vector<SVariableNode>& wanted);
    void ValuesChanged(const SNode& node);

    CTrvVariables& m_variables;
    const std::unique_ptr<SNode> m_root;
    std::vector<QIcon> m_icons; // by EVariable
};

// Shows the rows that the filter takes, with those above them.
class CVariablesFilter final : public QSortFilterProxyModel {
    Q_OBJECT

  public:
    explicit CVariablesFilter(CVariablesModel& model, QObject* parent = nullptr);

    const std::string& GetFilter() const { return m_filter; }
    void SetFilter(const std::string& filter);

  protected:
    bool filterAcceptsRow(int row, const QModelIndex& parent) const override;

  private:
    CVariablesModel& m_model;
    std::string m_filter;
};

} // namespace Application_Tarvel

// A model whose rows follow a list of values: rows are removed, inserted and moved one by one, so that what
// stays keeps its selection, its place in the window and its children. UI thread.
#pragma once

#include <QAbstractItemModel>

#include <algorithm>
#include <iterator>

namespace Application_Tarvel {

template <class Base>
class TSyncModel : public Base {
  protected:
    using Base::Base;

    // Makes `rows`, the rows under `parent`, those of `wanted` in its order. `isSame(row, value)` says which
    // row shows a value, `make(value)` gives a new row. No two values are the same.
    template <class Rows, class Values, class IsSame, class Make>
    void SyncRows(const QModelIndex& parent, Rows& rows, const Values& wanted, IsSame&& isSame, Make&& make) {
        for (int i = static_cast<int>(rows.size()); i-- > 0;) {
            const auto shows = [&](const auto& value) { return isSame(rows[Place(i)], value); };
            if (std::any_of(wanted.begin(), wanted.end(), shows)) continue;
            this->beginRemoveRows(parent, i, i);
            rows.erase(rows.begin() + i);
            this->endRemoveRows();
        }
        int i = 0;
        for (const auto& value : wanted) {
            const auto found = std::find_if(rows.begin() + i, rows.end(),
                                            [&](const auto& row) { return isSame(row, value); });
            const int from = static_cast<int>(found - rows.begin());
            if (found == rows.end()) {
                this->beginInsertRows(parent, i, i);
                rows.insert(rows.begin() + i, make(value));
                this->endInsertRows();
            } else if (from != i) {
                this->beginMoveRows(parent, from, from, parent, i);
                std::rotate(rows.begin() + i, rows.begin() + from, rows.begin() + from + 1);
                this->endMoveRows();
            }
            ++i;
        }
    }

  private:
    static std::size_t Place(int row) { return static_cast<std::size_t>(row); }
};

} // namespace Application_Tarvel

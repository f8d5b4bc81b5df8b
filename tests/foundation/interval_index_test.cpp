#include "foundation/date_time.h"
#include "foundation/interval_index.h"

#include <gtest/gtest.h>

#include <list>
#include <map>
#include <random>

using Outils_Temps::CDateTimeSpan;

namespace {

using Tree = Outils_Collection::CAVLTree<CDateTimeSpan, unsigned long>;

// Code; the value of the exact key; key and value below, key and value above.
using Result =
    std::tuple<Tree::EFind, unsigned long, std::int64_t, unsigned long, std::int64_t, unsigned long>;

Result Find(Tree& tree, std::int64_t key) {
    unsigned long exactValue = 0, lowerValue = 0, upperValue = 0;
    CDateTimeSpan lower, upper;
    const auto code = tree.Find(CDateTimeSpan(key), exactValue, lower, lowerValue, upper, upperValue);
    return {code, exactValue, lower.GetTicks(), lowerValue, upper.GetTicks(), upperValue};
}

// The same duties on standard containers, without any balance.
class CModel {
  public:
    void Insert(std::int64_t key, unsigned long value) {
        if (!m_values.contains(key)) m_ages.push_front(key);
        m_values[key] = value;
        if (m_values.size() < 60) return;
        for (int i = 0; i < 7; ++i) Remove(std::int64_t{m_ages.back()});
    }
    bool Remove(std::int64_t key) {
        m_ages.remove(key);
        return m_values.erase(key) != 0;
    }
    Result Find(std::int64_t key) {
        if (m_values.contains(key)) {
            m_ages.remove(key);
            m_ages.push_front(key);
            return {Tree::exact, m_values[key], 0, 0, 0, 0};
        }
        const auto upper = m_values.upper_bound(key);
        const bool hasLower = upper != m_values.begin(), hasUpper = upper != m_values.end();
        const auto none = std::pair<const std::int64_t, unsigned long>();
        const auto below = hasLower ? *std::prev(upper) : none, above = hasUpper ? *upper : none;
        const auto code = hasLower   ? (hasUpper ? Tree::between : Tree::above)
                          : hasUpper ? Tree::below
                                     : Tree::empty;
        return {code, 0, below.first, below.second, above.first, above.second};
    }
    std::size_t GetCount() const { return m_values.size(); }

  private:
    std::map<std::int64_t, unsigned long> m_values;
    std::list<std::int64_t> m_ages;
};

TEST(IntervalIndex, AgreesWithAPlainMap) {
    std::mt19937 random(7);
    Tree tree;
    tree.SetEviction(true, 60, 7);
    CModel model;
    for (int step = 0; step < 20000; ++step) {
        const std::int64_t key = random() % 200;
        switch (random() % 4) {
        case 0: ASSERT_EQ(tree.Remove(CDateTimeSpan(key)), model.Remove(key)) << step; break;
        case 1: ASSERT_EQ(Find(tree, key), model.Find(key)) << step; break;
        default: tree.Insert(CDateTimeSpan(key), step); model.Insert(key, step);
        }
        ASSERT_EQ(tree.GetCount(), model.GetCount());
    }
    tree.Clear();
    EXPECT_EQ(Find(tree, 1), CModel().Find(1));
}

TEST(IntervalIndex, ReplacedValueEvictsToo) {
    Tree tree;
    for (int key = 0; key < 9; ++key) tree.Insert(CDateTimeSpan(key), 1);
    tree.SetEviction(true, 9, 4);
    tree.Insert(CDateTimeSpan(8), 2);
    EXPECT_EQ(tree.GetCount(), 5u);
    EXPECT_EQ(std::get<0>(Find(tree, 3)), Tree::below);
}

TEST(IntervalIndex, InvalidKeyReplacesTheValueReached) {
    Tree tree;
    tree.Insert(CDateTimeSpan(5), 1);
    tree.Insert(CDateTimeSpan::Invalid(), 2);
    EXPECT_EQ(tree.GetCount(), 1u);
    EXPECT_EQ(std::get<1>(Find(tree, 5)), 2ul);
    tree.Insert(CDateTimeSpan(6), 3);
    tree.Insert(CDateTimeSpan(7), 4);
    tree.Insert(CDateTimeSpan::Invalid(), 9);
    EXPECT_EQ(tree.GetCount(), 3u);
    EXPECT_EQ(std::get<1>(Find(tree, 6)), 9ul) << "the root of three";
    tree.Clear();
    tree.Insert(CDateTimeSpan::Invalid(), 1);
    tree.Insert(CDateTimeSpan(5), 2);
    EXPECT_EQ(tree.GetCount(), 1u) << "a stored invalid key takes every value";
}

} // namespace

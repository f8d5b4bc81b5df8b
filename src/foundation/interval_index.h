// A search tree that gives the stored keys around a key, and forgets the keys used longest ago once it is
// full. In the program: packet dates to packet numbers.
//
// Keys order by their ticks (a time value of date_time.h). Search and update are logarithmic, and a search
// that misses allocates nothing. Belongs to one thread at a time; a search changes it too.
#pragma once

#include <cstdint>
#include <iterator>
#include <list>
#include <map>

namespace Outils_Collection {

template <class Key, class Value>
class CAVLTree {
  public:
    // What a search has found, and so which of its results it has filled.
    enum EFind {
        empty = 0,   // none
        exact = 1,   // exactValue
        above = 2,   // the key is above every stored key: the lower pair
        below = 3,   // the key is below every stored key: the upper pair
        between = 4, // both pairs
    };

    CAVLTree() = default;
    CAVLTree(const CAVLTree&) = delete;
    CAVLTree& operator=(const CAVLTree&) = delete;

    // When enabled, an insertion that leaves at least `maxCount` keys removes the `batch` keys used longest
    // ago.
    void SetEviction(bool enabled, std::uint32_t maxCount, std::uint32_t batch) {
        m_evictionEnabled = enabled;
        m_maxCount = maxCount;
        m_evictionBatch = batch;
    }
    std::uint32_t GetCount() const { return static_cast<std::uint32_t>(m_uses.size()); }

    // A new key becomes the most recently used; a stored key takes the value and keeps its age. An invalid
    // key on either side of a comparison counts as equal: the value of the node reached is replaced.
    void Insert(const Key& key, const Value& value);
    // Only an exact hit counts as a use.
    EFind Find(const Key& key, Value& exactValue, Key& lowerKey, Value& lowerValue, Key& upperKey,
               Value& upperValue);
    // False when the key is not stored.
    bool Remove(const Key& key);
    void Clear();

  private:
    struct SUse;
    // Stops a search at the first key that it is compared with.
    struct SFirstCompared {
        mutable const Key* key = nullptr;
    };
    struct SOrder {
        using is_transparent = void;
        bool operator()(const Key& a, const Key& b) const { return a.GetTicks() < b.GetTicks(); }
        bool operator()(const Key& a, const SFirstCompared& probe) const {
            if (!probe.key) probe.key = &a;
            return false;
        }
    };
    using Nodes = std::map<Key, typename std::list<SUse>::iterator, SOrder>;
    struct SUse {
        Value value;
        typename Nodes::iterator node;
    };

    void Evict();

    Nodes m_nodes;
    std::list<SUse> m_uses; // the most recently used first
    bool m_evictionEnabled = false;
    std::uint32_t m_maxCount = 0;
    std::uint32_t m_evictionBatch = 0;
};

template <class Key, class Value>
void CAVLTree<Key, Value>::Insert(const Key& key, const Value& value) {
    // An invalid key is stored only where there is no other, and none comes to it after that.
    if (!m_nodes.empty() && (!key.IsValid() || !m_nodes.begin()->first.IsValid())) {
        const SFirstCompared root;
        m_nodes.lower_bound(root);
        m_nodes.find(*root.key)->second->value = value;
    } else if (const auto place = m_nodes.lower_bound(key);
               place != m_nodes.end() && place->first.GetTicks() == key.GetTicks()) {
        place->second->value = value;
    } else {
        // Joined to the others last: without memory for the node nothing has changed.
        std::list<SUse> use{{value, m_nodes.end()}};
        use.front().node = m_nodes.emplace_hint(place, key, use.begin());
        m_uses.splice(m_uses.begin(), use);
    }
    Evict();
}

template <class Key, class Value>
typename CAVLTree<Key, Value>::EFind CAVLTree<Key, Value>::Find(const Key& key, Value& exactValue,
                                                                Key& lowerKey, Value& lowerValue,
                                                                Key& upperKey, Value& upperValue) {
    const auto upper = m_nodes.lower_bound(key);
    const bool hasUpper = upper != m_nodes.end(), hasLower = upper != m_nodes.begin();
    if (hasUpper && upper->first.GetTicks() == key.GetTicks()) {
        exactValue = upper->second->value;
        m_uses.splice(m_uses.begin(), m_uses, upper->second);
        return exact;
    }
    if (hasLower) {
        const auto lower = std::prev(upper);
        lowerKey = lower->first;
        lowerValue = lower->second->value;
    }
    if (hasUpper) {
        upperKey = upper->first;
        upperValue = upper->second->value;
    }
    return hasLower ? (hasUpper ? between : above) : (hasUpper ? below : empty);
}

template <class Key, class Value>
bool CAVLTree<Key, Value>::Remove(const Key& key) {
    const auto node = m_nodes.find(key);
    if (node == m_nodes.end()) return false;
    m_uses.erase(node->second);
    m_nodes.erase(node);
    return true;
}

template <class Key, class Value>
void CAVLTree<Key, Value>::Clear() {
    m_nodes.clear();
    m_uses.clear();
}

template <class Key, class Value>
void CAVLTree<Key, Value>::Evict() {
    if (!m_evictionEnabled || GetCount() < m_maxCount) return;
    for (std::uint32_t i = 0; i < m_evictionBatch && !m_uses.empty(); ++i) {
        m_nodes.erase(m_uses.back().node);
        m_uses.pop_back();
    }
}

} // namespace Outils_Collection

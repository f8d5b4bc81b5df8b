// A height-balanced search tree that tells which stored keys bracket a given one, and that forgets the keys
// used longest ago once it is full. In the program: packet dates to packet numbers.
//
// Keys order by their ticks (a time value of date_time.h). Search and update are logarithmic, eviction is
// constant per node, and a search allocates nothing. Belongs to one thread at a time; a search changes it
// too.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <utility>

namespace Outils_Collection {

template <class Key, class Value>
class CAVLTree;

template <class Key, class Value>
class CAVLNode {
    friend class CAVLTree<Key, Value>;

    CAVLNode(const Key& key, const Value& value) : m_key(key), m_value(value) {}

    std::int32_t m_balance = 0; // height of the right subtree minus height of the left
    std::int32_t m_height = 0;  // a leaf has 0, an empty subtree counts as -1
    Key m_key;
    Value m_value;
    CAVLNode* m_left = nullptr; // the tree owns all nodes
    CAVLNode* m_right = nullptr;
    CAVLNode* m_parent = nullptr;
    CAVLNode* m_next = nullptr;     // used less recently
    CAVLNode* m_previous = nullptr; // used more recently
};

template <class Key, class Value>
class CAVLTree {
  public:
    // What a search found, and so which of its results it has filled.
    enum EFind {
        empty = 0,   // none
        exact = 1,   // exactValue
        above = 2,   // the key is above every stored key: the lower pair
        below = 3,   // the key is below every stored key: the upper pair
        between = 4, // both pairs
    };

    CAVLTree() = default;
    ~CAVLTree() { Clear(); }
    CAVLTree(const CAVLTree&) = delete;
    CAVLTree& operator=(const CAVLTree&) = delete;

    // When enabled, an insertion that leaves at least `maxCount` keys removes the `batch` keys used longest
    // ago.
    void SetEviction(bool enabled, std::uint32_t maxCount, std::uint32_t batch) {
        m_evictionEnabled = enabled;
        m_maxCount = maxCount;
        m_evictionBatch = batch;
    }
    std::uint32_t GetCount() const { return m_count; }
    // -1 when empty, 0 for a single key.
    std::int32_t GetHeight() const { return HeightOf(m_root); }

    // A new key becomes the most recently used; a stored one takes the value and keeps its age. An invalid
    // key on either side of a comparison counts as equal: the value of the node reached is replaced.
    void Insert(const Key& key, const Value& value);
    // Only an exact hit counts as a use.
    EFind Find(const Key& key, Value& exactValue, Key& lowerKey, Value& lowerValue, Key& upperKey,
               Value& upperValue);
    // False when the key is not stored.
    bool Remove(const Key& key);
    void Clear();

  private:
    using Node = CAVLNode<Key, Value>;

    static std::int32_t HeightOf(const Node* node) { return node ? node->m_height : -1; }
    static void Measure(Node* node) {
        node->m_height = 1 + std::max(HeightOf(node->m_left), HeightOf(node->m_right));
        node->m_balance = HeightOf(node->m_right) - HeightOf(node->m_left);
    }

    void Replace(Node* node, Node* by);
    void RotateLeft(Node* node);
    void RotateRight(Node* node);
    void Rebalance(Node* node);
    void LinkFirst(Node* node);
    void Unlink(Node* node);
    void RemoveNode(Node* node);
    void Evict();

    Node* m_root = nullptr;
    Node* m_head = nullptr; // used last
    Node* m_tail = nullptr; // used longest ago
    bool m_evictionEnabled = false;
    std::uint32_t m_maxCount = 0;
    std::uint32_t m_evictionBatch = 0;
    std::uint32_t m_count = 0;
};

template <class Key, class Value>
void CAVLTree<Key, Value>::Insert(const Key& key, const Value& value) {
    Node* parent = nullptr;
    Node** place = &m_root;
    while (*place) {
        parent = *place;
        if (key < parent->m_key) {
            place = &parent->m_left;
        } else if (key > parent->m_key) {
            place = &parent->m_right;
        } else {
            parent->m_value = value;
            Evict();
            return;
        }
    }
    Node* node = new Node(key, value);
    *place = node;
    node->m_parent = parent;
    LinkFirst(node);
    ++m_count;
    Rebalance(node);
    Evict();
}

template <class Key, class Value>
typename CAVLTree<Key, Value>::EFind CAVLTree<Key, Value>::Find(const Key& key, Value& exactValue,
                                                                Key& lowerKey, Value& lowerValue,
                                                                Key& upperKey, Value& upperValue) {
    // The last node at which the way turned right is the nearest below, the last left turn the nearest above.
    const Node* lower = nullptr;
    const Node* upper = nullptr;
    for (Node* node = m_root; node;) {
        if (key.GetTicks() < node->m_key.GetTicks()) {
            upper = node;
            node = node->m_left;
        } else if (key.GetTicks() > node->m_key.GetTicks()) {
            lower = node;
            node = node->m_right;
        } else {
            exactValue = node->m_value;
            Unlink(node);
            LinkFirst(node);
            return exact;
        }
    }
    if (lower) {
        lowerKey = lower->m_key;
        lowerValue = lower->m_value;
    }
    if (upper) {
        upperKey = upper->m_key;
        upperValue = upper->m_value;
    }
    return lower ? (upper ? between : above) : (upper ? below : empty);
}

template <class Key, class Value>
bool CAVLTree<Key, Value>::Remove(const Key& key) {
    Node* node = m_root;
    while (node && node->m_key.GetTicks() != key.GetTicks())
        node = key.GetTicks() < node->m_key.GetTicks() ? node->m_left : node->m_right;
    if (node) RemoveNode(node);
    return node != nullptr;
}

template <class Key, class Value>
void CAVLTree<Key, Value>::Clear() {
    while (m_head) delete std::exchange(m_head, m_head->m_next);
    m_root = nullptr;
    m_tail = nullptr;
    m_count = 0;
}

// Puts `by`, which may be null, with its subtree in the place of `node`.
template <class Key, class Value>
void CAVLTree<Key, Value>::Replace(Node* node, Node* by) {
    Node* parent = node->m_parent;
    if (!parent)
        m_root = by;
    else if (parent->m_left == node)
        parent->m_left = by;
    else
        parent->m_right = by;
    if (by) by->m_parent = parent;
}

template <class Key, class Value>
void CAVLTree<Key, Value>::RotateLeft(Node* node) {
    Node* risen = node->m_right;
    Replace(node, risen);
    node->m_right = risen->m_left;
    if (node->m_right) node->m_right->m_parent = node;
    risen->m_left = node;
    node->m_parent = risen;
    Measure(node);
    Measure(risen);
}

template <class Key, class Value>
void CAVLTree<Key, Value>::RotateRight(Node* node) {
    Node* risen = node->m_left;
    Replace(node, risen);
    node->m_left = risen->m_right;
    if (node->m_left) node->m_left->m_parent = node;
    risen->m_right = node;
    node->m_parent = risen;
    Measure(node);
    Measure(risen);
}

// From `node` up to the root: heights, and the rotations that they ask for.
template <class Key, class Value>
void CAVLTree<Key, Value>::Rebalance(Node* node) {
    for (; node; node = node->m_parent) {
        Measure(node);
        if (node->m_balance > 1) {
            if (node->m_right->m_balance < 0) RotateRight(node->m_right);
            RotateLeft(node);
        } else if (node->m_balance < -1) {
            if (node->m_left->m_balance > 0) RotateLeft(node->m_left);
            RotateRight(node);
        }
    }
}

template <class Key, class Value>
void CAVLTree<Key, Value>::LinkFirst(Node* node) {
    node->m_previous = nullptr;
    node->m_next = m_head;
    if (m_head)
        m_head->m_previous = node;
    else
        m_tail = node;
    m_head = node;
}

template <class Key, class Value>
void CAVLTree<Key, Value>::Unlink(Node* node) {
    (node->m_previous ? node->m_previous->m_next : m_head) = node->m_next;
    (node->m_next ? node->m_next->m_previous : m_tail) = node->m_previous;
}

template <class Key, class Value>
void CAVLTree<Key, Value>::RemoveNode(Node* node) {
    const std::unique_ptr<Node> removed(node);
    Unlink(node);
    --m_count;
    Node* lowestChanged = node->m_parent;
    if (!node->m_left || !node->m_right) {
        Replace(node, node->m_left ? node->m_left : node->m_right);
    } else {
        // The next greater key takes the place. The node itself moves, as the use list points at it.
        Node* neighbour = node->m_right;
        while (neighbour->m_left) neighbour = neighbour->m_left;
        lowestChanged = neighbour;
        if (neighbour->m_parent != node) {
            lowestChanged = neighbour->m_parent;
            Replace(neighbour, neighbour->m_right);
            neighbour->m_right = node->m_right;
            neighbour->m_right->m_parent = neighbour;
        }
        Replace(node, neighbour);
        neighbour->m_left = node->m_left;
        neighbour->m_left->m_parent = neighbour;
    }
    Rebalance(lowestChanged);
}

template <class Key, class Value>
void CAVLTree<Key, Value>::Evict() {
    if (!m_evictionEnabled || m_count < m_maxCount) return;
    // RemoveNode takes the node off the list before it frees it, which the checker loses sight of.
    for (std::uint32_t i = 0; i < m_evictionBatch && m_tail; ++i)
        RemoveNode(m_tail); // NOLINT(clang-analyzer-cplusplus.NewDelete)
}

} // namespace Outils_Collection

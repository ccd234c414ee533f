#pragma once
// A small doubly linked list with read cursors, used as the id allocator's free list.

#include <cstddef>

namespace GUI {

/// Nodes are appended at the tail; the allocator removes from the tail. Every structural change
/// resets the read cursor to the head and the second cursor to the tail.
template <class T> class DoubleLinkedList {
public:
    struct Node {
        T value;
        Node* previous = nullptr;
        Node* next = nullptr;
    };

    DoubleLinkedList() = default;
    virtual ~DoubleLinkedList() { clear(); }
    DoubleLinkedList(const DoubleLinkedList&) = delete;
    DoubleLinkedList& operator=(const DoubleLinkedList&) = delete;

    /// Frees every node from head to tail.
    virtual void clear() {
        Node* n = head_;
        while (n) {
            Node* next = n->next;
            delete n;
            n = next;
        }
        head_ = tail_ = readCursor_ = secondCursor_ = nullptr;
    }

    void append(const T& value) {
        Node* n = new Node{value, tail_, nullptr};
        if (tail_)
            tail_->next = n;
        else
            head_ = n;
        tail_ = n;
        resetCursors();
    }

    /// Unlinks and frees the tail node.
    void removeTail() {
        if (!tail_)
            return;
        Node* old = tail_;
        tail_ = old->previous;
        if (tail_)
            tail_->next = nullptr;
        else
            head_ = nullptr;
        delete old;
        resetCursors();
    }

    void resetCursors() {
        readCursor_ = head_;
        secondCursor_ = tail_;
    }

    Node* head() const { return head_; }
    Node* tail() const { return tail_; }
    std::size_t size() const {
        std::size_t n = 0;
        for (Node* p = head_; p; p = p->next)
            ++n;
        return n;
    }

private:
    Node* head_ = nullptr;
    Node* tail_ = nullptr;
    Node* readCursor_ = nullptr;
    Node* secondCursor_ = nullptr;
};

} // namespace GUI

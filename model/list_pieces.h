#ifndef VESK_MODEL_LIST_PIECES_H
#define VESK_MODEL_LIST_PIECES_H

// Walks of long lists on all cores.

#include "base/worker.h"
#include "model/each.h"

// A list in pieces of the same number of nodes; the last one may be shorter.
class list_pieces {
public:
    static constexpr int size = 16384;

    explicit list_pieces(const listitem *head)
    {
        for (const listitem *node = head; node != nullptr; node = node->next) {
            if (length_++ % size == 0)
                begins_.push_back(node);
        }
    }
    [[nodiscard]] std::size_t length() const { return length_; }
    [[nodiscard]] int count() const { return static_cast<int>(begins_.size()); }

    // Calls visit(element, its place in the list) for each element of one piece.
    template <class T, class Visit>
    void visit(int piece, const Visit &visit_one) const
    {
        std::size_t place = static_cast<std::size_t>(piece) * size;
        const listitem *node = begins_[piece];
        for (int i = 0; i < size && node != nullptr; ++i, node = node->next)
            visit_one(item_of<T>(node), place++);
    }
    // Likewise for all pieces, side by side.
    template <class T, class Visit>
    void visit_all(const Visit &visit_one) const
    {
        for_each_piece([&](int piece) { visit<T>(piece, visit_one); });
    }
    // Calls work(piece) for each, side by side; for a short list without further ado.
    template <class Work>
    void for_each_piece(const Work &work) const
    {
        if (count() > 1)
            in_parallel(count(), work);
        else if (count() == 1)
            work(0);
    }

private:
    std::vector<const listitem *> begins_;
    std::size_t length_ = 0;
};

#endif

#ifndef VESK_EDIT_MESH_UNION_FIND_H
#define VESK_EDIT_MESH_UNION_FIND_H

// Which of n things hang together, joined pair by pair.

#include <algorithm>
#include <numeric>
#include <vector>

class union_find {
public:
    explicit union_find(int n) : parent_(n) { std::iota(parent_.begin(), parent_.end(), 0); }
    int find(int i)
    {
        while (parent_[i] != i)
            i = parent_[i] = parent_[parent_[i]];
        return i;
    }
    // The smaller number stays: the first of a set names it.
    void join(int a, int b)
    {
        a = find(a);
        b = find(b);
        parent_[std::max(a, b)] = std::min(a, b);
    }
    // Numbers the sets from 0 in the order of their first members.
    int number(std::vector<int> *out)
    {
        int count = 0;
        out->resize(parent_.size());
        for (int i = 0; i < static_cast<int>(parent_.size()); ++i) {
            const int first = find(i);
            (*out)[i] = first == i ? count++ : (*out)[first];
        }
        return count;
    }

private:
    std::vector<int> parent_;
};

#endif

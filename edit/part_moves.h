#ifndef VESK_EDIT_PART_MOVES_H
#define VESK_EDIT_PART_MOVES_H

// The selected parts, each moved by an offset of its own as one undo record: the topmost selected
// objects with their descendants, or else the selected vertices (those of the selected surfaces).

#include "edit/mesh/mesh_change.h"

#include <vector>

class part_moves {
public:
    part_moves();

    // Whether there are any; else the message "<what> - nothing selected".
    bool any(const char *what) const;
    [[nodiscard]] int count() const { return static_cast<int>(parts_.size()); }
    [[nodiscard]] const point3_t &box_min(int part) const { return parts_[part].min; }
    [[nodiscard]] const point3_t &box_max(int part) const { return parts_[part].max; }
    // The object of a part, or its vertex; null where it is the other.
    [[nodiscard]] object_t *object(int part) const { return parts_[part].object; }
    [[nodiscard]] vertex *point(int part) const { return parts_[part].point; }
    void set_offset(int part, const point3_t &offset) { parts_[part].offset = offset; }

    // Moves them and tells how many moved; without any that moves there is no record.
    void commit(const char *what);

private:
    struct part_t {
        object_t *object;
        vertex *point;
        point3_t min, max, offset;
    };
    std::vector<part_t> parts_;
};

// The axis of a word, x, y, z or 0, 1, 2; -1 with a message when it is none.
int part_axis(const char *what, const char *word);

#endif

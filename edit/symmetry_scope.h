#ifndef VESK_EDIT_SYMMETRY_SCOPE_H
#define VESK_EDIT_SYMMETRY_SCOPE_H

// One operation on elements while symmetry is on.

#include "edit/symmetry.h"

#include <utility>
#include <vector>

class symmetry_scope {
public:
    enum class of {
        nothing,
        positions, // moves the selected vertices: their counterparts follow when it ends
        elements,  // does the same on both sides: the counterparts are selected, too, while it runs
    };
    // What the command is; nothing while symmetry does not act.
    explicit symmetry_scope(const char *command);
    explicit symmetry_scope(of kind);
    ~symmetry_scope();
    symmetry_scope(const symmetry_scope &) = delete;
    symmetry_scope &operator=(const symmetry_scope &) = delete;

    // After the operation. Of what is selected then the side that was chosen stays.
    void end();

private:
    void begin();
    void add_counterparts();
    void keep_side() const;

    of kind_;
    std::vector<object_t *> owners_;
    std::vector<vertex *> moving_;
    std::vector<point3_t> before_;
    symmetric_pairs pairs_;
    std::vector<std::pair<vertex *, point3_t>> counterparts_; // as they were
    unsigned serial_ = 0;                                     // of the last undo record then
    bool one_sided_ = false;
    bool running_ = false;
};

// While such an operation runs: an offset as it is at a place, mirrored on the side that follows and
// along the plane on it. Else the offset itself.
point3_t symmetry_offset(const point3_t &at, const point3_t &offset);

#endif

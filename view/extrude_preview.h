#ifndef VESK_VIEW_EXTRUDE_PREVIEW_H
#define VESK_VIEW_EXTRUDE_PREVIEW_H

#include "view/overlay.h"

// The preview of the extrude tool while it is dragged: the outline of the selected whole surfaces
// as they are when this is made.

class extrude_preview_t {
public:
    extrude_preview_t();
    // The mean normal, of length 1; 0 0 0 when there is none.
    [[nodiscard]] point3_t normal() const { return normal_; }
    // The outline moved by an offset, and the edges of the walls.
    void outline_at(const point3_t &offset, std::vector<overlay_segment_t> *out) const;

private:
    std::vector<overlay_segment_t> edges_;
    point3_t normal_ = {0, 0, 0};
};

// Whether whole surfaces are selected.
bool extrude_has_surfaces();

#endif

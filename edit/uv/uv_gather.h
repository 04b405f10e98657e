#ifndef VESK_EDIT_UV_UV_GATHER_H
#define VESK_EDIT_UV_UV_GATHER_H

// What the editor works on, from the objects that it shows. Where that is much, a worker does it for whoever
// can wait.

#include "edit/uv/uv_islands.h"

struct uv_gathered {
    uv_mesh mesh;
    uv_islands islands;
};

uv_gathered uv_gather(const std::vector<uv_source> &sources);

// The same by a worker, unless it is little. False: it is not there yet; ask again later. Sources that
// differ from the last ones begin anew.
bool uv_gather_later(const std::vector<uv_source> &sources, uv_gathered *out);

// Above so many corners a worker does it.
constexpr int most_gathered_at_once = 200000;

#endif

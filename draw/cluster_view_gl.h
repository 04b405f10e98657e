#ifndef VESK_DRAW_CLUSTER_VIEW_GL_H
#define VESK_DRAW_CLUSTER_VIEW_GL_H

#include "draw/coarse_mesh.h"

// What of an object's clusters can be seen, by the matrices that are current when this is made.
class cluster_view_t {
public:
    explicit cluster_view_t(bool perspective);
    // `twosided`: also from behind.
    [[nodiscard]] bool shows(const mesh_cluster_t &cluster, bool twosided) const;

private:
    struct plane_t {
        double a, b, c, d; // inside: not below 0
    };
    [[nodiscard]] bool faces_away(const mesh_cluster_t &cluster) const;

    plane_t planes_[6];
    bool perspective_, mirrored_;
    double viewer_[3]; // place, else the direction of sight
};

#endif

#ifndef VESK_VIEW_PROJECTOR_H
#define VESK_VIEW_PROJECTOR_H

// World to window of many points of one view, whose settings are read once.

#include "view/camera_eye.h"
#include "view/views_internal.h"

#include <limits>

struct screen_point_t {
    float x, y, depth; // depth grows away from the viewer
};

inline constexpr float behind_viewer = std::numeric_limits<float>::quiet_NaN();

// World to window of any view, as two rows and a depth row, with the division of perspective.
class projector_t {
public:
    explicit projector_t(int view)
    {
        if (view == VIEW_XYZ)
            set_camera();
        else
            set_flat(view);
    }
    [[nodiscard]] screen_point_t operator()(const point3_t &p) const { return divided(eye(p)); }

    // Before the division of perspective: x and y stand for pixels times the depth. Straight lines
    // keep their proportions here, and points behind the viewer have a place too.
    [[nodiscard]] screen_point_t eye(const point3_t &p) const
    {
        return {m[0] * p.x + m[1] * p.y + m[2] * p.z + m[3],
                m[4] * p.x + m[5] * p.y + m[6] * p.z + m[7],
                m[8] * p.x + m[9] * p.y + m[10] * p.z + m[11]};
    }
    [[nodiscard]] screen_point_t divided(const screen_point_t &eye) const
    {
        if (!perspective)
            return {eye.x + centre_x, eye.y + centre_y, eye.depth};
        if (eye.depth < nearest_depth)
            return {behind_viewer, behind_viewer, eye.depth};
        return {eye.x / eye.depth + centre_x, eye.y / eye.depth + centre_y, eye.depth};
    }
    [[nodiscard]] bool has_perspective() const { return perspective; }

    static constexpr float nearest_depth = 1e-6f; // of what the viewer sees with perspective

private:
    void set_flat(int view)
    {
        const VESKView &v = *vesk_get_view(view);
        const view_axes_t axes = view_axes[view];
        m[axes.horizontal] = v.scale * axis_sign[axes.horizontal];
        m[4 + axes.vertical] = v.scale * axis_sign[axes.vertical];
        m[3] = v.centre[axes.horizontal] + v.pan[axes.horizontal];
        m[7] = v.centre[axes.vertical] + v.pan[axes.vertical];
        // The viewer stands at +z, -x, +y.
        m[8 + axes.depth] = view == VIEW_ZY ? 1.0f : -1.0f;
    }
    void set_camera()
    {
        double eye[16];
        camera_modelview(eye); // column by column
        const point3_t zero = {0, 0, 0};
        const projection_t projection = camera_projection(zero, zero);
        int geometry[4] = {};
        win_get_geom(VIEW_XYZ, geometry);
        const double pixels = geometry[3] / 2.0 / projection.half_height;
        for (int column = 0; column < 4; ++column) {
            m[column] = static_cast<float>(eye[column * 4] * pixels);
            m[4 + column] = static_cast<float>(-eye[column * 4 + 1] * pixels);
            m[8 + column] = static_cast<float>(-eye[column * 4 + 2]);
        }
        centre_x = static_cast<float>(geometry[2]) / 2;
        centre_y = static_cast<float>(geometry[3]) / 2;
        perspective = projection.perspective;
    }

    float m[12] = {};
    float centre_x = 0, centre_y = 0;
    bool perspective = false;
};

#endif

#include "draw/cluster_view_gl.h"

#include "draw/draw_device_gl.h"
#include "model/vector.h"

#include <Eigen/Dense>
#include <cmath>

cluster_view_t::cluster_view_t(bool perspective) : perspective_(perspective)
{
    Eigen::Matrix4d model;
    Eigen::Matrix4d projection;
    glGetDoublev(GL_MODELVIEW_MATRIX, model.data());
    glGetDoublev(GL_PROJECTION_MATRIX, projection.data());
    const Eigen::Matrix4d all = projection * model;
    for (int i = 0; i < 6; ++i) {
        const double sign = i % 2 == 0 ? 1 : -1;
        const Eigen::RowVector4d plane = all.row(3) + sign * all.row(i / 2);
        const double length = plane.head<3>().norm();
        const double scale = length > 0 ? 1 / length : 0;
        planes_[i] = {plane[0] * scale, plane[1] * scale, plane[2] * scale, plane[3] * scale};
    }
    const Eigen::Matrix4d back = model.inverse();
    const Eigen::Vector4d viewer = back * Eigen::Vector4d(0, 0, perspective ? 0 : -1, perspective);
    const double length = perspective ? viewer[3] : viewer.head<3>().norm();
    for (int axis = 0; axis < 3; ++axis)
        viewer_[axis] = viewer[axis] / length;
    mirrored_ = model.determinant() < 0;
}

bool cluster_view_t::shows(const mesh_cluster_t &cluster, bool twosided) const
{
    const point3_t &p = cluster.centre;
    for (const plane_t &plane : planes_)
        if (plane.a * p.x + plane.b * p.y + plane.c * p.z + plane.d < -cluster.radius)
            return false;
    return twosided || mirrored_ || !faces_away(cluster);
}

bool cluster_view_t::faces_away(const mesh_cluster_t &cluster) const
{
    if (cluster.cutoff >= 1)
        return false;
    const point3_t &n = cluster.axis;
    if (!perspective_)
        return n.x * viewer_[0] + n.y * viewer_[1] + n.z * viewer_[2] >= cluster.cutoff;
    const double to[3] = {cluster.centre.x - viewer_[0], cluster.centre.y - viewer_[1],
                          cluster.centre.z - viewer_[2]};
    const double distance = std::sqrt(to[0] * to[0] + to[1] * to[1] + to[2] * to[2]);
    return n.x * to[0] + n.y * to[1] + n.z * to[2] >= cluster.cutoff * distance + cluster.radius;
}

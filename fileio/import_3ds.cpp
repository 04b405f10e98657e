#include "fileio/import_3ds.h"

#include "base/atomic_file.h"
#include "base/file_report.h"
#include "base/prefs.h"
#include "base/progress.h"
#include "fileio/import_mesh.h"
#include "fileio/scan_3ds.h"
#include "fileio/texture_beside.h"
#include "model/each.h"
#include "model/lights.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <map>
#include <tuple>
#include <unordered_map>

namespace {

constexpr const char *dummy = "$$$DUMMY";
constexpr long most_points = 1 << 24;     // a mesh may stand in many places
constexpr double same_direction = 0.9997; // a degree and a half is rounding

// ---- shading ----

using direction_t = std::array<double, 3>;

direction_t face_normal(const std::vector<float> &points, const std::array<int, 3> &face)
{
    const auto at = [&](int corner, std::size_t axis) {
        return static_cast<double>(points[3 * static_cast<std::size_t>(corner) + axis]);
    };
    direction_t a, b;
    for (std::size_t i = 0; i < 3; ++i) {
        a[i] = at(face[1], i) - at(face[0], i);
        b[i] = at(face[2], i) - at(face[0], i);
    }
    direction_t n = {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2],
                     a[0] * b[1] - a[1] * b[0]};
    const double size = std::hypot(n[0], n[1], n[2]);
    for (double &value : n)
        value = size > 0 ? value / size : 0;
    return n;
}

// Whether faces are smooth: at one of their corners faces of a common group look another way.
class smoothing_t {
public:
    smoothing_t(const mesh_3ds &mesh, const std::vector<float> &points,
                const std::vector<std::array<int, 3>> &faces)
        : mesh_(mesh)
    {
        const std::size_t n = points.size() / 3;
        for (std::size_t f = 0; f < faces.size(); ++f)
            normals_.push_back(face_normal(points, faces[f]));
        for (std::size_t f = 0; f < faces.size(); ++f)
            for_groups(f, [&](std::size_t bit) {
                sums_[bit].resize(n);
                for (const int corner : faces[f])
                    for (std::size_t i = 0; i < 3; ++i)
                        sums_[bit][static_cast<std::size_t>(corner)][i] += normals_[f][i];
            });
    }

    [[nodiscard]] bool is_smooth(std::size_t f, const std::array<int, 3> &face) const
    {
        bool smooth = false;
        for_groups(f, [&](std::size_t bit) {
            for (const int corner : face) {
                const direction_t &sum = sums_[bit][static_cast<std::size_t>(corner)];
                const direction_t &n = normals_[f];
                const double along = sum[0] * n[0] + sum[1] * n[1] + sum[2] * n[2];
                smooth = smooth || along < same_direction * std::hypot(sum[0], sum[1], sum[2]);
            }
        });
        return smooth;
    }

private:
    template <class Do>
    void for_groups(std::size_t f, Do &&act) const
    {
        const std::uint32_t groups = f < mesh_.smoothing.size() ? mesh_.smoothing[f] : 0;
        for (std::size_t bit = 0; bit < 32; ++bit)
            if ((groups >> bit & 1) != 0)
                act(bit);
    }

    const mesh_3ds &mesh_;
    std::vector<direction_t> normals_;
    std::array<std::vector<direction_t>, 32> sums_; // of each point, by group
};

// ---- the scene ----

class scene_3ds {
public:
    scene_3ds(const std::string &filename, const file_3ds &file) : filename_(filename), file_(file)
    {
        for (const material_3ds &from : file.materials) {
            material_values m = from.colours;
            vesk_material_set_name(&m, from.name.c_str());
            looks_.emplace(from.name, std::pair(&from, vesk_palette_get_new_material_index(&m)));
        }
        for (std::size_t i = 0; i < file.meshes.size(); ++i)
            meshes_.emplace(file.meshes[i].name, i);
        for (std::size_t i = 0; i < file.lights.size(); ++i)
            lights_.emplace(file.lights[i].name, i);
        mesh_used_.resize(file.meshes.size());
        light_used_.resize(file.lights.size());
    }

    // A world of everything; null when it grows beyond what can be held or the user cancels.
    object_t *run()
    {
        progress_t progress(static_cast<double>(file_.nodes.size() + file_.meshes.size()));
        object_t *world = new_object(OBJECT_WORLD);
        std::vector<object_t *> made(file_.nodes.size());
        std::vector<vrml_matrix> frames(file_.nodes.size(), vrml_identity);
        std::vector<bool> beside_camera(file_.nodes.size());
        std::unordered_map<int, std::size_t> places; // by id
        for (std::size_t i = 0; i < file_.nodes.size(); ++i) {
            node_3ds node = file_.nodes[i];
            const auto above = places.find(node.parent);
            const bool has_parent = node.parent >= 0 && above != places.end();
            // What goes along with a camera stays where it was made.
            beside_camera[i] = node.camera || (has_parent && beside_camera[above->second]);
            node.moves = node.moves && !beside_camera[i];
            frames[i] = frame_of(node);
            if (has_parent)
                frames[i] = vrml_product(frames[i], frames[above->second]);
            made[i] = make(node, frames[i]);
            if (made[i] != nullptr)
                object_add_child(has_parent && made[above->second] != nullptr ? made[above->second]
                                                                              : world,
                                 made[i]);
            places.emplace(node.id >= 0 ? node.id : static_cast<int>(i), i);
            if (points_ > most_points || !progress.step(static_cast<double>(i)))
                return dropped(world, progress.cancelled());
        }
        for (std::size_t i = 0; i < file_.meshes.size(); ++i)
            if (!mesh_used_[i])
                object_add_child(world, mesh(file_.meshes[i], vrml_identity, file_.meshes[i].name));
        for (std::size_t i = 0; i < file_.lights.size(); ++i)
            if (!light_used_[i])
                object_add_child(world, light(file_.lights[i]));
        object_calc_normals_force(world);
        return world;
    }

    [[nodiscard]] bool cancelled() const { return cancelled_; }

private:
    object_t *dropped(object_t *world, bool cancelled)
    {
        cancelled_ = cancelled;
        object_free(world);
        return nullptr;
    }

    // Scaled, turned (angles run clockwise there), moved.
    static vrml_matrix frame_of(const node_3ds &node)
    {
        if (!node.moves)
            return vrml_identity;
        vrml_matrix m = vrml_scaling({node.scale[0], node.scale[1], node.scale[2]});
        m = vrml_product(m,
                         vrml_rotation({node.turn[0], node.turn[1], node.turn[2], -node.turn[3]}));
        return vrml_product(m, vrml_translation({node.place[0], node.place[1], node.place[2]}));
    }

    object_t *make(const node_3ds &node, const vrml_matrix &frame)
    {
        if (node.camera)
            return nullptr;
        const auto mesh_at = meshes_.find(node.name);
        if (mesh_at != meshes_.end()) {
            const mesh_3ds &from = file_.meshes[mesh_at->second];
            mesh_used_[mesh_at->second] = true;
            return mesh(from, placed(node, from, frame),
                        node.instance.empty() ? node.name : node.instance);
        }
        if (const auto light_at = lights_.find(node.name); light_at != lights_.end()) {
            if (light_used_[light_at->second]) // the entry of what a spotlight looks at
                return nullptr;
            light_used_[light_at->second] = true;
            return light(file_.lights[light_at->second]);
        }
        if (node.name.empty())
            return nullptr;
        object_t *group = new_group();
        object_set_name(group, node.name != dummy      ? node.name.c_str()
                               : node.instance.empty() ? "group"
                                                       : node.instance.c_str());
        const point3_t at = vrml_place(frame, 0, 0, 0);
        group->centre = upright(at.x, at.y, at.z);
        return group;
    }

    // Points stand where their mesh was made: from there to its own space, and to the node's.
    static vrml_matrix placed(const node_3ds &node, const mesh_3ds &from, const vrml_matrix &frame)
    {
        if (!node.moves)
            return vrml_identity;
        vrml_matrix m = from.frame.has_value() ? vrml_inverse(*from.frame) : vrml_identity;
        if (from.frame.has_value() && vrml_mirrors(*from.frame)) // such meshes are kept mirrored
            m = vrml_product(m, vrml_scaling({-1, 1, 1}));
        m = vrml_product(m, vrml_translation({-node.pivot[0], -node.pivot[1], -node.pivot[2]}));
        return vrml_product(m, frame);
    }

    static point3_t upright(float x, float y, float z)
    {
        return prefs.swap_3ds_yz != 0 ? point3_t{x, z, -y} : point3_t{x, y, z};
    }

    static object_t *light(const light_3ds &from)
    {
        object_t *made = new_light();
        object_set_name(made, from.name.c_str());
        made->centre = upright(from.place[0], from.place[1], from.place[2]);
        return made;
    }

    // The look of a face: a picture has its place with it, and an object has one of each.
    using picture_t = std::tuple<std::string, float, float, float, float>;
    struct look_t {
        const material_3ds *from = nullptr;
        int palette_index = -1;
    };

    look_t look_of(const mesh_3ds &from, std::size_t face)
    {
        if (from.looks[face] >= 0) {
            const auto found =
                looks_.find(from.look_names[static_cast<std::size_t>(from.looks[face])]);
            if (found != looks_.end())
                return {found->second.first, found->second.second};
        }
        if (plain_ < 0)
            plain_ = import_colour(0.8f, 0.8f, 0.8f);
        return {nullptr, plain_};
    }

    static picture_t picture_of(const material_3ds *from)
    {
        if (from == nullptr || from->picture.empty())
            return {};
        return {from->picture, from->repeat[0], from->repeat[1], from->offset[0], from->offset[1]};
    }

    object_t *mesh(const mesh_3ds &from, const vrml_matrix &frame, const std::string &name)
    {
        // Points that the file parts for their texture coordinates are one.
        std::vector<float> points;
        std::vector<int> place_of;
        std::map<std::array<float, 3>, int> known;
        for (std::size_t i = 0; i + 2 < from.points.size(); i += 3) {
            const point3_t moved =
                vrml_place(frame, from.points[i], from.points[i + 1], from.points[i + 2]);
            const point3_t p = upright(moved.x, moved.y, moved.z);
            const bool number = std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z);
            const std::array<float, 3> key = number ? std::array{p.x + 0.0f, p.y + 0.0f, p.z + 0.0f}
                                                    : std::array{0.0f, 0.0f, 0.0f};
            const auto [at, fresh] = known.emplace(key, static_cast<int>(points.size() / 3));
            if (fresh)
                points.insert(points.end(), key.begin(), key.end());
            place_of.push_back(at->second);
        }
        points_ += static_cast<long>(points.size() / 3);
        std::vector<std::array<int, 3>> faces(from.faces.size());
        for (std::size_t f = 0; f < faces.size(); ++f)
            for (std::size_t k = 0; k < 3; ++k)
                faces[f][k] = from.faces[f][k] < place_of.size() ? place_of[from.faces[f][k]] : -1;
        return parts(from, points, faces, name, vrml_mirrors(frame));
    }

    // One object for each picture, below a group when there are several.
    object_t *parts(const mesh_3ds &from, const std::vector<float> &points,
                    std::vector<std::array<int, 3>> &faces, const std::string &name, bool mirrored)
    {
        for (std::array<int, 3> &face : faces)
            if (face[0] < 0 || face[1] < 0 || face[2] < 0)
                face = {-1, -1, -1};
        std::vector<std::array<int, 3>> whole = faces;
        for (std::array<int, 3> &face : whole)
            face = face[0] < 0 ? std::array{0, 0, 0} : face;
        if (points.empty())
            whole.clear();
        const smoothing_t smoothing(from, points, whole);
        std::map<picture_t, import_mesh> meshes;
        for (std::size_t f = 0; f < whole.size(); ++f) {
            if (faces[f][0] < 0)
                continue;
            const look_t look = look_of(from, f);
            import_mesh &mesh = meshes[picture_of(look.from)];
            for (std::size_t k = 0; k < 3; ++k) {
                const std::size_t corner = mirrored ? 2 - k : k;
                const int place = faces[f][corner];
                const float *p = points.data() + 3 * place;
                add_corner(from, from.faces[f][corner], mesh.add_point_of(place, p[0], p[1], p[2]),
                           &mesh);
            }
            const bool twosided = look.from == nullptr || look.from->twosided;
            mesh.end_surface(look.palette_index,
                             (twosided ? int{SURFACE_TWOSIDED} : 0) |
                                 (smoothing.is_smooth(f, faces[f]) ? int{SURFACE_SMOOTH} : 0));
        }
        return joined(meshes, name);
    }

    static void add_corner(const mesh_3ds &from, std::size_t index, int point, import_mesh *mesh)
    {
        const bool has_uv = 2 * index + 1 < from.uv.size() && std::isfinite(from.uv[2 * index]) &&
                            std::isfinite(from.uv[2 * index + 1]);
        mesh->add_corner(point, has_uv ? from.uv[2 * index] : 0,
                         has_uv ? from.uv[2 * index + 1] : 0);
    }

    object_t *joined(std::map<picture_t, import_mesh> &meshes, const std::string &name)
    {
        object_t *group = nullptr;
        if (meshes.size() != 1) {
            group = new_group();
            object_set_name(group, name.c_str());
        }
        for (auto &[picture, mesh] : meshes) {
            object_t *object = mesh.make_object(name);
            if (const std::string &file = std::get<0>(picture); !file.empty()) {
                search_and_set_texture(object, filename_.c_str(),
                                       texture_to_search(filename_, file).c_str());
                object_set_texture_repeat(object, std::get<1>(picture), std::get<2>(picture));
                object_set_texture_offset(object, std::get<3>(picture), std::get<4>(picture));
            }
            if (group == nullptr)
                return object;
            object_add_child(group, object);
        }
        return group;
    }

    const std::string &filename_;
    const file_3ds &file_;
    std::unordered_map<std::string, std::pair<const material_3ds *, int>> looks_;
    std::unordered_map<std::string, std::size_t> meshes_, lights_; // by name
    std::vector<bool> mesh_used_, light_used_;
    int plain_ = -1; // palette entry of faces without a material
    long points_ = 0;
    bool cancelled_ = false;
};

void tell_what_is_not_read(const file_3ds &file)
{
    const auto moving = static_cast<int>(std::count_if(
        file.nodes.begin(), file.nodes.end(), [](const node_3ds &node) { return node.keys > 1; }));
    if (file.cameras > 0)
        vesk_report_warning(0, "%d cameras were left out", file.cameras);
    if (file.other_pictures > 0)
        vesk_report_warning(0, "%d pictures for bumps, shine and the like were left out",
                            file.other_pictures);
    if (moving > 0)
        vesk_report_warning(0, "%d motions have more than one key; the first is taken", moving);
    if (file.damaged)
        vesk_report_warning(0, "a part of the file ends too early");
}

} // namespace

object_t *vesk_import_3ds(const char *filename)
{
    const std::string name = filename; // the messages let scripts run
    std::string bytes;
    if (!read_whole_file(name.c_str(), &bytes))
        return import_refused(name, strerror(errno));
    file_3ds file;
    if (!scan_3ds(bytes, &file))
        return import_refused(name, "it is no 3D Studio file");
    if (file.meshes.empty() && file.lights.empty())
        return import_refused(name, "there is no geometry in it");
    scene_3ds scene(name, file);
    object_t *world = scene.run();
    if (scene.cancelled())
        return import_cancelled();
    if (world == nullptr)
        return import_refused(name, "its objects repeat each other beyond what can be held");
    tell_what_is_not_read(file);
    if (world->num_children != 1)
        return world;
    auto *only = item_of<object_t>(world->children);
    object_remove_child_nocleanup(world, only);
    object_free(world);
    return only;
}

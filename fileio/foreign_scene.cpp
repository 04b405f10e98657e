#include "fileio/foreign_scene.h"

#include "base/file_report.h"
#include "fileio/embedded_images.h"
#include "fileio/helper_process.h"
#include "fileio/import_mesh.h"
#include "fileio/scene_stream.h"
#include "fileio/texture_beside.h"
#include "model/lights.h"
#include "model/material_values.h"
#include "model/mesh_arrays.h"
#include "model/normals.h"
#include "model/object_tree.h"
#include "model/palette.h"
#include "model/textures/textures.h"
#include "model/vertex_colours.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <sys/stat.h>

static_assert(int{PLAIN_CLOSED_LINE} == int{SURFACE_CLOSED_LINE} &&
              int{PLAIN_LINE} == int{SURFACE_LINE} && int{PLAIN_SMOOTH} == int{SURFACE_SMOOTH} &&
              int{PLAIN_TWOSIDED} == int{SURFACE_TWOSIDED});

namespace {

// Writes them and names their files in the materials; "*2" stands for the third image.
void write_images(plain_scene &scene, const std::string &filename)
{
    if (scene.images.empty())
        return;
    const std::string folder =
        vesk_embedded_images_folder(filename.c_str(), static_cast<int>(scene.images.size()));
    std::vector<std::string> paths;
    for (const plain_image &image : scene.images)
        paths.emplace_back(vesk_embedded_image_write(folder.c_str(), image.name.c_str(),
                                                     image.bytes.data(), image.bytes.size()));
    for (plain_material &m : scene.materials) {
        if (m.picture.empty() || m.picture[0] != '*')
            continue;
        const auto index = static_cast<size_t>(std::max(std::atoi(m.picture.c_str() + 1), 0));
        m.picture = index < paths.size() ? paths[index] : "";
    }
}

// ---- objects ----

int palette_index(const plain_material &from)
{
    material_values m;
    std::copy_n(from.diffuse, 3, m.diffuse);
    std::copy_n(from.ambient, 3, m.ambient);
    std::copy_n(from.specular, 3, m.specular);
    std::copy_n(from.emissive, 3, m.emissive);
    m.shininess = from.shininess;
    m.transparency = from.transparency;
    if (!from.name.empty())
        vesk_material_set_name(&m, from.name.c_str());
    return vesk_palette_get_new_material_index(&m);
}

void put_texture(object_t *object, const plain_material &m, const std::string &filename)
{
    if (m.picture.empty())
        return;
    const std::string name = texture_to_search(filename, m.picture);
    search_and_set_texture(object, filename.c_str(), name.c_str());
    object_set_texture_repeat(object, m.repeat[0], m.repeat[1]);
    object_set_texture_offset(object, m.offset[0], m.offset[1]);
}

object_t *make_object(const plain_scene &scene, const plain_node &node,
                      const std::vector<int> &palette, const std::string &filename)
{
    object_t *object =
        node.kind == PLAIN_LIGHT
            ? new_light()
            : new_object(node.kind == PLAIN_POLY ? int{OBJECT_POLY} : int{OBJECT_GROUP});
    object_set_name(object, node.name.c_str());
    vesk_object_set_centre(object, node.centre[0], node.centre[1], node.centre[2]);
    std::copy_n(node.rotation, 9, object->rotation);
    const int n = static_cast<int>(node.flags.size());
    std::vector<vesk_surface_attributes_t> attributes;
    for (size_t i = 0; i < node.flags.size(); ++i)
        attributes.push_back(
            {palette[static_cast<size_t>(node.materials[i])], node.flags[i] & 0x33});
    static_assert(sizeof(point3_t) == 3 * sizeof(float));
    object_set_mesh(
        object, {static_cast<int>(node.points.size() / 3), n, static_cast<int>(node.corners.size()),
                 reinterpret_cast<const point3_t *>(node.points.data()), nullptr, nullptr,
                 attributes.data(), node.offsets.data(), node.corners.data(), node.uv.data()});
    if (!node.colours.empty())
        vesk_object_set_vertex_colours(object, node.colours.data());
    if (node.picture >= 0)
        put_texture(object, scene.materials[static_cast<size_t>(node.picture)], filename);
    return object;
}

} // namespace

object_t *object_of_scene(const plain_scene &scene, const std::string &filename)
{
    // Those of the file, and of the reader's own those that a surface has.
    std::vector<bool> wanted;
    for (const plain_material &m : scene.materials)
        wanted.push_back(!m.name.empty());
    for (const plain_node &node : scene.nodes)
        for (const int index : node.materials)
            wanted[static_cast<size_t>(index)] = true;
    std::vector<int> palette;
    for (size_t i = 0; i < wanted.size(); ++i)
        palette.push_back(wanted[i] ? palette_index(scene.materials[i]) : 0);
    std::vector<object_t *> objects;
    std::vector<object_t *> tops;
    for (const plain_node &node : scene.nodes) {
        objects.push_back(make_object(scene, node, palette, filename));
        if (node.parent >= 0)
            object_add_child(objects[static_cast<size_t>(node.parent)], objects.back());
        else
            tops.push_back(objects.back());
    }
    if (tops.size() == 1) {
        object_calc_normals_force(tops[0]);
        return tops[0];
    }
    object_t *world = new_object(OBJECT_WORLD);
    for (object_t *top : tops)
        object_add_child(world, top);
    object_calc_normals_force(world);
    return world;
}

object_t *vesk_assimp_import(const char *filename, const char *suffix)
{
    const std::string name = filename; // the messages let scripts run
    struct stat file = {};
    if (stat(name.c_str(), &file) != 0)
        return import_refused(name, strerror(errno));
    if (!S_ISREG(file.st_mode))
        return import_refused(name, "it is no file");
    const helper_result result =
        run_helper({"read", suffix, name}, helper_limits_for(static_cast<size_t>(file.st_size)));
    if (result.state == helper_result::CANCELLED)
        return import_cancelled();
    if (result.state == helper_result::FAILED)
        return import_refused(name, result.reason.c_str());
    plain_scene scene;
    if (!decode_scene(result.output, &scene) || scene.nodes.empty())
        return import_refused(name, "its reader gave something that is no scene");
    for (const std::string &warning : scene.warnings)
        vesk_report_warning(0, "%s", warning.c_str());
    write_images(scene, name);
    return object_of_scene(scene, name);
}

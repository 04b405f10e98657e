#include "fileio/import_bsp.h"

#include "base/atomic_file.h"
#include "base/filename.h"
#include "fileio/import_mesh.h"
#include "model/object_tree.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"

#include <array>
#include <cerrno>
#include <cstdint>
#include <cstring>
#include <map>

namespace {

constexpr int version = 46;
enum lump { LUMP_TEXTURES = 1, LUMP_VERTICES = 10, LUMP_TRIANGLES = 11, LUMP_FACES = 13 };
constexpr size_t texture_size = 72;
constexpr size_t vertex_size = 44;
constexpr size_t face_size = 104;
enum face_kind { FACE_POLYGON = 1, FACE_PATCH = 2, FACE_MESH = 3 };
constexpr int patch_steps = 4;
constexpr int most_patch_side = 129;
// Faces may share vertices: a small file could promise more of them than memory holds.
constexpr long long most_references = 1 << 24;

// Of levels, which have textures instead of colours.
int grey() { return import_colour(0.8f, 0.8f, 0.8f); }

struct bsp_vertex {
    std::array<float, 3> place;
    float u, v;
};

// The file; numbers outside it are 0, as are those of lumps that are not there.
class bsp_file {
public:
    explicit bsp_file(std::string_view bytes) : bytes_(bytes) {}

    [[nodiscard]] bool is_level() const
    {
        return bytes_.size() >= 8 + 17 * 8 && bytes_.substr(0, 4) == "IBSP" &&
               integer(4) == version;
    }

    // How many records of a size a lump has.
    [[nodiscard]] int count(lump which, size_t size) const
    {
        const size_t start = lump_start(which);
        const auto length = static_cast<std::uint32_t>(integer(8 + 8 * which + 4));
        return start > bytes_.size()
                   ? 0
                   : static_cast<int>(std::min<size_t>(length, bytes_.size() - start) / size);
    }

    [[nodiscard]] std::int32_t integer(lump which, int record, size_t size, size_t field) const
    {
        return integer(lump_start(which) + static_cast<size_t>(record) * size + field);
    }

    [[nodiscard]] bsp_vertex vertex(int record) const
    {
        const size_t at = lump_start(LUMP_VERTICES) + static_cast<size_t>(record) * vertex_size;
        return {{real(at), real(at + 4), real(at + 8)}, real(at + 12), real(at + 16)};
    }

    [[nodiscard]] std::string texture(int record) const
    {
        const size_t at = lump_start(LUMP_TEXTURES) + static_cast<size_t>(record) * texture_size;
        const std::string_view name = bytes_.substr(std::min(at, bytes_.size()), 64);
        return std::string(name.substr(0, name.find('\0')));
    }

private:
    [[nodiscard]] size_t lump_start(lump which) const
    {
        return static_cast<std::uint32_t>(integer(8 + 8 * static_cast<size_t>(which)));
    }
    [[nodiscard]] std::int32_t integer(size_t at) const
    {
        std::int32_t value = 0;
        if (at <= bytes_.size() && bytes_.size() - at >= sizeof value)
            std::memcpy(&value, bytes_.data() + at, sizeof value);
        return value;
    }
    [[nodiscard]] float real(size_t at) const
    {
        const std::int32_t bits = integer(at);
        float value = 0;
        std::memcpy(&value, &bits, sizeof value);
        return value;
    }

    std::string_view bytes_;
};

int add_point(import_mesh &mesh, const bsp_vertex &v)
{
    return mesh.add_point(v.place[0], v.place[2], -v.place[1]);
}

// Rows of the file's textures run from the top.
void add_corner(import_mesh &mesh, int point, const bsp_vertex &v)
{
    mesh.add_corner(point, v.u, 1 - v.v);
}

struct bsp_face {
    int kind;
    int first_vertex, num_vertices;
    int first_index, num_indices;
    int width, height; // of a patch
};

bool lies_within(int first, int count, int all)
{
    return first >= 0 && count >= 0 && first <= all && count <= all - first;
}

void add_triangles(const bsp_file &file, const bsp_face &face, import_mesh &mesh)
{
    std::vector<bsp_vertex> vertices;
    std::vector<int> points;
    for (int i = 0; i < face.num_vertices; ++i) {
        vertices.push_back(file.vertex(face.first_vertex + i));
        points.push_back(add_point(mesh, vertices.back()));
    }
    for (int i = 0; i + 2 < face.num_indices; i += 3) {
        for (int k = 2; k >= 0; --k) { // clockwise in the file
            const int index = file.integer(LUMP_TRIANGLES, face.first_index + i + k, 4, 0);
            if (index >= 0 && index < face.num_vertices)
                add_corner(mesh, points[static_cast<size_t>(index)],
                           vertices[static_cast<size_t>(index)]);
        }
        mesh.end_surface(grey(), SURFACE_TWOSIDED | (face.kind == FACE_MESH ? SURFACE_SMOOTH : 0));
    }
}

bsp_vertex blend(const bsp_vertex &a, const bsp_vertex &b, const bsp_vertex &c, float t)
{
    const float wa = (1 - t) * (1 - t);
    const float wb = 2 * t * (1 - t);
    const float wc = t * t;
    bsp_vertex out = {};
    for (size_t i = 0; i < 3; ++i)
        out.place[i] = wa * a.place[i] + wb * b.place[i] + wc * c.place[i];
    out.u = wa * a.u + wb * b.u + wc * c.u;
    out.v = wa * a.v + wb * b.v + wc * c.v;
    return out;
}

// The vertex of a patch at a step between its control points.
bsp_vertex patch_vertex(const std::vector<bsp_vertex> &controls, int width, int x, int y,
                        int height)
{
    const int left = std::min(x / patch_steps * 2, width - 3);
    const int top = std::min(y / patch_steps * 2, height - 3);
    const float s = static_cast<float>(x - left / 2 * patch_steps) / patch_steps;
    const float t = static_cast<float>(y - top / 2 * patch_steps) / patch_steps;
    bsp_vertex rows[3];
    for (int i = 0; i < 3; ++i) {
        const bsp_vertex *row = controls.data() + (top + i) * width + left;
        rows[i] = blend(row[0], row[1], row[2], s);
    }
    return blend(rows[0], rows[1], rows[2], t);
}

void add_patch(const bsp_file &file, const bsp_face &face, import_mesh &mesh)
{
    const int w = face.width;
    const int h = face.height;
    if (w < 3 || h < 3 || w % 2 == 0 || h % 2 == 0 || w > most_patch_side || h > most_patch_side ||
        w * h > face.num_vertices)
        return;
    std::vector<bsp_vertex> controls;
    for (int i = 0; i < w * h; ++i)
        controls.push_back(file.vertex(face.first_vertex + i));
    const int columns = (w - 1) / 2 * patch_steps + 1;
    const int rows = (h - 1) / 2 * patch_steps + 1;
    std::vector<bsp_vertex> vertices;
    const int first = mesh.num_points();
    for (int y = 0; y < rows; ++y)
        for (int x = 0; x < columns; ++x) {
            vertices.push_back(patch_vertex(controls, w, x, y, h));
            add_point(mesh, vertices.back());
        }
    for (int y = 0; y + 1 < rows; ++y)
        for (int x = 0; x + 1 < columns; ++x) {
            const int corner = y * columns + x;
            for (const int place : {corner, corner + columns, corner + columns + 1, corner + 1})
                add_corner(mesh, first + place, vertices[static_cast<size_t>(place)]);
            mesh.end_surface(grey(), SURFACE_TWOSIDED | SURFACE_SMOOTH);
        }
}

std::map<int, import_mesh> read_meshes(const bsp_file &file)
{
    const int num_vertices = file.count(LUMP_VERTICES, vertex_size);
    const int num_indices = file.count(LUMP_TRIANGLES, 4);
    std::map<int, import_mesh> meshes; // by texture
    long long references = 0;
    for (int i = 0; i < file.count(LUMP_FACES, face_size); ++i) {
        const auto field = [&](size_t at) { return file.integer(LUMP_FACES, i, face_size, at); };
        const bsp_face face = {field(8),  field(12), field(16), field(20),
                               field(24), field(96), field(100)};
        if (!lies_within(face.first_vertex, face.num_vertices, num_vertices) ||
            !lies_within(face.first_index, face.num_indices, num_indices))
            continue;
        references += 2LL * face.num_vertices + face.num_indices;
        if (references > most_references)
            break;
        import_mesh &mesh = meshes[field(0)];
        if (face.kind == FACE_PATCH)
            add_patch(file, face, mesh);
        else if (face.kind == FACE_POLYGON || face.kind == FACE_MESH)
            add_triangles(file, face, mesh);
    }
    return meshes;
}

// A shader names its picture without a suffix, from the folder above the level's.
void find_picture(object_t *object, const std::string &level, const std::string &shader)
{
    for (const char *suffix : {".tga", ".jpg", ".png", ".bmp"}) {
        for (const char *folder : {"", "../"}) {
            const char *found = search_texture(level.c_str(), (folder + shader + suffix).c_str());
            if (found == nullptr || string_get_suffix(found) == nullptr ||
                std::strcmp(string_get_suffix(found), suffix) != 0)
                continue;
            const std::string file = found;
            object_set_init_texture(object, file.c_str(), (shader + suffix).c_str());
            return;
        }
    }
}

} // namespace

object_t *vesk_import_quake3bsp(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    if (!read_whole_file(name.c_str(), &bytes))
        return import_refused(name, strerror(errno));
    const bsp_file file(bytes);
    if (!file.is_level())
        return import_refused(name, "it is no IBSP file of version 46");
    object_t *top = new_group();
    object_set_name(top, import_base_name(name.c_str()).c_str());
    const int num_textures = file.count(LUMP_TEXTURES, texture_size);
    for (const auto &[texture, mesh] : read_meshes(file)) {
        if (mesh.empty())
            continue;
        const bool known = texture >= 0 && texture < num_textures;
        const std::string shader = known ? file.texture(texture) : "";
        object_t *object = mesh.make_object(shader);
        if (!shader.empty())
            find_picture(object, name, shader);
        object_add_child(top, object);
    }
    if (top->num_children > 0)
        return top;
    object_free(top);
    return import_refused(name, "there is no geometry in it");
}

// glTF 2.0, as JSON with a .bin beside it, or as one binary file. A mesh has a primitive for each
// material; flat surfaces have corners of their own, smooth ones share theirs. A polygon is a fan of
// triangles with one first vertex, which is not that of the polygon before it: so says the extension
// FB_ngon_encoding, by which readers that know it have the polygons again.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <algorithm>
#include <cctype>
#include <limits>
#include <map>
#include <tuple>

namespace {

enum { VERTICES = 34962, INDICES = 34963, REAL = 5126, UNSIGNED = 5125 };
enum { LINES = 1, TRIANGLES = 4 };

point3_t unit(const point3_t &n)
{
    const float length = std::sqrt(n.x * n.x + n.y * n.y + n.z * n.z);
    if (!(length > 0) || !std::isfinite(length))
        return {0, 0, 1}; // a normal must have a direction
    return {n.x / length, n.y / length, n.z / length};
}

point3_t finite(point3_t p)
{
    for (float *value : {&p.x, &p.y, &p.z})
        *value = std::isfinite(*value) ? *value : 0;
    return p;
}

// A list of JSON values, each written as it comes.
class json_list {
public:
    int count = 0;
    std::string text;

    text_out &next()
    {
        flush();
        ++count;
        return item_;
    }
    void field(text_out &to, const char *name)
    {
        flush();
        if (count > 0)
            to.add(",\n\"", name, "\": [\n", text, "\n]");
    }

private:
    void flush()
    {
        if (item_.text.empty())
            return;
        text += (text.empty() ? "" : ",\n") + item_.text;
        item_.text.clear();
    }
    text_out item_;
};

// The vertices of one mesh and the indices of its primitives.
class mesh_data {
public:
    std::vector<point3_t> points, normals;
    std::vector<float> uv;
    std::map<int, std::vector<std::uint32_t>> triangles; // by material
    std::vector<point3_t> line_points;
    std::map<int, std::vector<std::uint32_t>> lines;
    int cut = 0; // polygons that are no fan

    mesh_data(job &work, const model_node &node) : node_(node)
    {
        for (const model_surface &surface : node.surfaces) {
            if (!work.step())
                return;
            if (is_line(surface))
                add_line(surface);
            else
                add_polygon(surface);
        }
    }

private:
    [[nodiscard]] std::size_t point_at(int corner) const
    {
        return static_cast<std::size_t>(node_.corners[static_cast<std::size_t>(corner)]);
    }

    std::uint32_t vertex(const model_surface &surface, int corner)
    {
        const std::size_t point = point_at(corner);
        const std::size_t at = 2 * static_cast<std::size_t>(corner);
        const float u = node_.textured ? node_.uv[at] : 0;
        const float v = node_.textured ? node_.uv[at + 1] : 0;
        const auto fresh = static_cast<std::uint32_t>(points.size());
        const std::uint32_t place =
            surface.smooth ? shared_.emplace(std::tuple(point, u, v), fresh).first->second : fresh;
        if (place == fresh) {
            points.push_back(finite(node_.points[point]));
            normals.push_back(unit(surface.smooth ? node_.normals[point] : surface.normal));
            uv.push_back(std::isfinite(u) ? u : 0);
            uv.push_back(std::isfinite(v) ? 1 - v : 0); // rows from the top
        }
        return place;
    }

    void add_polygon(const model_surface &surface)
    {
        places_.clear();
        for (int k = 0; k < surface.count; ++k)
            places_.push_back(vertex(surface, surface.first + k));
        std::vector<std::uint32_t> &to = triangles[surface.material];
        const std::size_t count = places_.size();
        if (const std::size_t start = fan_start(surface, to); start < count) {
            for (std::size_t i = 1; i + 1 < count; ++i)
                to.insert(to.end(), {places_[start], places_[(start + i) % count],
                                     places_[(start + i + 1) % count]});
            return;
        }
        corners_.clear();
        cut_surface(node_, surface, corners_);
        cut += count > 3 ? 1 : 0;
        for (std::size_t i = 0; i + 2 < corners_.size(); i += 3) {
            std::uint32_t triangle[3];
            for (std::size_t k = 0; k < 3; ++k)
                triangle[k] = places_[static_cast<std::size_t>(corners_[i + k] - surface.first)];
            if (is_last_first(to, triangle[0])) // a triangle of its own
                std::rotate(triangle, triangle + 1, triangle + 3);
            to.insert(to.end(), triangle, triangle + 3);
        }
    }

    static bool is_last_first(const std::vector<std::uint32_t> &to, std::uint32_t place)
    {
        return to.size() > 2 && to[to.size() - 3] == place;
    }

    // The corner that sees all others, counted within the surface; their number when there is none.
    [[nodiscard]] std::size_t fan_start(const model_surface &surface,
                                        const std::vector<std::uint32_t> &to) const
    {
        const std::size_t count = places_.size();
        const std::size_t tries = count <= most_tried ? count : 8;
        double normal[3] = {}; // Newell's
        for (std::size_t k = 0; k < count; ++k) {
            double part[3];
            cross(surface, 0, k, (k + 1) % count, part);
            for (int i = 0; i < 3; ++i)
                normal[i] += part[i];
        }
        for (std::size_t start = 0; start < tries; ++start) {
            bool sees = !is_last_first(to, places_[start]);
            for (std::size_t i = 1; i + 1 < count && sees; ++i) {
                double part[3];
                cross(surface, start, (start + i) % count, (start + i + 1) % count, part);
                sees = part[0] * normal[0] + part[1] * normal[1] + part[2] * normal[2] > 0;
            }
            if (sees)
                return start;
        }
        return count;
    }

    // The product of the ways from corner `from` to two others.
    void cross(const model_surface &surface, std::size_t from, std::size_t to, std::size_t next,
               double *out) const
    {
        const auto at = [&](std::size_t k) -> const point3_t & {
            return node_.points[point_at(surface.first + static_cast<int>(k))];
        };
        const auto way = [&](std::size_t k, double *d) {
            const point3_t &p = at(k);
            const point3_t &q = at(from);
            d[0] = static_cast<double>(p.x) - static_cast<double>(q.x);
            d[1] = static_cast<double>(p.y) - static_cast<double>(q.y);
            d[2] = static_cast<double>(p.z) - static_cast<double>(q.z);
        };
        double a[3];
        double b[3];
        way(to, a);
        way(next, b);
        for (int i = 0; i < 3; ++i)
            out[i] = a[(i + 1) % 3] * b[(i + 2) % 3] - a[(i + 2) % 3] * b[(i + 1) % 3];
    }

    void add_line(const model_surface &surface)
    {
        const auto first = static_cast<std::uint32_t>(line_points.size());
        const auto count = static_cast<std::uint32_t>(surface.count);
        for (int i = 0; i < surface.count; ++i)
            line_points.push_back(finite(node_.points[point_at(surface.first + i)]));
        std::vector<std::uint32_t> &to = lines[surface.material];
        for (std::uint32_t i = 0; i + 1 < count; ++i)
            to.insert(to.end(), {first + i, first + i + 1});
        if (surface.kind == SURFACE_CLOSED_LINE)
            to.insert(to.end(), {first + count - 1, first});
    }

    const model_node &node_;
    std::map<std::tuple<std::size_t, float, float>, std::uint32_t> shared_;
    std::vector<std::uint32_t> places_; // of the surface at hand: its corners' vertices
    std::vector<int> corners_;

    static constexpr std::size_t most_tried = 64; // corners that may see all others
};

class gltf_writer {
public:
    gltf_writer(job &work, const model &scene) : work_(work), scene_(scene) {}

    // The JSON text; `bin` gets the numbers. `uri` names the file of them, "" for the binary form.
    std::string run(const std::string &uri, std::string *bin)
    {
        work_.phase(0.9, scene_.elements);
        for (const model_material &m : scene_.materials)
            add_material(m);
        for (const model_node &node : scene_.nodes)
            add_node(node);
        text_out out;
        out.add("{\n\"asset\": {\"version\": \"2.0\", \"generator\": \"VESK\"},\n"
                "\"scene\": 0,\n\"scenes\": [{",
                tops_.empty() ? "" : "\"nodes\": [" + tops_ + "]", "}]");
        nodes_.field(out, "nodes");
        meshes_.field(out, "meshes");
        materials_.field(out, "materials");
        textures_.field(out, "textures");
        images_.field(out, "images");
        accessors_.field(out, "accessors");
        views_.field(out, "bufferViews");
        if (!bin_.empty())
            out.add(",\n\"buffers\": [{\"byteLength\": ", bin_.size(),
                    uri.empty() ? "" : ", \"uri\": " + json_text(url_text(uri)), "}]");
        if (lights_.count > 0) {
            text_out list;
            lights_.field(list, "lights");
            out.add(",\n\"extensions\": {\"KHR_lights_punctual\": {", list.text.substr(2), "}}");
        }
        std::string used;
        const struct {
            bool used;
            const char *name;
        } extensions[] = {{materials_.count > 0, "KHR_materials_pbrSpecularGlossiness"},
                          {lights_.count > 0, "KHR_lights_punctual"},
                          {has_polygons_, "FB_ngon_encoding"}};
        for (const auto &extension : extensions)
            if (extension.used)
                used += std::string(used.empty() ? "\"" : ", \"") + extension.name + '"';
        vesk_report_note(cut_, "polygons cut into triangles");
        if (!used.empty())
            out.add(",\n\"extensionsUsed\": [", used, "]");
        out.add("\n}\n");
        *bin = std::move(bin_);
        return std::move(out.text);
    }

private:
    void add_material(const model_material &m)
    {
        const float opacity = 1 - m.look.transparency;
        const float gloss = std::min(std::max(m.look.shininess / 128, 0.0f), 1.0f);
        const std::string colour = colour_text(m.look.diffuse) + ", " + number(opacity) + "]";
        std::string texture;
        if (!m.picture.empty())
            texture = "{\"index\": " + std::to_string(texture_of(m.picture)) + "}";
        text_out &out = materials_.next();
        out.add("{\"name\": ", json_text(m.name),
                ", \"pbrMetallicRoughness\": {\"baseColorFactor\": ", colour,
                texture.empty() ? "" : ", \"baseColorTexture\": " + texture,
                ", \"metallicFactor\": 0, \"roughnessFactor\": ", 1 - gloss, "}, ");
        out.add("\"emissiveFactor\": ", colour_text(m.look.emissive), "], ");
        if (m.twosided)
            out.add("\"doubleSided\": true, ");
        if (m.look.transparency > 0)
            out.add("\"alphaMode\": \"BLEND\", ");
        out.add("\"extensions\": {\"KHR_materials_pbrSpecularGlossiness\": {\"diffuseFactor\": ",
                colour, texture.empty() ? "" : ", \"diffuseTexture\": " + texture,
                ", \"specularFactor\": ", colour_text(m.look.specular),
                "], \"glossinessFactor\": ", gloss, "}}}");
    }

    static std::string number(float value)
    {
        text_out out;
        out.add(value);
        return out.text;
    }

    // "[r, g, b", each from 0 to 1.
    static std::string colour_text(const float *rgb)
    {
        text_out out;
        for (int i = 0; i < 3; ++i)
            out.add(i == 0 ? "[" : ", ", std::min(std::max(rgb[i], 0.0f), 1.0f));
        return out.text;
    }

    int texture_of(const std::string &picture)
    {
        const auto found = known_textures_.find(picture);
        if (found != known_textures_.end())
            return found->second;
        images_.next().add("{\"uri\": ", json_text(url_text(picture)), "}");
        textures_.next().add("{\"source\": ", images_.count - 1, "}");
        return known_textures_[picture] = textures_.count - 1;
    }

    void add_node(const model_node &node)
    {
        const int place = nodes_.count;
        if (node.parent < 0)
            tops_ += (tops_.empty() ? "" : ", ") + std::to_string(place);
        const int mesh = node.surfaces.empty() ? -1 : add_mesh(node);
        text_out &out = nodes_.next();
        out.add("{\"name\": ", json_text(node.name));
        if (mesh >= 0)
            out.add(", \"mesh\": ", mesh);
        if (node.light) {
            lights_.next().add("{\"type\": \"point\", \"name\": ", json_text(node.name), "}");
            out.add(", \"extensions\": {\"KHR_lights_punctual\": {\"light\": ", lights_.count - 1,
                    "}}");
        }
        if (node.moved) {
            const float *r = node.rotation;
            out.add(", \"matrix\": [");
            for (int i = 0; i < 9; i += 3)
                out.add(r[i], ", ", r[i + 1], ", ", r[i + 2], ", 0, ");
            out.add(node.place.x, ", ", node.place.y, ", ", node.place.z, ", 1]");
        }
        for (std::size_t i = 0; i < node.children.size(); ++i)
            out.add(i == 0 ? ", \"children\": [" : ", ", node.children[i]);
        out.add(node.children.empty() ? "}" : "]}");
    }

    int add_mesh(const model_node &node)
    {
        const mesh_data data(work_, node);
        cut_ += data.cut;
        text_out primitives;
        const auto add = [&](int mode, int material, const std::vector<std::uint32_t> &indices,
                             const std::string &attributes) {
            const int place = add_indices(indices);
            has_polygons_ = has_polygons_ || mode == TRIANGLES;
            primitives.add(primitives.text.empty() ? "" : ", ", "{",
                           mode == TRIANGLES ? "\"extensions\": {\"FB_ngon_encoding\": {}}, " : "",
                           "\"mode\": ", mode, ", \"material\": ", material,
                           ", \"indices\": ", place, ", \"attributes\": {", attributes, "}}");
        };
        if (!data.points.empty()) {
            text_out attributes;
            attributes.add("\"POSITION\": ", add_points(data.points, true),
                           ", \"NORMAL\": ", add_points(data.normals, false));
            if (node.textured)
                attributes.add(", \"TEXCOORD_0\": ", add_uv(data.uv));
            for (const auto &[material, indices] : data.triangles)
                add(TRIANGLES, material, indices, attributes.text);
        }
        if (!data.line_points.empty()) {
            text_out attributes;
            attributes.add("\"POSITION\": ", add_points(data.line_points, true));
            for (const auto &[material, indices] : data.lines)
                add(LINES, material, indices, attributes.text);
        }
        meshes_.next().add("{\"name\": ", json_text(node.name), ", \"primitives\": [",
                           primitives.text, "]}");
        return meshes_.count - 1;
    }

    // A view of the last `size` bytes, and one accessor for all of it.
    int add_accessor(std::size_t size, std::size_t count, int target, int component,
                     const char *type, const std::string &bounds)
    {
        views_.next().add("{\"buffer\": 0, \"byteOffset\": ", bin_.size() - size,
                          ", \"byteLength\": ", size, ", \"target\": ", target, "}");
        accessors_.next().add("{\"bufferView\": ", views_.count - 1,
                              ", \"componentType\": ", component, ", \"count\": ", count,
                              ", \"type\": \"", type, "\"", bounds, "}");
        return accessors_.count - 1;
    }

    int add_points(const std::vector<point3_t> &points, bool with_bounds)
    {
        const float far = std::numeric_limits<float>::max();
        point3_t low = {far, far, far};
        point3_t high = {-far, -far, -far};
        for (const point3_t &p : points) {
            add_bytes(bin_, p.x);
            add_bytes(bin_, p.y);
            add_bytes(bin_, p.z);
            low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
            high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
        }
        text_out bounds;
        if (with_bounds)
            bounds.add(", \"min\": [", low.x, ", ", low.y, ", ", low.z, "], \"max\": [", high.x,
                       ", ", high.y, ", ", high.z, "]");
        return add_accessor(12 * points.size(), points.size(), VERTICES, REAL, "VEC3", bounds.text);
    }

    int add_uv(const std::vector<float> &uv)
    {
        for (const float value : uv)
            add_bytes(bin_, value);
        return add_accessor(4 * uv.size(), uv.size() / 2, VERTICES, REAL, "VEC2", "");
    }

    int add_indices(const std::vector<std::uint32_t> &indices)
    {
        for (const std::uint32_t index : indices)
            add_bytes(bin_, index);
        return add_accessor(4 * indices.size(), indices.size(), INDICES, UNSIGNED, "SCALAR", "");
    }

    job &work_;
    const model &scene_;
    std::string bin_, tops_;
    json_list nodes_, meshes_, materials_, textures_, images_, accessors_, views_, lights_;
    std::map<std::string, int> known_textures_;
    bool has_polygons_ = false;
    int cut_ = 0;
};

model_wishes wishes()
{
    model_wishes w;
    w.sides = true;
    w.ambient = false;
    return w;
}

void add_chunk(std::string &out, const char *kind, std::string bytes, char filler)
{
    bytes.resize((bytes.size() + 3) / 4 * 4, filler);
    add_bytes(out, static_cast<std::uint32_t>(bytes.size()));
    out.append(kind, 4);
    out += bytes;
}

} // namespace

int gltf_export(const char *filename)
{
    const std::string name = filename;
    job work;
    export_files files(work);
    const model scene = take_model(work, filename, wishes());
    std::string bin_name = base_name(name) + ".bin"; // some readers know no escapes
    for (char &c : bin_name)
        if (std::isalnum(static_cast<unsigned char>(c)) == 0 && c != '-' && c != '.')
            c = '_';
    std::string bin;
    const std::string json = gltf_writer(work, scene).run(bin_name, &bin);
    const std::string folder = vesk_filename_get_path(name.c_str());
    if (!bin.empty())
        files.add(vesk_filename_concat_path_file(folder.c_str(), bin_name.c_str()), bin);
    files.begin(name);
    files.write(json);
    return files.finish(name, "glTF");
}

int glb_export(const char *filename)
{
    const std::string name = filename;
    job work;
    export_files files(work);
    const model scene = take_model(work, filename, wishes());
    std::string bin;
    const std::string json = gltf_writer(work, scene).run("", &bin);
    std::string chunks;
    add_chunk(chunks, "JSON", json, ' ');
    if (!bin.empty())
        add_chunk(chunks, "BIN\0", std::move(bin), '\0');
    std::string bytes = "glTF";
    add_bytes(bytes, std::uint32_t{2});
    add_bytes(bytes, static_cast<std::uint32_t>(chunks.size() + 12));
    files.add(name, bytes + chunks);
    return files.finish(name, "glTF");
}

// COLLADA 1.4.1: a geometry for each object with a polylist for each material, the objects as nodes
// with their frames as matrices.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace {

class collada_writer {
public:
    collada_writer(job &work, const model &scene) : work_(work), scene_(scene) {}

    std::string run()
    {
        work_.phase(0.9, 2 * scene_.elements);
        out_.add("<?xml version=\"1.0\" encoding=\"utf-8\"?>\n"
                 "<COLLADA xmlns=\"http://www.collada.org/2005/11/COLLADASchema\" "
                 "version=\"1.4.1\">\n"
                 "<asset><contributor><authoring_tool>VESK</authoring_tool></contributor>"
                 "<created>2000-01-01T00:00:00</created><modified>2000-01-01T00:00:00</modified>"
                 "<unit name=\"meter\" meter=\"1\"/><up_axis>Y_UP</up_axis></asset>\n");
        images();
        library(
            "effects", [&](int i) { effect(i); }, scene_.materials.size());
        library(
            "materials", [&](int i) { material_entry(i); }, scene_.materials.size());
        library(
            "lights", [&](int i) { light(i); }, scene_.nodes.size());
        library(
            "geometries", [&](int i) { geometry(i); }, scene_.nodes.size());
        out_.add("<library_visual_scenes><visual_scene id=\"scene\">\n");
        nodes();
        out_.add("</visual_scene></library_visual_scenes>\n"
                 "<scene><instance_visual_scene url=\"#scene\"/></scene>\n</COLLADA>\n");
        return std::move(out_.text);
    }

private:
    // A library must not be empty: it is left out when nothing was added to it.
    template <class Add>
    void library(const char *name, Add &&add, std::size_t count)
    {
        text_out before;
        std::swap(before.text, out_.text);
        for (int i = 0; i < static_cast<int>(count); ++i)
            add(i);
        if (!out_.text.empty())
            before.add("<library_", name, ">\n", out_.text, "</library_", name, ">\n");
        std::swap(before.text, out_.text);
    }

    [[nodiscard]] const model_node &node(int i) const
    {
        return scene_.nodes[static_cast<std::size_t>(i)];
    }

    void images()
    {
        std::vector<std::string> names;
        for (const model_material &m : scene_.materials)
            if (!m.picture.empty() && images_.emplace(m.picture, names.size()).second)
                names.push_back(m.picture);
        library(
            "images",
            [&](int i) {
                out_.add("<image id=\"image", i, "\"><init_from>",
                         xml_text(url_text(names[static_cast<std::size_t>(i)])),
                         "</init_from></image>\n");
            },
            names.size());
    }

    void colour(const char *name, const float *rgb)
    {
        out_.add("<", name, "><color>", rgb[0], ' ', rgb[1], ' ', rgb[2], " 1</color></", name,
                 ">");
    }

    void effect(int i)
    {
        const model_material &m = scene_.materials[static_cast<std::size_t>(i)];
        const auto image = images_.find(m.picture);
        out_.add("<effect id=\"effect", i, "\"><profile_COMMON>");
        if (image != images_.end())
            out_.add("<newparam sid=\"surface\"><surface type=\"2D\"><init_from>image",
                     image->second,
                     "</init_from></surface></newparam><newparam sid=\"sampler\"><sampler2D>"
                     "<source>surface</source></sampler2D></newparam>");
        out_.add("<technique sid=\"common\"><phong>");
        colour("emission", m.look.emissive);
        colour("ambient", m.look.ambient);
        if (image != images_.end())
            out_.add("<diffuse><texture texture=\"sampler\" texcoord=\"UV\"/></diffuse>");
        else
            colour("diffuse", m.look.diffuse);
        colour("specular", m.look.specular);
        out_.add("<shininess><float>", m.look.shininess, "</float></shininess>");
        if (m.look.transparency > 0)
            out_.add("<transparent opaque=\"A_ONE\"><color>1 1 1 1</color></transparent>"
                     "<transparency><float>",
                     1 - m.look.transparency, "</float></transparency>");
        out_.add("</phong></technique>");
        if (m.twosided)
            out_.add("<extra><technique profile=\"GOOGLEEARTH\"><double_sided>1</double_sided>"
                     "</technique></extra>");
        out_.add("</profile_COMMON></effect>\n");
    }

    void material_entry(int i)
    {
        out_.add("<material id=\"material", i, "\" name=\"",
                 xml_text(scene_.materials[static_cast<std::size_t>(i)].name),
                 "\"><instance_effect url=\"#effect", i, "\"/></material>\n");
    }

    void light(int i)
    {
        if (node(i).light)
            out_.add("<light id=\"light", i, "\" name=\"", xml_text(node(i).name),
                     "\"><technique_common><point><color>1 1 1</color></point></technique_common>"
                     "</light>\n");
    }

    template <class Add>
    void source(int i, const char *name, std::size_t count, std::string_view parts, Add &&add)
    {
        out_.add("<source id=\"mesh", i, name, "\"><float_array id=\"mesh", i, name,
                 "-array\" count=\"", count * parts.size(), "\">");
        for (std::size_t k = 0; k < count && work_.step(0.5); ++k) {
            add(k);
            out_.add('\n');
        }
        out_.add("</float_array><technique_common><accessor source=\"#mesh", i, name,
                 "-array\" count=\"", count, "\" stride=\"", parts.size(), "\">");
        for (const char part : parts)
            out_.add("<param name=\"", part, "\" type=\"float\"/>");
        out_.add("</accessor></technique_common></source>\n");
    }

    // The normals of the points, then those of the faces.
    void geometry(int i)
    {
        const model_node &n = node(i);
        if (n.surfaces.empty())
            return;
        out_.add("<geometry id=\"mesh", i, "\" name=\"", xml_text(n.name), "\"><mesh>\n");
        source(i, "-points", n.points.size(), "XYZ", [&](std::size_t k) { out_.add(n.points[k]); });
        source(i, "-normals", n.points.size() + n.surfaces.size(), "XYZ", [&](std::size_t k) {
            out_.add(k < n.points.size() ? n.normals[k] : n.surfaces[k - n.points.size()].normal);
        });
        if (n.textured)
            source(i, "-uv", n.uv.size() / 2, "ST",
                   [&](std::size_t k) { out_.add(n.uv[2 * k], ' ', n.uv[2 * k + 1]); });
        if (!n.colours.empty())
            source(i, "-colours", n.points.size(), "RGB", [&](std::size_t k) {
                const unsigned char *rgb = &n.colours[3 * k];
                out_.add(rgb[0] / 255.0f, ' ', rgb[1] / 255.0f, ' ', rgb[2] / 255.0f);
            });
        out_.add("<vertices id=\"mesh", i,
                 "-vertices\"><input semantic=\"POSITION\" source=\"#mesh", i,
                 "-points\"/></vertices>\n");
        std::map<int, std::vector<const model_surface *>> polygons;
        for (const model_surface &surface : n.surfaces)
            if (is_line(surface))
                lines(i, surface);
            else
                polygons[surface.material].push_back(&surface);
        for (const auto &[material, surfaces] : polygons)
            polylist(i, material, surfaces);
        out_.add("</mesh></geometry>\n");
    }

    // One a point, so that they stand at the same place as the points in the lists.
    void colour_input(int i)
    {
        if (!node(i).colours.empty())
            out_.add("<input semantic=\"COLOR\" source=\"#mesh", i, "-colours\" offset=\"0\"/>");
    }

    void polylist(int i, int material, const std::vector<const model_surface *> &surfaces)
    {
        const model_node &n = node(i);
        out_.add("<polylist material=\"m", material, "\" count=\"", surfaces.size(),
                 "\"><input semantic=\"VERTEX\" source=\"#mesh", i,
                 "-vertices\" offset=\"0\"/><input semantic=\"NORMAL\" source=\"#mesh", i,
                 "-normals\" offset=\"1\"/>");
        if (n.textured)
            out_.add("<input semantic=\"TEXCOORD\" source=\"#mesh", i,
                     "-uv\" offset=\"2\" set=\"0\"/>");
        colour_input(i);
        out_.add("<vcount>");
        for (const model_surface *surface : surfaces)
            out_.add(surface->count, ' ');
        out_.add("</vcount><p>");
        for (const model_surface *surface : surfaces) {
            if (!work_.step(0.5))
                return;
            const auto face = surface - n.surfaces.data();
            for (int k = surface->first; k < surface->first + surface->count; ++k) {
                const int point = n.corners[static_cast<std::size_t>(k)];
                out_.add(point, ' ');
                if (surface->smooth)
                    out_.add(point, ' ');
                else
                    out_.add(static_cast<std::size_t>(face) + n.points.size(), ' ');
                if (n.textured)
                    out_.add(k, ' ');
            }
            out_.add('\n');
        }
        out_.add("</p></polylist>\n");
    }

    void lines(int i, const model_surface &surface)
    {
        const bool closed = surface.kind == SURFACE_CLOSED_LINE;
        out_.add("<lines material=\"m", surface.material, "\" count=\"",
                 surface.count - (closed ? 0 : 1), "\"><input semantic=\"VERTEX\" source=\"#mesh",
                 i, "-vertices\" offset=\"0\"/>");
        colour_input(i);
        out_.add("<p>");
        const int *corners = &node(i).corners[static_cast<std::size_t>(surface.first)];
        for (int k = 0; k + 1 < surface.count; ++k)
            out_.add(corners[k], ' ', corners[k + 1], ' ');
        if (closed)
            out_.add(corners[surface.count - 1], ' ', corners[0]);
        out_.add("</p></lines>\n");
    }

    // Without recursion: trees may be deep.
    void nodes()
    {
        std::vector<int> open;
        for (int i = 0; i < static_cast<int>(scene_.nodes.size()); ++i) {
            close_until(open, node(i).parent);
            open_node(i);
            open.push_back(i);
        }
        close_until(open, -1);
    }

    void close_until(std::vector<int> &open, int parent)
    {
        for (; !open.empty() && open.back() != parent; open.pop_back())
            out_.add("</node>\n");
    }

    void open_node(int i)
    {
        const model_node &n = node(i);
        out_.add("<node id=\"node", i, "\" name=\"", xml_text(n.name), "\" type=\"NODE\">");
        if (n.moved) {
            const float *r = n.rotation;
            out_.add("<matrix>", r[0], ' ', r[3], ' ', r[6], ' ', n.place.x, ' ', r[1], ' ', r[4],
                     ' ', r[7], ' ', n.place.y, ' ', r[2], ' ', r[5], ' ', r[8], ' ', n.place.z,
                     " 0 0 0 1</matrix>");
        }
        if (!n.surfaces.empty()) {
            out_.add("<instance_geometry url=\"#mesh", i, "\"><bind_material><technique_common>");
            std::vector<int> used;
            for (const model_surface &surface : n.surfaces)
                used.push_back(surface.material);
            std::sort(used.begin(), used.end());
            used.erase(std::unique(used.begin(), used.end()), used.end());
            for (const int m : used)
                out_.add("<instance_material symbol=\"m", m, "\" target=\"#material", m,
                         "\"><bind_vertex_input semantic=\"UV\" input_semantic=\"TEXCOORD\" "
                         "input_set=\"0\"/></instance_material>");
            out_.add("</technique_common></bind_material></instance_geometry>");
        }
        if (n.light)
            out_.add("<instance_light url=\"#light", i, "\"/>");
        out_.add('\n');
    }

    job &work_;
    const model &scene_;
    text_out out_;
    std::map<std::string, std::size_t> images_;
};

} // namespace

int collada_export(const char *filename)
{
    model_wishes wishes;
    wishes.tints = false; // a diffuse colour or a texture, not both
    wishes.sides = true;  // as a widespread extra says it
    wishes.point_colours = true;
    return export_scene(filename, "COLLADA", wishes,
                        [](job &work, const model &scene, export_files &files, const auto &name) {
                            files.add(name, collada_writer(work, scene).run());
                        });
}

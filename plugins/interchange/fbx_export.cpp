// FBX 7.4, binary: records of properties, one inside the other, each with the place of its end. A
// geometry has the polygons of one object; which material a polygon has stands in a layer.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <algorithm>
#include <cmath>
#include <map>

namespace {

constexpr double degrees = 180 / 3.14159265358979323846;

// Writes records; each place is counted from the file's beginning.
class record_writer {
public:
    std::string bytes;

    void open(const char *name)
    {
        if (!open_.empty())
            end_properties();
        open_.push_back({bytes.size(), 0, 0, true});
        bytes.append(12, '\0');
        const std::string text = name;
        bytes += static_cast<char>(text.size());
        bytes += text;
        open_.back().properties_at = bytes.size();
    }

    void close()
    {
        end_properties();
        const record last = open_.back();
        open_.pop_back();
        if (last.nested)
            bytes.append(13, '\0');
        put_at(last.at, bytes.size());
        if (!open_.empty())
            open_.back().nested = true;
    }

    void property(std::int32_t value) { plain('I', value); }
    void property(std::int64_t value) { plain('L', value); }
    void property(double value) { plain('D', std::isfinite(value) ? value : 0); }
    void property(const char *value) { property(std::string(value)); }
    void property(const std::string &value)
    {
        count('S');
        add_bytes(bytes, static_cast<std::uint32_t>(value.size()));
        bytes += value;
    }
    void property(const std::vector<double> &values) { array('d', values); }
    void property(const std::vector<std::int32_t> &values) { array('i', values); }

    template <class... A>
    void leaf(const char *name, const A &...values)
    {
        open(name);
        (property(values), ...);
        close();
    }

private:
    struct record {
        std::size_t at, properties_at;
        std::uint32_t properties;
        bool has_properties_open;
        bool nested = false;
    };

    void count(char kind)
    {
        ++open_.back().properties;
        bytes += kind;
    }
    template <class N>
    void plain(char kind, N value)
    {
        count(kind);
        add_bytes(bytes, value);
    }
    template <class N>
    void array(char kind, const std::vector<N> &values)
    {
        count(kind);
        add_bytes(bytes, static_cast<std::uint32_t>(values.size()));
        add_bytes(bytes, std::uint32_t{0}); // as it is
        add_bytes(bytes, static_cast<std::uint32_t>(values.size() * sizeof(N)));
        for (const N value : values)
            add_bytes(bytes, value);
    }
    void end_properties()
    {
        record &last = open_.back();
        if (!last.has_properties_open)
            return;
        last.has_properties_open = false;
        put_at(last.at + 4, last.properties);
        put_at(last.at + 8, bytes.size() - last.properties_at);
    }
    void put_at(std::size_t at, std::size_t value)
    {
        for (std::size_t i = 0; i < 4; ++i)
            bytes[at + i] = static_cast<char>(value >> 8 * i);
    }

    std::vector<record> open_;
};

// Turns about x, then y, then z, in degrees, of a rotation in rows.
void euler_of(const float *r, double *x, double *y, double *z)
{
    const double sine = std::min(std::max(-static_cast<double>(r[2]), -1.0), 1.0);
    *y = std::asin(sine) * degrees;
    if (std::fabs(sine) < 0.999999) {
        *x = std::atan2(static_cast<double>(r[5]), static_cast<double>(r[8])) * degrees;
        *z = std::atan2(static_cast<double>(r[1]), static_cast<double>(r[0])) * degrees;
    } else { // x and z turn about the same axis
        *x = std::atan2(-static_cast<double>(r[7]), static_cast<double>(r[4])) * degrees;
        *z = 0;
    }
}

class fbx_writer {
public:
    fbx_writer(job &work, const model &scene) : work_(work), scene_(scene)
    {
        out_.bytes.assign("Kaydara FBX Binary  \0\x1a\0", 23);
        add_bytes(out_.bytes, std::uint32_t{7400});
    }

    std::string run()
    {
        out_.open("FBXHeaderExtension");
        out_.leaf("FBXHeaderVersion", std::int32_t{1003});
        out_.leaf("FBXVersion", std::int32_t{7400});
        out_.leaf("Creator", "VESK");
        out_.close();
        settings();
        out_.open("Documents");
        out_.leaf("Count", std::int32_t{1});
        out_.open("Document");
        out_.property(std::int64_t{1});
        out_.property("");
        out_.property("Scene");
        out_.leaf("RootNode", std::int64_t{0});
        out_.close();
        out_.close();
        out_.leaf("References");
        definitions();
        out_.open("Objects");
        for (std::size_t i = 0; i < scene_.materials.size(); ++i)
            add_material(i);
        work_.phase(0.9, scene_.elements);
        for (std::size_t i = 0; i < scene_.nodes.size() && !work_.cancelled(); ++i)
            add_node(i);
        out_.close();
        out_.open("Connections");
        for (const connection &c : connections_) {
            out_.open("C");
            out_.property(c.property.empty() ? "OO" : "OP");
            out_.property(c.from);
            out_.property(c.to);
            if (!c.property.empty())
                out_.property(c.property);
            out_.close();
        }
        out_.close();
        finish();
        return std::move(out_.bytes);
    }

private:
    struct connection {
        std::int64_t from, to;
        std::string property;
    };

    // Ids of the objects that belong to a node or a material.
    enum { NODE, GEOMETRY, LIGHT, MATERIAL, TEXTURE, VIDEO, KINDS };
    static std::int64_t id(std::size_t place, int kind)
    {
        return 1000 + static_cast<std::int64_t>(place) * KINDS + kind;
    }

    static std::string named(const std::string &name, const char *kind)
    {
        return std::string(vesk_utf8(name.c_str())) + std::string("\0\1", 2) + kind;
    }

    template <class... A>
    void setting(const char *name, const char *type, const char *label, const char *flags,
                 const A &...values)
    {
        out_.leaf("P", name, type, label, flags, values...);
    }

    // Y upwards; the unit is a metre, in centimetres.
    void settings()
    {
        out_.open("GlobalSettings");
        out_.leaf("Version", std::int32_t{1000});
        out_.open("Properties70");
        const struct {
            const char *name;
            std::int32_t value;
        } axes[] = {{"UpAxis", 1},        {"UpAxisSign", 1}, {"FrontAxis", 2},
                    {"FrontAxisSign", 1}, {"CoordAxis", 0},  {"CoordAxisSign", 1}};
        for (const auto &axis : axes)
            setting(axis.name, "int", "Integer", "", axis.value);
        setting("UnitScaleFactor", "double", "Number", "", 100.0);
        out_.close();
        out_.close();
    }

    void definitions()
    {
        std::int32_t lights = 0;
        std::int32_t meshes = 0;
        std::int32_t pictures = 0;
        for (const model_node &node : scene_.nodes) {
            lights += node.light ? 1 : 0;
            meshes += node.surfaces.empty() ? 0 : 1;
        }
        for (const model_material &m : scene_.materials)
            pictures += m.picture.empty() ? 0 : 1;
        const struct {
            const char *name;
            std::int32_t count;
        } kinds[] = {{"GlobalSettings", 1},
                     {"Model", static_cast<std::int32_t>(scene_.nodes.size())},
                     {"Geometry", meshes},
                     {"NodeAttribute", lights},
                     {"Material", static_cast<std::int32_t>(scene_.materials.size())},
                     {"Texture", pictures},
                     {"Video", pictures}};
        std::int32_t all = 0;
        for (const auto &kind : kinds)
            all += kind.count;
        out_.open("Definitions");
        out_.leaf("Version", std::int32_t{100});
        out_.leaf("Count", all);
        for (const auto &kind : kinds) {
            if (kind.count == 0)
                continue;
            out_.open("ObjectType");
            out_.property(kind.name);
            out_.leaf("Count", kind.count);
            out_.close();
        }
        out_.close();
    }

    void begin_object(const char *record, std::int64_t number, const std::string &name,
                      const char *kind)
    {
        out_.open(record);
        out_.property(number);
        out_.property(name);
        out_.property(kind);
    }

    void colour(const char *name, const float *rgb)
    {
        setting(name, "Color", "", "A", static_cast<double>(rgb[0]), static_cast<double>(rgb[1]),
                static_cast<double>(rgb[2]));
    }

    void add_material(std::size_t i)
    {
        const model_material &m = scene_.materials[i];
        begin_object("Material", id(i, MATERIAL), named(m.name, "Material"), "");
        out_.leaf("Version", std::int32_t{102});
        out_.leaf("ShadingModel", "phong");
        out_.leaf("MultiLayer", std::int32_t{0});
        out_.open("Properties70");
        colour("DiffuseColor", m.look.diffuse);
        colour("AmbientColor", m.look.ambient);
        colour("SpecularColor", m.look.specular);
        colour("EmissiveColor", m.look.emissive);
        const struct {
            const char *name;
            float value;
        } numbers[] = {{"DiffuseFactor", 1},
                       {"AmbientFactor", 1},
                       {"SpecularFactor", 1},
                       {"EmissiveFactor", 1},
                       {"ShininessExponent", m.look.shininess},
                       {"Shininess", m.look.shininess},
                       {"TransparencyFactor", m.look.transparency},
                       {"Opacity", 1 - m.look.transparency}};
        for (const auto &number : numbers)
            setting(number.name, "Number", "", "A", static_cast<double>(number.value));
        const float white[3] = {1, 1, 1};
        if (m.look.transparency > 0)
            colour("TransparentColor", white);
        out_.close();
        out_.close();
        if (!m.picture.empty())
            add_texture(i, m.picture);
    }

    void add_texture(std::size_t i, const std::string &picture)
    {
        const std::string name = vesk_filename_get_file(picture.c_str());
        begin_object("Video", id(i, VIDEO), named(name, "Video"), "Clip");
        out_.leaf("Type", "Clip");
        out_.leaf("FileName", picture);
        out_.leaf("RelativeFilename", picture);
        out_.close();
        begin_object("Texture", id(i, TEXTURE), named(name, "Texture"), "");
        out_.leaf("Type", "TextureVideoClip");
        out_.leaf("Version", std::int32_t{202});
        out_.leaf("TextureName", named(name, "Texture"));
        out_.leaf("Media", named(name, "Video"));
        out_.leaf("FileName", picture);
        out_.leaf("RelativeFilename", picture);
        out_.close();
        connections_.push_back({id(i, VIDEO), id(i, TEXTURE), ""});
        connections_.push_back({id(i, TEXTURE), id(i, MATERIAL), "DiffuseColor"});
    }

    void add_node(std::size_t i)
    {
        const model_node &node = scene_.nodes[i];
        const bool mesh = !node.surfaces.empty();
        begin_object("Model", node_id(i), named(node.name, "Model"),
                     mesh         ? "Mesh"
                     : node.light ? "Light"
                                  : "Null");
        out_.leaf("Version", std::int32_t{232});
        out_.open("Properties70");
        double x = 0;
        double y = 0;
        double z = 0;
        euler_of(node.rotation, &x, &y, &z);
        setting("Lcl Translation", "Lcl Translation", "", "A", static_cast<double>(node.place.x),
                static_cast<double>(node.place.y), static_cast<double>(node.place.z));
        setting("Lcl Rotation", "Lcl Rotation", "", "A", x, y, z);
        setting("Lcl Scaling", "Lcl Scaling", "", "A", 1.0, 1.0, 1.0);
        out_.close();
        out_.leaf("Shading", std::int32_t{1});
        out_.leaf("Culling", "CullingOff");
        out_.close();
        connections_.push_back(
            {node_id(i), node.parent < 0 ? 0 : node_id(static_cast<std::size_t>(node.parent)), ""});
        if (mesh)
            add_geometry(i);
        else if (node.light)
            add_light(i);
    }

    [[nodiscard]] std::int64_t node_id(std::size_t i) const
    {
        return id(i + scene_.materials.size(), NODE);
    }

    void add_light(std::size_t i)
    {
        const std::int64_t number = node_id(i) + LIGHT;
        begin_object("NodeAttribute", number, named(scene_.nodes[i].name, "NodeAttribute"),
                     "Light");
        out_.open("Properties70");
        setting("LightType", "enum", "", "", std::int32_t{0});
        out_.close();
        out_.leaf("TypeFlags", "Light");
        out_.close();
        connections_.push_back({number, node_id(i), ""});
    }

    // The lists of one geometry; normals and coordinates stand for each corner.
    struct geometry {
        std::vector<double> points, normals, uv, colours;
        std::vector<std::int32_t> indices, smoothing, materials;
        std::vector<int> used; // the object's materials, in the order of their connections
    };

    geometry take_geometry(const model_node &node)
    {
        geometry g;
        for (const point3_t &p : node.points)
            for (const float value : {p.x, p.y, p.z})
                g.points.push_back(std::isfinite(value) ? static_cast<double>(value) : 0);
        for (const model_surface &surface : node.surfaces) {
            if (!work_.step())
                break;
            for (int k = surface.first; k < surface.first + surface.count; ++k) {
                const auto corner = static_cast<std::size_t>(k);
                const int point = node.corners[corner];
                g.indices.push_back(k + 1 < surface.first + surface.count ? point : ~point);
                const point3_t &normal =
                    surface.smooth ? node.normals[static_cast<std::size_t>(point)] : surface.normal;
                g.normals.insert(g.normals.end(), {normal.x, normal.y, normal.z});
                if (node.textured)
                    g.uv.insert(g.uv.end(), {node.uv[2 * corner], node.uv[2 * corner + 1]});
                if (!node.colours.empty()) {
                    const auto *rgb = node.colours.data() + 3 * point;
                    g.colours.insert(g.colours.end(),
                                     {rgb[0] / 255.0, rgb[1] / 255.0, rgb[2] / 255.0, 1});
                }
            }
            g.smoothing.push_back(surface.smooth ? 1 : 0);
            const auto found = std::find(g.used.begin(), g.used.end(), surface.material);
            g.materials.push_back(static_cast<std::int32_t>(found - g.used.begin()));
            if (found == g.used.end())
                g.used.push_back(surface.material);
        }
        return g;
    }

    void add_geometry(std::size_t i)
    {
        const model_node &node = scene_.nodes[i];
        const std::int64_t number = node_id(i) + GEOMETRY;
        const geometry g = take_geometry(node);
        begin_object("Geometry", number, named(node.name, "Geometry"), "Mesh");
        out_.leaf("GeometryVersion", std::int32_t{124});
        out_.leaf("Vertices", g.points);
        out_.leaf("PolygonVertexIndex", g.indices);
        const char *const by_corner = "ByPolygonVertex";
        layer_element("LayerElementNormal", by_corner, "Direct", "Normals", g.normals);
        layer_element("LayerElementSmoothing", "ByPolygon", "Direct", "Smoothing", g.smoothing);
        if (node.textured)
            layer_element("LayerElementUV", by_corner, "Direct", "UV", g.uv);
        if (!g.colours.empty())
            layer_element("LayerElementColor", by_corner, "Direct", "Colors", g.colours);
        layer_element("LayerElementMaterial", "ByPolygon", "IndexToDirect", "Materials",
                      g.materials);
        add_layer(node.textured, !g.colours.empty());
        out_.close();
        connections_.push_back({number, node_id(i), ""});
        for (const int material : g.used)
            connections_.push_back(
                {id(static_cast<std::size_t>(material), MATERIAL), node_id(i), ""});
    }

    void add_layer(bool textured, bool coloured)
    {
        out_.open("Layer");
        out_.property(std::int32_t{0});
        out_.leaf("Version", std::int32_t{100});
        const struct {
            const char *type;
            bool there;
        } elements[] = {{"LayerElementNormal", true},
                        {"LayerElementSmoothing", true},
                        {"LayerElementUV", textured},
                        {"LayerElementColor", coloured},
                        {"LayerElementMaterial", true}};
        for (const auto &[type, there] : elements) {
            if (!there)
                continue;
            out_.open("LayerElement");
            out_.leaf("Type", type);
            out_.leaf("TypedIndex", std::int32_t{0});
            out_.close();
        }
        out_.close();
    }

    template <class Values>
    void layer_element(const char *name, const char *mapping, const char *reference,
                       const char *field, const Values &values)
    {
        out_.open(name);
        out_.property(std::int32_t{0});
        out_.leaf("Version", std::int32_t{101});
        out_.leaf("Name", std::string(field) == "UV" ? "UVMap" : "");
        out_.leaf("MappingInformationType", mapping);
        out_.leaf("ReferenceInformationType", reference);
        out_.leaf(field, values);
        out_.close();
    }

    // The end of the list of records, and the words that every such file ends with.
    void finish()
    {
        std::string &bytes = out_.bytes;
        bytes.append(13, '\0');
        bytes.append("\xfa\xbc\xab\x09\xd0\xc8\xd4\x66\xb1\x76\xfb\x83\x1c\xf7\x26\x7e", 16);
        bytes.append(4, '\0');
        bytes.append(16 - bytes.size() % 16, '\0');
        add_bytes(bytes, std::uint32_t{7400});
        bytes.append(120, '\0');
        bytes.append("\xf8\x5a\x8c\x6a\xde\xf5\xd9\x7e\xec\xe9\x0c\xe3\x75\x8f\x29\x0b", 16);
    }

    job &work_;
    const model &scene_;
    record_writer out_;
    std::vector<connection> connections_;
};

} // namespace

int fbx_export(const char *filename)
{
    model_wishes wishes;
    wishes.lines = false;
    wishes.point_colours = true;
    return export_scene(filename, "FBX", wishes,
                        [](job &work, const model &scene, export_files &files, const auto &name) {
                            files.add(name, fbx_writer(work, scene).run());
                        });
}

// 3MF: an archive of XML parts. Each object is a mesh of triangles, or a list of others with their
// frames; colours are base materials, pictures lie in the archive with coordinates for each corner.
// A triangle has either; below a picture lies the object's material. Z is upwards.
#include "archive.h"
#include "formats.h"
#include "model.h"
#include "picture_file.h"
#include "text.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <map>
#include <set>
#include <unordered_map>

namespace {

class threemf_writer {
public:
    threemf_writer(job &work, const model &scene)
        : work_(work), scene_(scene), next_id_(number(scene.nodes.size()))
    {
    }

    // Picture files by their names in the archive.
    [[nodiscard]] const std::map<std::string, picture_file> &pictures() const { return pictures_; }

    std::string run()
    {
        work_.phase(0.9, scene_.elements);
        out_.add("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<model unit=\"millimeter\" "
                 "xml:lang=\"en-US\" "
                 "xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\" "
                 "xmlns:m=\"http://schemas.microsoft.com/3dmanufacturing/material/2015/02\">\n"
                 "<metadata name=\"Application\">VESK</metadata>\n<resources>\n");
        materials();
        textures();
        // Parts stand before the list that names them.
        for (std::size_t i = scene_.nodes.size(); i > 0; --i)
            node(i - 1);
        out_.add("</resources>\n<build>\n");
        for (std::size_t i = 0; i < scene_.nodes.size(); ++i)
            if (scene_.nodes[i].parent < 0 && holds(i))
                item(i);
        out_.add("</build>\n</model>\n");
        vesk_report_loss(under_, "materials under textures");
        return std::move(out_.text);
    }

private:
    // An object's number; that of its own mesh is one higher.
    static std::size_t number(std::size_t place) { return 2 * place + 2; }

    // Whether there is a triangle in it or below; an object must have something.
    [[nodiscard]] bool holds(std::size_t place) const
    {
        return place < holds_.size() && holds_[place];
    }

    void materials()
    {
        if (scene_.materials.empty())
            return;
        out_.add("<basematerials id=\"1\">\n");
        for (const model_material &m : scene_.materials) {
            char colour[12];
            unsigned parts[4] = {};
            for (int i = 0; i < 4; ++i) {
                const float value = i < 3 ? m.look.diffuse[i] : 1 - m.look.transparency;
                parts[i] =
                    static_cast<unsigned>(std::min(std::max(value, 0.0f), 1.0f) * 255 + 0.5f);
            }
            std::snprintf(colour, sizeof colour, "#%02X%02X%02X%02X", parts[0] & 255u,
                          parts[1] & 255u, parts[2] & 255u, parts[3] & 255u);
            out_.add("<base name=\"", xml_text(m.name), "\" displaycolor=\"", colour, "\"/>\n");
        }
        out_.add("</basematerials>\n");
    }

    void textures()
    {
        int lost = 0;
        std::set<std::string> seen;
        for (const model_material &m : scene_.materials) {
            if (m.picture.empty() || !seen.insert(m.picture).second)
                continue;
            if (m.texture < 0) { // not found when the model was loaded
                ++lost;
                continue;
            }
            picture_file file = picture_file_of(m.texture);
            if (file.bytes.empty()) {
                ++lost;
                continue;
            }
            const std::string name = "3D/Textures/" + file_name(m.texture, file.jpeg);
            out_.add("<m:texture2d id=\"", next_id_, "\" path=\"/", xml_text(name),
                     "\" contenttype=\"image/", file.jpeg ? "jpeg" : "png",
                     "\" tilestyleu=\"wrap\" tilestylev=\"wrap\"/>\n");
            texture_ids_[m.texture] = next_id_++;
            pictures_[name] = std::move(file);
        }
        vesk_report_loss(lost, "textures");
    }

    // The file's own name in plain letters, one of its kind in the archive.
    std::string file_name(int texture, bool jpeg)
    {
        std::string base = base_name(texture_id_to_name(texture));
        for (char &c : base)
            if (std::strchr("abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789-_",
                            c) == nullptr)
                c = '_';
        if (base.empty())
            base = "texture";
        std::string name = base;
        for (int number = 1; !names_.insert(name).second; ++number)
            name = base + "_" + std::to_string(number);
        return name + (jpeg ? ".jpeg" : ".png");
    }

    // The number of a surface's picture, 0 for none.
    [[nodiscard]] std::size_t texture_of(const model_surface &surface) const
    {
        const int texture = scene_.materials[static_cast<std::size_t>(surface.material)].texture;
        const auto found = texture_ids_.find(texture);
        return found == texture_ids_.end() ? 0 : found->second;
    }

    // Coordinates of a picture on one object.
    struct group {
        std::size_t id;
        std::unordered_map<std::uint64_t, int> places;
        text_out list;

        int place_of(float u, float v)
        {
            std::uint32_t bits[2];
            u += 0.0f;
            v += 0.0f;
            std::memcpy(&bits[0], &u, sizeof u);
            std::memcpy(&bits[1], &v, sizeof v);
            const auto found = places.emplace(std::uint64_t{bits[0]} << 32 | bits[1],
                                              static_cast<int>(places.size()));
            if (found.second)
                list.add("<m:tex2coord u=\"", u, "\" v=\"", v, "\"/>\n");
            return found.first->second;
        }
    };

    void node(std::size_t place)
    {
        const model_node &n = scene_.nodes[place];
        holds_.resize(scene_.nodes.size());
        std::vector<std::size_t> parts;
        for (const int child : n.children)
            if (holds(static_cast<std::size_t>(child)))
                parts.push_back(static_cast<std::size_t>(child));
        const bool own = has_triangles(n);
        holds_[place] = own || !parts.empty();
        if (own)
            mesh(n, number(place) + (parts.empty() ? 0 : 1));
        if (parts.empty())
            return;
        out_.add("<object id=\"", number(place), "\" name=\"", xml_text(n.name),
                 "\" type=\"model\"><components>\n");
        if (own)
            out_.add("<component objectid=\"", number(place) + 1, "\"/>\n");
        for (const std::size_t part : parts) {
            out_.add("<component objectid=\"", number(part), '"');
            const model_node &child = scene_.nodes[part];
            if (child.moved) {
                const float *r = child.rotation;
                out_.add(" transform=\"");
                for (int i = 0; i < 9; ++i)
                    out_.add(r[i], ' ');
                out_.add(child.place, '"');
            }
            out_.add("/>\n");
        }
        out_.add("</components></object>\n");
    }

    // The same with Z upwards: (x, y, z) becomes (x, -z, y).
    void item(std::size_t place)
    {
        const model_node &n = scene_.nodes[place];
        const float *r = n.rotation;
        out_.add("<item objectid=\"", number(place), "\" transform=\"");
        for (int i = 0; i < 9; i += 3)
            out_.add(r[i], ' ', -r[i + 2], ' ', r[i + 1], ' ');
        out_.add(n.place.x, ' ', -n.place.z, ' ', n.place.y, "\"/>\n");
    }

    // Those with two corners at one place may not be there.
    static bool is_real(const model_node &n, const int *corners)
    {
        const int a = n.corners[static_cast<std::size_t>(corners[0])];
        const int b = n.corners[static_cast<std::size_t>(corners[1])];
        const int c = n.corners[static_cast<std::size_t>(corners[2])];
        return a != b && b != c && c != a;
    }

    static bool has_triangles(const model_node &n)
    {
        std::vector<int> corners;
        for (const model_surface &surface : n.surfaces)
            cut_surface(n, surface, corners);
        for (std::size_t i = 0; i + 2 < corners.size(); i += 3)
            if (is_real(n, &corners[i]))
                return true;
        return false;
    }

    void mesh(const model_node &n, std::size_t id)
    {
        std::map<std::size_t, group> groups; // by picture
        text_out triangles;
        std::vector<int> corners;
        int under = -1; // the material below the pictures
        for (const model_surface &surface : n.surfaces) {
            if (!work_.step())
                return;
            const std::size_t texture = n.textured ? texture_of(surface) : 0;
            group *of = nullptr;
            if (texture != 0) {
                const auto made = groups.try_emplace(texture);
                of = &made.first->second;
                if (made.second)
                    of->id = next_id_++;
                under = under < 0 ? surface.material : under;
                under_ += under != surface.material && others_.insert(surface.material).second;
            }
            corners.clear();
            cut_surface(n, surface, corners);
            for (std::size_t i = 0; i + 2 < corners.size(); i += 3)
                if (is_real(n, &corners[i]))
                    triangle(triangles, n, &corners[i], surface.material, of);
        }
        for (const auto &[texture, of] : groups)
            out_.add("<m:texture2dgroup id=\"", of.id, "\" texid=\"", texture, "\">\n",
                     of.list.text, "</m:texture2dgroup>\n");
        out_.add("<object id=\"", id, "\" name=\"", xml_text(n.name), "\" type=\"model\"");
        if (under >= 0)
            out_.add(" pid=\"1\" pindex=\"", under, '"');
        out_.add("><mesh><vertices>\n");
        for (const point3_t &p : n.points)
            out_.add("<vertex x=\"", p.x, "\" y=\"", p.y, "\" z=\"", p.z, "\"/>\n");
        out_.add("</vertices><triangles>\n", triangles.text, "</triangles></mesh></object>\n");
    }

    static void triangle(text_out &out, const model_node &n, const int *corners, int material,
                         group *of)
    {
        const char *const names[] = {"v1", "v2", "v3"};
        out.add("<triangle");
        for (std::size_t k = 0; k < 3; ++k)
            out.add(' ', names[k], "=\"", n.corners[static_cast<std::size_t>(corners[k])], '"');
        out.add(" pid=\"", of == nullptr ? std::size_t{1} : of->id, '"');
        for (int k = 0; k < (of == nullptr ? 1 : 3); ++k) {
            const std::size_t at = 2 * static_cast<std::size_t>(corners[k]);
            out.add(" p", k + 1, "=\"",
                    of == nullptr ? material : of->place_of(n.uv[at], n.uv[at + 1]), '"');
        }
        out.add("/>\n");
    }

    job &work_;
    const model &scene_;
    text_out out_;
    std::vector<bool> holds_;
    std::size_t next_id_;
    std::map<int, std::size_t> texture_ids_;
    std::map<std::string, picture_file> pictures_;
    std::set<std::string> names_;
    std::set<int> others_;
    int under_ = 0;
};

constexpr const char *relations_type = "application/vnd.openxmlformats-package.relationships+xml";

// A list of parts of one kind.
std::string relations(const std::vector<std::string> &targets, const char *kind)
{
    text_out out;
    out.add("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Relationships "
            "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\">");
    for (std::size_t i = 0; i < targets.size(); ++i)
        out.add("<Relationship Target=\"/", targets[i], "\" Id=\"rel", i,
                "\" Type=\"http://schemas.microsoft.com/3dmanufacturing/2013/01/", kind, "\"/>");
    out.add("</Relationships>\n");
    return out.text;
}

} // namespace

int threemf_export(const char *filename)
{
    const std::string name = filename;
    model_wishes wishes;
    wishes.lines = wishes.lights = wishes.smooth = wishes.normals = false;
    wishes.polygons = wishes.colours = wishes.ambient = false;
    job work;
    export_files files(work);
    const model scene = take_model(work, filename, wishes);
    threemf_writer writer(work, scene);
    archive_writer parts;
    parts.add("[Content_Types].xml",
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Types "
              "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default "
              "Extension=\"rels\" ContentType=\"" +
                  std::string(relations_type) +
                  "\"/><Default Extension=\"model\" "
                  "ContentType=\"application/vnd.ms-package.3dmanufacturing-3dmodel+xml\"/>"
                  "<Default Extension=\"png\" ContentType=\"image/png\"/>"
                  "<Default Extension=\"jpeg\" ContentType=\"image/jpeg\"/></Types>\n");
    parts.add("_rels/.rels", relations({"3D/3dmodel.model"}, "3dmodel"));
    parts.add("3D/3dmodel.model", writer.run());
    std::vector<std::string> targets;
    for (const auto &[part, picture] : writer.pictures()) {
        targets.push_back(part);
        parts.add(part, picture.bytes);
    }
    if (!targets.empty())
        parts.add("3D/_rels/3dmodel.model.rels", relations(targets, "3dtexture"));
    const std::string bytes = parts.finish();
    if (bytes.empty()) {
        display_message("%s was not written: the model is too large for 3MF", name.c_str());
        return 0;
    }
    files.add(name, bytes);
    return files.finish(name, "3MF");
}

// 3MF: an archive of XML parts, stored as they are. Each object is a mesh of triangles, or a list
// of others with their frames; colours are base materials. Z is upwards.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <algorithm>
#include <array>
#include <cstdio>

namespace {

// ---- the archive ----

std::uint32_t checksum(const std::string &bytes)
{
    static const std::array<std::uint32_t, 256> table = [] {
        std::array<std::uint32_t, 256> made = {};
        for (std::uint32_t i = 0; i < 256; ++i) {
            std::uint32_t value = i;
            for (int bit = 0; bit < 8; ++bit)
                value = (value & 1) != 0 ? value >> 1 ^ 0xEDB88320u : value >> 1;
            made[i] = value;
        }
        return made;
    }();
    std::uint32_t sum = 0xFFFFFFFFu;
    for (const char c : bytes)
        sum = table[(sum ^ static_cast<unsigned char>(c)) & 0xFF] ^ sum >> 8;
    return ~sum;
}

class archive {
public:
    void add(const std::string &name, const std::string &content)
    {
        const auto place = static_cast<std::uint32_t>(bytes_.size());
        std::string common;                        // of both headers
        for (const int half : {20, 0, 0, 0, 0x21}) // version, flags, stored, time, 1980-01-01
            add_bytes(common, static_cast<std::uint16_t>(half));
        add_bytes(common, checksum(content));
        add_bytes(common, static_cast<std::uint32_t>(content.size()));
        add_bytes(common, static_cast<std::uint32_t>(content.size()));
        add_bytes(common, static_cast<std::uint16_t>(name.size()));
        add_bytes(common, std::uint16_t{0});
        bytes_ += "PK\3\4" + common + name + content;
        directory_ += std::string("PK\1\2\24\0", 6) + common;
        directory_.append(10, '\0'); // no comment, first disk, no attributes
        add_bytes(directory_, place);
        directory_ += name;
        ++count_;
    }

    std::string finish()
    {
        const auto place = static_cast<std::uint32_t>(bytes_.size());
        bytes_ += directory_ + std::string("PK\5\6\0\0\0\0", 8);
        add_bytes(bytes_, count_);
        add_bytes(bytes_, count_);
        add_bytes(bytes_, static_cast<std::uint32_t>(directory_.size()));
        add_bytes(bytes_, place);
        add_bytes(bytes_, std::uint16_t{0});
        return std::move(bytes_);
    }

private:
    std::string bytes_, directory_;
    std::uint16_t count_ = 0;
};

// ---- the model ----

class threemf_writer {
public:
    explicit threemf_writer(const model &scene) : scene_(scene) {}

    std::string run()
    {
        out_.add("<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<model unit=\"millimeter\" "
                 "xml:lang=\"en-US\" "
                 "xmlns=\"http://schemas.microsoft.com/3dmanufacturing/core/2015/02\">\n"
                 "<metadata name=\"Application\">VESK</metadata>\n<resources>\n");
        materials();
        // What a list of parts names stands before it.
        for (std::size_t i = scene_.nodes.size(); i > 0; --i)
            node(i - 1);
        out_.add("</resources>\n<build>\n");
        for (std::size_t i = 0; i < scene_.nodes.size(); ++i)
            if (scene_.nodes[i].parent < 0 && holds(i))
                item(i);
        out_.add("</build>\n</model>\n");
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
        out_.add("<object id=\"", id, "\" name=\"", xml_text(n.name),
                 "\" type=\"model\"><mesh><vertices>\n");
        for (const point3_t &p : n.points)
            out_.add("<vertex x=\"", p.x, "\" y=\"", p.y, "\" z=\"", p.z, "\"/>\n");
        out_.add("</vertices><triangles>\n");
        std::vector<int> corners;
        for (const model_surface &surface : n.surfaces) {
            corners.clear();
            cut_surface(n, surface, corners);
            for (std::size_t i = 0; i + 2 < corners.size(); i += 3) {
                if (!is_real(n, &corners[i]))
                    continue;
                const char *const names[] = {"v1", "v2", "v3"};
                out_.add("<triangle");
                for (std::size_t k = 0; k < 3; ++k)
                    out_.add(' ', names[k], "=\"",
                             n.corners[static_cast<std::size_t>(corners[i + k])], '"');
                out_.add(" pid=\"1\" p1=\"", surface.material, "\"/>\n");
            }
        }
        out_.add("</triangles></mesh></object>\n");
    }

    const model &scene_;
    text_out out_;
    std::vector<bool> holds_;
};

} // namespace

int threemf_export(const char *filename)
{
    const std::string name = filename;
    model_wishes wishes;
    wishes.lines = false;
    wishes.lights = false;
    wishes.pictures = false;
    wishes.smooth = false;
    wishes.polygons = false;
    wishes.colours = false;
    const model scene = take_model(filename, wishes);
    archive parts;
    parts.add("[Content_Types].xml",
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Types "
              "xmlns=\"http://schemas.openxmlformats.org/package/2006/content-types\"><Default "
              "Extension=\"rels\" "
              "ContentType=\"application/vnd.openxmlformats-package.relationships+xml\"/><Default "
              "Extension=\"model\" "
              "ContentType=\"application/vnd.ms-package.3dmanufacturing-3dmodel+xml\"/></Types>\n");
    parts.add(
        "_rels/.rels",
        "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<Relationships "
        "xmlns=\"http://schemas.openxmlformats.org/package/2006/relationships\"><Relationship "
        "Target=\"/3D/3dmodel.model\" Id=\"rel0\" "
        "Type=\"http://schemas.microsoft.com/3dmanufacturing/2013/01/3dmodel\"/>"
        "</Relationships>\n");
    parts.add("3D/3dmodel.model", threemf_writer(scene).run());
    return finish_export(name, parts.finish(), "3MF");
}

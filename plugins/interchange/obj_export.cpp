// Wavefront OBJ with its materials beside it: every object by its name, in world coordinates.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <cctype>
#include <set>

namespace {

// A name, or a fallback for none, with `gap` in place of blanks and line ends.
std::string written_name(const std::string &name, const char *fallback, char gap = '_')
{
    std::string out = name.empty() ? fallback : name;
    for (char &c : out)
        if (std::isspace(static_cast<unsigned char>(c)) != 0)
            c = gap;
    return out;
}

class obj_writer {
public:
    obj_writer(job &work, const model &scene, export_files &files)
        : work_(work), scene_(scene), out_(work, files)
    {
        std::set<std::string> taken;
        for (const model_material &m : scene.materials) {
            const std::string wanted = written_name(m.name, "material");
            std::string name = wanted;
            for (int number = 1; !taken.insert(name).second; ++number)
                name = wanted + "-" + std::to_string(number);
            names_.push_back(name);
        }
    }

    void geometry(const std::string &materials)
    {
        work_.phase(1, scene_.elements);
        out_.add("# VESK\nmtllib ", materials, '\n');
        for (const model_node &node : scene_.nodes)
            add(node);
        out_.send();
    }

    std::string materials()
    {
        text_out out;
        for (std::size_t i = 0; i < scene_.materials.size(); ++i)
            describe(out, i);
        return std::move(out.text);
    }

private:
    void add(const model_node &node)
    {
        if (node.surfaces.empty() && node.loose.empty())
            return;
        out_.add("o ", written_name(node.name, "object", ' '), '\n');
        for (std::size_t i = 0; i < node.points.size(); ++i) {
            out_.add("v ", node.points[i]);
            for (std::size_t k = 3 * i; !node.colours.empty() && k < 3 * i + 3; ++k)
                out_.add(' ', static_cast<float>(node.colours[k]) / 255);
            out_.add('\n');
            if (!out_.goes_on())
                return;
        }
        for (std::size_t i = 0; i < node.uv.size(); i += 2)
            out_.add("vt ", node.uv[i], ' ', node.uv[i + 1], '\n');
        int material = -1;
        int shading = -1;
        for (const model_surface &s : node.surfaces) {
            if (s.material != material)
                out_.add("usemtl ", names_[static_cast<std::size_t>(material = s.material)], '\n');
            if (!is_line(s) && int{s.smooth} != shading)
                out_.add("s ", (shading = s.smooth) != 0 ? "1" : "off", '\n');
            surface(node, s);
            if (!out_.goes_on())
                return;
        }
        for (const int point : node.loose) {
            out_.add("p ", first_point_ + point, '\n');
            if (!out_.goes_on())
                return;
        }
        first_point_ += static_cast<int>(node.points.size());
        if (node.textured)
            first_uv_ += static_cast<int>(node.uv.size() / 2);
    }

    void surface(const model_node &node, const model_surface &s)
    {
        out_.add(is_line(s) ? 'l' : 'f');
        for (int k = 0; k < s.count; ++k)
            corner(node, s.first + k);
        if (s.kind == SURFACE_CLOSED_LINE)
            corner(node, s.first);
        out_.add('\n');
    }

    void corner(const model_node &node, int k)
    {
        out_.add(' ', first_point_ + node.corners[static_cast<std::size_t>(k)]);
        if (node.textured)
            out_.add('/', first_uv_ + k);
    }

    void describe(text_out &out, std::size_t i)
    {
        const material &m = scene_.materials[i].look;
        out.add("newmtl ", names_[i], '\n');
        const struct {
            const char *key;
            const float *rgb;
        } colours[] = {
            {"Ka", m.ambient}, {"Kd", m.diffuse}, {"Ks", m.specular}, {"Ke", m.emissive}};
        for (const auto &colour : colours)
            out.add(colour.key, ' ', colour.rgb[0], ' ', colour.rgb[1], ' ', colour.rgb[2], '\n');
        out.add("Ns ", m.shininess, "\nd ", 1 - m.transparency, '\n');
        const model_material &described = scene_.materials[i];
        if (!described.picture.empty()) {
            out.add("map_Kd ");
            if (described.repeat[0] != 1 || described.repeat[1] != 1)
                out.add("-s ", described.repeat[0], ' ', described.repeat[1], " 1 ");
            if (described.offset[0] != 0 || described.offset[1] != 0)
                out.add("-o ", described.offset[0], ' ', described.offset[1], " 0 ");
            out.add(described.picture, '\n');
        }
        out.add('\n');
    }

    job &work_;
    const model &scene_;
    growing_text out_;
    std::vector<std::string> names_;
    int first_point_ = 1, first_uv_ = 1;
};

} // namespace

int obj_export(const char *filename)
{
    model_wishes wishes;
    wishes.lights = wishes.groups = wishes.normals = false;
    wishes.placing = wishes.points = wishes.point_colours = true;
    return export_scene(
        filename, "OBJ", wishes,
        [](job &work, const model &scene, export_files &files, const std::string &name) {
            obj_writer writer(work, scene, files);
            const std::string materials = written_name(base_name(name), "scene") + ".mtl";
            const std::string folder = vesk_filename_get_path(name.c_str());
            files.begin(vesk_filename_concat_path_file(folder.c_str(), materials.c_str()));
            files.write(writer.materials());
            files.begin(name);
            writer.geometry(materials);
        });
}

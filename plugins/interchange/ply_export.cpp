// PLY as it is read, with everything in one object.
#include "formats.h"
#include "model.h"
#include "text.h"

#include <algorithm>
#include <set>

namespace {

class ply_writer {
public:
    ply_writer(job &work, const model &scene, export_files &files, bool binary)
        : work_(work), scene_(scene), binary_(binary), out_(work, files)
    {
    }

    void run()
    {
        std::size_t vertices = 0;
        std::size_t faces = 0;
        std::size_t edges = 0;
        std::set<std::string> pictures;
        for (const model_node &node : scene_.nodes) {
            vertices += node.points.size();
            textured_ = textured_ || node.textured;
            coloured_ = coloured_ || !node.colours.empty();
            for (const model_surface &surface : node.surfaces) {
                if (is_line(surface))
                    edges += static_cast<std::size_t>(surface.count) -
                             (surface.kind == SURFACE_CLOSED_LINE ? 0 : 1);
                else
                    ++faces;
                longest_ = std::max(longest_, is_line(surface) ? 0 : surface.count);
                const std::string &picture = material_of(surface).picture;
                if (!picture.empty())
                    pictures.insert(picture);
                painted_ = painted_ || node.colours.empty();
            }
        }
        header(vertices, faces, edges, pictures.size() == 1 ? *pictures.begin() : "");
        vesk_report_loss(pictures.size() > 1 ? static_cast<int>(pictures.size()) : 0, "textures");
        vesk_report_loss(scene_.nodes.size() > 1 ? static_cast<int>(scene_.nodes.size()) : 0,
                         "objects of their own");
        work_.phase(1, scene_.elements);
        points();
        each_surface(false);
        each_surface(true);
        out_.send();
    }

private:
    [[nodiscard]] const model_material &material_of(const model_surface &surface) const
    {
        return scene_.materials[static_cast<std::size_t>(surface.material)];
    }

    void header(std::size_t vertices, std::size_t faces, std::size_t edges,
                const std::string &picture)
    {
        out_.add("ply\nformat ", binary_ ? "binary_little_endian" : "ascii",
                 " 1.0\ncomment VESK\n");
        if (!picture.empty())
            out_.add("comment TextureFile ", picture, '\n');
        out_.add("element vertex ", vertices,
                 "\nproperty float x\nproperty float y\nproperty float z\n",
                 coloured_ ? three_bytes : "");
        const char *const colour = painted_ ? three_bytes : "";
        const std::string list = std::string("property list ") + (small() ? "uchar" : "uint");
        out_.add("element face ", faces, '\n', list, " uint vertex_indices\n",
                 textured_ ? list + " float texcoord\n" : "", colour);
        if (edges > 0)
            out_.add("element edge ", edges, "\nproperty uint vertex1\nproperty uint vertex2\n",
                     colour);
        out_.add("end_header\n");
    }

    static constexpr const char *three_bytes =
        "property uchar red\nproperty uchar green\nproperty uchar blue\n";

    // Lists are counted in a byte where they can be: some readers know nothing else.
    [[nodiscard]] bool small() const { return longest_ < 128; }
    void length(int count)
    {
        if (binary_ && small())
            add_bytes(out_.text, static_cast<unsigned char>(count));
        else
            number(static_cast<std::uint32_t>(count));
    }

    template <class N>
    void number(N value)
    {
        if (binary_)
            add_bytes(out_.text, value);
        else
            out_.add(value, ' ');
    }
    void end_row()
    {
        if (!binary_)
            out_.text.back() = '\n';
    }

    void points()
    {
        for (const model_node &node : scene_.nodes) {
            for (std::size_t i = 0; i < node.points.size(); ++i) {
                const point3_t &p = node.points[i];
                for (const float value : {p.x, p.y, p.z})
                    number(value);
                for (std::size_t k = 3 * i; coloured_ && k < 3 * i + 3; ++k)
                    byte(node.colours.empty() ? 255 : node.colours[k]);
                end_row();
                if (!out_.goes_on())
                    return;
            }
        }
    }

    void each_surface(bool lines)
    {
        std::uint32_t first = 0;
        for (const model_node &node : scene_.nodes) {
            for (const model_surface &surface : node.surfaces) {
                if (is_line(surface) != lines)
                    continue;
                if (lines)
                    edges(node, surface, first);
                else
                    face(node, surface, first);
                if (!out_.goes_on())
                    return;
            }
            first += static_cast<std::uint32_t>(node.points.size());
        }
    }

    static std::uint32_t index(const model_node &node, int corner)
    {
        return static_cast<std::uint32_t>(node.corners[static_cast<std::size_t>(corner)]);
    }

    void face(const model_node &node, const model_surface &surface, std::uint32_t first)
    {
        length(surface.count);
        for (int k = 0; k < surface.count; ++k)
            number(first + index(node, surface.first + k));
        if (textured_) {
            length(2 * surface.count);
            for (int k = 2 * surface.first; k < 2 * (surface.first + surface.count); ++k)
                number(node.textured ? node.uv[static_cast<std::size_t>(k)] : 0.0f);
        }
        colour(surface);
    }

    void edges(const model_node &node, const model_surface &surface, std::uint32_t first)
    {
        const int count = surface.count - (surface.kind == SURFACE_CLOSED_LINE ? 0 : 1);
        for (int k = 0; k < count; ++k) {
            number(first + index(node, surface.first + k));
            number(first + index(node, surface.first + (k + 1) % surface.count));
            colour(surface);
        }
    }

    void colour(const model_surface &surface)
    {
        for (int i = 0; i < 3 && painted_; ++i) {
            const float value = material_of(surface).look.diffuse[i];
            byte(static_cast<unsigned char>(std::min(std::max(value, 0.0f), 1.0f) * 255 + 0.5f));
        }
        end_row();
    }

    void byte(unsigned char value)
    {
        if (binary_)
            add_bytes(out_.text, value);
        else
            out_.add(static_cast<unsigned>(value), ' ');
    }

    job &work_;
    const model &scene_;
    const bool binary_;
    bool textured_ = false;
    bool coloured_ = false; // the points
    bool painted_ = false;  // surfaces whose points have no colours
    int longest_ = 0;
    growing_text out_;
};

int ply_write(const char *filename, bool binary)
{
    model_wishes wishes;
    wishes.lights = wishes.smooth = wishes.groups = wishes.colours = wishes.normals = false;
    wishes.ambient = false;
    wishes.points = wishes.point_colours = true;
    return export_scene(filename, "PLY", wishes,
                        [&](job &work, const model &scene, export_files &files, const auto &name) {
                            files.begin(name);
                            ply_writer(work, scene, files, binary).run();
                        });
}

} // namespace

int ply_export(const char *filename) { return ply_write(filename, true); }
int ply_text_export(const char *filename) { return ply_write(filename, false); }

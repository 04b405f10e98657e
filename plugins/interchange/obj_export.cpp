#include "obj.h"

#include <cctype>
#include <cstdarg>
#include <cstdio>
#include <set>

namespace {

void append(std::string &out, const char *format, ...) VESK_PRINTF(2, 3);
void append(std::string &out, const char *format, ...)
{
    char buffer[512];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(buffer, sizeof buffer, format, arguments);
    va_end(arguments);
    out += buffer;
}

// A name without blanks and line ends.
std::string one_word(const char *name, const char *fallback)
{
    std::string word = name == nullptr || *name == '\0' ? fallback : name;
    for (char &c : word)
        if (std::isspace(static_cast<unsigned char>(c)) != 0)
            c = '_';
    return word;
}

class obj_writer {
public:
    explicit obj_writer(const std::string &filename) : filename_(filename)
    {
        const std::string name = vesk_filename_get_file(filename.c_str());
        base_ = name.substr(0, name.rfind('.'));
        append(text_, "# VESK\nmtllib %s.mtl\n", one_word(base_.c_str(), "scene").c_str());
    }

    // An object with everything below it, without recursion: trees may be deep.
    void tree(object_t *top)
    {
        std::vector<object_t *> waiting(1, top);
        while (!waiting.empty()) {
            object_t *next = waiting.back();
            waiting.pop_back();
            add(next);
            std::vector<object_t *> children;
            for (const listitem *node = next->children; node != nullptr; node = node->next)
                children.push_back(reinterpret_cast<object_t *>(node->data));
            waiting.insert(waiting.end(), children.rbegin(), children.rend());
        }
    }

    bool write() const
    {
        const std::string folder = vesk_filename_get_path(filename_.c_str());
        const std::string materials = vesk_filename_concat_path_file(
            folder.c_str(), (one_word(base_.c_str(), "scene") + ".mtl").c_str());
        return write_file(materials, materials_) && write_file(filename_, text_);
    }

private:
    void add(object_t *object)
    {
        const vesk_mesh_arrays_t mesh = vesk_object_get_mesh_arrays(object);
        if (mesh.num_surfaces == 0)
            return;
        append(text_, "o %s\n", one_word(object->name, "object").c_str());
        for (int i = 0; i < mesh.num_vertices; ++i)
            append(text_, "v %.9g %.9g %.9g\n", static_cast<double>(mesh.positions[i].x),
                   static_cast<double>(mesh.positions[i].y),
                   static_cast<double>(mesh.positions[i].z));
        for (int i = 0; i < mesh.num_corners; ++i)
            append(text_, "vt %.9g %.9g\n", static_cast<double>(mesh.uv[2 * i]),
                   static_cast<double>(mesh.uv[2 * i + 1]));
        std::string used;
        int shading = -1;
        for (int i = 0; i < mesh.num_surfaces; ++i) {
            const std::string wanted = material_name(object, mesh.surfaces[i].material);
            if (wanted != used)
                append(text_, "usemtl %s\n", (used = wanted).c_str());
            const int smooth = (mesh.surfaces[i].flags & SURFACE_SMOOTH) != 0 ? 1 : 0;
            if (smooth != shading)
                append(text_, "s %s\n", (shading = smooth) != 0 ? "1" : "off");
            surface(mesh, i);
        }
        first_point_ += mesh.num_vertices;
        first_uv_ += mesh.num_corners;
    }

    void surface(const vesk_mesh_arrays_t &mesh, int i)
    {
        const int type = mesh.surfaces[i].flags & SURFACE_TYPE_MASK;
        const bool line = type == SURFACE_LINE || type == SURFACE_CLOSED_LINE;
        const int first = mesh.corner_offsets[i];
        const int end = mesh.corner_offsets[i + 1];
        if (end - first < (line ? 2 : 3))
            return;
        text_ += line ? "l" : "f";
        for (int corner = first; corner < end; ++corner)
            append(text_, " %d/%d", first_point_ + mesh.corners[corner], first_uv_ + corner);
        if (type == SURFACE_CLOSED_LINE)
            append(text_, " %d/%d", first_point_ + mesh.corners[first], first_uv_ + first);
        text_ += '\n';
    }

    // The name of a palette entry together with the object's picture; it is described when it is
    // first used.
    std::string material_name(const object_t *object, int index)
    {
        if (index < 0 || index >= vesk_get_num_palette())
            index = 0;
        const char *picture =
            object->has_texture != 0 ? texture_id_to_name(object->texture) : nullptr;
        std::string name = one_word(vesk_material_get_name_index(index), "material");
        append(name, "_%d", index);
        if (picture != nullptr)
            append(name, "_%d_%g_%g_%g_%g", object->texture,
                   static_cast<double>(object->texture_repeat_x),
                   static_cast<double>(object->texture_repeat_y),
                   static_cast<double>(object->texture_offset_x),
                   static_cast<double>(object->texture_offset_y));
        if (described_.insert(name).second)
            describe(name, *vesk_palette_get_material(index), object, picture);
        return name;
    }

    void colour(const char *key, const float *rgb)
    {
        append(materials_, "%s %g %g %g\n", key, static_cast<double>(rgb[0]),
               static_cast<double>(rgb[1]), static_cast<double>(rgb[2]));
    }

    void describe(const std::string &name, const material &m, const object_t *object,
                  const char *picture)
    {
        append(materials_, "newmtl %s\n", name.c_str());
        colour("Ka", m.ambient);
        colour("Kd", m.diffuse);
        colour("Ks", m.specular);
        colour("Ke", m.emissive);
        append(materials_, "Ns %g\nd %g\n", static_cast<double>(m.shininess),
               static_cast<double>(1 - m.transparency));
        if (picture != nullptr) {
            append(materials_, "map_Kd -s %g %g 1 -o %g %g 0 ",
                   static_cast<double>(object->texture_repeat_x),
                   static_cast<double>(object->texture_repeat_y),
                   static_cast<double>(object->texture_offset_x),
                   static_cast<double>(object->texture_offset_y));
            materials_ += std::string(search_texture_save(filename_.c_str(), picture)) + "\n";
        }
        materials_ += "\n";
    }

    // Under another name first, so that a failure leaves the former file.
    static bool write_file(const std::string &name, const std::string &text)
    {
        const std::string fresh = name + ".new";
        std::FILE *file = std::fopen(fresh.c_str(), "wb");
        if (file == nullptr)
            return false;
        const bool written = std::fwrite(text.data(), 1, text.size(), file) == text.size();
        if (std::fclose(file) == 0 && written && std::rename(fresh.c_str(), name.c_str()) == 0)
            return true;
        std::remove(fresh.c_str());
        return false;
    }

    const std::string filename_;
    std::string base_, text_, materials_;
    std::set<std::string> described_;
    int first_point_ = 1, first_uv_ = 1;
};

} // namespace

int obj_export(const char *filename)
{
    const std::string name = filename;
    obj_writer writer(name);
    writer.tree(vesk_get_world());
    if (!writer.write()) {
        display_message("can't open file '%s' for writing", name.c_str());
        return 0;
    }
    display_message("written file %s", name.c_str());
    return 1;
}

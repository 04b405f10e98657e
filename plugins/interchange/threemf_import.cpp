// 3MF as it is read: objects by their names with their frames, triangles in the colours of base
// materials and colour groups and with the pictures of texture groups, also several of these on one
// triangle. Its other elements (slices, lattices) are complaints.
#include "archive.h"
#include "formats.h"
#include "mesh.h"
#include "tags.h"
#include "text.h"
#include "work.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <map>
#include <memory>
#include <set>
#include <unistd.h>

namespace {

constexpr std::size_t most_bytes = std::size_t{1} << 31;    // of the model's text ...
constexpr std::size_t most_of_small = std::size_t{1} << 28; // ... of a small archive ...
constexpr std::size_t most_packing = 40; // ... and as often as texts of numbers can be packed
// What a model may grow to when its parts are repeated: this much, and so many times its text, but
// not beyond a part of the machine's memory.
constexpr double grown_bytes = 256e6;
constexpr double grown_times = 200;
constexpr double share_of_memory = 0.5;
constexpr double triangle_bytes = 300, point_bytes = 80, object_bytes = 700;
constexpr int most_levels = 100;
constexpr std::size_t most_picture_bytes = std::size_t{1} << 28; // of one

// ---- the records of the file ----

// v x the first nine + the last three.
struct placing {
    float m[12] = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};
};

placing placing_of(const std::string &words)
{
    placing p;
    const char *at = words.c_str();
    float values[12];
    for (float &value : values) {
        char *end = nullptr;
        value = std::strtof(at, &end);
        if (end == at || !std::isfinite(value))
            return p;
        at = end;
    }
    std::copy_n(values, 12, p.m);
    return p;
}

placing combined(const placing &inner, const placing &outer)
{
    placing out;
    for (int row = 0; row < 4; ++row)
        for (int column = 0; column < 3; ++column) {
            float sum = row == 3 ? outer.m[9 + column] : 0;
            for (int k = 0; k < 3; ++k)
                sum += inner.m[3 * row + k] * outer.m[3 * k + column];
            out.m[3 * row + column] = sum;
        }
    return out;
}

struct component {
    int object;
    placing place;
};

constexpr int no_picture = -1;

struct stored_object {
    std::string name;
    std::vector<float> points;
    std::vector<int> corners, materials; // three a triangle; palette indices
    std::vector<int> pictures;           // one a triangle, as far as there are any
    std::vector<float> uv;               // six a triangle, likewise
    std::vector<component> components;

    [[nodiscard]] int picture(std::size_t triangle) const
    {
        return triangle < pictures.size() ? pictures[triangle] : no_picture;
    }
};

struct texture_group {
    int picture;
    std::vector<float> uv;
};

// Entries of several groups at once.
struct multi_group {
    std::vector<int> groups;
    std::vector<std::vector<int>> entries;
};

// The look of a corner of a triangle.
struct corner_look {
    int material = no_material;
    int picture = no_picture;
    float uv[2] = {0, 0};
};

std::vector<int> whole_numbers(const std::string &text)
{
    std::vector<int> numbers;
    const char *at = text.c_str();
    for (char *end = nullptr;; at = end) {
        const long value = std::strtol(at, &end, 10);
        if (end == at)
            return numbers;
        numbers.push_back(static_cast<int>(std::min(std::max(value, -1L), 0x7FFFFFFFL)));
    }
}

// A 3MF unit in millimetres.
float size_of_unit(const std::string &unit)
{
    static const std::map<std::string, float> units = {{"micron", 0.001f},
                                                       {"centimeter", 10.0f},
                                                       {"meter", 1000.0f},
                                                       {"inch", 25.4f},
                                                       {"foot", 304.8f}};
    const auto found = units.find(unit);
    return found == units.end() ? 1 : found->second;
}

class threemf_reader {
public:
    threemf_reader(job &work, const std::string &text)
        : work_(work), size_(text.size()), tags_(text)
    {
    }

    void read()
    {
        work_.phase(share_of_parsing, static_cast<double>(size_));
        while (tags_.next() && work_.at(static_cast<double>(tags_.place())))
            tag();
        if (bad_ > 0)
            vesk_report_warning(0, "%u triangles with bad corners were left out", bad_);
    }

    // The parts of the archive that hold pictures, by their numbers.
    [[nodiscard]] const std::map<int, std::string> &pictures() const { return pictures_; }

    // A world of the items. `files` are the pictures' files, `filename` is the model's.
    object_t *build(const std::string &filename, const std::map<int, std::string> &files)
    {
        filename_ = filename;
        files_ = &files;
        object_t *world = new_object(OBJECT_WORLD);
        placing upright; // (x, y, z) becomes (x, z, -y)
        const float turn[9] = {unit_, 0, 0, 0, 0, -unit_, 0, unit_, 0};
        std::copy_n(turn, 9, upright.m);
        const double memory = static_cast<double>(sysconf(_SC_PHYS_PAGES)) *
                              static_cast<double>(sysconf(_SC_PAGESIZE));
        most_grown_ = std::min(grown_bytes + grown_times * static_cast<double>(size_),
                               share_of_memory * memory);
        for (const component &item : items_)
            add(world, item.object, combined(item.place, upright), 0);
        object_calc_normals_force(world);
        return world;
    }

    // Its parts are repeated beyond what can be held.
    [[nodiscard]] bool too_much() const { return too_much_; }
    [[nodiscard]] bool has_surfaces() const { return has_surfaces_; }

private:
    void tag()
    {
        const std::string &name = tags_.name;
        if (tags_.closes) {
            if (name == "object")
                current_ = nullptr;
            return;
        }
        if (name == "model")
            unit_ = size_of_unit(tags_.text("unit"));
        else if (name == "basematerials" || name == "colorgroup")
            group_ = &groups_[tags_.whole("id", -1)];
        else if ((name == "base" || name == "color") && group_ != nullptr)
            group_->push_back(colour(name == "base" ? "displaycolor" : "color"));
        else if (name == "texture2d")
            pictures_[tags_.whole("id", -1)] = tags_.text("path");
        else if (name == "texture2dgroup" || name == "tex2coord")
            texture(name == "tex2coord");
        else if (name == "multiproperties" || name == "multi")
            multi(name == "multi");
        else if (name == "object")
            begin_object();
        else if (name == "vertex" && current_ != nullptr)
            for (const char *axis : {"x", "y", "z"}) {
                const float value = tags_.real(axis, 0);
                current_->points.push_back(std::isfinite(value) ? value : 0);
            }
        else if (name == "triangle" && current_ != nullptr)
            triangle();
        else if (name == "component" && current_ != nullptr)
            current_->components.push_back(
                {tags_.whole("objectid", -1), placing_of(tags_.text("transform"))});
        else if (name == "item")
            items_.push_back({tags_.whole("objectid", -1), placing_of(tags_.text("transform"))});
        else if ((name == "compositematerials" || name == "beamlattice" || name == "slicestack") &&
                 told_.insert(name).second)
            vesk_report_warning(0, "its %s elements are not read", name.c_str());
    }

    int colour(const char *attribute)
    {
        const std::string text = tags_.text(attribute);
        unsigned parts[4] = {255, 255, 255, 255};
        for (std::size_t i = 0; i < 4 && 2 * i + 2 < text.size(); ++i)
            std::from_chars(&text[2 * i + 1], &text[2 * i + 1] + 2, parts[i], 16);
        material_values m;
        for (int i = 0; i < 3; ++i)
            m.diffuse[i] = static_cast<float>(parts[i] & 255u) / 255;
        m.transparency = 1 - static_cast<float>(parts[3] & 255u) / 255;
        if (const std::string name = tags_.text("name"); !name.empty())
            vesk_material_set_name(&m, name.c_str());
        return vesk_palette_get_new_material_index(&m);
    }

    void begin_object()
    {
        stored_object &object = objects_[tags_.whole("id", -1)];
        object = stored_object();
        object.name = tags_.text("name");
        current_ = &object;
        group_of_object_ = tags_.whole("pid", -1);
        place_in_group_ = tags_.whole("pindex", 0);
    }

    void texture(bool coordinates)
    {
        if (!coordinates) {
            textures_known_ = &textures_[tags_.whole("id", -1)];
            textures_known_->picture = tags_.whole("texid", no_picture);
        } else if (textures_known_ != nullptr) {
            for (const char *axis : {"u", "v"}) {
                const float value = tags_.real(axis, 0);
                textures_known_->uv.push_back(std::isfinite(value) ? value : 0);
            }
        }
    }

    void multi(bool entry)
    {
        if (!entry) {
            multi_ = &multis_[tags_.whole("id", -1)];
            multi_->groups = whole_numbers(tags_.text("pids"));
        } else if (multi_ != nullptr) {
            multi_->entries.push_back(whole_numbers(tags_.text("pindices")));
        }
    }

    void take_look(int group, int place, corner_look *look) const
    {
        if (place < 0)
            return;
        const auto at = static_cast<std::size_t>(place);
        const auto colours = groups_.find(group);
        if (colours != groups_.end() && at < colours->second.size())
            look->material = colours->second[at];
        const auto textures = textures_.find(group);
        if (textures != textures_.end() && 2 * at + 1 < textures->second.uv.size()) {
            look->picture = textures->second.picture;
            std::copy_n(&textures->second.uv[2 * at], 2, look->uv);
        }
    }

    [[nodiscard]] corner_look look_of(int group, int place) const
    {
        corner_look look;
        take_look(group, place, &look);
        const auto several = multis_.find(group);
        if (several == multis_.end() || place < 0 ||
            static_cast<std::size_t>(place) >= several->second.entries.size())
            return look;
        const std::vector<int> &places = several->second.entries[static_cast<std::size_t>(place)];
        for (std::size_t i = 0; i < several->second.groups.size(); ++i)
            take_look(several->second.groups[i], i < places.size() ? places[i] : 0, &look);
        return look;
    }

    void triangle()
    {
        const int count = static_cast<int>(current_->points.size() / 3);
        const int corners[3] = {tags_.whole("v1", -1), tags_.whole("v2", -1),
                                tags_.whole("v3", -1)};
        for (const int corner : corners)
            if (corner < 0 || corner >= count) {
                ++bad_;
                return;
            }
        current_->corners.insert(current_->corners.end(), corners, corners + 3);
        const int group = tags_.whole("pid", group_of_object_);
        const int first = tags_.whole("p1", group == group_of_object_ ? place_in_group_ : 0);
        const corner_look look = look_of(group, first);
        // Below a texture without a colour lies that of the object.
        const int material = look.material != no_material
                                 ? look.material
                                 : look_of(group_of_object_, place_in_group_).material;
        current_->materials.push_back(material);
        if (look.picture == no_picture)
            return;
        const std::size_t triangles = current_->materials.size();
        current_->pictures.resize(triangles, no_picture);
        current_->pictures.back() = look.picture;
        current_->uv.resize(6 * triangles);
        const corner_look others[] = {look, look_of(group, tags_.whole("p2", first)),
                                      look_of(group, tags_.whole("p3", first))};
        for (std::size_t i = 0; i < 3; ++i)
            std::copy_n(others[i].uv, 2, &current_->uv[6 * (triangles - 1) + 2 * i]);
    }

    void add(object_t *parent, int id, const placing &place, int level)
    {
        const auto found = objects_.find(id);
        if (found == objects_.end())
            return;
        const stored_object &stored = found->second;
        if (level >= most_levels || too_much_) {
            too_much_ = true;
            return;
        }
        // An object may have either a mesh or parts; a first part of its own name, in its very
        // place, is its mesh.
        std::size_t first = 0;
        const stored_object *own = &stored;
        if (!stored.components.empty()) {
            const auto part = objects_.find(stored.components[0].object);
            const placing same;
            if (part != objects_.end() && part->second.name == stored.name &&
                part->second.components.empty() &&
                std::equal(same.m, same.m + 12, stored.components[0].place.m)) {
                own = &part->second;
                first = 1;
            }
        }
        grown_ += object_bytes + triangle_bytes * static_cast<double>(own->materials.size()) +
                  point_bytes * static_cast<double>(own->points.size() / 3);
        if (grown_ > most_grown_) {
            too_much_ = true;
            return;
        }
        has_surfaces_ = has_surfaces_ || !own->materials.empty();
        object_t *object = make(*own, stored.name, place);
        object_add_child(parent, object);
        for (std::size_t i = first; i < stored.components.size(); ++i)
            add(object, stored.components[i].object, combined(stored.components[i].place, place),
                level + 1);
    }

    // A group; an object when there are triangles; one below a group for each picture when there
    // are several.
    [[nodiscard]] object_t *make(const stored_object &stored, const std::string &name,
                                 const placing &place) const
    {
        std::set<int> used;
        for (std::size_t i = 0; i < stored.materials.size(); ++i)
            used.insert(stored.picture(i));
        object_t *object = nullptr;
        if (used.size() == 1) {
            object = make_mesh(stored, name, place, *used.begin(), false);
        } else {
            object = new_group();
            object_set_name(object, name.c_str());
            for (const int picture : used)
                object_add_child(object, make_mesh(stored, name, place, picture, true));
        }
        set_frame(object, place);
        return object;
    }

    // The triangles with one picture; of some of them only the points that they use.
    [[nodiscard]] object_t *make_mesh(const stored_object &stored, const std::string &name,
                                      const placing &place, int picture, bool some) const
    {
        mesh_arrays mesh;
        std::vector<int> places(some ? stored.points.size() / 3 : 0, -1);
        for (std::size_t i = 0; i + 2 < stored.points.size() && !some; i += 3)
            add_point(mesh, &stored.points[i], place);
        for (std::size_t i = 0; i < stored.materials.size(); ++i) {
            if (stored.picture(i) != picture)
                continue;
            for (std::size_t k = 3 * i; k < 3 * i + 3; ++k) {
                int point = stored.corners[k];
                if (some) {
                    int &own = places[static_cast<std::size_t>(point)];
                    if (own < 0) {
                        own = mesh.num_points();
                        add_point(mesh, &stored.points[3 * static_cast<std::size_t>(point)], place);
                    }
                    point = own;
                }
                if (picture == no_picture)
                    mesh.add_corner(point);
                else
                    mesh.add_corner(point, stored.uv[2 * k], stored.uv[2 * k + 1]);
            }
            mesh.end_surface(stored.materials[i], SURFACE_TWOSIDED);
        }
        object_t *object = mesh.make_object(name);
        set_frame(object, place);
        const auto file = files_->find(picture);
        if (file != files_->end())
            search_and_set_texture(object, filename_.c_str(), file->second.c_str());
        return object;
    }

    static void add_point(mesh_arrays &mesh, const float *p, const placing &place)
    {
        for (std::size_t column = 0; column < 3; ++column) {
            float sum = place.m[9 + column];
            for (std::size_t k = 0; k < 3; ++k)
                sum += p[k] * place.m[3 * k + column];
            mesh.points.push_back(sum + 0.0f);
        }
    }

    static void set_frame(object_t *object, const placing &place)
    {
        vesk_object_set_centre(object, place.m[9], place.m[10], place.m[11]);
        set_rotation(object, place);
    }

    // Of a frame that only turns, perhaps with one scale.
    static void set_rotation(object_t *object, const placing &place)
    {
        const float *m = place.m;
        const auto dot = [m](int i, int k) {
            return m[3 * i] * m[3 * k] + m[3 * i + 1] * m[3 * k + 1] + m[3 * i + 2] * m[3 * k + 2];
        };
        const float size = std::hypot(m[0], m[1], m[2]);
        bool turns = size > 0;
        for (int i = 0; i < 3 && turns; ++i)
            turns = !(std::fabs(std::hypot(m[3 * i], m[3 * i + 1], m[3 * i + 2]) - size) >
                          1e-4f * size ||
                      std::fabs(dot(i, (i + 1) % 3)) > 1e-4f * size * size);
        const bool mirrors = m[0] * (m[4] * m[8] - m[5] * m[7]) -
                                 m[1] * (m[3] * m[8] - m[5] * m[6]) +
                                 m[2] * (m[3] * m[7] - m[4] * m[6]) <
                             0;
        for (int i = 0; i < 9 && turns && !mirrors; ++i)
            object->rotation[i] = m[i] / size;
    }

    job &work_;
    const std::size_t size_;
    tag_reader tags_;
    float unit_ = 1;
    std::string filename_;
    const std::map<int, std::string> *files_ = nullptr;
    std::map<int, std::vector<int>> groups_;
    std::vector<int> *group_ = nullptr;
    std::map<int, std::string> pictures_;
    std::map<int, texture_group> textures_;
    texture_group *textures_known_ = nullptr;
    std::map<int, multi_group> multis_;
    multi_group *multi_ = nullptr;
    std::map<int, stored_object> objects_;
    stored_object *current_ = nullptr;
    int group_of_object_ = -1, place_in_group_ = 0;
    std::vector<component> items_;
    std::set<std::string> told_;
    unsigned bad_ = 0;
    double grown_ = 0; // bytes that the model takes, about
    double most_grown_ = 0;
    bool has_surfaces_ = false;
    bool too_much_ = false;
};

// How much an archive of a size may unpack to.
std::size_t most_unpacked(std::size_t archive_size)
{
    return std::min(most_bytes, most_of_small + most_packing * archive_size);
}

// The name of the model's part: the one that the archive's list of relations names.
std::string model_part(const archive_reader &archive)
{
    std::string text;
    if (archive.extract("_rels/.rels", most_bytes, &text)) {
        tag_reader tags(text);
        while (tags.next()) {
            std::string target = tags.text("Target");
            if (tags.name != "Relationship" ||
                tags.text("Type").find("/3dmodel") == std::string::npos)
                continue;
            target.erase(0, target.find_first_not_of('/'));
            return target;
        }
    }
    return "3D/3dmodel.model";
}

// Writes the pictures of the archive to files; their names by the pictures' numbers.
std::map<int, std::string> extract_pictures(const std::string &filename,
                                            const archive_reader &archive, std::size_t archive_size,
                                            const std::map<int, std::string> &pictures)
{
    std::map<int, std::string> files;
    if (pictures.empty())
        return files;
    std::size_t left = most_unpacked(archive_size);
    const std::string folder =
        vesk_embedded_images_folder(filename.c_str(), static_cast<int>(pictures.size()));
    for (const auto &[number, path] : pictures) {
        const std::string part = path.substr(std::min(path.find_first_not_of('/'), path.size()));
        std::string content;
        if (!archive.extract(part, std::min(left, most_picture_bytes), &content)) {
            vesk_report_warning(0, "the picture %s is not in the file, or too large", path.c_str());
            continue;
        }
        left -= content.size();
        const std::string written =
            vesk_embedded_image_write(folder.c_str(), path.c_str(), content.data(), content.size());
        if (!written.empty())
            files[number] = written;
    }
    return files;
}

} // namespace

object_t *threemf_import(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    job work;
    if (!read_file(name, &bytes, &work))
        return refuse(work, name, std::strerror(errno));
    const archive_reader archive(bytes);
    const std::string part = model_part(archive);
    std::string text;
    if (!archive.has(part))
        return refuse(work, name, "there is no model in it");
    if (!archive.extract(part, most_unpacked(bytes.size()), &text))
        return refuse(work, name, "its model is damaged, or unpacks to more than can be held");
    threemf_reader reader(work, text);
    reader.read();
    if (work.cancelled())
        return refuse(work, name, "");
    object_t *world =
        reader.build(name, extract_pictures(name, archive, bytes.size(), reader.pictures()));
    if (reader.has_surfaces() && !reader.too_much())
        return world;
    object_free(world);
    return refuse(work, name,
                  reader.too_much() ? "it repeats its parts more often than can be held"
                                    : "there is no geometry in it");
}

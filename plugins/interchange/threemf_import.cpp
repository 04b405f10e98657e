// 3MF as it is read: objects by their names with their frames, triangles in the colours of base
// materials and colour groups. What it has besides (textures, slices, lattices) is told.
#include "archive.h"
#include "formats.h"
#include "mesh.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <cstring>
#include <memory>
#include <set>

namespace {

constexpr std::size_t most_bytes = std::size_t{1} << 31; // of the model's text
constexpr std::size_t most_triangles = 50000000;         // of all that is built of it
constexpr int most_levels = 100;

// ---- XML, as far as it is needed: tags and their attributes ----

class tag_reader {
public:
    explicit tag_reader(const std::string &text) : text_(text) {}

    std::string name; // without a prefix
    bool closes = false, empty = false;

    bool next()
    {
        while (true) {
            const std::size_t begin = text_.find('<', at_);
            if (begin == std::string::npos)
                return false;
            if (text_.compare(begin, 4, "<!--") == 0) {
                at_ = text_.find("-->", begin);
                if (at_ == std::string::npos)
                    return false;
                continue;
            }
            std::size_t end = begin;
            for (char quote = '\0'; end < text_.size() && (quote != '\0' || text_[end] != '>');
                 ++end) {
                if (quote != '\0' ? text_[end] == quote : (text_[end] == '"' || text_[end] == '\''))
                    quote = quote == '\0' ? text_[end] : '\0';
            }
            if (end >= text_.size())
                return false;
            at_ = end + 1;
            if (text_[begin + 1] == '?' || text_[begin + 1] == '!')
                continue;
            take(begin + 1, end);
            return true;
        }
    }

    // "" when there is none.
    [[nodiscard]] std::string text(const char *attribute) const
    {
        std::size_t begin = 0;
        std::size_t end = 0;
        return find(attribute, &begin, &end) ? decoded(text_.substr(begin, end - begin)) : "";
    }
    template <class N>
    [[nodiscard]] N number(const char *attribute, N fallback) const
    {
        std::size_t begin = 0;
        std::size_t end = 0;
        N value = fallback;
        if (find(attribute, &begin, &end)) {
            while (begin < end && (text_[begin] == ' ' || text_[begin] == '+'))
                ++begin;
            if (std::from_chars(text_.data() + begin, text_.data() + end, value).ec != std::errc())
                value = fallback;
        }
        return value;
    }

private:
    void take(std::size_t begin, std::size_t end)
    {
        closes = text_[begin] == '/';
        begin += closes ? 1 : 0;
        empty = end > begin && text_[end - 1] == '/';
        end_ = end - (empty ? 1 : 0);
        const std::size_t stop = std::min(text_.find_first_of(" \t\r\n", begin), end_);
        name = text_.substr(begin, stop - begin);
        name = name.substr(name.find(':') + 1);
        attributes_ = stop;
    }

    bool find(const char *attribute, std::size_t *begin, std::size_t *end) const
    {
        const std::size_t length = std::strlen(attribute);
        for (std::size_t at = attributes_; at < end_;) {
            at = text_.find_first_not_of(" \t\r\n", at);
            const std::size_t equals = text_.find('=', std::min(at, end_));
            if (at >= end_ || equals >= end_)
                return false;
            const std::size_t open = text_.find_first_of("\"'", equals);
            if (open >= end_)
                return false;
            const std::size_t close = text_.find(text_[open], open + 1);
            if (close > end_)
                return false;
            if (equals - at >= length && text_.compare(at, length, attribute) == 0 &&
                text_.find_first_not_of(" \t\r\n", at + length) == equals) {
                *begin = open + 1;
                *end = close;
                return true;
            }
            at = close + 1;
        }
        return false;
    }

    static std::string decoded(const std::string &text)
    {
        static const std::pair<const char *, const char *> entities[] = {
            {"&lt;", "<"}, {"&gt;", ">"}, {"&quot;", "\""}, {"&apos;", "'"}, {"&amp;", "&"}};
        std::string out;
        for (std::size_t at = 0; at < text.size();) {
            const auto *found =
                std::find_if(std::begin(entities), std::end(entities), [&](const auto &entity) {
                    return text.compare(at, std::strlen(entity.first), entity.first) == 0;
                });
            const bool known = found != std::end(entities);
            out += known ? found->second : text.substr(at, 1);
            at += known ? std::strlen(found->first) : 1;
        }
        return out;
    }

    const std::string &text_;
    std::size_t at_ = 0, attributes_ = 0, end_ = 0;
};

// ---- what the file holds ----

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

struct stored_object {
    std::string name;
    std::vector<float> points;
    std::vector<int> corners, materials; // three a triangle; palette indices
    std::vector<component> components;
};

class threemf_reader {
public:
    explicit threemf_reader(const std::string &text) : tags_(text) {}

    void read()
    {
        while (tags_.next())
            tag();
        if (bad_ > 0)
            vesk_report_warning(0, "%u triangles with bad corners were left out", bad_);
    }

    // A world of the items, or of all objects when there are none.
    object_t *build()
    {
        object_t *world = new_object(OBJECT_WORLD);
        placing upright; // (x, y, z) becomes (x, z, -y)
        const float turn[9] = {1, 0, 0, 0, 0, -1, 0, 1, 0};
        std::copy_n(turn, 9, upright.m);
        for (const component &item : items_)
            add(world, item.object, combined(item.place, upright), 0);
        if (too_much_)
            vesk_report_warning(0, "it repeats its parts too often; some were left out");
        object_calc_normals_force(world);
        return world;
    }

private:
    void tag()
    {
        const std::string &name = tags_.name;
        if (tags_.closes) {
            if (name == "object")
                current_ = nullptr;
            return;
        }
        if (name == "basematerials" || name == "colorgroup")
            group_ = &groups_[tags_.number("id", -1)];
        else if ((name == "base" || name == "color") && group_ != nullptr)
            group_->push_back(colour(name == "base" ? "displaycolor" : "color"));
        else if (name == "object")
            begin_object();
        else if (name == "vertex" && current_ != nullptr)
            for (const char *axis : {"x", "y", "z"}) {
                const float value = tags_.number(axis, 0.0f);
                current_->points.push_back(std::isfinite(value) ? value : 0);
            }
        else if (name == "triangle" && current_ != nullptr)
            triangle();
        else if (name == "component" && current_ != nullptr)
            current_->components.push_back(
                {tags_.number("objectid", -1), placing_of(tags_.text("transform"))});
        else if (name == "item")
            items_.push_back({tags_.number("objectid", -1), placing_of(tags_.text("transform"))});
        else if ((name == "texture2d" || name == "beamlattice" || name == "slicestack") &&
                 told_.insert(name).second)
            vesk_report_warning(0, "its %s elements are not read", name.c_str());
    }

    int colour(const char *attribute)
    {
        const std::string text = tags_.text(attribute);
        unsigned parts[4] = {255, 255, 255, 255};
        for (std::size_t i = 0; i < 4 && 2 * i + 2 < text.size(); ++i)
            std::from_chars(&text[2 * i + 1], &text[2 * i + 1] + 2, parts[i], 16);
        material m;
        material_init(&m);
        for (int i = 0; i < 3; ++i)
            m.diffuse[i] = static_cast<float>(parts[i] & 255u) / 255;
        m.transparency = 1 - static_cast<float>(parts[3] & 255u) / 255;
        std::string name = tags_.text("name");
        if (!name.empty())
            m.name = name.data(); // the palette keeps a copy
        return vesk_palette_get_new_material_index(&m);
    }

    void begin_object()
    {
        stored_object &object = objects_[tags_.number("id", -1)];
        object = stored_object();
        object.name = tags_.text("name");
        current_ = &object;
        group_of_object_ = tags_.number("pid", -1);
        place_in_group_ = tags_.number("pindex", 0);
    }

    [[nodiscard]] int material_of(int group, int place) const
    {
        const auto found = groups_.find(group);
        const bool known = found != groups_.end() && place >= 0 &&
                           static_cast<std::size_t>(place) < found->second.size();
        return known ? found->second[static_cast<std::size_t>(place)] : 0;
    }

    void triangle()
    {
        const int count = static_cast<int>(current_->points.size() / 3);
        const int corners[3] = {tags_.number("v1", -1), tags_.number("v2", -1),
                                tags_.number("v3", -1)};
        for (const int corner : corners)
            if (corner < 0 || corner >= count) {
                ++bad_;
                return;
            }
        current_->corners.insert(current_->corners.end(), corners, corners + 3);
        const int group = tags_.number("pid", group_of_object_);
        current_->materials.push_back(material_of(
            group, tags_.number("p1", group == group_of_object_ ? place_in_group_ : 0)));
    }

    void add(object_t *parent, int id, const placing &place, int level)
    {
        const auto found = objects_.find(id);
        if (found == objects_.end())
            return;
        const stored_object &stored = found->second;
        triangles_ += stored.materials.size() + 1;
        if (level >= most_levels || triangles_ > most_triangles) {
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
        object_t *object = make(*own, stored.name, place);
        object_add_child(parent, object);
        for (std::size_t i = first; i < stored.components.size(); ++i)
            add(object, stored.components[i].object, combined(stored.components[i].place, place),
                level + 1);
    }

    static object_t *make(const stored_object &stored, const std::string &name,
                          const placing &place)
    {
        object_t *object = nullptr;
        if (stored.materials.empty()) {
            object = new_group();
            object_set_name(object, name.c_str());
        } else {
            mesh_arrays mesh;
            for (std::size_t i = 0; i + 2 < stored.points.size(); i += 3)
                for (int column = 0; column < 3; ++column) {
                    float sum = place.m[9 + column];
                    for (std::size_t k = 0; k < 3; ++k)
                        sum += stored.points[i + k] *
                               place.m[3 * k + static_cast<std::size_t>(column)];
                    mesh.points.push_back(sum + 0.0f);
                }
            for (std::size_t i = 0; i < stored.corners.size(); ++i) {
                mesh.add_corner(stored.corners[i], 0, 0);
                if (i % 3 == 2)
                    mesh.end_surface(stored.materials[i / 3], SURFACE_TWOSIDED);
            }
            object = mesh.make_object(name);
        }
        vesk_object_set_centre(object, place.m[9], place.m[10], place.m[11]);
        set_rotation(object, place);
        return object;
    }

    // Of a frame that only turns, perhaps with one scale.
    static void set_rotation(object_t *object, const placing &place)
    {
        float lengths[3];
        for (int i = 0; i < 3; ++i)
            lengths[i] = std::hypot(place.m[3 * i], place.m[3 * i + 1], place.m[3 * i + 2]);
        const auto dot = [&](int i, int k) {
            return place.m[3 * i] * place.m[3 * k] + place.m[3 * i + 1] * place.m[3 * k + 1] +
                   place.m[3 * i + 2] * place.m[3 * k + 2];
        };
        const float size = lengths[0];
        if (!(size > 0) || std::fabs(lengths[1] - size) > 1e-4f * size ||
            std::fabs(lengths[2] - size) > 1e-4f * size ||
            std::fabs(dot(0, 1)) > 1e-4f * size * size ||
            std::fabs(dot(1, 2)) > 1e-4f * size * size ||
            std::fabs(dot(0, 2)) > 1e-4f * size * size)
            return;
        const float *m = place.m;
        if (m[0] * (m[4] * m[8] - m[5] * m[7]) - m[1] * (m[3] * m[8] - m[5] * m[6]) +
                m[2] * (m[3] * m[7] - m[4] * m[6]) <
            0)
            return; // a mirror
        for (int i = 0; i < 9; ++i)
            object->rotation[i] = place.m[i] / size;
    }

    tag_reader tags_;
    std::map<int, std::vector<int>> groups_;
    std::vector<int> *group_ = nullptr;
    std::map<int, stored_object> objects_;
    stored_object *current_ = nullptr;
    int group_of_object_ = -1, place_in_group_ = 0;
    std::vector<component> items_;
    std::set<std::string> told_;
    unsigned bad_ = 0;
    std::size_t triangles_ = 0;
    bool too_much_ = false;
};

// The name of the model's part: the one that the archive's list of relations names.
std::string model_part(const std::string &bytes,
                       const std::map<std::string, archive_entry> &entries)
{
    const auto relations = entries.find("_rels/.rels");
    std::string text;
    if (relations != entries.end() &&
        archive_extract(bytes, relations->second, most_bytes, &text)) {
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

} // namespace

object_t *threemf_import(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    if (!read_file(name, &bytes))
        return refuse(name, std::strerror(errno));
    const std::map<std::string, archive_entry> entries = archive_entries(bytes);
    const auto part = entries.find(model_part(bytes, entries));
    std::string text;
    if (part == entries.end())
        return refuse(name, "there is no model in it");
    if (!archive_extract(bytes, part->second, most_bytes, &text))
        return refuse(name, "its model is damaged");
    threemf_reader reader(text);
    reader.read();
    object_t *world = reader.build();
    bool any = false;
    std::vector<object_t *> waiting(1, world);
    while (!waiting.empty() && !any) {
        object_t *object = waiting.back();
        waiting.pop_back();
        any = object->num_surfaces > 0;
        for (const listitem *at = object->children; at != nullptr; at = at->next)
            waiting.push_back(reinterpret_cast<object_t *>(at->data));
    }
    if (any)
        return world;
    object_free(world);
    return refuse(name, "there is no geometry in it");
}

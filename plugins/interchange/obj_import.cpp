#include "obj.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>

namespace {

// One object of the scene while it is read: what shares a name and a picture.
struct part {
    std::string name;
    const obj_material *picture_of = nullptr;
    std::vector<float> points, uv;
    std::vector<int> offsets{0}, corners;
    std::vector<vesk_surface_attributes_t> attributes;
    std::map<int, int> known; // places of the file's points here
};

class obj_reader {
public:
    explicit obj_reader(const std::string &filename) : filename_(filename) {}

    void line(const char *p)
    {
        while (*p == ' ' || *p == '\t')
            ++p;
        if (p[0] == 'v' && p[1] == ' ')
            numbers(p + 2, 3, points_);
        else if (p[0] == 'v' && p[1] == 't')
            numbers(p + 2, 2, uv_);
        else if ((p[0] == 'f' || p[0] == 'l') && (p[1] == ' ' || p[1] == '\t'))
            surface(p + 2, p[0] == 'l');
        else
            keyword(obj_words(p));
    }

    object_t *finish() const
    {
        object_t *top = new_group();
        const std::string name = vesk_filename_get_file(filename_.c_str());
        object_set_name(top, name.substr(0, name.rfind('.')).c_str());
        for (const part &p : parts_)
            if (!p.attributes.empty())
                object_add_child(top, make(p));
        object_calc_normals_force(top);
        return top;
    }

private:
    static void numbers(const char *p, int count, std::vector<float> &out)
    {
        for (int i = 0; i < count; ++i) {
            char *end = nullptr;
            out.push_back(std::strtof(p, &end));
            p = end;
        }
    }

    void keyword(const std::vector<std::string> &words)
    {
        if (words.empty())
            return;
        std::string rest;
        for (std::size_t i = 1; i < words.size(); ++i)
            rest += (i > 1 ? " " : "") + words[i];
        if (words[0] == "o" || (words[0] == "g" && !has_objects_)) {
            has_objects_ = has_objects_ || words[0] == "o";
            name_ = rest;
            current_ = nullptr_part;
        } else if (words[0] == "mtllib") {
            obj_read_materials(filename_, rest, materials_);
        } else if (words[0] == "usemtl") {
            const auto found = materials_.find(rest);
            material_ = found == materials_.end() ? nullptr : &found->second;
            current_ = nullptr_part;
        } else if (words[0] == "s") {
            smooth_ = rest != "off" && rest != "0";
        }
    }

    // The part that the present name and picture belong to.
    part &current()
    {
        if (current_ != nullptr_part)
            return parts_[current_];
        const std::string key = name_ + '\n' + (material_ == nullptr ? "" : material_->picture);
        const auto found = places_.find(key);
        if (found != places_.end()) {
            current_ = found->second;
        } else {
            current_ = parts_.size();
            places_[key] = current_;
            parts_.push_back(part());
            parts_.back().name = name_;
            parts_.back().picture_of =
                material_ == nullptr || material_->picture.empty() ? nullptr : material_;
        }
        return parts_[current_];
    }

    // An index of the file, from 1 or from the end, as one from 0; -1 for none.
    static int index_of(const char *&p, std::size_t count)
    {
        char *end = nullptr;
        const long value = std::strtol(p, &end, 10);
        if (end == p)
            return -1;
        p = end;
        const long long all = static_cast<long long>(count);
        const long long index = value > 0 ? value - 1LL : all + value;
        return value == 0 || index < 0 || index >= all || index > INT_MAX ? -1
                                                                          : static_cast<int>(index);
    }

    void surface(const char *p, bool line)
    {
        part &to = current();
        const std::size_t first = to.corners.size();
        while (true) {
            while (*p == ' ' || *p == '\t' || *p == '\r')
                ++p;
            if (*p == '\0')
                break;
            const char *before = p;
            const int point = index_of(p, points_.size() / 3);
            int uv = -1;
            if (*p == '/') {
                ++p;
                uv = index_of(p, uv_.size() / 2);
                if (*p == '/') {
                    ++p;
                    index_of(p, 0);
                }
            }
            if (point >= 0)
                corner(to, point, uv);
            if (p == before)
                break; // no corner
        }
        const std::size_t count = to.corners.size() - first;
        if (count < (line ? 2u : 3u)) {
            to.corners.resize(first);
            to.uv.resize(2 * first);
            return;
        }
        to.offsets.push_back(static_cast<int>(to.corners.size()));
        const int kind = line ? SURFACE_LINE : smooth_ ? SURFACE_SMOOTH : 0;
        to.attributes.push_back(
            {material_ == nullptr ? 0 : material_->palette_index, kind | SURFACE_TWOSIDED});
    }

    void corner(part &to, int point, int uv)
    {
        const auto found = to.known.insert({point, static_cast<int>(to.points.size() / 3)});
        if (found.second) {
            const float *from = &points_[3 * static_cast<std::size_t>(point)];
            to.points.insert(to.points.end(), from, from + 3);
        }
        to.corners.push_back(found.first->second);
        to.uv.push_back(uv < 0 ? 0 : uv_[2 * static_cast<std::size_t>(uv)]);
        to.uv.push_back(uv < 0 ? 0 : uv_[2 * static_cast<std::size_t>(uv) + 1]);
    }

    object_t *make(const part &p) const
    {
        object_t *object = new_object(OBJECT_POLY);
        const int n = static_cast<int>(p.attributes.size());
        object_set_name(object, p.name.c_str());
        vesk_object_add_vertices_from_float_array(object, p.points.data(),
                                                  static_cast<int>(p.points.size() / 3));
        vesk_object_add_surfaces_from_arrays(object, n, p.offsets.data(), p.corners.data(),
                                             p.uv.data(), 0);
        vesk_object_set_surface_attributes(object, 0, n, p.attributes.data());
        if (p.picture_of != nullptr) {
            const obj_material &m = *p.picture_of;
            search_and_set_texture(object, filename_.c_str(), m.picture.c_str());
            object_set_texture_repeat(object, m.repeat[0], m.repeat[1]);
            object_set_texture_offset(object, m.offset[0], m.offset[1]);
        }
        return object;
    }

    static constexpr std::size_t nullptr_part = static_cast<std::size_t>(-1);

    const std::string filename_;
    std::vector<float> points_, uv_;
    std::map<std::string, obj_material> materials_;
    const obj_material *material_ = nullptr;
    std::string name_;
    bool has_objects_ = false;
    bool smooth_ = false;
    std::vector<part> parts_;
    std::map<std::string, std::size_t> places_;
    std::size_t current_ = nullptr_part;
};

constexpr std::size_t obj_reader::nullptr_part;

} // namespace

object_t *obj_import(const char *filename)
{
    const std::string name = filename;
    std::string text;
    if (!obj_read_file(name, &text)) {
        windows_message_dialog("can't read %s\n%s", name.c_str(), std::strerror(errno));
        return nullptr;
    }
    // A line ends in a zero, so that no number is read past it; "\" continues it.
    for (std::size_t at = 0; (at = text.find("\\\n", at)) != std::string::npos;)
        text.replace(at, 2, "  ");
    obj_reader reader(name);
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        if (end < text.size())
            text[end] = '\0';
        reader.line(text.c_str() + at);
        at = end + 1;
    }
    object_t *top = reader.finish();
    if (top->children != nullptr)
        return top;
    object_free(top);
    windows_message_dialog("can't read %s\n%s", name.c_str(), "there is no geometry in it");
    return nullptr;
}

#include "formats.h"
#include "mesh.h"
#include "obj.h"
#include "text.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstring>
#include <set>
#include <unordered_map>

namespace {

bool is_gap(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// One object of the scene while it is read: what shares a name and a picture.
struct part {
    std::string name;
    const obj_material *picture_of = nullptr;
    mesh_arrays mesh;
    std::unordered_map<int, int> lost; // places of the file's points here, once others took them
};

class obj_reader {
public:
    explicit obj_reader(const std::string &filename) : filename_(filename) {}

    void line(const char *p, const char *end, int number)
    {
        line_ = number;
        while (p != end && is_gap(*p))
            ++p;
        const std::ptrdiff_t length = end - p;
        if (length > 1 && p[0] == 'v' && is_gap(p[1])) {
            numbers(p + 2, end, 3, points_);
            owners_.push_back({-1, 0});
        } else if (length > 2 && p[0] == 'v' && p[1] == 't' && is_gap(p[2])) {
            numbers(p + 3, end, 2, uv_);
        } else if (length > 1 && (p[0] == 'f' || p[0] == 'l') && is_gap(p[1])) {
            surface(p + 2, end, p[0] == 'l');
        } else if (length > 1 && *p != '#' && !(p[0] == 'v' && p[1] == 'n')) {
            keyword(obj_words(std::string(p, end)));
        }
    }

    object_t *finish() const
    {
        object_t *top = new_group();
        object_set_name(top, base_name(filename_).c_str());
        for (const part &p : parts_)
            if (!p.mesh.surfaces.empty())
                object_add_child(top, make(p));
        object_calc_normals_force(top);
        return top;
    }

private:
    // Missing ones are 0.
    void numbers(const char *p, const char *end, int count, std::vector<float> &out)
    {
        bool good = true;
        for (int i = 0; i < count; ++i) {
            float value = 0;
            while (p != end && (is_gap(*p) || *p == '+'))
                ++p;
            const auto read = std::from_chars(p, end, value);
            good = good && read.ec == std::errc() && std::isfinite(value);
            out.push_back(std::isfinite(value) ? value : 0);
            p = read.ptr;
        }
        if (!good)
            vesk_report_warning(line_, "%d numbers are needed", count);
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
            current_ = no_part;
        } else if (words[0] == "mtllib") {
            obj_read_materials(filename_, rest, line_, materials_);
        } else if (words[0] == "usemtl") {
            const auto found = materials_.find(rest);
            material_ = found == materials_.end() ? nullptr : &found->second;
            if (material_ == nullptr && unknown_.insert("usemtl " + rest).second)
                vesk_report_warning(line_, "the material %s is not described", rest.c_str());
            current_ = no_part;
        } else if (words[0] == "s") {
            smooth_ = rest != "off" && rest != "0";
        } else if (words[0] != "g" && unknown_.insert(words[0]).second) {
            vesk_report_warning(line_, "lines that begin with %s are not read", words[0].c_str());
        }
    }

    // The part that the present name and picture belong to.
    part &current()
    {
        if (current_ != no_part)
            return parts_[current_];
        const std::string key = name_ + '\n' + (material_ == nullptr ? "" : material_->picture);
        const auto found = places_.emplace(key, parts_.size());
        current_ = found.first->second;
        if (found.second) {
            parts_.emplace_back();
            parts_.back().name = name_;
            parts_.back().picture_of =
                material_ == nullptr || material_->picture.empty() ? nullptr : material_;
        }
        return parts_[current_];
    }

    // An index of the file, from 1 or from the end, as one from 0; -1 for none.
    static int index_of(const char *&p, const char *end, std::size_t count)
    {
        long long value = 0;
        const auto read = std::from_chars(p, end, value);
        if (read.ptr == p)
            return -1;
        p = read.ptr;
        const auto all = static_cast<long long>(count);
        const long long index = value > 0 ? value - 1LL : all + value;
        return value == 0 || read.ec != std::errc() || index < 0 || index >= all || index > INT_MAX
                   ? -1
                   : static_cast<int>(index);
    }

    void surface(const char *p, const char *end, bool line)
    {
        part &to = current();
        bool good = true;
        while (true) {
            while (p != end && is_gap(*p))
                ++p;
            if (p == end)
                break;
            const char *before = p;
            const int point = index_of(p, end, points_.size() / 3);
            int uv = -1;
            if (p != end && *p == '/') {
                ++p;
                uv = index_of(p, end, uv_.size() / 2);
                if (p != end && *p == '/')
                    while (p != end && !is_gap(*p))
                        ++p;
            }
            good = good && point >= 0;
            if (point >= 0)
                corner(to, point, uv);
            if (p == before)
                break; // no corner
        }
        const bool closed = line && close_line(to.mesh);
        const int kind = closed    ? SURFACE_CLOSED_LINE
                         : line    ? SURFACE_LINE
                         : smooth_ ? SURFACE_SMOOTH
                                   : 0;
        good = to.mesh.end_surface(material_ == nullptr ? no_material : material_->palette_index,
                                   kind | SURFACE_TWOSIDED) &&
               good;
        if (!good)
            vesk_report_warning(line_, "a %s has corners that are not there",
                                line ? "line" : "face");
    }

    // A line that ends where it began is closed, and names that corner once.
    static bool close_line(mesh_arrays &mesh)
    {
        const auto first = static_cast<std::size_t>(mesh.offsets.back());
        if (mesh.corners.size() - first < 4 || mesh.corners[first] != mesh.corners.back())
            return false;
        mesh.corners.pop_back();
        mesh.uv.resize(mesh.uv.size() - 2);
        return true;
    }

    void corner(part &to, int point, int uv)
    {
        const std::size_t at = 2 * static_cast<std::size_t>(uv);
        to.mesh.add_corner(place_of(to, point), uv < 0 ? 0 : uv_[at], uv < 0 ? 0 : uv_[at + 1]);
    }

    // Where a point of the file stands in the part. Each point knows its last part; most have one.
    int place_of(part &to, int point)
    {
        const auto at = static_cast<std::size_t>(point);
        const auto own = static_cast<int>(current_);
        owner &last = owners_[at];
        if (last.part == own)
            return last.place;
        if (last.part >= 0)
            parts_[static_cast<std::size_t>(last.part)].lost[point] = last.place;
        const auto known = to.lost.find(point);
        last.part = own;
        last.place = known == to.lost.end() ? to.mesh.num_points() : known->second;
        if (known == to.lost.end())
            to.mesh.points.insert(to.mesh.points.end(), &points_[3 * at], &points_[3 * at] + 3);
        return last.place;
    }

    object_t *make(const part &p) const
    {
        object_t *object = p.mesh.make_object(p.name);
        if (p.picture_of != nullptr) {
            const obj_material &m = *p.picture_of;
            search_and_set_texture(object, filename_.c_str(), m.picture.c_str());
            object_set_texture_repeat(object, m.repeat[0], m.repeat[1]);
            object_set_texture_offset(object, m.offset[0], m.offset[1]);
        }
        return object;
    }

    struct owner {
        int part, place;
    };
    static constexpr std::size_t no_part = static_cast<std::size_t>(-1);

    const std::string filename_;
    int line_ = 0;
    std::vector<float> points_, uv_;
    std::vector<owner> owners_; // one a point
    std::map<std::string, obj_material> materials_;
    const obj_material *material_ = nullptr;
    std::string name_;
    bool has_objects_ = false;
    bool smooth_ = false;
    std::vector<part> parts_;
    std::map<std::string, std::size_t> places_;
    std::size_t current_ = no_part;
    std::set<std::string> unknown_; // told once each
};

// Line by line; one that ends in "\" goes on with the next.
void read_lines(const std::string &text, obj_reader &reader)
{
    std::string joined;
    int number = 0;
    for (std::size_t at = 0; at < text.size();) {
        const std::size_t end = std::min(text.find('\n', at), text.size());
        ++number;
        std::size_t last = end;
        while (last > at && text[last - 1] == '\r')
            --last;
        const bool goes_on = last > at && text[last - 1] == '\\';
        if (goes_on) {
            joined += text.substr(at, last - 1 - at) + ' ';
        } else if (joined.empty()) {
            reader.line(text.data() + at, text.data() + last, number);
        } else {
            joined += text.substr(at, last - at);
            reader.line(joined.data(), joined.data() + joined.size(), number);
            joined.clear();
        }
        at = end + 1;
    }
    if (!joined.empty())
        reader.line(joined.data(), joined.data() + joined.size(), number);
}

} // namespace

object_t *obj_import(const char *filename)
{
    const std::string name = filename;
    std::string text;
    if (!read_file(name, &text))
        return refuse(name, std::strerror(errno));
    obj_reader reader(name);
    read_lines(text, reader);
    object_t *top = reader.finish();
    if (top->children != nullptr)
        return top;
    object_free(top);
    return refuse(name, "there is no geometry in it");
}

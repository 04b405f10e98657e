#include "formats.h"
#include "mesh.h"
#include "obj_materials.h"
#include "scan.h"
#include "text.h"
#include "work.h"

#include <algorithm>
#include <cerrno>
#include <climits>
#include <cstring>
#include <set>
#include <unordered_map>

namespace {

bool is_gap(char c) { return c == ' ' || c == '\t' || c == '\r'; }

// Surfaces that share a name, and a picture with its placing, are one part.
std::string key_of(const std::string &name, const obj_material *m)
{
    if (m == nullptr || m->picture.empty())
        return name + '\n';
    text_out key;
    key.add(name, '\n', m->picture, '\n', m->repeat[0], ' ', m->repeat[1], ' ', m->offset[0], ' ',
            m->offset[1]);
    return key.text;
}

// One object of the scene while it is read: the surfaces that share a name and a picture.
struct part {
    std::string name;
    const obj_material *picture_of = nullptr;
    mesh_arrays mesh;
    bool has_points = false;           // of no surface
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
            colour_of_point(numbers(p + 2, end, 3, points_), end);
            owners_.push_back({-1, 0});
        } else if (length > 2 && p[0] == 'v' && p[1] == 't' && is_gap(p[2])) {
            numbers(p + 3, end, 2, uv_);
        } else if (length > 1 && (p[0] == 'f' || p[0] == 'l') && is_gap(p[1])) {
            surface(p + 2, end, p[0] == 'l');
        } else if (length > 1 && p[0] == 'p' && is_gap(p[1])) {
            points(p + 2, end);
        } else if (length > 2 && p[0] == 'v' && p[1] == 'n' && is_gap(p[2])) {
            if (!has_shading_)
                numbers(p + 3, end, 3, normals_);
        } else if (length > 1 && *p != '#') {
            keyword(words_of(std::string(p, end)));
        }
    }

    object_t *finish()
    {
        object_t *top = new_group();
        object_set_name(top, base_name(filename_).c_str());
        if (parts_.empty() && !points_.empty())
            take_all_points();
        else
            tell_unused_points();
        points_ = {}; // the parts have theirs
        for (part &p : parts_) {
            if (!p.mesh.surfaces.empty() || p.has_points)
                object_add_child(top, make(p));
            p.mesh = {};
        }
        object_calc_normals_force(top);
        return top;
    }

private:
    // A file of points alone: a cloud.
    void take_all_points()
    {
        part &to = current();
        to.has_points = true;
        for (int i = 0; i < static_cast<int>(owners_.size()); ++i)
            place_of(to, i);
    }

    void tell_unused_points() const
    {
        const auto unused = std::count_if(owners_.begin(), owners_.end(),
                                          [](const owner &at) { return at.part < 0; });
        if (unused > 0)
            vesk_report_warning(0, "%d points of no surface were left out",
                                static_cast<int>(unused));
    }

    // What some programs write behind the place: red, green and blue, from 0 to 1.
    void colour_of_point(const char *p, const char *end)
    {
        float values[4] = {};
        std::size_t count = 0;
        for (; p != end && count < 4; ++count) {
            while (p != end && is_gap(*p))
                ++p;
            p = p == end ? nullptr : scan_real(p, end, &values[count]);
            if (p == nullptr)
                break;
        }
        if (count < 3 && colours_.empty())
            return;
        colours_.resize(points_.size() - 3, 255);
        const float *rgb = count == 4 ? values + 1 : values; // after a weight
        for (int i = 0; i < 3; ++i) {
            const float part = count < 3 ? 1 : rgb[i] > 0 ? std::min(rgb[i], 1.0f) : 0;
            colours_.push_back(static_cast<unsigned char>(std::lround(part * 255)));
        }
    }

    // Missing ones are 0. Returns the place after them.
    const char *numbers(const char *p, const char *end, int count, std::vector<float> &out)
    {
        bool good = true;
        for (int i = 0; i < count; ++i) {
            float value = 0;
            while (p != end && is_gap(*p))
                ++p;
            const char *after = scan_real(p, end, &value);
            good = good && after != nullptr && std::isfinite(value);
            out.push_back(std::isfinite(value) ? value : 0);
            p = after == nullptr ? p : after;
        }
        if (!good)
            vesk_report_warning(line_, "%d numbers are needed", count);
        return p;
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
            if (libraries_.insert(rest).second) // some files name it before each object
                obj_read_materials(filename_, rest, line_, materials_);
        } else if (words[0] == "usemtl") {
            const auto found = materials_.find(rest);
            material_ = found == materials_.end() ? nullptr : &found->second;
            if (material_ == nullptr && unknown_.insert("usemtl " + rest).second)
                vesk_report_warning(line_, "the material %s is not described", rest.c_str());
            current_ = no_part;
        } else if (words[0] == "g") {
            if (rest != name_ && unknown_.insert("g").second)
                vesk_report_warning(line_, "groups within objects are not read");
        } else if (words[0] == "s") {
            smooth_ = rest != "off" && rest != "0";
            has_shading_ = true;
            if (smooth_ && !smoothing_.empty() && smoothing_ != rest && unknown_.insert("s").second)
                vesk_report_warning(line_, "smooth parts became one: edges between them are soft");
            smoothing_ = smooth_ ? rest : smoothing_;
        } else if (unknown_.insert(words[0]).second) {
            vesk_report_warning(line_, "lines that begin with %s are not read", words[0].c_str());
        }
    }

    // The part that the present name and picture belong to.
    part &current()
    {
        if (current_ != no_part)
            return parts_[current_];
        const auto found = places_.emplace(key_of(name_, material_), parts_.size());
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
        constexpr long long most = 1LL << 40;
        const bool from_end = p != end && *p == '-';
        p += from_end ? 1 : 0;
        long long value = 0;
        for (; p != end && *p >= '0' && *p <= '9'; ++p)
            value = std::min(10 * value + (*p - '0'), most);
        const auto all = static_cast<long long>(std::min<std::size_t>(count, INT_MAX));
        if (value < 1 || value > all)
            return -1;
        return static_cast<int>(from_end ? all - value : value - 1);
    }

    void surface(const char *p, const char *end, bool line)
    {
        part &to = current();
        bool good = true;
        corner_normals_.clear();
        while (true) {
            while (p != end && is_gap(*p))
                ++p;
            if (p == end)
                break;
            const char *before = p;
            const int point = index_of(p, end, points_.size() / 3);
            int uv = -1;
            int normal = -1;
            if (p != end && *p == '/') {
                ++p;
                uv = index_of(p, end, uv_.size() / 2);
                if (p != end && *p == '/')
                    normal = index_of(++p, end, normals_.size() / 3);
            }
            while (p != end && !is_gap(*p) && p != before)
                ++p;
            good = good && point >= 0;
            if (point >= 0) {
                corner(to, point, uv);
                if (normal >= 0 && !has_shading_)
                    corner_normals_.push_back(normal);
            }
            if (p == before)
                break; // no corner
        }
        const bool closed = line && close_line(to.mesh);
        const int kind = closed                      ? SURFACE_CLOSED_LINE
                         : line                      ? SURFACE_LINE
                         : smooth_ || bends(to.mesh) ? SURFACE_SMOOTH
                                                     : 0;
        good = to.mesh.end_surface(material_ == nullptr ? no_material : material_->palette_index,
                                   kind | SURFACE_TWOSIDED) &&
               good;
        if (!good)
            vesk_report_warning(line_, "a %s has corners that are not there",
                                line ? "line" : "face");
    }

    // Points that stand alone.
    void points(const char *p, const char *end)
    {
        part &to = current();
        bool good = true;
        while (true) {
            while (p != end && is_gap(*p))
                ++p;
            if (p == end)
                break;
            const int point = index_of(p, end, points_.size() / 3);
            good = good && point >= 0;
            if (point >= 0) {
                place_of(to, point);
                to.has_points = true;
            }
            while (p != end && !is_gap(*p))
                ++p;
        }
        if (!good)
            vesk_report_warning(line_, "a point is not there");
    }

    // Whether the open surface has a corner whose normal is not the surface's: files without
    // shading lines show it so.
    [[nodiscard]] bool bends(const mesh_arrays &mesh) const
    {
        const std::size_t first = static_cast<std::size_t>(mesh.offsets.back());
        const std::size_t count = mesh.corners.size() - first;
        if (corner_normals_.empty() || corner_normals_.size() != count)
            return false;
        double sum[3] = {}; // Newell's
        const auto point = [&](std::size_t k, std::size_t axis) {
            const auto place = static_cast<std::size_t>(mesh.corners[first + k % count]);
            return static_cast<double>(mesh.points[3 * place + axis]);
        };
        for (std::size_t k = 0; k < count; ++k)
            for (std::size_t axis = 0; axis < 3; ++axis) {
                const std::size_t next = (axis + 1) % 3;
                sum[(axis + 2) % 3] +=
                    (point(k, axis) - point(k + 1, axis)) * (point(k, next) + point(k + 1, next));
            }
        const double length = std::hypot(sum[0], sum[1], sum[2]);
        for (const int corner : corner_normals_) {
            const float *n = &normals_[3 * static_cast<std::size_t>(corner)];
            const double x = static_cast<double>(n[0]);
            const double y = static_cast<double>(n[1]);
            const double z = static_cast<double>(n[2]);
            const double size = std::hypot(x, y, z);
            // A degree and a half is rounding; some files' normals all look the other way.
            if (size > 0 &&
                std::fabs(x * sum[0] + y * sum[1] + z * sum[2]) < 0.9997 * size * length)
                return true;
        }
        return false;
    }

    // A line that ends where it began is closed, and names that corner once.
    static bool close_line(mesh_arrays &mesh)
    {
        const auto first = static_cast<std::size_t>(mesh.offsets.back());
        if (mesh.corners.size() - first < 4 || mesh.corners[first] != mesh.corners.back())
            return false;
        mesh.keep_corners(mesh.corners.size() - 1);
        return true;
    }

    void corner(part &to, int point, int uv)
    {
        const int place = place_of(to, point);
        if (uv < 0) {
            to.mesh.add_corner(place);
            return;
        }
        const std::size_t at = 2 * static_cast<std::size_t>(uv);
        to.mesh.add_corner(place, uv_[at], uv_[at + 1]);
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
        if (known == to.lost.end()) {
            to.mesh.points.insert(to.mesh.points.end(), &points_[3 * at], &points_[3 * at] + 3);
            if (!colours_.empty()) // those that came before the first colour are white
                to.mesh.colours.resize(to.mesh.points.size() - 3, 255);
            for (std::size_t i = 3 * at; !colours_.empty() && i < 3 * at + 3; ++i)
                to.mesh.colours.push_back(i < colours_.size() ? colours_[i] : 255);
        }
        return last.place;
    }

    object_t *make(part &p) const
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
    std::vector<float> points_, uv_, normals_;
    std::vector<unsigned char> colours_; // three a point from the first that has one on
    std::vector<int> corner_normals_;    // of the open surface
    std::vector<owner> owners_;          // one a point
    std::map<std::string, obj_material> materials_;
    std::set<std::string> libraries_; // that were read
    const obj_material *material_ = nullptr;
    std::string name_;
    bool has_objects_ = false;
    bool smooth_ = false;
    std::string smoothing_;    // the last number of a smooth part
    bool has_shading_ = false; // the file has lines of it ("s")
    std::vector<part> parts_;
    std::map<std::string, std::size_t> places_;
    std::size_t current_ = no_part;
    std::set<std::string> unknown_; // one complaint each
};

// Line by line; "\" at the end of a line joins the next one to it.
void read_lines(job &work, const std::string &text, obj_reader &reader)
{
    std::string joined;
    int number = 0;
    work.phase(share_of_parsing, static_cast<double>(text.size()));
    const char *const all_end = text.data() + text.size();
    for (const char *at = text.data(); at < all_end;) {
        const void *found = std::memchr(at, '\n', static_cast<std::size_t>(all_end - at));
        const char *end = found == nullptr ? all_end : static_cast<const char *>(found);
        const char *last = end;
        ++number;
        while (last > at && last[-1] == '\r')
            --last;
        if (last > at && last[-1] == '\\') {
            joined.append(at, last - 1);
            joined += ' ';
        } else if (joined.empty()) {
            reader.line(at, last, number);
        } else {
            joined.append(at, last);
            reader.line(joined.data(), joined.data() + joined.size(), number);
            joined.clear();
        }
        at = end + 1;
        if (!work.at(static_cast<double>(at - text.data())))
            return;
    }
    if (!joined.empty())
        reader.line(joined.data(), joined.data() + joined.size(), number);
}

} // namespace

object_t *obj_import(const char *filename)
{
    const std::string name = filename;
    job work;
    std::string text;
    if (!read_file(name, &text, &work))
        return refuse(work, name, std::strerror(errno));
    plain_lines(text);
    obj_reader reader(name);
    read_lines(work, text, reader);
    text = {};
    if (work.cancelled())
        return refuse(work, name, "");
    object_t *top = reader.finish();
    if (top->children != nullptr)
        return top;
    object_free(top);
    return refuse(work, name, "there is no geometry in it");
}

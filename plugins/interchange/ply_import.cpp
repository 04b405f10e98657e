// PLY: tables of vertices, faces and edges, whose columns the file itself describes; as text or
// binary in either byte order. Texture coordinates stand by vertex or by corner, colours by face
// or by vertex: those of vertices become materials where each face has one of them, else they are
// kept with the vertices. The texture is the one that a comment names ("TextureFile").
#include "formats.h"
#include "mesh.h"
#include "text.h"
#include "work.h"

#include <algorithm>
#include <cerrno>
#include <charconv>
#include <climits>
#include <cstring>
#include <map>
#include <set>

namespace {

constexpr std::size_t most_colours = 4096; // scanned vertices have millions

struct property {
    std::string name;
    char type = 0;       // of the number, or of the list's elements
    char count_type = 0; // 0: no list
};

struct element {
    std::string name;
    std::size_t count = 0;
    std::vector<property> properties;

    [[nodiscard]] int place(std::initializer_list<const char *> names) const
    {
        for (const char *wanted : names)
            for (std::size_t i = 0; i < properties.size(); ++i)
                if (properties[i].name == wanted)
                    return static_cast<int>(i);
        return -1;
    }
};

// One letter a type: b and B, h and H, i and I (signed and not), f and d; 0 for none.
char type_of(const std::string &name)
{
    static const std::map<std::string, char> types = {
        {"char", 'b'},  {"int8", 'b'},    {"uchar", 'B'},  {"uint8", 'B'},
        {"short", 'h'}, {"int16", 'h'},   {"ushort", 'H'}, {"uint16", 'H'},
        {"int", 'i'},   {"int32", 'i'},   {"uint", 'I'},   {"uint32", 'I'},
        {"float", 'f'}, {"float32", 'f'}, {"double", 'd'}, {"float64", 'd'}};
    const auto found = types.find(name);
    return found == types.end() ? '\0' : found->second;
}

std::size_t size_of(char type)
{
    return type == 'd'                           ? 8
           : std::strchr("iIf", type) != nullptr ? 4
           : std::strchr("hH", type) != nullptr  ? 2
                                                 : 1;
}

class number_reader {
public:
    number_reader(const std::string &bytes, std::size_t at, char form, int line)
        : bytes_(bytes), at_(at), form_(form), line_(line)
    {
    }

    [[nodiscard]] std::size_t left() const { return bytes_.size() - at_; }
    [[nodiscard]] int line() const { return form_ == 't' ? line_ : 0; }

    bool next(char type, double *value)
    {
        return form_ == 't' ? next_word(value) : next_bytes(type, value);
    }

private:
    bool next_word(double *value)
    {
        while (at_ < bytes_.size() && std::strchr(" \t\r\n", bytes_[at_]) != nullptr) {
            line_ += bytes_[at_] == '\n' ? 1 : 0;
            ++at_;
        }
        if (at_ < bytes_.size() && bytes_[at_] == '+')
            ++at_;
        const char *end = bytes_.data() + bytes_.size();
        const auto read = std::from_chars(bytes_.data() + at_, end, *value);
        if (read.ec == std::errc::invalid_argument)
            return false;
        at_ = static_cast<std::size_t>(read.ptr - bytes_.data());
        return true;
    }

    bool next_bytes(char type, double *value)
    {
        const std::size_t size = size_of(type);
        if (size > left())
            return false;
        char raw[8];
        std::memcpy(raw, &bytes_[at_], size);
        if (form_ == 'b')
            std::reverse(raw, raw + size);
        at_ += size;
        switch (type) {
        case 'b':
            return take<signed char>(raw, value);
        case 'B':
            return take<unsigned char>(raw, value);
        case 'h':
            return take<std::int16_t>(raw, value);
        case 'H':
            return take<std::uint16_t>(raw, value);
        case 'i':
            return take<std::int32_t>(raw, value);
        case 'I':
            return take<std::uint32_t>(raw, value);
        case 'f':
            return take<float>(raw, value);
        default:
            return take<double>(raw, value);
        }
    }

    template <class N>
    static bool take(const char *raw, double *value)
    {
        N number;
        std::memcpy(&number, raw, sizeof number);
        *value = static_cast<double>(number);
        return true;
    }

    const std::string &bytes_;
    std::size_t at_;
    const char form_; // 't' text, 'l' lowest byte first, 'b' highest first
    int line_;
};

class ply_reader {
public:
    ply_reader(job &work, const std::string &bytes) : work_(work), bytes_(bytes) {}

    // "", or why it cannot be read.
    std::string run()
    {
        const std::string reason = header();
        if (!reason.empty())
            return reason;
        number_reader numbers(bytes_, at_, form_, line_);
        work_.phase(share_of_parsing, static_cast<double>(numbers.left()));
        for (const element &e : elements_)
            if (!table(e, numbers)) {
                if (work_.cancelled())
                    return "it was cancelled";
                vesk_report_warning(numbers.line(), "the file ends within its %s table",
                                    e.name.c_str());
                break;
            }
        if (mesh_.points.empty())
            return "there are no vertices in it";
        if (mesh_.surfaces.empty() && !is_cloud())
            return "there are no faces in it, only vertices";
        if (bad_ > 0)
            vesk_report_warning(0, "%u faces and edges with bad indices were left out", bad_);
        if (mesh_.num_points() == static_cast<int>(vertex_colours_.size()))
            give_colours_of_points();
        if (transparent_ > 0)
            vesk_report_warning(0, "the transparency of %u points was left out", transparent_);
        if (too_many_colours_)
            vesk_report_warning(0, "there are more than %u colours; some were left out",
                                static_cast<unsigned>(most_colours));
        return "";
    }

    object_t *make(const std::string &filename)
    {
        object_t *object = mesh_.make_object(base_name(filename));
        if (!texture_.empty())
            search_and_set_texture(object, filename.c_str(), texture_.c_str());
        object_calc_normals_force(object);
        return object;
    }

private:
    // A file of points alone: it promises no surfaces.
    [[nodiscard]] bool is_cloud() const
    {
        return std::none_of(elements_.begin(), elements_.end(), [](const element &e) {
            return e.count > 0 && (e.name == "face" || e.name == "tristrips" || e.name == "edge");
        });
    }

    // Surfaces without a colour of their own have that of their points, where each has one of not
    // too many; else the colours stay with the points, and the surfaces show shades of them.
    void give_colours_of_points()
    {
        std::set<int> different;
        bool mixed = mesh_.surfaces.empty() || has_face_colours_;
        for (const auto &[surface, colour] : by_points_) {
            different.insert(colour);
            mixed = mixed || colour < 0 || different.size() > most_colours;
        }
        for (const int rgb : vertex_colours_)
            for (const int shift : {16, 8, 0})
                mesh_.colours.push_back(static_cast<unsigned char>(rgb >> shift & 0xFF));
        for (const auto &[surface, colour] : by_points_)
            mesh_.surfaces[surface].material =
                mixed ? mesh_.shade_of_surface(surface) : material_of(colour);
        if (!mixed)
            mesh_.colours.clear();
    }

    bool header_line(std::string *line)
    {
        if (at_ >= bytes_.size())
            return false;
        const std::size_t end = std::min(bytes_.find('\n', at_), bytes_.size());
        *line = bytes_.substr(at_, end - at_);
        while (!line->empty() && (line->back() == '\r' || line->back() == ' '))
            line->pop_back();
        at_ = std::min(end + 1, bytes_.size());
        ++line_;
        return true;
    }

    std::string header()
    {
        std::string line;
        if (!header_line(&line) || line != "ply")
            return "it is no PLY file";
        while (header_line(&line)) {
            const std::vector<std::string> words = words_of(line);
            if (words.empty())
                continue;
            if (words[0] == "end_header")
                return form_ == 0 ? "it does not say its format" : "";
            const std::string reason = header_words(words, line);
            if (!reason.empty())
                return reason + " (line " + std::to_string(line_) + ")";
        }
        return "its header has no end";
    }

    std::string header_words(const std::vector<std::string> &words, const std::string &line)
    {
        if (words[0] == "format" && words.size() > 1) {
            form_ = words[1] == "ascii"                  ? 't'
                    : words[1] == "binary_little_endian" ? 'l'
                    : words[1] == "binary_big_endian"    ? 'b'
                                                         : '\0';
            return form_ == 0 ? "its format is not known" : "";
        }
        if (words[0] == "comment" && words.size() > 2 && words[1] == "TextureFile") {
            texture_ = line.substr(line.find("TextureFile") + 12);
        } else if (words[0] == "element" && words.size() > 2) {
            elements_.push_back({words[1], std::strtoul(words[2].c_str(), nullptr, 10), {}});
        } else if (words[0] == "property") {
            const bool list = words.size() > 4 && words[1] == "list";
            if (elements_.empty() || words.size() < 3)
                return "a property stands alone";
            property p;
            p.name = words[list ? 4 : 2];
            p.type = type_of(words[list ? 3 : 1]);
            p.count_type = list ? type_of(words[2]) : '\0';
            if (p.type == 0 ||
                (list && (p.count_type == 0 || p.count_type == 'f' || p.count_type == 'd')))
                return "a property's type is not known";
            elements_.back().properties.push_back(p);
        }
        return "";
    }

    // Reads rows as long as there are bytes; false when the file ends before.
    bool table(const element &e, number_reader &numbers)
    {
        if (e.properties.empty())
            return true;
        const bool vertices = e.name == "vertex";
        const bool faces = e.name == "face" || e.name == "tristrips";
        prepare(e);
        std::vector<std::vector<double>> row(e.properties.size());
        for (std::size_t i = 0; i < e.count; ++i) {
            for (std::size_t k = 0; k < e.properties.size(); ++k)
                if (!read_field(e.properties[k], numbers, &row[k]))
                    return false;
            if (!work_.at(static_cast<double>(bytes_.size() - at_ - numbers.left())))
                return false;
            if (vertices)
                add_vertex(row);
            else if (e.name == "tristrips")
                add_strips(row);
            else if (faces)
                add_face(row);
            else if (e.name == "edge")
                add_edge(row);
        }
        return true;
    }

    static bool read_field(const property &p, number_reader &numbers, std::vector<double> *values)
    {
        double count = 1;
        if (p.count_type != 0 && !numbers.next(p.count_type, &count))
            return false;
        if (!(count >= 0) || count > static_cast<double>(numbers.left()))
            return false; // each takes a byte at least
        values->resize(static_cast<std::size_t>(count));
        for (double &value : *values)
            if (!numbers.next(p.type, &value))
                return false;
        return true;
    }

    // Where the columns stand that matter.
    void prepare(const element &e)
    {
        places_.clear();
        for (const char *name :
             {"x", "y", "z", "red", "green", "blue", "vertex1", "vertex2", "alpha"})
            places_.push_back(e.place({name}));
        for (int i = 3; i < 6; ++i)
            if (const int other = e.place({i == 3   ? "diffuse_red"
                                           : i == 4 ? "diffuse_green"
                                                    : "diffuse_blue"});
                places_[static_cast<std::size_t>(i)] < 0)
                places_[static_cast<std::size_t>(i)] = other;
        u_ = e.place({"s", "u", "texture_u"});
        v_ = e.place({"t", "v", "texture_v"});
        indices_ = e.place({"vertex_indices", "vertex_index"});
        corner_uv_ = e.place({"texcoord"});
        const int red = places_[3];
        real_colour_ =
            red >= 0 &&
            std::strchr("fd", e.properties[static_cast<std::size_t>(red)].type) != nullptr;
    }

    static double value_of(const std::vector<std::vector<double>> &row, int place)
    {
        if (place < 0 || row[static_cast<std::size_t>(place)].empty())
            return 0;
        const double value = row[static_cast<std::size_t>(place)][0];
        return std::isfinite(value) ? value : 0;
    }

    // -1 for none.
    [[nodiscard]] int colour_of(const std::vector<std::vector<double>> &row) const
    {
        if (places_[3] < 0 || places_[4] < 0 || places_[5] < 0)
            return -1;
        int rgb = 0;
        for (std::size_t i = 3; i < 6; ++i) {
            const double value = value_of(row, places_[i]) * (real_colour_ ? 255 : 1);
            rgb = rgb << 8 | static_cast<int>(std::min(std::max(value + 0.5, 0.0), 255.0));
        }
        return rgb;
    }

    void add_vertex(const std::vector<std::vector<double>> &row)
    {
        for (std::size_t i = 0; i < 3; ++i)
            mesh_.points.push_back(static_cast<float>(value_of(row, places_[i])));
        if (u_ >= 0 && v_ >= 0) {
            vertex_uv_.push_back(static_cast<float>(value_of(row, u_)));
            vertex_uv_.push_back(static_cast<float>(value_of(row, v_)));
        }
        if (const int colour = colour_of(row); colour >= 0) {
            vertex_colours_.push_back(colour);
            const double opaque = real_colour_ ? 1 : 255;
            transparent_ += places_[8] >= 0 && value_of(row, places_[8]) < opaque ? 1 : 0;
        }
    }

    // A vertex index, or -1.
    [[nodiscard]] int index_of(double value) const
    {
        return value >= 0 && value < mesh_.num_points() ? static_cast<int>(value) : -1;
    }

    void corner(int index, float u, float v)
    {
        const std::size_t at = 2 * static_cast<std::size_t>(index);
        if (at + 1 < vertex_uv_.size())
            mesh_.add_corner(index, vertex_uv_[at], vertex_uv_[at + 1]);
        else if (u != 0 || v != 0)
            mesh_.add_corner(index, u, v);
        else
            mesh_.add_corner(index);
    }

    void end_surface(int colour, int flags)
    {
        if (!mesh_.end_surface(material_of(colour), flags | SURFACE_TWOSIDED))
            ++bad_;
    }

    // A surface with a colour of its own, or with that of its points.
    void end_face(int colour, const std::vector<double> &indices, int flags)
    {
        has_face_colours_ = has_face_colours_ || colour >= 0;
        const bool by_points = colour < 0 && !vertex_colours_.empty();
        const std::size_t surface = mesh_.surfaces.size();
        if (!by_points)
            end_surface(colour, flags);
        else if (mesh_.end_surface(0, flags | SURFACE_TWOSIDED))
            by_points_.emplace_back(surface, common_colour(indices));
        else
            ++bad_;
    }

    int material_of(int colour)
    {
        if (colour < 0)
            return no_material;
        const auto found = materials_.find(colour);
        if (found != materials_.end())
            return found->second;
        if (materials_.size() >= most_colours) {
            too_many_colours_ = true;
            return no_material;
        }
        return materials_[colour] = palette_index_of(static_cast<unsigned>(colour));
    }

    // The colour of vertices, where all of a surface have the same; else -1.
    [[nodiscard]] int common_colour(const std::vector<double> &indices) const
    {
        int common = -1;
        for (const double value : indices) {
            const int index = index_of(value);
            if (index < 0 || static_cast<std::size_t>(index) >= vertex_colours_.size())
                return -1;
            const int colour = vertex_colours_[static_cast<std::size_t>(index)];
            if (common >= 0 && common != colour)
                return -1;
            common = colour;
        }
        return common;
    }

    void add_face(const std::vector<std::vector<double>> &row)
    {
        if (indices_ < 0)
            return;
        const std::vector<double> &indices = row[static_cast<std::size_t>(indices_)];
        for (const double value : indices)
            if (index_of(value) < 0) {
                ++bad_;
                return;
            }
        static const std::vector<double> none;
        const std::vector<double> &uv =
            corner_uv_ < 0 ? none : row[static_cast<std::size_t>(corner_uv_)];
        for (std::size_t i = 0; i < indices.size(); ++i) {
            const bool has_uv = 2 * i + 1 < uv.size();
            corner(index_of(indices[i]), has_uv ? static_cast<float>(uv[2 * i]) : 0,
                   has_uv ? static_cast<float>(uv[2 * i + 1]) : 0);
        }
        end_face(colour_of(row), indices, 0);
    }

    // Triangles that share edges; -1 begins the next strip.
    void add_strips(const std::vector<std::vector<double>> &row)
    {
        if (indices_ < 0)
            return;
        std::vector<int> last;
        bool odd = false;
        for (const double value : row[static_cast<std::size_t>(indices_)]) {
            const int index = index_of(value);
            if (index < 0) {
                last.clear();
                odd = false;
                continue;
            }
            last.push_back(index);
            if (last.size() < 3)
                continue;
            const std::size_t n = last.size();
            const int a = last[n - 3];
            const int b = last[n - 2];
            if (a != b && b != index && a != index) {
                corner(odd ? b : a, 0, 0);
                corner(odd ? a : b, 0, 0);
                corner(index, 0, 0);
                end_face(-1, {double(a), double(b), double(index)}, 0);
            }
            odd = !odd;
        }
    }

    void add_edge(const std::vector<std::vector<double>> &row)
    {
        const int from = places_[6] < 0 ? -1 : index_of(value_of(row, places_[6]));
        const int to = places_[7] < 0 ? -1 : index_of(value_of(row, places_[7]));
        if (from < 0 || to < 0) {
            ++bad_;
            return;
        }
        const int colour = colour_of(row);
        if (!goes_on(from, to, colour)) {
            corner(from, 0, 0);
            corner(to, 0, 0);
            end_face(colour, {double(from), double(to)}, SURFACE_LINE);
        }
        line_colour_ = colour;
    }

    // Whether an edge begins where the last one ended; then it lengthens that line, or closes it.
    bool goes_on(int from, int to, int colour)
    {
        if (mesh_.surfaces.empty() || mesh_.corners.back() != from || line_colour_ != colour ||
            mesh_.surfaces.back().flags != (int{SURFACE_LINE} | SURFACE_TWOSIDED))
            return false;
        const auto first = static_cast<std::size_t>(mesh_.offsets[mesh_.offsets.size() - 2]);
        if (mesh_.corners[first] == to && mesh_.corners.size() - first > 2) {
            mesh_.surfaces.back().flags = int{SURFACE_CLOSED_LINE} | SURFACE_TWOSIDED;
        } else {
            corner(to, 0, 0);
            ++mesh_.offsets.back();
        }
        return true;
    }

    job &work_;
    const std::string &bytes_;
    std::size_t at_ = 0;
    int line_ = 0;
    char form_ = 0;
    std::vector<element> elements_;
    std::string texture_;
    std::vector<int> places_;
    int u_ = -1, v_ = -1, indices_ = -1, corner_uv_ = -1;
    bool real_colour_ = false;
    int line_colour_ = -1;
    mesh_arrays mesh_;
    std::vector<float> vertex_uv_;
    std::vector<int> vertex_colours_;
    std::map<int, int> materials_;
    std::vector<std::pair<std::size_t, int>> by_points_; // surfaces, and what their points share
    unsigned bad_ = 0, transparent_ = 0;
    bool has_face_colours_ = false;
    bool too_many_colours_ = false;
};

} // namespace

object_t *ply_import(const char *filename)
{
    const std::string name = filename;
    std::string bytes;
    job work;
    if (!read_file(name, &bytes, &work))
        return refuse(work, name, std::strerror(errno));
    ply_reader reader(work, bytes);
    const std::string reason = reader.run();
    return reason.empty() && !work.cancelled() ? reader.make(name) : refuse(work, name, reason);
}

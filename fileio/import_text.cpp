#include "fileio/import_text.h"

#include "base/atomic_file.h"
#include "base/numbers.h"
#include "base/progress.h"
#include "fileio/import_mesh.h"
#include "model/object_tree.h"

#include <array>
#include <cerrno>
#include <cmath>
#include <cstring>
#include <map>

namespace {

// Of what has no colour.
int plain_material() { return import_colour(0.8f, 0.8f, 0.8f); }

// The lines of a text, comments cut off.
class line_reader {
public:
    explicit line_reader(std::string_view text)
        : rest_(text), size_(text.size()), progress_(static_cast<double>(size_))
    {
    }

    bool next(std::string_view *line)
    {
        if (rest_.empty() || !progress_.step(static_cast<double>(size_ - rest_.size())))
            return false;
        const size_t end = std::min(rest_.find_first_of("\r\n"), rest_.size());
        *line = rest_.substr(0, std::min(end, rest_.find('#')));
        rest_.remove_prefix(std::min(end + 1, rest_.size()));
        return true;
    }

    [[nodiscard]] bool cancelled() const { return progress_.cancelled(); }

private:
    std::string_view rest_;
    const size_t size_;
    progress_t progress_;
};

// The leading numbers of a line, separated by blanks or commas; `rest` is the text after them.
std::vector<float> numbers_of(std::string_view line, std::string_view *rest)
{
    std::vector<float> numbers;
    const char *p = line.data();
    const char *end = p + line.size();
    while (true) {
        while (p != end && (is_blank(*p) || *p == ','))
            ++p;
        const bool colour = end - p > 1 && p[0] == '0' && (p[1] == 'x' || p[1] == 'X');
        const bool digit = p != end && std::strchr("0123456789+-.", *p) != nullptr;
        float value = 0;
        const char *after = colour || !digit ? nullptr : scan_float(p, end, &value);
        if (after == nullptr)
            break;
        numbers.push_back(value);
        p = after;
    }
    *rest = {p, static_cast<size_t>(end - p)};
    return numbers;
}

std::string first_word(std::string_view text)
{
    return std::string(text.substr(0, std::min(text.find_last_not_of(" \t") + 1, text.size())));
}

// ---- triangles ----

class triangle_reader {
public:
    explicit triangle_reader(const std::string &filename)
        : top_(new_group()), name_(import_base_name(filename.c_str()))
    {
        object_set_name(top_, name_.c_str());
    }

    void line(std::string_view text)
    {
        std::string_view rest;
        for (const float number : numbers_of(text, &rest))
            add_number(number);
        if (rest.starts_with("0x") || rest.starts_with("0X")) {
            colour(unsigned_of_hex(first_word(rest)));
        } else if (!rest.empty()) {
            end_object();
            name_ = first_word(rest);
        }
    }

    // Null when there are no triangles, or they are not wanted.
    object_t *finish(bool cancelled)
    {
        end_object();
        if (!cancelled && top_->num_children > 0)
            return top_;
        object_free(top_);
        return nullptr;
    }

private:
    void add_number(float number)
    {
        end_triangle_if(9);
        pending_.push_back(number);
    }

    // The colour of the triangle that was just completed.
    void colour(unsigned rgb)
    {
        material_ = import_colour(static_cast<float>(rgb >> 16 & 0xFF) / 255,
                                  static_cast<float>(rgb >> 8 & 0xFF) / 255,
                                  static_cast<float>(rgb & 0xFF) / 255);
        end_triangle_if(9);
        material_ = plain_;
    }

    void end_triangle_if(size_t count)
    {
        if (pending_.size() < count)
            return;
        for (size_t i = 0; i < 9; i += 3)
            mesh_.add_corner(point(pending_[i], pending_[i + 1], pending_[i + 2]));
        mesh_.end_surface(material_, SURFACE_TWOSIDED);
        pending_.clear();
    }

    // Corners at one place are one vertex.
    int point(float x, float y, float z)
    {
        if (!std::isfinite(x) || !std::isfinite(y) || !std::isfinite(z))
            return mesh_.add_point(x, y, z);
        const auto [known, fresh] = known_.try_emplace({x + 0.0f, y + 0.0f, z + 0.0f}, 0);
        if (fresh)
            known->second = mesh_.add_point(x, y, z);
        return known->second;
    }

    void end_object()
    {
        end_triangle_if(9);
        pending_.clear();
        if (!mesh_.empty())
            object_add_child(top_, mesh_.make_object(name_));
        mesh_ = {};
        known_.clear();
    }

    object_t *top_;
    std::string name_;
    import_mesh mesh_;
    std::map<std::array<float, 3>, int> known_; // points by their places
    std::vector<float> pending_;
    const int plain_ = plain_material();
    int material_ = plain_;
};

// ---- lines ----

class vector_reader {
public:
    explicit vector_reader(const std::string &filename) : name_(import_base_name(filename.c_str()))
    {
    }

    void line(std::string_view text)
    {
        std::string_view rest;
        const std::vector<float> numbers = numbers_of(text, &rest);
        if (numbers.size() < 2 || !rest.empty())
            end_line();
        else
            points_.push_back({numbers[0], numbers[1], numbers.size() > 2 ? numbers[2] : 0});
    }

    object_t *finish(bool cancelled)
    {
        end_line();
        return cancelled || mesh_.empty() ? nullptr : mesh_.make_object(name_);
    }

private:
    void end_line()
    {
        const auto meets = [](const point3_t &a, const point3_t &b) {
            return a.x == b.x && a.y == b.y && a.z == b.z;
        };
        const bool closed = points_.size() > 3 && meets(points_.front(), points_.back());
        if (closed)
            points_.pop_back();
        if (points_.size() > 1) {
            for (const point3_t &p : points_)
                mesh_.add_corner(mesh_.add_point(p.x, p.y, p.z));
            mesh_.end_surface(plain_, (closed ? int{SURFACE_CLOSED_LINE} : int{SURFACE_LINE}) |
                                          SURFACE_TWOSIDED);
        }
        points_.clear();
    }

    const std::string name_;
    const int plain_ = plain_material();
    import_mesh mesh_;
    std::vector<point3_t> points_;
};

// Hands the lines of a file to a reader, whose object is the result.
template <class Reader>
object_t *read_lines(const std::string &filename, Reader &&reader, const char *when_empty)
{
    std::string text;
    if (!read_whole_file(filename.c_str(), &text))
        return import_refused(filename, strerror(errno));
    line_reader lines(text);
    for (std::string_view line; lines.next(&line);)
        reader.line(line);
    object_t *object = reader.finish(lines.cancelled());
    if (lines.cancelled())
        return import_cancelled();
    return object != nullptr ? object : import_refused(filename, when_empty);
}

} // namespace

object_t *vesk_import_aliastri(const char *filename)
{
    const std::string name = filename;
    return read_lines(name, triangle_reader(name), "there are no triangles in it");
}

object_t *vesk_import_vector(const char *filename)
{
    const std::string name = filename;
    return read_lines(name, vector_reader(name), "there are no lines in it");
}

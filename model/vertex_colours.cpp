#include "model/vertex_colours.h"

#include "base/file_report.h"
#include "model/each.h"
#include "model/object_notes.h"
#include "model/world.h"

#include <charconv>

namespace {

constexpr std::size_t digits = 6; // a vertex

int digit_of(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

} // namespace

std::vector<unsigned char> object_vertex_colours(const object_t *object)
{
    if (vesk_object_has_vertex_colours(object) == 0)
        return {};
    const std::string note = object_notes(object, note_of_vertex_colours).front();
    int count = 0;
    const auto number = std::from_chars(note.data(), note.data() + note.size(), count);
    const char *const text = number.ptr + 1;
    const char *const end = note.data() + note.size();
    if (number.ec != std::errc() || count != object->num_vertices || text > end ||
        static_cast<std::size_t>(end - text) != digits * static_cast<std::size_t>(count))
        return {};
    std::vector<unsigned char> rgb;
    rgb.reserve(3 * static_cast<std::size_t>(count));
    for (const char *p = text; p != end; p += 2) {
        const int high = digit_of(p[0]);
        const int low = digit_of(p[1]);
        if (high < 0 || low < 0)
            return {};
        rgb.push_back(static_cast<unsigned char>(16 * high + low));
    }
    return rgb;
}

void report_lost_vertex_colours()
{
    int objects = 0;
    for_each_object(vesk_get_world(), [&](const object_t *object) {
        objects += vesk_object_has_vertex_colours(object);
    });
    vesk_report_loss(objects, "objects with colours of points");
}

const unsigned char *vesk_object_get_vertex_colours(const object_t *object)
{
    static std::vector<unsigned char> colours;
    colours = object_vertex_colours(object);
    return colours.empty() ? nullptr : colours.data();
}

int vesk_object_has_vertex_colours(const object_t *object)
{
    return object_has_note(object, note_of_vertex_colours) ? 1 : 0;
}

void vesk_object_set_vertex_colours(object_t *object, const unsigned char *rgb)
{
    static const char hexadecimal[] = "0123456789abcdef";
    std::vector<std::string> notes;
    if (rgb != nullptr && object->num_vertices > 0) {
        const std::size_t bytes = 3 * static_cast<std::size_t>(object->num_vertices);
        std::string &note = notes.emplace_back(std::to_string(object->num_vertices) + " ");
        note.reserve(note.size() + 2 * bytes);
        for (std::size_t i = 0; i < bytes; ++i) {
            note += hexadecimal[rgb[i] >> 4];
            note += hexadecimal[rgb[i] & 15];
        }
    }
    object_set_notes(object, note_of_vertex_colours, notes);
}

int vesk_object_has_user_data(const object_t *object)
{
    return object_user_data(object).empty() ? 0 : 1;
}

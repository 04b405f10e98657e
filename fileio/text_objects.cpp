#include "fileio/text_objects.h"

#include "base/filename.h"
#include "base/home.h"
#include "base/messages.h"
#include "base/prefs.h"
#include "base/utf8.h"
#include "edit/create.h"
#include "edit/transform.h"
#include "fileio/vesk_reader.h"
#include "model/bounds.h"
#include "model/each.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cstring>
#include <string>

namespace {

struct font_t {
    object_t *object = nullptr;
    std::string path; // as the preference named it
};
font_t &font()
{
    static font_t loaded;
    return loaded;
}

std::string found_file(const char *filename)
{
    if (filename_is_absolute(filename) || vesk_file_exists(filename) != 0)
        return filename;
    return vesk_filename_concat_path_file(vesk_get_vesk_homedir(), filename);
}

bool font_is_ready()
{
    const std::string path = prefs.fontpath ? prefs.fontpath : "";
    if (font().object && font().path == path)
        return true;
    console_printf("Loading font file '%s'\n", path.c_str());
    return load_font_object(path.c_str()) != 0;
}

// Takes the first character off `text`, as UTF-8. A byte that begins none stands for the Latin-1
// character of its code.
std::string take_character(const char **text)
{
    const std::size_t length = utf8_letter(*text);
    std::string character(*text, std::max<std::size_t>(length, 1));
    *text += character.size();
    if (length == 0) {
        const auto code = static_cast<unsigned char>(character[0]);
        character = {static_cast<char>(0xC0 | (code >> 6)),
                     static_cast<char>(0x80 | (code & 0x3F))};
    }
    return character;
}

// The place of the next glyph.
struct pen_t {
    point3_t place = {0, 0, 0};
    float line_height = 0;
};

void add_glyph(object_t *text, object_t *glyph, pen_t *pen)
{
    const point3_t origin = {0, 0, 0};
    object_t *clone = object_clone(glyph);
    object_add_child(text, clone);
    translate_object_abs(clone, &origin);
    translate_object_abs(clone, &pen->place);
    const point3_t size = find_object_size(clone);
    pen->place.x += size.x + static_cast<float>(prefs.font_char_offset);
    pen->line_height = std::max(pen->line_height, size.y);
}

} // namespace

int load_font_object(const char *filename)
{
    const std::string path = filename; // may be the kept one
    if (font().object)
        object_free(font().object);
    font() = {};
    font().object = vesk_read_model(found_file(path.c_str()));
    if (!font().object)
        return 0;
    font().path = path;
    return 1;
}

object_t *find_named_object(object_t *top, const char *name)
{
    return find_object_where(top, [&](const object_t *object) {
        return object != top && object->name && std::strcmp(object->name, name) == 0;
    });
}

object_t *create_text(const char *text)
{
    constexpr float blank_width = 0.5f;
    const std::string whole = text;
    if (!font_is_ready()) {
        console_printf("create_text: no font loaded\n");
        return nullptr;
    }
    object_t *object = new_group();
    object_set_name(object, whole.c_str());
    pen_t pen;
    for (const char *rest = whole.c_str(); *rest != '\0';) {
        const std::string character = take_character(&rest);
        if (character == "\n") {
            pen.place.x = 0;
            pen.place.y -= pen.line_height;
        } else if (character == " ") {
            pen.place.x += blank_width;
        } else if (object_t *glyph = find_named_object(font().object, character.c_str())) {
            add_glyph(object, glyph, &pen);
        } else {
            console_printf("no font char for %s\n", character.c_str());
        }
    }
    if (!object->children) {
        console_printf("no chars created\n");
        object_free(object);
        return nullptr;
    }
    return object;
}

// ---- commands ----

void add_text(const char *text) { link_created(create_text(text), "add text"); }

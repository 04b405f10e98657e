#include "fileio/vesk_reader.h"

#include "base/current_file.h"
#include "base/messages_internal.h"
#include "edit/transform.h"
#include "fileio/tree_reader.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/frame.h"
#include "model/matrix.h"
#include "model/normals.h"
#include "model/textures/textures.h"

#include <algorithm>

namespace {

const char *first_word_end(const char *p, const char *end)
{
    while (p < end && !is_blank(*p) && *p != '\v' && *p != '\f')
        ++p;
    return p;
}

// The revision that a text begins with; none when it is no model file. `rest` is what follows the
// word.
std::optional<unsigned> revision_of(const file_text &text, const char **rest)
{
    const char *word = skip_space(text.begin(), text.end());
    *rest = first_word_end(word, text.end());
    return vesk_revision_of(std::string_view(word, static_cast<std::size_t>(*rest - word)));
}

} // namespace

void place_object(object_t *object, point3_t location)
{
    const object_t *parent = object->parent;
    float own[9];
    matrix_copy(object->rotation, own);
    matrix_rotate_point(parent->rotation, &location);
    matrix_multiply(parent->rotation, own, object->rotation);
    if (matrix_is_identity(object->rotation) == 0) {
        for (vertex *point : each<vertex>(object->vertices))
            matrix_rotate_point(object->rotation, &point->position);
    }
    object_translation_local_to_global(object, &location);
    if (location.x != 0 || location.y != 0 || location.z != 0)
        translate_object_only(object, &location);
    object_mark(object, CHANGED_POSITIONS | CHANGED_RECORD);
}

object_t *readfile_vesk2(const char *filename)
{
    const std::string name = filename; // may be a text that the current file holds
    current_file_set(name.c_str());
    return vesk_read_model(name);
}

object_t *vesk_read_model(const std::string &filename)
{
    const std::string name = filename; // the messages let scripts run
    complaints_clear();
    file_text text;
    if (!file_text_read(name.c_str(), &text)) {
        windows_message_dialog("Load VESK file:\n\ncan't open file %s for reading", name.c_str());
        return nullptr;
    }
    const char *first = nullptr;
    const std::optional<unsigned> revision = revision_of(text, &first);
    if (!revision) {
        tell_not_valid(name.c_str());
        return nullptr;
    }
    if (*revision > vesk_revision) {
        tell_newer_version(name.c_str());
        return nullptr;
    }
    if (*revision < vesk_revision) {
        text = {};
        return readfile_vesk_old2(name.c_str());
    }

    display_message("Loading VESK file...");
    const texture_load_scope one_box;
    object_t *top = nullptr;
    bool moved_bar = false;
    {
        tree_reader reader(text, first, name.c_str());
        top = reader.read();
        moved_bar = reader.moved_progress_bar();
    }
    text = {};
    if (!top) {
        if (moved_bar)
            set_progress_bar(0);
        display_message("no objects loaded");
        return nullptr;
    }
    display_message("calculating normals...");
    object_calc_normals_force(top);
    tell_load_done();
    return top;
}

object_t *vesk_import_vesk(const char *filename) { return readfile_vesk2(filename); }

object_t *vesk_object_of_text(std::string_view text)
{
    complaints_clear();
    file_text copy;
    copy.size = text.size();
    copy.bytes.reset(static_cast<char *>(std::malloc(text.size() + 1)));
    if (!copy.bytes)
        return nullptr;
    std::copy(text.begin(), text.end(), copy.bytes.get());
    const char *first = nullptr;
    if (revision_of(copy, &first) != vesk_revision)
        return nullptr;
    const texture_load_scope one_box;
    tree_reader reader(copy, first, "");
    object_t *top = reader.read();
    if (reader.moved_progress_bar())
        set_progress_bar(0);
    if (top)
        object_calc_normals_force(top);
    return top;
}

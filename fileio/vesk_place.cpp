#include "fileio/vesk_place.h"

#include "edit/transform.h"
#include "fileio/vesk_scan.h"
#include "model/change_marks.h"
#include "model/frame.h"
#include "model/matrix.h"
#include "model/move_vertices.h"

#include <charconv>
#include <cstdint>

std::optional<unsigned> vesk_revision_of(std::string_view text, const char **rest)
{
    const char *end = text.data() + text.size();
    const char *word = skip_space(text.data(), end);
    *rest = word;
    while (*rest < end && skip_space(*rest, end) == *rest)
        ++*rest;
    if (!std::string_view(word, static_cast<std::size_t>(*rest - word)).starts_with("VESK"))
        return std::nullopt;
    unsigned revision = 0;
    const auto [after, error] = std::from_chars(word + 4, *rest, revision, 16);
    return error == std::errc::result_out_of_range ? UINT32_MAX : revision;
}

void place_object(object_t *object, point3_t location)
{
    const object_t *parent = object->parent;
    float own[9];
    matrix_copy(object->rotation, own);
    matrix_rotate_point(parent->rotation, &location);
    matrix_multiply(parent->rotation, own, object->rotation);
    if (matrix_is_identity(object->rotation) == 0) {
        object_move_vertices(object, [object](point3_t p) {
            matrix_rotate_point(object->rotation, &p);
            return p;
        });
    }
    object_translation_local_to_global(object, &location);
    if (location.x != 0 || location.y != 0 || location.z != 0)
        translate_object_only(object, &location);
    object_mark(object, CHANGED_RECORD);
}

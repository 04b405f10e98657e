#include "edit/axis_pivot.h"

#include "base/command_result.h"
#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/selection_scan.h"
#include "edit/mesh/polygon_plane.h"

#include <algorithm>
#include <cstring>

namespace {

struct picked_t {
    vec3d axis = {0, 1, 0}, last = {0, 1, 0}, pivot = {0, 0, 0};
};
picked_t picked;

// Three numbers with commas between them.
std::optional<vec3d> numbers_of(const char *word)
{
    double numbers[3] = {};
    const char *const end = word + std::strlen(word);
    for (int i = 0; i < 3; ++i) {
        word = scan_double(word, end, &numbers[i]);
        if (word == nullptr || !std::isfinite(numbers[i]) ||
            (i < 2 && (word == end || *word != ',')))
            return {};
        word += i < 2 ? 1 : 0;
    }
    return word == end ? std::optional<vec3d>({numbers[0], numbers[1], numbers[2]}) : std::nullopt;
}

// Of the surfaces, weighted by their areas; of vertices that make none, by the normals of these.
vec3d mean_normal()
{
    vec3d sum;
    for (const owned_elements &owned : target_surfaces()) {
        const flat_ptr mesh = object_flat(owned.object);
        for (const int surface : owned.indices)
            sum += polygon_area_vector(*mesh, surface);
    }
    if (sum == vec3d{}) {
        for (const vertex *v : each<vertex>(selection().vertices))
            sum += to_vec3d(v->normal);
    }
    return unit_of(sum);
}

// Between the ends of the one selected edge, or the two selected vertices; else none.
vec3d direction_of_two()
{
    const std::vector<vertex *> ends = elements_of<vertex>(selection().vertices);
    return ends.size() == 2 ? unit_of(between(ends[0]->position, ends[1]->position)) : vec3d{};
}

} // namespace

std::optional<vec3d> axis_of_word(const char *what, const char *word)
{
    static constexpr const char *letters = "xyz012";
    const auto is = [word](const char *name) { return std::strcmp(word, name) == 0; };
    vec3d axis;
    if (const char *at = std::strchr(letters, word[0]);
        word[0] != '\0' && word[1] == '\0' && at != nullptr) {
        const auto number = (at - letters) % 3;
        axis = {number == 0 ? 1.0 : 0.0, number == 1 ? 1.0 : 0.0, number == 2 ? 1.0 : 0.0};
    } else if (is("normal")) {
        axis = mean_normal();
    } else if (is("picked")) {
        axis = picked.axis;
    } else if (is("last")) {
        axis = picked.last;
    } else {
        axis = unit_of(numbers_of(word).value_or(vec3d{}));
    }
    if (axis == vec3d{}) {
        display_message("%s - no axis '%s'", what, word);
        return {};
    }
    picked.last = axis;
    return axis;
}

std::optional<vec3d> pivot_of_word(const char *what, const char *word)
{
    const auto is = [word](const char *name) { return std::strcmp(word, name) == 0; };
    if (is("selection"))
        return to_vec3d(selection().box_centre);
    if (is("origin"))
        return vec3d{};
    if (is("picked"))
        return picked.pivot;
    const std::optional<vec3d> numbers = numbers_of(word);
    if (!numbers)
        display_message("%s - no pivot '%s'", what, word);
    return numbers;
}

// ---- commands ----

void command_pick_axis()
{
    vec3d axis = direction_of_two();
    if (axis == vec3d{})
        axis = mean_normal();
    if (axis == vec3d{}) {
        display_message("pick axis - select an edge, two vertices or surfaces");
        return;
    }
    picked.axis = picked.last = axis;
    display_message("picked axis: %g %g %g", axis.x, axis.y, axis.z);
}

void command_pick_pivot()
{
    if (selection().box_valid == 0) {
        display_message("pick pivot - nothing selected");
        return;
    }
    picked.pivot = to_vec3d(selection().box_centre);
    display_message("picked pivot: %g %g %g", picked.pivot.x, picked.pivot.y, picked.pivot.z);
}

void command_get_picked()
{
    command_result_appendf("%g %g %g %g %g %g", picked.axis.x, picked.axis.y, picked.axis.z,
                           picked.pivot.x, picked.pivot.y, picked.pivot.z);
}

#include "edit/knife.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/mesh/knife_cut.h"

#include <cmath>
#include <cstring>
#include <limits>

namespace {

// Points in groups of three numbers; false when there are others.
bool points_of(const char *text, std::vector<point3_t> *points)
{
    const char *const end = text + std::strlen(text);
    std::vector<float> numbers;
    float number = 0;
    while ((text = scan_float(text, end, &number)) != nullptr)
        numbers.push_back(number);
    for (std::size_t i = 0; i + 2 < numbers.size(); i += 3) {
        points->push_back({numbers[i], numbers[i + 1], numbers[i + 2]});
        if (!std::isfinite(numbers[i]) || !std::isfinite(numbers[i + 1]) ||
            !std::isfinite(numbers[i + 2]))
            return false;
    }
    return numbers.size() % 3 == 0 && points->size() > 1;
}

} // namespace

// ---- commands ----

void command_knife(const char *coordinates)
{
    std::vector<point3_t> line;
    if (!points_of(coordinates, &line)) {
        display_message("knife - x y z of two points or more are needed");
        return;
    }
    const std::vector<owned_elements> targets = target_surfaces();
    if (targets.empty()) {
        display_message("knife - nothing selected");
        return;
    }
    // The object that the line lies nearest to.
    object_t *object = nullptr;
    std::vector<int> surfaces;
    double least = std::numeric_limits<double>::infinity();
    for (const owned_elements &owned : targets) {
        const knife_cut cut(object_flat(owned.object), owned.indices);
        double distance = 0;
        for (const point3_t &point : line)
            distance = std::max(distance, cut.distance(point));
        if (object == nullptr || distance < least) {
            least = distance;
            object = owned.object;
            surfaces = owned.indices;
        }
    }
    knife_cut cut(object_flat(object), surfaces);
    std::string why;
    if (!cut.draw(line, &why)) {
        display_message("knife - %s", why.c_str());
        return;
    }
    mesh_change change(object);
    cut.apply(change);
    open_world_undo("knife");
    owned_list pieces;
    const bool by_surfaces = select_mode() == SELECT_SURFACE;
    if (by_surfaces)
        clear_selection();
    for (surface_t *surface : change.commit().surfaces)
        pieces.add(surface);
    calc_normals_of({object});
    if (by_surfaces)
        select_surfacelist(pieces.get());
    finish_edit();
    display_message("knife - %d surfaces", cut.num_cut());
}

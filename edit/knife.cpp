#include "edit/knife.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/element_text.h"
#include "edit/mesh/knife_cut.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>

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

// The target that the line lies nearest to.
const owned_elements *nearest_target(const std::vector<owned_elements> &targets,
                                     const std::vector<point3_t> &line)
{
    if (targets.size() == 1)
        return &targets.front();
    const owned_elements *nearest = nullptr;
    double least = std::numeric_limits<double>::infinity();
    for (const owned_elements &owned : targets) {
        const knife_cut cut(object_flat(owned.object), owned.indices);
        double distance = 0;
        for (const point3_t &point : line)
            distance = std::max(distance, cut.distance(point));
        if (nearest == nullptr || distance < least) {
            least = distance;
            nearest = &owned;
        }
    }
    return nearest;
}

} // namespace

std::vector<owned_elements> knife_targets()
{
    std::vector<owned_elements> targets = target_surfaces();
    if (!targets.empty())
        return targets;
    for_each_object(vesk_get_world(), [&](object_t *object) {
        if (object->visible == 0 || object->locked != 0 || object->surfaces == nullptr)
            return;
        std::vector<int> all(object_flat(object)->num_surfaces());
        std::iota(all.begin(), all.end(), 0);
        targets.push_back({object, std::move(all)});
    });
    return targets;
}

void knife_commit(object_t *object, const knife_cut &cut)
{
    mesh_change change(object);
    cut.apply(change);
    open_world_undo("knife");
    owned_list pieces;
    const bool selects = select_mode() == SELECT_SURFACE && nothing_is_selected() == 0;
    for (surface_t *surface : change.commit().surfaces)
        pieces.add(surface);
    calc_normals_of({object});
    if (selects)
        change_selection(pieces.get(), true);
    finish_edit();
    display_message("knife - %d surfaces", cut.num_cut());
}

// ---- commands ----

void command_knife(const char *coordinates)
{
    std::vector<point3_t> line;
    if (!points_of(coordinates, &line)) {
        display_message("knife - x y z of two points or more are needed");
        return;
    }
    const std::vector<owned_elements> targets = knife_targets();
    if (targets.empty()) {
        display_message("knife - there is nothing to cut");
        return;
    }
    const owned_elements &target = *nearest_target(targets, line);
    knife_cut cut(object_flat(target.object), target.indices);
    std::string why;
    if (cut.draw(line, &why))
        knife_commit(target.object, cut);
    else
        display_message("knife - %s", why.c_str());
}

#include "edit/knife.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "edit/document/edit_support.h"
#include "edit/document/element_text.h"
#include "edit/mesh/knife_cut.h"
#include "edit/symmetry.h"
#include "edit/symmetry_elements.h"
#include "model/vector.h"
#include "model/world.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <numeric>
#include <unordered_set>

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

namespace {

std::vector<surface_t *> make_cut(object_t *object, const knife_cut &cut)
{
    mesh_change change(object);
    cut.apply(change);
    return change.commit().surfaces;
}

// The surfaces that the mirrored line may cut: counterparts of those that the line may.
std::vector<surface_t *> surfaces_across(object_t *object)
{
    int without = 0;
    for (const owned_elements &owned : knife_targets()) {
        if (owned.object != object)
            continue;
        const flat_ptr mesh = object_flat(object);
        if (static_cast<int>(owned.indices.size()) == mesh->num_surfaces())
            return *mesh->surface_records;
        owned_list named;
        for (const int s : owned.indices)
            named.add(mesh->surface_record(s));
        return counterparts_of(named.get(), &without);
    }
    return {};
}

// Cuts along the line; pieces are added. Returns how many surfaces it cut.
int cut_again(object_t *object, const std::vector<surface_t *> &named,
              const std::vector<point3_t> &line, std::vector<surface_t *> *pieces)
{
    std::unordered_set<const surface_t *> may_be_cut(named.begin(), named.end());
    may_be_cut.insert(pieces->begin(), pieces->end());
    const flat_ptr mesh = object_flat(object);
    std::vector<int> places;
    for (int s = 0; s < mesh->num_surfaces(); ++s) {
        if (may_be_cut.contains(mesh->surface_record(s)))
            places.push_back(s);
    }
    knife_cut cut(mesh, places);
    std::string why;
    if (!cut.draw(line, &why) || cut.num_cut() == 0)
        return 0;
    const std::vector<surface_t *> made = make_cut(object, cut);
    const flat_ptr after = object_flat(object);
    const std::unordered_set<const surface_t *> there(after->surface_records->begin(),
                                                      after->surface_records->end());
    std::erase_if(*pieces, [&](const surface_t *piece) { return !there.contains(piece); });
    pieces->insert(pieces->end(), made.begin(), made.end());
    return cut.num_cut();
}

} // namespace

knife_lines symmetric_lines(object_t *object, const std::vector<point3_t> &line)
{
    if (!symmetry_is_on())
        return {line, {}};
    const float near = symmetry_closeness(object), plane = symmetry_plane(object);
    const auto height = [&](const point3_t &p) {
        const float h = axis_of(p, symmetry_axis()) - plane;
        return std::abs(h) <= near ? 0.0f : h;
    };
    const auto leads =
        std::find_if(line.begin(), line.end(), [&](const point3_t &p) { return height(p) != 0; });
    if (leads == line.end())
        return {line, {}};
    // As far as it stays on the side where it begins.
    const float side = height(*leads) > 0 ? 1.0f : -1.0f;
    std::vector<point3_t> part;
    bool ends_on = false;
    for (std::size_t i = 0; i < line.size() && !ends_on; ++i) {
        const float h = height(line[i]) * side;
        ends_on = i > 0 && h <= 0 && height(line[i - 1]) != 0;
        const float before = i > 0 ? height(line[i - 1]) * side : 0;
        part.push_back(
            h < 0 ? to_point(to_vec3d(line[i - 1]) + between(line[i - 1], line[i]) *
                                                         static_cast<double>(before / (before - h)))
                  : line[i]);
    }
    std::vector<point3_t> image;
    for (const point3_t &p : part)
        image.push_back(symmetric_point(object, p));
    const bool begins_on = height(part.front()) == 0;
    if (!begins_on && !ends_on)
        return {part, image};
    std::reverse(image.begin(), image.end());
    if (ends_on) {
        part.insert(part.end(), image.begin() + 1, image.end());
        return {part, {}};
    }
    image.insert(image.end(), part.begin() + 1, part.end());
    return {image, {}};
}

void knife_commit(object_t *object, const knife_cut &cut, const std::vector<point3_t> &across)
{
    const std::vector<surface_t *> named =
        across.empty() ? std::vector<surface_t *>() : surfaces_across(object);
    open_world_undo("knife");
    const bool selects = select_mode() == SELECT_SURFACE && nothing_is_selected() == 0;
    std::vector<surface_t *> made = make_cut(object, cut);
    const int num_across = across.empty() ? 0 : cut_again(object, named, across, &made);
    calc_normals_of({object});
    if (selects) {
        owned_list pieces;
        for (surface_t *surface : made)
            pieces.add(surface);
        change_selection(pieces.get(), true);
    }
    finish_edit();
    display_message("knife - %d surfaces", cut.num_cut() + num_across);
    if (!across.empty() && num_across == 0)
        tell_without_counterpart(1);
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
    const knife_lines lines = symmetric_lines(target.object, line);
    if (cut.draw(lines.here, &why))
        knife_commit(target.object, cut, lines.across);
    else
        display_message("knife - %s", why.c_str());
}

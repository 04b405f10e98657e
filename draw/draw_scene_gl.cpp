#include "draw/draw_scene_gl.h"

#include "base/prefs.h"
#include "draw/cluster_view_gl.h"
#include "draw/crowding_gl.h"
#include "draw/depth_order.h"
#include "draw/draw_slices.h"
#include "draw/draw_textures_gl.h"
#include "draw/selected_parts_gl.h"
#include "model/palette.h"
#include "model/vector.h"
#include "view/overlay.h"

#include <algorithm>
#include <compare>
#include <cstdint>
#include <map>
#include <memory>
#include <tuple>
#include <utility>

namespace {

constexpr float locked_dim = 0.6f;
constexpr float tint_alpha = 0.26f;
constexpr double nearer_range = 0.9999; // of depths, for marks on a surface

// The picture on an object and how it lies there; no image: none is drawn.
struct placed_image_t {
    VESKImage *image = nullptr;
    float repeat_x = 1, repeat_y = 1, offset_x = 0, offset_y = 0;

    auto operator<=>(const placed_image_t &) const = default;
};

// The parts that are drawn in one call: one page and one state.
struct batch_key_t {
    bool locked;
    bool smooth;
    bool twosided;
    std::int32_t material;
    placed_image_t picture;
    buffer_page_t *page;
    const gpu_buffer *list = nullptr; // of indices; null: the page's

    bool operator<(const batch_key_t &other) const
    {
        return std::tie(locked, picture, smooth, twosided, material, page, list) <
               std::tie(other.locked, other.picture, other.smooth, other.twosided, other.material,
                        other.page, other.list);
    }
};
using batches_t = std::map<batch_key_t, draw_ranges_t>;

const material &material_of(std::int32_t index)
{
    static const material fallback = {
        {1, 1, 1, 1}, {0.2f, 0.2f, 0.2f, 1}, {0.5f, 0.5f, 0.5f, 1}, {0, 0, 0, 1}, 10, 0, nullptr, 0,
        nullptr};
    const int count = vesk_get_num_palette();
    if (count == 0)
        return fallback;
    const material *found = vesk_palette_get_material(index >= 0 && index < count ? index : 0);
    return found != nullptr ? *found : fallback;
}

bool is_transparent(std::int32_t index) { return material_of(index).transparency > 0; }

void set_material(const material &m, const fill_options_t &options, bool locked)
{
    const float alpha = std::clamp(1.0f - m.transparency, 0.0f, 1.0f);
    const float diffuse[4] = {m.diffuse[0], m.diffuse[1], m.diffuse[2], alpha};
    const float ambient[4] = {m.ambient[0], m.ambient[1], m.ambient[2], 1};
    const float emissive[4] = {m.emissive[0], m.emissive[1], m.emissive[2], 1};
    const bool shines = options.specular && !locked;
    const float specular[4] = {shines ? m.specular[0] : 0, shines ? m.specular[1] : 0,
                               shines ? m.specular[2] : 0, 1};
    glMaterialfv(GL_FRONT_AND_BACK, GL_DIFFUSE, diffuse);
    glMaterialfv(GL_FRONT_AND_BACK, GL_AMBIENT, options.own_light ? diffuse : ambient);
    glMaterialfv(GL_FRONT_AND_BACK, GL_SPECULAR, specular);
    glMaterialfv(GL_FRONT_AND_BACK, GL_EMISSION, emissive);
    glMaterialf(GL_FRONT_AND_BACK, GL_SHININESS, std::clamp(m.shininess, 0.0f, 128.0f));
}

void set_surface_state(const batch_key_t &key, const fill_options_t &options)
{
    const bool textured = key.picture.image != nullptr && texture_bind(key.picture.image);
    if (textured)
        texture_set_placement(key.picture.repeat_x, key.picture.repeat_y, key.picture.offset_x,
                              key.picture.offset_y);
    else
        texture_unbind();
    use_lit_program({key.smooth, options.num_lights, options.perspective,
                     key.locked ? locked_dim : 0.0f, textured});
    glLightModeli(GL_LIGHT_MODEL_TWO_SIDE, key.twosided ? GL_TRUE : GL_FALSE);
    if (key.twosided)
        glDisable(GL_CULL_FACE);
    else
        glEnable(GL_CULL_FACE);
}

void begin_surfaces(const batch_key_t &key, const fill_options_t &options)
{
    set_surface_state(key, options);
    set_material(material_of(key.material), options, key.locked);
    page_bind(*key.page, true, key.picture.image != nullptr);
}

void end_surfaces()
{
    texture_unbind();
    texture_reset_placement();
    use_no_program();
    glDisable(GL_LIGHTING);
    glDisable(GL_CULL_FACE);
}

void draw_batches(const batches_t &batches, const fill_options_t &options)
{
    glEnable(GL_LIGHTING);
    for (const auto &[key, ranges] : batches) {
        begin_surfaces(key, options);
        page_draw_triangles(*key.page, ranges, key.list);
        page_unbind();
    }
    end_surfaces();
}

placed_image_t picture_of(const scene_item_t &item, const fill_options_t &options)
{
    const object_t &o = *item.object;
    VESKImage *image = options.textures && item.buffers->textured ? object_picture(&o) : nullptr;
    if (image == nullptr)
        return {};
    return {image, o.texture_repeat_x, o.texture_repeat_y, o.texture_offset_x, o.texture_offset_y};
}

bool shines_through(const placed_image_t &picture)
{
    return picture.image != nullptr && image_has_alpha(picture.image);
}

// The numbers of its groups that are transparent, or of those that are not.
std::vector<size_t> groups_of(const scene_item_t &item, const placed_image_t &picture,
                              bool transparent)
{
    std::vector<size_t> found;
    const auto &groups = item.buffers->layout.groups;
    for (size_t i = 0; i < groups.size(); ++i)
        if ((is_transparent(groups[i].material) || shines_through(picture)) == transparent)
            found.push_back(i);
    return found;
}

batch_key_t key_of(const scene_item_t &item, const layout_group_t &group,
                   const placed_image_t &picture)
{
    return {item.locked, group.smooth, group.twosided, group.material, picture, item.buffers->page};
}

// The clusters that are seen, in the item's detail; those with vertices that moved in full.
void add_clusters(batches_t &batches, const scene_item_t &item, const fill_options_t &options,
                  bool transparent)
{
    const coarse_lists_t &coarse = item.buffers->coarse;
    const cluster_view_t seen(options.perspective);
    const placed_image_t picture = picture_of(item, options);
    std::vector<batch_key_t> keys;
    for (const layout_group_t &group : item.buffers->layout.groups) {
        keys.push_back(key_of(item, group, picture));
        keys.back().list = &coarse.triangles;
    }
    std::vector<bool> wanted(keys.size(), false);
    for (const size_t i : groups_of(item, picture, transparent))
        wanted[i] = true;
    const auto add = [&](const mesh_cluster_t &cluster, int detail) {
        const batch_key_t &key = keys[cluster.group];
        // Where its vertices went is not known to the cluster's bounds.
        if (!wanted[cluster.group] || (!coarse.outdated && !seen.shows(cluster, key.twosided)))
            return;
        const index_range_t &span = cluster.triangles[detail];
        batches[key].add(span.first, span.count);
    };
    for (const cluster_family_t &family : coarse.mesh->families) {
        const auto moved = coarse.moved.begin() + static_cast<std::ptrdiff_t>(family.first);
        const auto moved_end = moved + static_cast<std::ptrdiff_t>(family.count);
        if (item.detail == family_detail && std::find(moved, moved_end, 1) == moved_end) {
            add(family.whole, family_detail);
            continue;
        }
        for (size_t i = family.first; i < family.first + family.count; ++i)
            add(coarse.mesh->clusters[i],
                coarse.moved[i] != 0 ? 0 : std::min(item.detail, family_detail - 1));
    }
}

void add_groups(batches_t &batches, const scene_item_t &item, const fill_options_t &options,
                bool transparent)
{
    if (item.detail == cloud_detail)
        return;
    if (item.detail > 0) {
        add_clusters(batches, item, options, transparent);
        return;
    }
    const placed_image_t picture = picture_of(item, options);
    for (const size_t i : groups_of(item, picture, transparent)) {
        const layout_group_t &group = item.buffers->layout.groups[i];
        batches[key_of(item, group, picture)].add(item.buffers->first_triangle_index + group.first,
                                                  group.count);
    }
}

// The transparent surfaces of an object, back to front.
void draw_in_order(const scene_item_t &item, const fill_options_t &options,
                   const depth_order_t &order)
{
    const object_buffers_t &buffers = *item.buffers;
    const placed_image_t picture = picture_of(item, options);
    const std::span<const std::uint32_t> slots = order.slots;
    glEnable(GL_LIGHTING);
    for (const depth_run_t &run : order.runs) {
        begin_surfaces(key_of(item, buffers.layout.groups[run.group], picture), options);
        page_draw_slots(GL_TRIANGLES, slots.subspan(run.first, run.count));
        page_unbind();
    }
    end_surfaces();
}

depth_order_t order_of_surfaces(const scene_item_t &item, const fill_options_t &options,
                                const point3_t &towards)
{
    const object_buffers_t &buffers = *item.buffers;
    depth_order_t order = order_by_depth(buffers.layout, *buffers.flat, buffers.triangles,
                                         groups_of(item, picture_of(item, options), true), towards);
    for (std::uint32_t &slot : order.slots)
        slot += buffers.first_slot;
    return order;
}

bool is_drawn_filled(const scene_item_t &item)
{
    return !item.hidden && !item.outline && item.buffers->page != nullptr &&
           (!item.locked || prefs.show_locked_3d != 0);
}

void draw_cloud(const scene_item_t &item, const fill_options_t &options)
{
    const flat_mesh &flat = *item.buffers->flat;
    if (flat.num_surfaces() == 0)
        return;
    glEnable(GL_LIGHTING);
    begin_surfaces(key_of(item, {flat.surface(0).material, true, true, 0, 0}, {}), options);
    page_draw_cloud(*item.buffers, true);
    end_surfaces();
}

// What is left from slice to slice of a picture's transparent surfaces.
struct transparent_t {
    std::vector<std::size_t> items; // of the scene, from back to front
    slice_items_t progress;
    std::size_t in_hand = SIZE_MAX;
    depth_order_t order; // of the surfaces of the one in hand
};

transparent_t transparent_items(const scene_t &scene, const fill_options_t &options,
                                const point3_t &towards)
{
    std::vector<std::pair<double, std::size_t>> order;
    for (std::size_t i = 0; i < scene.items.size(); ++i) {
        const scene_item_t &item = scene.items[i];
        if (!is_drawn_filled(item) || groups_of(item, picture_of(item, options), true).empty())
            continue;
        const point3_t middle = point_scale(point_add(item.buffers->min, item.buffers->max), 0.5f);
        order.emplace_back(point_dot(middle, towards), i);
    }
    std::sort(order.begin(), order.end(),
              [](const auto &a, const auto &b) { return a.first < b.first; });
    transparent_t found;
    for (const auto &[depth, i] : order)
        found.items.push_back(i);
    return found;
}

// ---- ranges of edges and points by page ----

// By page and list of indices (null: the page's own).
using page_ranges_t = std::map<std::pair<buffer_page_t *, const gpu_buffer *>, draw_ranges_t>;

void draw_edge_ranges(const page_ranges_t &pages)
{
    for (const auto &[where, ranges] : pages) {
        page_bind(*where.first, false);
        page_draw_edges(*where.first, ranges, where.second);
    }
    page_unbind();
}

void add_edges(page_ranges_t &ranges, const scene_item_t &item, bool lines_too)
{
    const object_buffers_t &b = *item.buffers;
    if (item.detail == cloud_detail) {
        page_draw_cloud(b, false);
    } else if (item.detail > 0) {
        const index_range_t &span = b.coarse.mesh->level_edges[item.detail];
        ranges[{b.page, &b.coarse.edges}].add(span.first, span.count);
    } else {
        ranges[{b.page, nullptr}].add(b.edges.first, b.edges.count);
    }
    if (lines_too)
        ranges[{b.page, nullptr}].add(b.first_line_index, b.num_edge_indices - b.edges.count);
}

colour_t colour_of_object(const object_buffers_t &buffers, float alpha)
{
    const auto &groups =
        buffers.layout.groups.empty() ? buffers.layout.line_groups : buffers.layout.groups;
    if (groups.empty())
        return colour_of(prefs.col_line, alpha);
    const material &m = material_of(groups.front().material);
    return {m.diffuse[0], m.diffuse[1], m.diffuse[2], alpha};
}

struct edge_batch_t {
    colour_t colour;
    page_ranges_t ranges;
};

using edge_batches_t = std::map<std::tuple<float, float, float, bool>, edge_batch_t>;

edge_batches_t edge_batches(const scene_t &scene, const edge_options_t &options)
{
    edge_batches_t batches;
    for (const scene_item_t &item : scene.items) {
        if (item.buffers->page == nullptr || item.hidden != options.hidden_ones ||
            (item.part != nullptr && item.part->whole && !item.hidden))
            continue;
        colour_t colour = options.by_material ? colour_of_object(*item.buffers, options.colour.a)
                                              : options.colour;
        if (item.locked)
            colour.a *= 0.5f;
        set_colour(colour); // of a cloud, which is drawn at once
        edge_batch_t &batch = batches[{colour.r, colour.g, colour.b, item.locked}];
        batch.colour = colour;
        add_edges(batch.ranges, item, options.lines_too);
    }
    return batches;
}

void set_point_size(float size) { glPointSize(std::max(size, 1.0f)); }

void draw_points_of(const page_ranges_t &ranges)
{
    for (const auto &[where, slots] : ranges) {
        page_bind(*where.first, false);
        page_draw_points(slots);
    }
    page_unbind();
}

// Selected vertices stand on a dark rim. Many of a crowded object go without, or the rims would be all
// that is seen.
void draw_selected_points(const scene_t &scene, const crowding_t &screen, float plain_size)
{
    constexpr std::size_t few = 100;
    const auto is_covered = [&](const scene_item_t &item) {
        return item.part->vertices.size() > few && screen.is_crowded(*item.buffers);
    };
    const float size = plain_size + 2;
    const colour_t rim = {0x14 / 255.0f, 0x14 / 255.0f, 0x14 / 255.0f, 0.85f};
    const colour_t colour = colour_of(prefs.col_selvert);
    struct pass_t {
        bool covered;
        colour_t colour;
        float size;
    };
    for (const pass_t &pass : {pass_t{true, colour, plain_size}, pass_t{false, rim, size + 2},
                               pass_t{false, colour, size}}) {
        set_colour(pass.colour);
        set_point_size(pass.size);
        draw_selected_parts(
            scene, GL_POINTS, &part_slots_t::vertices,
            [&](const scene_item_t &item) { return is_covered(item) == pass.covered; });
    }
}

// The moving part during a drag: the selection; by a matrix only whole objects, and the selected
// parts of others apart from their objects.
bool is_moving(const scene_item_t &item)
{
    return overlay().moving && item.part != nullptr && (item.part->whole || !overlay().pending);
}

struct points_t {
    page_ranges_t plain, selected;
};

points_t points_of(const scene_t &scene, const vertex_options_t &options, const crowding_t &screen)
{
    points_t points;
    for (const scene_item_t &item : scene.items) {
        if (item.hidden || item.locked || item.buffers->page == nullptr ||
            (!options.vertex_mode &&
             (screen.is_crowded(*item.buffers) || (!options.moving_ones && is_moving(item)))))
            continue;
        const bool whole = item.part != nullptr && item.part->whole;
        (whole ? points.selected : points.plain)[{item.buffers->page, nullptr}].add(
            item.buffers->first_slot, item.buffers->layout.num_vertices);
    }
    return points;
}

// Vertices of whole objects, and those that are not selected.
void draw_points(const scene_t &scene, const vertex_options_t &options, const crowding_t &screen)
{
    slice_part_t part;
    if (!part.draws())
        return;
    const float strength = options.vertex_mode ? 1.0f : 0.8f;
    const points_t &points = part.prepared([&] { return points_of(scene, options, screen); });
    set_point_size(options.vertex_mode ? options.size : options.size - 1);
    if (options.unselected) {
        set_colour(colour_of(prefs.col_vert, strength));
        draw_points_of(points.plain);
    }
    if (options.selected) {
        const pending_place_t place;
        set_colour(colour_of(prefs.col_selvert, strength));
        draw_points_of(points.selected);
    }
}

// Of selected objects.
void draw_edges_of_selected(const scene_t &scene, float width)
{
    slice_part_t part;
    if (!part.draws())
        return;
    struct edges_t {
        page_ranges_t whole;
        page_ranges_t crowded; // thinner, or nothing of the surfaces would be seen
    };
    const edges_t &edges = part.prepared([&] {
        const crowding_t screen;
        edges_t found;
        for (const scene_item_t &item : scene.items)
            if (item.part != nullptr && item.part->whole && !item.hidden &&
                item.buffers->page != nullptr)
                add_edges(screen.is_crowded(*item.buffers) ? found.crowded : found.whole, item,
                          true);
        return found;
    });
    draw_set_line_width(width / 2);
    draw_edge_ranges(edges.crowded);
    draw_set_line_width(width);
    draw_edge_ranges(edges.whole);
}

} // namespace

scene_t items_that_move(const scene_t &scene, bool moving)
{
    scene_t found = {{}, scene.min, scene.max, scene.complete};
    for (const scene_item_t &item : scene.items)
        if (is_moving(item) == moving)
            found.items.push_back(item);
    return found;
}

pending_place_t::pending_place_t()
{
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    if (overlay().pending)
        glMultMatrixf(overlay().pending_matrix);
}

pending_place_t::~pending_place_t()
{
    glMatrixMode(GL_MODELVIEW);
    glPopMatrix();
}

void draw_opaque_surfaces(const scene_t &scene, const fill_options_t &options)
{
    slice_part_t part;
    if (!part.draws())
        return;
    const batches_t &batches = part.prepared([&] {
        batches_t all;
        for (const scene_item_t &item : scene.items)
            if (is_drawn_filled(item))
                add_groups(all, item, options, false);
        return all;
    });
    if (prefs.polygon_offset != 0)
        glEnable(GL_POLYGON_OFFSET_FILL);
    glPolygonOffset(1.0f, 1.0f);
    draw_batches(batches, options);
    glDisable(GL_POLYGON_OFFSET_FILL);
    for (const scene_item_t &item : scene.items)
        if (item.detail == cloud_detail && is_drawn_filled(item))
            draw_cloud(item, options);
}

void draw_transparent_surfaces(const scene_t &scene, const fill_options_t &options)
{
    slice_part_t part;
    if (!part.draws())
        return;
    double m[16];
    glGetDoublev(GL_MODELVIEW_MATRIX, m);
    const point3_t towards = {static_cast<float>(m[2]), static_cast<float>(m[6]),
                              static_cast<float>(m[10])};
    const auto &kept = part.prepared([&] {
        return std::make_shared<transparent_t>(transparent_items(scene, options, towards));
    });
    glDepthMask(GL_FALSE);
    slice_items(kept->progress, kept->items.size(), [&](std::size_t i) {
        const scene_item_t &item = scene.items[kept->items[i]];
        if (item.buffers->triangles.empty() || item.detail > 0) {
            batches_t batches;
            add_groups(batches, item, options, true);
            draw_batches(batches, options);
            return;
        }
        if (std::exchange(kept->in_hand, i) != i)
            kept->order = order_of_surfaces(item, options, towards);
        draw_in_order(item, options, kept->order);
    });
    glDepthMask(GL_TRUE);
}

void draw_selection_tint(const scene_t &scene)
{
    const pending_place_t place;
    set_colour(colour_of(prefs.col_selline, tint_alpha));
    glDepthMask(GL_FALSE);
    draw_selected_parts(scene, GL_TRIANGLES, &part_slots_t::triangles);
    glDepthMask(GL_TRUE);
}

void draw_edges(const scene_t &scene, const edge_options_t &options)
{
    slice_part_t part;
    if (!part.draws())
        return;
    const edge_batches_t &batches = part.prepared([&] { return edge_batches(scene, options); });
    draw_set_line_width(options.width);
    for (const auto &[key, batch] : batches) {
        set_colour(batch.colour);
        draw_edge_ranges(batch.ranges);
    }
}

void draw_line_surfaces(const scene_t &scene, float width)
{
    const slice_part_t part;
    if (!part.draws())
        return;
    draw_set_line_width(width);
    for (const scene_item_t &item : scene.items) {
        if (item.hidden || item.buffers->page == nullptr)
            continue;
        for (const layout_group_t &group : item.buffers->layout.line_groups) {
            const material &m = material_of(group.material);
            set_colour({m.diffuse[0], m.diffuse[1], m.diffuse[2], item.locked ? 0.5f : 1.0f});
            draw_ranges_t ranges;
            ranges.add(item.buffers->first_line_index + group.first, group.count);
            page_bind(*item.buffers->page, false);
            page_draw_edges(*item.buffers->page, ranges);
        }
    }
    page_unbind();
}

void draw_selected_edges(const scene_t &scene, const colour_t &colour, float width)
{
    const pending_place_t place;
    set_colour(colour);
    draw_edges_of_selected(scene, width);
    draw_set_line_width(width);
    draw_selected_parts(scene, GL_LINES, &part_slots_t::edges);
}

void draw_vertices(const scene_t &scene, const vertex_options_t &options)
{
    const crowding_t screen;
    if (device_caps().samples > 0)
        glEnable(GL_POINT_SPRITE);   // several samples a pixel would make the squares round
    glDepthRange(0.0, nearer_range); // before the edges that end in them
    draw_points(scene, options, screen);
    if (options.selected) {
        const pending_place_t place;
        draw_selected_points(scene, screen, options.size);
    }
    glDepthRange(0.0, 1.0);
    if (device_caps().samples > 0)
        glDisable(GL_POINT_SPRITE);
}

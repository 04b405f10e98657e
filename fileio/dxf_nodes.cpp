#include "fileio/dxf_nodes.h"

#include "fileio/dxf_text.h"
#include "model/angle.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/normals.h"
#include "model/object_tree.h"

#include <algorithm>
#include <cmath>

namespace {

// Z upwards becomes Y upwards.
point3_t upright(const vec3d &p) { return to_point({p.x, p.z, -p.y}); }

} // namespace

dxf_frame dxf_plane(const vec3d &extrusion)
{
    // The format's rule for where X lies; it has to be this very one.
    constexpr double near_z = 1.0 / 64;
    const bool steep = std::fabs(extrusion.x) < near_z && std::fabs(extrusion.y) < near_z;
    const vec3d x = cross(steep ? vec3d{0, 1, 0} : vec3d{0, 0, 1}, extrusion);
    const vec3d across = x / length(x);
    return {across, cross(extrusion, across), extrusion, {}};
}

dxf_nodes::dxf_nodes(const dxf_drawing &drawing) : drawing_(drawing) {}

dxf_nodes::~dxf_nodes()
{
    for (const auto &layer : layers_)
        free_texts(*layer);
}

void dxf_nodes::free_texts(node_t &node)
{
    for (object_t *text : node.texts)
        object_free(text);
    for (const auto &child : node.children)
        free_texts(*child);
}

void dxf_nodes::leave_out(std::string_view type) { ++left_out_[dxf_decoded(type)]; }

// ---- layers and colours ----

std::string_view dxf_nodes::layer_of(const dxf_record &record, const context_t &context) const
{
    const std::string_view layer = record.text(8);
    // Layer 0 of a block is the layer on which the block is inserted.
    return layer.empty() || (layer == "0" && context.level > 0) ? context.layer : layer;
}

dxf_nodes::node_t &dxf_nodes::node_of(const dxf_record &record, const context_t &context)
{
    if (context.node != nullptr)
        return *context.node;
    const std::string_view layer = layer_of(record, context);
    node_t *&node = layer_nodes_[layer];
    if (node == nullptr) {
        node = layers_.emplace_back(std::make_unique<node_t>()).get();
        node->name = dxf_decoded(layer);
        const auto known = drawing_.layers.find(layer);
        node->hidden = known != drawing_.layers.end() && known->second.hidden;
    }
    return *node;
}

dxf_rgb dxf_nodes::colour_of(const dxf_record &record, const context_t &context) const
{
    constexpr int by_block = 0, by_layer = 256;
    if (record.has(420))
        return dxf_true_colour(record);
    const int colour = std::abs(std::clamp(record.whole(62, by_layer), -by_layer, by_layer));
    if (colour == by_block)
        return context.colour;
    if (colour != by_layer)
        return dxf_table_colour(colour);
    const auto layer = drawing_.layers.find(layer_of(record, context));
    return layer != drawing_.layers.end() ? layer->second.colour : context.colour;
}

int dxf_nodes::material_of(const dxf_rgb &colour)
{
    const unsigned key = colour.r << 16 | colour.g << 8 | colour.b;
    const auto [entry, fresh] = materials_.try_emplace(key, 0);
    if (fresh)
        entry->second =
            import_colour(static_cast<float>(colour.r) / 255, static_cast<float>(colour.g) / 255,
                          static_cast<float>(colour.b) / 255);
    return entry->second;
}

// ---- surfaces ----

int dxf_nodes::place_of(node_t &node, const vec3d &point)
{
    const point3_t at = upright(point);
    const int number = node.places.find_or_add(at, node.mesh.num_points());
    if (number == node.mesh.num_points()) {
        node.mesh.add_point(at.x, at.y, at.z);
        ++points_;
    }
    return number;
}

void dxf_nodes::add_surface(const dxf_record &record, std::span<const vec3d> points, int type,
                            const context_t &context)
{
    node_t &node = node_of(record, context);
    std::vector<int> corners;
    for (const vec3d &point : points) {
        const int corner = place_of(node, context.frame.at(point));
        if (corners.empty() || corners.back() != corner)
            corners.push_back(corner);
    }
    if (type != SURFACE_LINE && corners.size() > 1 && corners.front() == corners.back())
        corners.pop_back();
    for (const int corner : corners)
        node.mesh.add_corner(corner);
    node.mesh.end_surface(material_of(colour_of(record, context)), type | SURFACE_TWOSIDED);
}

void dxf_nodes::add_curve(const dxf_record &record, const std::vector<vec3d> &points, bool closed,
                          const context_t &context, const dxf_frame &plane)
{
    std::vector<vec3d> placed(points.size());
    std::transform(points.begin(), points.end(), placed.begin(),
                   [&](const vec3d &p) { return plane.at(p); });
    if (record.number(39) == 0) {
        const bool joins = closed && placed.size() > 2;
        add_surface(record, placed, joins ? SURFACE_CLOSED_LINE : SURFACE_LINE, context);
        return;
    }
    for (std::size_t i = closed ? 0 : 1; i < placed.size(); ++i)
        add_wall(record, placed[(i + placed.size() - 1) % placed.size()], placed[i], context);
}

// ---- the tree ----

object_t *dxf_nodes::make(node_t &node)
{
    const bool has_mesh = !node.mesh.empty() || node.mesh.num_points() > 0;
    object_t *mesh = has_mesh ? node.mesh.make_object(node.name) : nullptr;
    std::vector<object_t *> below = std::move(node.texts);
    node.texts.clear();
    for (const auto &child : node.children) {
        if (object_t *object = make(*child))
            below.push_back(object);
    }
    object_t *made = mesh;
    if (!below.empty()) {
        made = new_group();
        object_set_name(made, node.name.c_str());
        if (mesh != nullptr)
            object_add_child(made, mesh);
        for (object_t *object : below)
            object_add_child(made, object);
    }
    if (node.hidden && made != nullptr)
        for_each_object(made, [](object_t *object) { object->visible = 0; });
    return made;
}

object_t *dxf_nodes::make_tree(const std::string &name)
{
    node_t top;
    top.name = name;
    for (auto &layer : layers_)
        top.children.push_back(std::move(layer));
    layers_.clear();
    layer_nodes_.clear();
    return make(top);
}

// ---- blocks and texts ----

void dxf_nodes::add_block(const dxf_record &record, const context_t &context,
                          const dxf_frame &frame)
{
    const std::string_view name = record.text(2);
    const auto block = drawing_.blocks.find(name);
    if (block == drawing_.blocks.end() || context.level >= most_levels ||
        !open_blocks_.insert(name).second) {
        leave_out(record.type);
        return;
    }
    ++inserts_;
    node_t &parent = node_of(record, context);
    node_t &node = *parent.children.emplace_back(std::make_unique<node_t>());
    node.name = dxf_decoded(name);
    const dxf_frame based = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, vec3d{} - block->second.base};
    const context_t inside = {context.frame.after(frame).after(based), &node,
                              layer_of(record, context), colour_of(record, context),
                              context.level + 1};
    const records_t &records = block->second.records;
    for (std::size_t i = 0; i < records.size() && !too_large(); ++i)
        i = add_entity(records, i, inside);
    open_blocks_.erase(name);
}

void dxf_nodes::add_insert(const dxf_record &record, const context_t &context)
{
    const dxf_frame plane = dxf_plane(record.extrusion());
    const double angle = record.number(50) * pi / 180, c = std::cos(angle), s = std::sin(angle);
    const dxf_frame turned = {{c, s, 0}, {-s, c, 0}, {0, 0, 1}, record.point(10)};
    const dxf_frame scaled = {{record.number(41, 1), 0, 0},
                              {0, record.number(42, 1), 0},
                              {0, 0, record.number(43, 1)},
                              {}};
    const int columns = std::max(1, record.whole(70, 1)), rows = std::max(1, record.whole(71, 1));
    for (int row = 0; row < rows && !too_large(); ++row) {
        for (int column = 0; column < columns && !too_large(); ++column) {
            dxf_frame moved = scaled;
            moved.origin = {column * record.number(44), row * record.number(45), 0};
            add_block(record, context, plane.after(turned).after(moved));
            ++inserts_;
        }
    }
}

// What a dimension looks like lies ready in a block.
void dxf_nodes::add_dimension(const dxf_record &record, const context_t &context)
{
    add_block(record, context, {});
}

void dxf_nodes::add_text(const dxf_record &record, const context_t &context)
{
    if (record.type == "ATTRIB" && (record.whole(70) & 1) != 0)
        return; // invisible
    if (capital_height_ == 0)
        capital_height_ = dxf_capital_height();
    object_t *text = dxf_make_text(record, capital_height_);
    if (text == nullptr) {
        leave_out(record.type);
        return;
    }
    const bool lines = record.type == "MTEXT";
    const vec3d facing = record.extrusion();
    dxf_frame plane = dxf_plane(facing);
    double angle = record.number(50) * pi / 180;
    vec3d place = record.point(10);
    if (lines) {
        // Its place and direction are those of the world, not of its plane.
        place = {dot(plane.x, place), dot(plane.y, place), dot(plane.z, place)};
        if (record.has(11)) {
            const vec3d along = record.point(11);
            angle = std::atan2(dot(plane.y, along), dot(plane.x, along));
        }
    } else if ((record.whole(72) != 0 || record.whole(73) != 0) && record.has(11)) {
        place = record.point(11);
    }
    const double c = std::cos(angle), s = std::sin(angle);
    const double narrow = lines ? 1 : record.number(41, 1);
    const dxf_frame frame = context.frame.after(plane).after(
        {vec3d{c, s, 0} * (narrow > 0 ? narrow : 1), {-s, c, 0}, {0, 0, 1}, place});
    const int material = material_of(colour_of(record, context));
    for_each_object(text, [&](object_t *object) {
        for (vertex *point : each<vertex>(object->vertices)) {
            point->position = upright(frame.at(to_vec3d(point->position)));
            ++points_;
        }
        for (surface_t *surface : each<surface_t>(object->surfaces))
            surface->material = material;
        object->centre = upright(frame.at(to_vec3d(object->centre)));
        object_mark(object, CHANGED_POSITIONS | CHANGED_NORMALS | CHANGED_ATTRIBUTES);
    });
    object_calc_normals_force(text);
    node_of(record, context).texts.push_back(text);
}

#ifndef VESK_FILEIO_DXF_NODES_H
#define VESK_FILEIO_DXF_NODES_H

// The objects of a DXF drawing while its entities are added to them.

#include "edit/mesh/position_index.h"
#include "fileio/dxf_scan.h"
#include "fileio/import_mesh.h"
#include "model/object.h"

#include <map>
#include <memory>
#include <span>
#include <unordered_map>
#include <unordered_set>

// Rows of three axes and a place: what (x, y, z, 1) is multiplied with.
struct dxf_frame {
    vec3d x = {1, 0, 0}, y = {0, 1, 0}, z = {0, 0, 1}, origin = {};

    [[nodiscard]] vec3d turned(const vec3d &v) const { return x * v.x + y * v.y + z * v.z; }
    [[nodiscard]] vec3d at(const vec3d &p) const { return origin + turned(p); }
    // First the other, then this one.
    [[nodiscard]] dxf_frame after(const dxf_frame &first) const
    {
        return {turned(first.x), turned(first.y), turned(first.z), at(first.origin)};
    }
};

class dxf_nodes {
public:
    explicit dxf_nodes(const dxf_drawing &drawing);
    ~dxf_nodes();

    // Adds the entity at that place of the drawing; returns the place of its last record.
    std::size_t add(std::size_t at) { return add_entity(drawing_.entities, at, outside_); }
    // Blocks in blocks grew beyond all bounds: the rest is not added.
    [[nodiscard]] bool too_large() const
    {
        return points_ > most_points || inserts_ > most_inserts;
    }
    [[nodiscard]] const std::map<std::string, int> &left_out() const { return left_out_; }
    // Null when nothing was added.
    object_t *make_tree(const std::string &name);

private:
    static constexpr long most_points = 1 << 24, most_inserts = 1 << 18;
    static constexpr int most_levels = 32;

    // One object, or the group of those below it.
    struct node_t {
        std::string name;
        bool hidden = false;
        import_mesh mesh;
        position_index places{0}; // of the mesh's points
        std::vector<std::unique_ptr<node_t>> children;
        std::vector<object_t *> texts;
    };
    // What a block takes from where it is inserted.
    struct context_t {
        dxf_frame frame;
        node_t *node = nullptr; // null: that of the entity's layer
        std::string_view layer = "0";
        dxf_rgb colour = {255, 255, 255};
        int level = 0;
    };
    using records_t = std::vector<dxf_record>;
    using adder_t = void (dxf_nodes::*)(const dxf_record &, const context_t &);
    static adder_t adder_of(std::string_view type);

    std::size_t add_entity(const records_t &records, std::size_t at, const context_t &context);
    void add_line(const dxf_record &record, const context_t &context);
    void add_point(const dxf_record &record, const context_t &context);
    void add_circle(const dxf_record &record, const context_t &context);
    void add_ellipse(const dxf_record &record, const context_t &context);
    void add_spline(const dxf_record &record, const context_t &context);
    void add_face(const dxf_record &record, const context_t &context);
    void add_solid(const dxf_record &record, const context_t &context);
    void add_lwpolyline(const dxf_record &record, const context_t &context);
    void add_leader(const dxf_record &record, const context_t &context);
    void add_mesh(const dxf_record &record, const context_t &context);
    void add_text(const dxf_record &record, const context_t &context);
    void add_insert(const dxf_record &record, const context_t &context);
    void add_dimension(const dxf_record &record, const context_t &context);
    void add_block(const dxf_record &record, const context_t &context, const dxf_frame &frame);
    // With the records of its corners, which follow it.
    void add_polyline(const dxf_record &record, std::span<const dxf_record> corners,
                      const context_t &context);
    void add_polyface(const dxf_record &record, std::span<const dxf_record> corners,
                      const context_t &context);
    void add_grid(const dxf_record &record, std::span<const dxf_record> corners,
                  const context_t &context);

    struct path_t {
        std::vector<vec3d> points;
        std::vector<double> bulges, widths; // two widths a point
        bool closed = false;
    };
    void add_path(const dxf_record &record, path_t &&path, const context_t &context);
    // A line or a wall of the entity's thickness along it, in the entity's plane.
    void add_curve(const dxf_record &record, const std::vector<vec3d> &points, bool closed,
                   const context_t &context, const dxf_frame &plane);
    void add_wall(const dxf_record &record, const vec3d &a, const vec3d &b,
                  const context_t &context);
    void add_surface(const dxf_record &record, std::span<const vec3d> points, int type,
                     const context_t &context);
    int place_of(node_t &node, const vec3d &point);
    void leave_out(std::string_view type);

    node_t &node_of(const dxf_record &record, const context_t &context);
    std::string_view layer_of(const dxf_record &record, const context_t &context) const;
    dxf_rgb colour_of(const dxf_record &record, const context_t &context) const;
    int material_of(const dxf_rgb &colour);
    object_t *make(node_t &node);
    static void free_texts(node_t &node);

    const dxf_drawing &drawing_;
    const context_t outside_;
    std::vector<std::unique_ptr<node_t>> layers_;
    std::unordered_map<std::string_view, node_t *> layer_nodes_;
    std::unordered_map<unsigned, int> materials_;
    std::unordered_set<std::string_view> open_blocks_; // that hold the entity at hand
    std::map<std::string, int> left_out_;
    float capital_height_ = 0; // 0: not yet asked for
    long points_ = 0, inserts_ = 0;
};

// The frame of an entity whose plane faces that way.
dxf_frame dxf_plane(const vec3d &extrusion);

#endif

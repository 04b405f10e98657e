#include "edit/triangulate.h"

#include "app/messages.h"
#include "app/messages_internal.h"
#include "edit/edit_support.h"
#include "edit/mesh_change.h"
#include "edit/undo.h"
#include "model/object_internal.h"
#include "model/owners.h"
#include "view/redraw.h"

#include <GL/glu.h>

namespace {

std::size_t place(int index) { return static_cast<std::size_t>(index); }

// One tessellator for many polygons. The edge-flag callback makes it report separate triangles
// only; without a combine callback outlines that cross themselves are errors.
class tessellator_t {
public:
    tessellator_t() : tess_(gluNewTess())
    {
        gluTessCallback(tess_, GLU_TESS_VERTEX_DATA, reinterpret_cast<_GLUfuncptr>(on_vertex));
        gluTessCallback(tess_, GLU_TESS_EDGE_FLAG, reinterpret_cast<_GLUfuncptr>(on_edge_flag));
        gluTessCallback(tess_, GLU_TESS_ERROR_DATA, reinterpret_cast<_GLUfuncptr>(on_error));
    }
    ~tessellator_t() { gluDeleteTess(tess_); }
    tessellator_t(const tessellator_t &) = delete;
    tessellator_t &operator=(const tessellator_t &) = delete;

    // Fills triangles() with places in the outline, three for each. False when the outline is
    // refused, or too flat to give any.
    bool cut(const std::vector<point3_t> &outline)
    {
        triangles_.clear();
        failed_ = false;
        coordinates_.resize(outline.size());
        gluTessBeginPolygon(tess_, this);
        gluTessBeginContour(tess_);
        for (std::size_t i = 0; i < outline.size(); ++i) {
            corner_t &corner = coordinates_[i];
            corner = {{outline[i].x, outline[i].y, outline[i].z}, static_cast<int>(i)};
            gluTessVertex(tess_, corner.at, &corner);
        }
        gluTessEndContour(tess_);
        gluTessEndPolygon(tess_);
        return !failed_ && !triangles_.empty() && triangles_.size() % 3 == 0;
    }
    [[nodiscard]] const std::vector<int> &triangles() const { return triangles_; }

private:
    struct corner_t {
        GLdouble at[3];
        int index;
    };

    static void on_vertex(void *corner, void *self)
    {
        static_cast<tessellator_t *>(self)->triangles_.push_back(
            static_cast<const corner_t *>(corner)->index);
    }
    static void on_edge_flag(GLboolean) {}
    static void on_error(GLenum code, void *self)
    {
        console_printf("triangulation error (%d) probably overlapping polygon edges (%s)\n",
                       static_cast<int>(code), gluErrorString(code));
        static_cast<tessellator_t *>(self)->failed_ = true;
    }

    GLUtesselator *tess_;
    std::vector<corner_t> coordinates_;
    std::vector<int> triangles_;
    bool failed_ = false;
};

struct triangulation_counts {
    int triangulated = 0, failed = 0, lines = 0;
};

// Cuts one surface of the change's object, and counts it.
bool triangulate(int surface, tessellator_t &tessellator, mesh_change &change,
                 triangulation_counts &counts)
{
    const flat_mesh &mesh = change.before();
    const auto corners = mesh.surface_corners(surface);
    if (corners.size() <= 3)
        return false;
    if ((*mesh.surfaces)[place(surface)].type != SURFACE_POLYGON) {
        ++counts.lines;
        return false;
    }
    std::vector<point3_t> outline;
    for (const int v : corners)
        outline.push_back(change.position(v));
    if (!tessellator.cut(outline)) {
        ++counts.failed;
        return false;
    }
    const auto first = place((*mesh.corner_offsets)[place(surface)]);
    int n = 0;
    for (const int at : tessellator.triangles()) {
        if (n++ % 3 == 0)
            change.add_surface(surface);
        change.add_corner(corners[place(at)], (*mesh.texture_coords)[first + place(at)]);
    }
    change.remove_surface(surface);
    ++counts.triangulated;
    return true;
}

void add_all(owned_list &list, const std::vector<surface_t *> &surfaces)
{
    for (surface_t *surface : surfaces)
        list.add(surface);
}

void triangulate_tree(object_t *object, triangulation_counts &counts, owned_list &triangles)
{
    tessellator_t tessellator;
    for_each_object(object, [&](object_t *part) {
        mesh_change change(part);
        for (int i = 0; i < change.before().num_surfaces(); ++i)
            triangulate(i, tessellator, change, counts);
        add_all(triangles, change.commit().surfaces);
    });
}

} // namespace

void surface_copy_properties(surface_t *to, const surface_t *from)
{
    surface_copy_record(to, from);
}

listitem *surface_get_triangulations(const surface_t *surface)
{
    std::vector<point3_t> outline;
    std::vector<const svertex *> corners;
    for (const svertex *reference : each<svertex>(surface->refs)) {
        if (reference->vertex == nullptr)
            continue;
        outline.push_back(reference->vertex->position);
        corners.push_back(reference);
    }
    tessellator_t tessellator;
    if (corners.size() < 4 || !tessellator.cut(outline))
        return nullptr;
    owned_list list;
    surface_t *triangle = nullptr;
    for (const int at : tessellator.triangles()) {
        if (triangle == nullptr || triangle->num_refs == 3) {
            triangle = new_surface();
            surface_copy_properties(triangle, surface);
            list.add(triangle);
        }
        const svertex *corner = corners[place(at)];
        surface_add_vertex(triangle, corner->vertex, corner->u, corner->v);
    }
    return list.release();
}

listitem *surface_triangulate(object_t *object, surface_t *surface)
{
    mesh_change change(object);
    const int index = change.index_of(surface);
    tessellator_t tessellator;
    triangulation_counts counts;
    if (index < 0 || !triangulate(index, tessellator, change, counts))
        return nullptr;
    owned_list triangles;
    add_all(triangles, change.commit().surfaces);
    return triangles.release();
}

listitem *object_triangulate_surfaces(object_t *object)
{
    triangulation_counts counts;
    owned_list triangles;
    triangulate_tree(object, counts, triangles);
    return triangles.release();
}

// ---- commands ----

void selected_surface_triangulate(void)
{
    const owned_list surfaces(find_selected_whole_surfaces());
    display_status();
    new_undo(UNDO_WORLD, "triangluate"); // Deliberate: spelt so.
    set_undo_all();

    triangulation_counts counts;
    owned_list triangles;
    tessellator_t tessellator;
    for (const owned_elements &owned : surfaces_by_owner(surfaces.get())) {
        mesh_change change(owned.object);
        for (const int surface : owned.indices)
            triangulate(surface, tessellator, change, counts);
        add_all(triangles, change.commit().surfaces);
    }
    for (object_t *object : selected_top_objects())
        triangulate_tree(object, counts, triangles);

    clear_selection();
    select_surfacelist(triangles.get());
    redraw_all();
    if (counts.failed > 0 || counts.lines > 0) {
        windows_message_dialog("Some surfaces were not triangulated:\n\npolys not triangulated: "
                               "%d\nlines/polylines ignored: %d",
                               counts.failed, counts.lines);
    }
    display_status();
    display_message("polygons triangulated: %d", counts.triangulated);
}

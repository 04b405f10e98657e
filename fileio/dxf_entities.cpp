// What each kind of entity adds.

#include "fileio/dxf_curves.h"
#include "fileio/dxf_nodes.h"
#include "model/angle.h"
#include "model/object.h"

#include <algorithm>
#include <cmath>

dxf_nodes::adder_t dxf_nodes::adder_of(std::string_view type)
{
    static const std::unordered_map<std::string_view, adder_t> adders = {
        {"LINE", &dxf_nodes::add_line},           {"POINT", &dxf_nodes::add_point},
        {"CIRCLE", &dxf_nodes::add_circle},       {"ARC", &dxf_nodes::add_circle},
        {"ELLIPSE", &dxf_nodes::add_ellipse},     {"SPLINE", &dxf_nodes::add_spline},
        {"3DFACE", &dxf_nodes::add_face},         {"SOLID", &dxf_nodes::add_solid},
        {"TRACE", &dxf_nodes::add_solid},         {"LWPOLYLINE", &dxf_nodes::add_lwpolyline},
        {"LEADER", &dxf_nodes::add_leader},       {"MESH", &dxf_nodes::add_mesh},
        {"TEXT", &dxf_nodes::add_text},           {"MTEXT", &dxf_nodes::add_text},
        {"ATTRIB", &dxf_nodes::add_text},         {"INSERT", &dxf_nodes::add_insert},
        {"DIMENSION", &dxf_nodes::add_dimension},
    };
    const auto found = adders.find(type);
    return found == adders.end() ? nullptr : found->second;
}

std::size_t dxf_nodes::add_entity(const records_t &records, std::size_t at,
                                  const context_t &context)
{
    const dxf_record &record = records[at];
    std::size_t end = at + 1;
    if (record.type == "POLYLINE") {
        while (end < records.size() && records[end].type == "VERTEX")
            ++end;
    }
    const auto corners = std::span(records).subspan(at + 1, end - at - 1);
    const bool closes =
        record.type == "POLYLINE" && end < records.size() && records[end].type == "SEQEND";
    const std::size_t last = closes ? end : end - 1;
    if (record.whole(67) == 1 || record.type == "SEQEND" || record.type == "ATTDEF" ||
        record.type == "VIEWPORT" || record.whole(60) == 1)
        return last; // of a sheet of paper, or with nothing to be seen
    if (record.type == "POLYLINE")
        add_polyline(record, corners, context);
    else if (const adder_t adder = adder_of(record.type); adder != nullptr)
        (this->*adder)(record, context);
    else
        leave_out(record.type);
    return last;
}

// ---- lines, points, polygons ----

void dxf_nodes::add_line(const dxf_record &record, const context_t &context)
{
    const vec3d ends[] = {record.point(10), record.point(11)};
    if (record.number(39) == 0)
        add_surface(record, ends, SURFACE_LINE, context);
    else
        add_wall(record, ends[0], ends[1], context);
}

void dxf_nodes::add_wall(const dxf_record &record, const vec3d &a, const vec3d &b,
                         const context_t &context)
{
    const vec3d up = record.extrusion() * record.number(39);
    const vec3d wall[] = {a, b, b + up, a + up};
    add_surface(record, wall, SURFACE_POLYGON, context);
}

void dxf_nodes::add_point(const dxf_record &record, const context_t &context)
{
    place_of(node_of(record, context), context.frame.at(record.point(10)));
}

void dxf_nodes::add_face(const dxf_record &record, const context_t &context)
{
    std::vector<vec3d> points;
    for (int code = 10; code < 14; ++code) {
        if (record.has(code))
            points.push_back(record.point(code));
    }
    add_surface(record, points, SURFACE_POLYGON, context);
}

// Its third and fourth corner are crossed.
void dxf_nodes::add_solid(const dxf_record &record, const context_t &context)
{
    const dxf_frame plane = dxf_plane(record.extrusion());
    std::vector<vec3d> points = {plane.at(record.point(10)), plane.at(record.point(11))};
    if (record.has(13))
        points.push_back(plane.at(record.point(13)));
    points.push_back(plane.at(record.point(12)));
    add_surface(record, points, SURFACE_POLYGON, context);
    if (record.number(39) == 0)
        return;
    const vec3d up = plane.z * record.number(39);
    for (std::size_t i = 0; i < points.size(); ++i)
        add_wall(record, points[i], points[(i + 1) % points.size()], context);
    for (vec3d &point : points)
        point += up;
    add_surface(record, points, SURFACE_POLYGON, context);
}

// ---- curves ----

void dxf_nodes::add_circle(const dxf_record &record, const context_t &context)
{
    const bool whole = record.type == "CIRCLE";
    std::vector<vec3d> points =
        dxf_arc(record.point(10), record.number(40), whole ? 0 : record.number(50) * pi / 180,
                whole ? 0 : record.number(51) * pi / 180);
    if (whole)
        points.pop_back();
    add_curve(record, points, whole, context, dxf_plane(record.extrusion()));
}

void dxf_nodes::add_ellipse(const dxf_record &record, const context_t &context)
{
    bool closed = false;
    const std::vector<vec3d> points = dxf_ellipse(record, &closed);
    add_surface(record, points, closed ? SURFACE_CLOSED_LINE : SURFACE_LINE, context);
}

void dxf_nodes::add_spline(const dxf_record &record, const context_t &context)
{
    bool closed = false;
    const std::vector<vec3d> points = dxf_spline(record, &closed);
    if (points.size() < 2)
        leave_out(record.type);
    else
        add_surface(record, points, closed ? SURFACE_CLOSED_LINE : SURFACE_LINE, context);
}

void dxf_nodes::add_leader(const dxf_record &record, const context_t &context)
{
    add_surface(record, dxf_points(record, 10), SURFACE_LINE, context);
}

// ---- polylines ----

void dxf_nodes::add_path(const dxf_record &record, path_t &&path, const context_t &context)
{
    const std::size_t count = path.points.size();
    if (count < 2)
        return;
    std::vector<vec3d> points;
    std::vector<double> widths;
    const std::size_t pieces = path.closed ? count : count - 1;
    for (std::size_t i = 0; i < pieces; ++i) {
        const std::size_t first = points.size();
        dxf_add_bulge(path.points[i], path.points[(i + 1) % count], path.bulges[i], &points);
        const double from = path.widths[2 * i], to = path.widths[2 * i + 1];
        const auto parts = static_cast<double>(points.size() - first);
        for (std::size_t k = 0; k < points.size() - first; ++k) {
            widths.push_back(from + (to - from) * static_cast<double>(k) / parts);
            widths.push_back(from + (to - from) * static_cast<double>(k + 1) / parts);
        }
    }
    if (!path.closed)
        points.push_back(path.points.back());
    const dxf_frame plane = dxf_plane(record.extrusion());
    if (std::all_of(widths.begin(), widths.end(), [](double width) { return width == 0; })) {
        add_curve(record, points, path.closed, context, plane);
        return;
    }
    std::vector<vec3d> band = dxf_band(points, widths, path.closed);
    for (vec3d &point : band)
        point = plane.at(point);
    for (std::size_t i = 0; i + 4 <= band.size(); i += 4) {
        const auto piece = std::span(band).subspan(i, 4);
        add_surface(record, piece, SURFACE_POLYGON, context);
        for (std::size_t k = 0; k < 4 && record.number(39) != 0; ++k)
            add_wall(record, piece[k], piece[(k + 1) % 4], context);
    }
}

void dxf_nodes::add_lwpolyline(const dxf_record &record, const context_t &context)
{
    path_t path;
    path.closed = (record.whole(70) & 1) != 0;
    const double width = record.number(43), height = record.number(38);
    for (const auto &pair : record.pairs) {
        if (pair.code == 10) {
            path.points.push_back({dxf_number(pair.value), 0, height});
            path.bulges.push_back(0);
            path.widths.insert(path.widths.end(), {width, width});
        }
        if (path.points.empty())
            continue;
        if (pair.code == 20)
            path.points.back().y = dxf_number(pair.value);
        else if (pair.code == 42)
            path.bulges.back() = dxf_number(pair.value);
        else if (pair.code == 40)
            path.widths[path.widths.size() - 2] = dxf_number(pair.value);
        else if (pair.code == 41)
            path.widths.back() = dxf_number(pair.value);
    }
    add_path(record, std::move(path), context);
}

void dxf_nodes::add_polyline(const dxf_record &record, std::span<const dxf_record> corners,
                             const context_t &context)
{
    constexpr int three_d = 8, grid = 16, polyface = 64, spline_frame = 16;
    const int flags = record.whole(70);
    if ((flags & polyface) != 0)
        return add_polyface(record, corners, context);
    if ((flags & grid) != 0)
        return add_grid(record, corners, context);
    path_t path;
    path.closed = (flags & 1) != 0;
    const double height = (flags & three_d) != 0 ? 0 : record.number(30);
    for (const dxf_record &corner : corners) {
        if ((corner.whole(70) & spline_frame) != 0)
            continue; // the points of the curve stand beside it
        path.points.push_back(corner.point(10));
        if ((flags & three_d) == 0)
            path.points.back().z = height;
        path.bulges.push_back(corner.number(42));
        path.widths.push_back(corner.number(40, record.number(40)));
        path.widths.push_back(corner.number(41, record.number(41)));
    }
    if ((flags & three_d) == 0)
        add_path(record, std::move(path), context);
    else
        add_surface(record, path.points, path.closed ? SURFACE_CLOSED_LINE : SURFACE_LINE, context);
}

// ---- meshes ----

void dxf_nodes::add_polyface(const dxf_record &record, std::span<const dxf_record> corners,
                             const context_t &context)
{
    constexpr int of_face = 128, of_point = 64;
    std::vector<vec3d> points;
    for (const dxf_record &corner : corners) {
        const int flags = corner.whole(70);
        if ((flags & of_point) != 0) {
            points.push_back(corner.point(10));
        } else if ((flags & of_face) != 0) {
            std::vector<vec3d> face;
            for (int code = 71; code <= 74; ++code) {
                // From 1; negative before an edge that is not to be seen.
                const auto place =
                    static_cast<std::size_t>(std::abs(static_cast<long>(corner.whole(code))));
                if (place >= 1 && place <= points.size())
                    face.push_back(points[place - 1]);
            }
            add_surface(corner.has(62) ? corner : record, face,
                        face.size() == 2 ? SURFACE_LINE : SURFACE_POLYGON, context);
        }
    }
}

void dxf_nodes::add_grid(const dxf_record &record, std::span<const dxf_record> corners,
                         const context_t &context)
{
    constexpr int smoothed = 4, closed_m = 1, closed_n = 32, control = 16;
    const int flags = record.whole(70);
    std::vector<vec3d> points;
    for (const dxf_record &corner : corners) {
        if ((flags & smoothed) == 0 || (corner.whole(70) & control) == 0)
            points.push_back(corner.point(10));
    }
    const bool fine = (flags & smoothed) != 0;
    const auto m = static_cast<std::size_t>(std::max(0, record.whole(fine ? 73 : 71)));
    const auto n = static_cast<std::size_t>(std::max(0, record.whole(fine ? 74 : 72)));
    if (m < 2 || n < 2 || m > points.size() / n) {
        leave_out(record.type);
        return;
    }
    for (std::size_t i = 0; i < m - ((flags & closed_m) != 0 ? 0 : 1); ++i) {
        for (std::size_t k = 0; k < n - ((flags & closed_n) != 0 ? 0 : 1); ++k) {
            const std::size_t next_i = (i + 1) % m, next_k = (k + 1) % n;
            const vec3d face[] = {points[i * n + k], points[next_i * n + k],
                                  points[next_i * n + next_k], points[i * n + next_k]};
            add_surface(record, face, SURFACE_POLYGON, context);
        }
    }
}

void dxf_nodes::add_mesh(const dxf_record &record, const context_t &context)
{
    const std::vector<vec3d> points = dxf_points(record, 10);
    std::vector<std::size_t> numbers; // of the faces: how many corners, then these
    std::size_t wanted = 0;
    for (const auto &pair : record.pairs) {
        if (pair.code == 93 && numbers.empty())
            wanted = static_cast<std::size_t>(std::max(0, dxf_whole(pair.value)));
        else if (pair.code == 90 && numbers.size() < wanted)
            numbers.push_back(static_cast<std::size_t>(std::max(0, dxf_whole(pair.value))));
    }
    for (std::size_t i = 0; i < numbers.size();) {
        const std::size_t count = std::min(numbers[i], numbers.size() - i - 1);
        std::vector<vec3d> face;
        for (std::size_t k = 1; k <= count; ++k) {
            if (numbers[i + k] < points.size())
                face.push_back(points[numbers[i + k]]);
        }
        add_surface(record, face, SURFACE_POLYGON, context);
        i += count + 1;
    }
}

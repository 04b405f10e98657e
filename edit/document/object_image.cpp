#include "edit/document/object_image.h"

#include "base/worker.h"
#include "edit/document/following_normals.h"
#include "model/each.h"
#include "model/flat_array.h"
#include "model/identity.h"
#include "model/normals_internal.h"
#include "model/property.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <atomic>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

// ---- accounting ----

std::atomic<std::size_t> bytes_held = 0; // a worker may drop the last reference to an image

template <class Visit>
void for_each_array(const flat_mesh &geometry, Visit &&visit)
{
    const auto array = [&](const auto &elements) {
        if (elements && !elements->empty())
            visit(elements->images, elements->size() * sizeof(elements->front()));
    };
    array(geometry.positions);
    array(geometry.normals);
    array(geometry.face_normals);
    array(geometry.surfaces);
    array(geometry.corner_offsets);
    array(geometry.corners);
    array(geometry.texture_coords);
}

void hold(const flat_mesh &geometry)
{
    for_each_array(geometry, [](std::atomic<int> &images, std::size_t bytes) {
        if (images.fetch_add(1) == 0)
            bytes_held += bytes;
    });
}

void release(const flat_mesh &geometry)
{
    for_each_array(geometry, [](std::atomic<int> &images, std::size_t bytes) {
        if (images.fetch_sub(1) == 1)
            bytes_held -= bytes;
    });
}

// ---- numbers ----

bool same_bits(float a, float b)
{
    return std::bit_cast<std::uint32_t>(a) == std::bit_cast<std::uint32_t>(b);
}

bool same_bits(const point3_t &a, const point3_t &b)
{
    return same_bits(a.x, b.x) && same_bits(a.y, b.y) && same_bits(a.z, b.z);
}

// `slack` is the loss allowed at any scale; an infinite one allows every difference.
bool near(float a, float b, float scale, float slack)
{
    if (same_bits(a, b) || std::isinf(slack))
        return true;
    return std::fabs(a - b) <= std::max(scale * 1e-5f, slack); // false for no number
}

float largest(const std::vector<point3_t> &points)
{
    float most = 1e-6f;
    for (const point3_t &p : points)
        most = std::max({most, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z)});
    return most;
}

bool near(const point3_t &a, const point3_t &b, float scale, float slack)
{
    return near(a.x, b.x, scale, slack) && near(a.y, b.y, scale, slack) &&
           near(a.z, b.z, scale, slack);
}

bool positions_near(const std::vector<point3_t> &a, const std::vector<point3_t> &b, float slack)
{
    if (a.size() != b.size())
        return false;
    const float scale = std::max(largest(a), largest(b));
    for (std::size_t i = 0; i < a.size(); ++i) {
        if (!near(a[i], b[i], scale, slack))
            return false;
    }
    return true;
}

bool geometry_near(const flat_mesh &a, const flat_mesh &b, float slack)
{
    return flat_equal(a.corner_offsets, b.corner_offsets) && flat_equal(a.corners, b.corners) &&
           flat_equal(a.surfaces, b.surfaces) && flat_equal(a.texture_coords, b.texture_coords) &&
           (a.positions == b.positions || positions_near(*a.positions, *b.positions, slack));
}

bool frames_near(const object_image &a, const object_image &b, float slack)
{
    for (int i = 0; i < 9; ++i) {
        if (!near(a.rotation[i], b.rotation[i], 1, 0))
            return false;
    }
    const point3_t &p = a.centre;
    const point3_t &q = b.centre;
    const float scale = std::max({1.0f, std::fabs(p.x), std::fabs(p.y), std::fabs(p.z),
                                  std::fabs(q.x), std::fabs(q.y), std::fabs(q.z)});
    return near(p, q, scale, slack);
}

bool details_near(const object_details &a, const object_details &b)
{
    const object_t &r = a.record;
    const object_t &s = b.record;
    return a.data == b.data && a.url == b.url && properties_equal(a.properties, b.properties) &&
           r.type == s.type && r.visible == s.visible && r.locked == s.locked &&
           r.has_texture == s.has_texture && r.texture == s.texture &&
           r.texture_repeat_x == s.texture_repeat_x && r.texture_repeat_y == s.texture_repeat_y &&
           r.texture_offset_x == s.texture_offset_x && r.texture_offset_y == s.texture_offset_y;
}

// ---- images ----

std::string plain_text(const char *text) { return text ? text : ""; }

bool face_normals_follow(const flat_mesh &mesh)
{
    if (normals_are_known_to_follow(mesh))
        return true;
    std::atomic<bool> follow = true;
    in_parallel_ranges(mesh.num_surfaces(), [&](int begin, int end) {
        for (int i = begin; i < end && follow; ++i) {
            if (!same_bits(mesh.face_normal(i), normal_of_corners(mesh, i)))
                follow = false;
        }
    });
    return follow;
}

object_t plain_fields(const object_t &object)
{
    object_t record = object;
    record.name = record.data = record.url = nullptr;
    record.num_vertices = record.num_surfaces = record.num_children = 0;
    record.vertices = record.surfaces = record.children = record.properties = nullptr;
    record.parent = nullptr;
    record.centre = {};
    std::fill_n(record.rotation, std::size(record.rotation), 0.0f);
    record.extra_word2 = 0;
    return record;
}

std::optional<std::string> texture_file_of(const object_t &object)
{
    if (object.has_texture == 0 || object.texture >= vesk_get_num_textures())
        return std::nullopt;
    return optional_text(texture_id_to_name(object.texture));
}

bool has_details(const object_t &object, const object_t &fields, const object_details &details)
{
    const auto is_text = [](const char *text, const std::optional<std::string> &image) {
        return text ? image && *image == text : !image;
    };
    // Bytes between the fields may differ: then the details are not shared.
    return std::memcmp(&fields, &details.record, sizeof fields) == 0 &&
           is_text(object.data, details.data) && is_text(object.url, details.url) &&
           texture_file_of(object) == details.texture_file &&
           (object.properties || !details.properties.empty()
                ? properties_equal(properties_of(object.properties), details.properties)
                : true);
}

std::shared_ptr<const object_details> details_of(const object_t &object, const object_image *before,
                                                 const object_image *alike)
{
    const object_t fields = plain_fields(object);
    for (const object_image *other : {before, alike}) {
        if (other && has_details(object, fields, *other->details))
            return other->details;
    }
    return std::make_shared<const object_details>(
        object_details{fields, optional_text(object.data), optional_text(object.url),
                       texture_file_of(object), properties_of(object.properties)});
}

flat_ptr geometry_of(object_t *object, const object_image *before)
{
    constexpr int few_elements = 512; // whose addresses may be kept longer than they are good for
    flat_ptr flat = object_flat(object);
    if (flat->num_vertices() + flat->num_surfaces() <= few_elements)
        return flat;
    auto mesh = std::make_shared<flat_mesh>(flat->without_records());
    // Derived face normals are not kept a second time. Those of the image before are known.
    if (before && before->geometry->face_normals != mesh->face_normals &&
        face_normals_follow(*mesh))
        mesh->face_normals = nullptr;
    return mesh;
}

} // namespace

std::optional<std::string> optional_text(const char *text)
{
    return text ? std::optional<std::string>(text) : std::nullopt;
}

std::vector<property_image> properties_of(const listitem *list)
{
    std::vector<property_image> images;
    for (const vesk_prop_t *prop : each<vesk_prop_t>(list))
        images.push_back({plain_text(prop->name), plain_text(prop->kind), plain_text(prop->value)});
    return images;
}

bool properties_equal(const std::vector<property_image> &a, const std::vector<property_image> &b)
{
    const auto same = [](const property_image &x, const property_image &y) {
        return x.name == y.name && x.kind == y.kind && x.value == y.value;
    };
    return std::equal(a.begin(), a.end(), b.begin(), b.end(), same);
}

object_image::~object_image()
{
    if (geometry)
        release(*geometry);
}

object_t object_image::record() const
{
    object_t all = details->record;
    all.centre = centre;
    std::copy(std::begin(rotation), std::end(rotation), all.rotation);
    return all;
}

image_ptr image_of(object_t *object, const object_image *before, const object_image *alike)
{
    auto image = std::make_shared<object_image>();
    image->identity = object_identity(object);
    image->centre = object->centre;
    std::copy(std::begin(object->rotation), std::end(object->rotation), image->rotation);
    image->name = plain_text(object->name);
    image->details = details_of(*object, before, alike);
    image->geometry = geometry_of(object, before);
    hold(*image->geometry);
    return image;
}

bool is_unchanged(const object_image &now, const flat_array<point3_t> &face_normals,
                  const object_image &before)
{
    const flat_mesh &a = *now.geometry, &b = *before.geometry;
    const bool same_faces =
        b.face_normals ? flat_identical(face_normals, b.face_normals) : !a.face_normals;
    return flat_identical(a.positions, b.positions) && flat_identical(a.normals, b.normals) &&
           same_faces && std::memcmp(now.rotation, before.rotation, sizeof now.rotation) == 0 &&
           same_bits(now.centre, before.centre) && images_near(now, before);
}

bool images_near(const object_image &a, const object_image &b, float slack)
{
    return a.identity == b.identity && a.name == b.name &&
           (a.details == b.details || details_near(*a.details, *b.details)) &&
           frames_near(a, b, slack) && geometry_near(*a.geometry, *b.geometry, slack);
}

std::size_t images_bytes() { return bytes_held; }

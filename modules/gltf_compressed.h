#ifndef VESK_MODULES_GLTF_COMPRESSED_H
#define VESK_MODULES_GLTF_COMPRESSED_H

// Numbers of glTF files that were packed by the Draco and meshoptimizer libraries.

#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

// As EXT_meshopt_compression describes a view.
struct meshopt_view {
    std::size_t count = 0, stride = 0; // elements, and bytes of each
    std::string mode, filter;
};

// False when the bytes are damaged, or are none of the form.
bool unpack_meshopt(std::string_view bytes, const meshopt_view &form, std::string *out);

// The triangles of KHR_draco_mesh_compression, and numbers for each vertex by the identity of their
// attribute; `widths` tells which are wanted and how many numbers each vertex has.
struct draco_triangles {
    std::vector<std::uint32_t> indices;
    std::map<std::int64_t, std::vector<float>> numbers;
    std::map<std::int64_t, std::size_t> widths;
};
// False when the bytes are damaged, or have no such attribute.
bool unpack_draco(std::string_view bytes, draco_triangles *out);

#endif

#include "modules/gltf_compressed.h"

#include <draco/compression/decode.h>
#include <meshoptimizer.h>

bool unpack_meshopt(std::string_view bytes, const meshopt_view &form, std::string *out)
{
    constexpr std::size_t most = std::size_t{1} << 32; // bytes of a view
    constexpr std::size_t widest = 256;
    const auto *source = reinterpret_cast<const unsigned char *>(bytes.data());
    const bool vertices = form.mode == "ATTRIBUTES";
    if (form.stride == 0 || form.stride > widest || form.count > most / form.stride ||
        (vertices ? form.stride % 4 != 0 : form.stride != 2 && form.stride != 4))
        return false;
    out->resize(form.count * form.stride);
    int problem = -1;
    if (vertices)
        problem =
            meshopt_decodeVertexBuffer(out->data(), form.count, form.stride, source, bytes.size());
    else if (form.mode == "TRIANGLES" && form.count % 3 == 0)
        problem =
            meshopt_decodeIndexBuffer(out->data(), form.count, form.stride, source, bytes.size());
    else if (form.mode == "INDICES")
        problem =
            meshopt_decodeIndexSequence(out->data(), form.count, form.stride, source, bytes.size());
    if (problem != 0 || form.filter.empty() || form.filter == "NONE")
        return problem == 0;
    if (form.filter == "OCTAHEDRAL" && (form.stride == 4 || form.stride == 8))
        meshopt_decodeFilterOct(out->data(), form.count, form.stride);
    else if (form.filter == "QUATERNION" && form.stride == 8)
        meshopt_decodeFilterQuat(out->data(), form.count, form.stride);
    else if (form.filter == "EXPONENTIAL")
        meshopt_decodeFilterExp(out->data(), form.count, form.stride);
    else
        return false;
    return true;
}

bool unpack_draco(std::string_view bytes, draco_triangles *out)
{
    draco::DecoderBuffer buffer;
    buffer.Init(bytes.data(), bytes.size());
    draco::Decoder decoder;
    auto read = decoder.DecodeMeshFromBuffer(&buffer);
    if (!read.ok() || read.value() == nullptr)
        return false;
    const draco::Mesh &mesh = *read.value();
    for (draco::FaceIndex i(0); i < mesh.num_faces(); ++i)
        for (const draco::PointIndex &point : mesh.face(i))
            out->indices.push_back(point.value());
    for (const auto &[identity, width] : out->widths) {
        const draco::PointAttribute *attribute =
            mesh.GetAttributeByUniqueId(static_cast<std::uint32_t>(identity));
        if (attribute == nullptr || width == 0)
            return false;
        std::vector<float> &numbers = out->numbers[identity];
        numbers.resize(width * mesh.num_points());
        for (draco::PointIndex i(0); i < mesh.num_points(); ++i)
            if (!attribute->ConvertValue<float>(attribute->mapped_index(i),
                                                static_cast<std::int8_t>(width),
                                                &numbers[width * i.value()]))
                return false;
    }
    return true;
}

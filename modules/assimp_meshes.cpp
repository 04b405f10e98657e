#include "modules/assimp_meshes.h"

#include <algorithm>
#include <cmath>

int shade_materials::of_face(const aiMesh &mesh, const std::vector<unsigned> &outline, int like)
{
    constexpr float steps = 5; // of each part
    aiColor4D sum;
    for (const unsigned index : outline)
        sum = sum + mesh.mColors[0][index];
    std::array<int, 4> key = {0, 0, 0, like};
    for (unsigned i = 0; i < 3; ++i) {
        const float part = sum[i] / static_cast<float>(outline.size());
        key[i] = part > 0 ? static_cast<int>(std::lround(std::min(part, 1.0f) * steps)) : 0;
    }
    const auto [entry, fresh] = known_.emplace(key, static_cast<int>(all_.size()));
    if (fresh) {
        plain_material shade = all_[static_cast<std::size_t>(like)];
        for (std::size_t i = 0; i < 3; ++i)
            shade.diffuse[i] = static_cast<float>(key[i]) / steps;
        all_.push_back(shade);
    }
    return entry->second;
}

void mesh_builder::add(const aiMesh &mesh, const aiMatrix4x4 &frame, int material, bool twosided,
                       bool fans, shade_materials *shades)
{
    shades_ = mesh.HasVertexColors(0) ? shades : nullptr;
    frame_ = &frame;
    known_.reserve(known_.size() + mesh.mNumVertices);
    places_.assign(mesh.mNumVertices, -1);
    for (unsigned i = 0; i < mesh.mNumFaces; ++i) {
        const aiFace &face = mesh.mFaces[i];
        outline_.assign(face.mIndices, face.mIndices + face.mNumIndices);
        while (fans && i + 1 < mesh.mNumFaces && goes_on(mesh.mFaces[i + 1]))
            outline_.push_back(mesh.mFaces[++i].mIndices[2]);
        add_face(mesh, material, twosided);
    }
    end_line();
}

std::array<float, 3> mesh_builder::position_of(const aiMesh &mesh, unsigned index)
{
    const aiVector3D p = *frame_ * mesh.mVertices[index];
    std::array<float, 3> position = {p.x, p.y, p.z};
    for (float &value : position) {
        bad_points += std::isfinite(value) ? 0 : 1;
        value = std::isfinite(value) ? value + 0.0f : 0.0f;
    }
    return position;
}

// A point that stands alone keeps to itself.
void mesh_builder::add_loose(const aiMesh &mesh, unsigned index)
{
    const std::array<float, 3> position = position_of(mesh, index);
    node.points.insert(node.points.end(), position.begin(), position.end());
    colour_point(mesh, index, node.points.size() / 3 - 1);
}

// Readers part vertices that differ in anything; here only the place counts.
int mesh_builder::place_of(const aiMesh &mesh, unsigned index)
{
    if (places_[index] >= 0)
        return places_[index];
    const std::array<float, 3> key = position_of(mesh, index);
    const auto found = known_.emplace(key, static_cast<int>(node.points.size() / 3));
    if (found.second)
        node.points.insert(node.points.end(), key.begin(), key.end());
    colour_point(mesh, index, static_cast<std::size_t>(found.first->second));
    return places_[index] = found.first->second;
}

// Points of meshes without colours are white when others have any.
void mesh_builder::colour_point(const aiMesh &mesh, unsigned index, std::size_t place)
{
    const bool coloured = mesh.HasVertexColors(0);
    if (!coloured && node.colours.empty())
        return;
    const aiColor4D white(1, 1, 1, 1);
    const aiColor4D &colour = coloured ? mesh.mColors[0][index] : white;
    unsigned char rgb[3];
    for (unsigned i = 0; i < 3; ++i) {
        const float part = colour[i] > 0 ? std::min(colour[i], 1.0f) : 0; // none is 0, too
        rgb[i] = static_cast<unsigned char>(std::lround(part * 255));
    }
    const std::size_t before = node.colours.size();
    if (before < 3 * (place + 1)) {
        node.colours.resize(3 * place, 255);
        node.colours.insert(node.colours.end(), rgb, rgb + 3);
    } else if (!std::equal(rgb, rgb + 3, &node.colours[3 * place])) {
        ++mixed_points;
    }
}

void mesh_builder::add_corner(const aiMesh &mesh, unsigned index)
{
    const bool has_uv = mesh.HasTextureCoords(0);
    const aiVector3D uv = has_uv ? mesh.mTextureCoords[0][index] : aiVector3D();
    node.corners.push_back(place_of(mesh, index));
    node.uv.push_back(std::isfinite(uv.x) ? uv.x : 0);
    node.uv.push_back(std::isfinite(uv.y) ? uv.y : 0);
}

void mesh_builder::end_surface(int material, int flags)
{
    node.offsets.push_back(static_cast<int>(node.corners.size()));
    node.materials.push_back(material);
    node.flags.push_back(flags);
}

// Whether the next triangle belongs to the outline's fan.
bool mesh_builder::goes_on(const aiFace &next) const
{
    return outline_.size() > 2 && next.mNumIndices == 3 && next.mIndices[0] == outline_.front() &&
           next.mIndices[1] == outline_.back();
}

void mesh_builder::add_face(const aiMesh &mesh, int material, bool twosided)
{
    for (const unsigned index : outline_)
        if (index >= mesh.mNumVertices)
            return;
    if (outline_.size() == 2) {
        add_segment(mesh, material);
        return;
    }
    end_line();
    if (outline_.size() == 1)
        add_loose(mesh, outline_[0]);
    if (outline_.size() < 3)
        return;
    for (const unsigned index : outline_)
        add_corner(mesh, index);
    if (shades_ != nullptr)
        material = shades_->of_face(mesh, outline_, material);
    end_surface(material, (twosided ? PLAIN_TWOSIDED : 0) | (is_smooth(mesh) ? PLAIN_SMOOTH : 0));
}

// Segments that go on where the last one ended are one line.
void mesh_builder::add_segment(const aiMesh &mesh, int material)
{
    const int from = place_of(mesh, outline_[0]);
    if (!line_open_ || node.corners.back() != from || line_material_ != material) {
        end_line();
        line_open_ = true;
        line_material_ = material;
        add_corner(mesh, outline_[0]);
    }
    add_corner(mesh, outline_[1]);
}

void mesh_builder::end_line()
{
    if (!line_open_)
        return;
    line_open_ = false;
    const auto first = static_cast<std::size_t>(node.offsets.back());
    const bool closed =
        node.corners.size() - first > 3 && node.corners[first] == node.corners.back();
    if (closed) {
        node.corners.pop_back();
        node.uv.resize(node.uv.size() - 2);
    }
    end_surface(line_material_, PLAIN_TWOSIDED | (closed ? PLAIN_CLOSED_LINE : PLAIN_LINE));
}

// A face with a corner whose normal is not the face's.
bool mesh_builder::is_smooth(const aiMesh &mesh) const
{
    if (!mesh.HasNormals())
        return false;
    aiVector3D sum; // Newell's
    for (std::size_t k = 0; k < outline_.size(); ++k) {
        const aiVector3D &p = mesh.mVertices[outline_[k]];
        const aiVector3D &q = mesh.mVertices[outline_[(k + 1) % outline_.size()]];
        sum += aiVector3D((p.y - q.y) * (p.z + q.z), (p.z - q.z) * (p.x + q.x),
                          (p.x - q.x) * (p.y + q.y));
    }
    const float length = sum.Length();
    if (!(length > 0))
        return false;
    for (const unsigned index : outline_) {
        const aiVector3D &normal = mesh.mNormals[index];
        const float size = normal.Length();
        // Some files' normals all look the other way; a degree and a half is rounding.
        if (size > 0 && std::fabs(normal * sum) < 0.9997f * size * length)
            return true;
    }
    return false;
}

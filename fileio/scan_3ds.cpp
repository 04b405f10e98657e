#include "fileio/scan_3ds.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstring>

namespace {

constexpr unsigned main_chunk = 0x4D4D;

// Bytes with a place to read at; what is missing counts as 0 and is noted.
class chunk_bytes {
public:
    chunk_bytes(std::string_view bytes, bool *damaged) : bytes_(bytes), damaged_(damaged) {}

    [[nodiscard]] std::size_t size() const { return bytes_.size(); }
    std::uint32_t number(std::size_t count)
    {
        std::uint32_t value = 0;
        const std::size_t there = std::min(count, bytes_.size());
        *damaged_ = *damaged_ || there < count;
        for (std::size_t i = 0; i < there; ++i)
            value |= std::uint32_t{static_cast<unsigned char>(bytes_[i])} << 8 * i;
        bytes_.remove_prefix(there);
        return value;
    }
    float real() { return std::bit_cast<float>(number(4)); }
    template <std::size_t N>
    std::array<float, N> reals()
    {
        std::array<float, N> all = {};
        for (float &value : all)
            value = real();
        return all;
    }
    std::string text()
    {
        const std::size_t length = std::min(bytes_.find('\0'), bytes_.size());
        std::string out(bytes_.substr(0, length));
        bytes_.remove_prefix(std::min(length + 1, bytes_.size()));
        return out;
    }
    // How many records of a size are there, of so many that are promised.
    std::size_t records(std::size_t promised, std::size_t record)
    {
        const std::size_t there = std::min(promised, bytes_.size() / record);
        *damaged_ = *damaged_ || there < promised;
        return there;
    }
    // Calls `take` with the id and the content of each chunk.
    template <class Take>
    void chunks(Take &&take)
    {
        while (size() >= 6) {
            const unsigned id = number(2);
            const std::size_t length = number(4);
            if (length < 6) {
                *damaged_ = true;
                return;
            }
            const std::size_t there = std::min(length - 6, bytes_.size());
            *damaged_ = *damaged_ || there < length - 6;
            chunk_bytes content(bytes_.substr(0, there), damaged_);
            bytes_.remove_prefix(there);
            take(id, content);
        }
    }

private:
    std::string_view bytes_;
    bool *damaged_;
};

// ---- materials ----

// The finer one of those that are given, bytes or reals.
void read_colour(chunk_bytes bytes, float *rgb)
{
    bool real = false;
    bytes.chunks([&](unsigned id, chunk_bytes part) {
        const bool is_real = id == 0x0010 || id == 0x0013;
        if ((!is_real && id != 0x0011 && id != 0x0012) || (real && !is_real))
            return;
        real = real || is_real;
        for (int i = 0; i < 3; ++i)
            rgb[i] = is_real ? part.real() : static_cast<float>(part.number(1)) / 255;
    });
}

float read_share(chunk_bytes bytes)
{
    float share = 0;
    bool real = false;
    bytes.chunks([&](unsigned id, chunk_bytes part) {
        if (id == 0x0031) {
            share = part.real();
            real = true;
        } else if (id == 0x0030 && !real) {
            share = static_cast<float>(part.number(2)) / 100;
        }
    });
    return std::isfinite(share) ? std::clamp(share, 0.0f, 1.0f) : 0.0f;
}

void read_picture(chunk_bytes bytes, material_3ds *m)
{
    bytes.chunks([m](unsigned id, chunk_bytes part) {
        switch (id) {
        case 0xA300:
            m->picture = part.text();
            break;
        case 0xA354:
            m->repeat[0] = part.real();
            break;
        case 0xA356:
            m->repeat[1] = part.real();
            break;
        case 0xA358:
            m->offset[0] = -part.real();
            break; // it moves the picture, not the coordinate
        case 0xA35A:
            m->offset[1] = part.real();
            break;
        default:
            break;
        }
    });
}

void read_material(chunk_bytes bytes, file_3ds *file)
{
    material_3ds m;
    float glow = 0;
    bytes.chunks([&](unsigned id, chunk_bytes part) {
        switch (id) {
        case 0xA000:
            m.name = part.text();
            break;
        case 0xA010:
            read_colour(part, m.colours.ambient);
            break;
        case 0xA020:
            read_colour(part, m.colours.diffuse);
            break;
        case 0xA030:
            read_colour(part, m.colours.specular);
            break;
        case 0xA040:
            m.colours.shininess = read_share(part) * 128;
            break;
        case 0xA050:
            m.colours.transparency = read_share(part);
            break;
        case 0xA080:
            glow = 1;
            break;
        case 0xA081:
            m.twosided = true;
            break;
        case 0xA084:
            glow = read_share(part);
            break;
        case 0xA200:
            read_picture(part, &m);
            break;
        case 0xA204:
        case 0xA210:
        case 0xA220:
        case 0xA230:
        case 0xA33A:
        case 0xA33C:
        case 0xA33D:
            ++file->other_pictures;
            break;
        default:
            break;
        }
    });
    for (int i = 0; i < 3; ++i)
        m.colours.emissive[i] = glow * m.colours.diffuse[i];
    file->materials.push_back(std::move(m));
}

// ---- meshes and lights ----

vrml_matrix read_frame(chunk_bytes &bytes)
{
    vrml_matrix m = vrml_identity;
    for (std::size_t row = 0; row < 4; ++row)
        for (std::size_t column = 0; column < 3; ++column)
            m[4 * row + column] = bytes.real();
    return m;
}

void read_faces(chunk_bytes bytes, mesh_3ds *mesh)
{
    const std::size_t count = bytes.records(bytes.number(2), 8);
    for (std::size_t i = 0; i < count; ++i) {
        std::array<std::uint16_t, 3> face = {};
        for (std::uint16_t &corner : face)
            corner = static_cast<std::uint16_t>(bytes.number(2));
        bytes.number(2); // which edges are seen
        mesh->faces.push_back(face);
    }
    mesh->looks.assign(count, -1);
    bytes.chunks([&](unsigned id, chunk_bytes part) {
        if (id == 0x4130) {
            const auto look = static_cast<std::int32_t>(mesh->look_names.size());
            mesh->look_names.push_back(part.text());
            const std::size_t used = part.records(part.number(2), 2);
            for (std::size_t i = 0; i < used; ++i)
                if (const std::uint32_t face = part.number(2); face < count)
                    mesh->looks[face] = look;
        } else if (id == 0x4150) {
            for (std::size_t i = 0; i < count && part.size() >= 4; ++i)
                mesh->smoothing.push_back(part.number(4));
        }
    });
}

void read_floats(chunk_bytes bytes, std::size_t width, std::vector<float> *out)
{
    const std::size_t count = width * bytes.records(bytes.number(2), 4 * width);
    out->clear();
    for (std::size_t i = 0; i < count; ++i)
        out->push_back(bytes.real());
}

void read_object(chunk_bytes bytes, file_3ds *file)
{
    const std::string name = bytes.text();
    bytes.chunks([&](unsigned id, chunk_bytes part) {
        if (id == 0x4100) {
            mesh_3ds mesh;
            mesh.name = name;
            part.chunks([&mesh](unsigned kind, chunk_bytes content) {
                if (kind == 0x4110)
                    read_floats(content, 3, &mesh.points);
                else if (kind == 0x4140)
                    read_floats(content, 2, &mesh.uv);
                else if (kind == 0x4120 && mesh.faces.empty())
                    read_faces(content, &mesh);
                else if (kind == 0x4160)
                    mesh.frame = read_frame(content);
            });
            file->meshes.push_back(std::move(mesh));
        } else if (id == 0x4600) {
            file->lights.push_back({name, part.reals<3>()});
        } else if (id == 0x4700) {
            ++file->cameras;
        }
    });
}

// ---- the tree ----

// The first key's values; the others count.
template <std::size_t N>
std::array<float, N> first_key(chunk_bytes bytes, node_3ds *node)
{
    bytes.number(2); // flags
    bytes.number(4);
    bytes.number(4);
    const std::uint32_t keys = bytes.number(4);
    node->keys = std::max(node->keys, static_cast<int>(std::min(keys, 1u << 20)));
    bytes.number(4); // its time
    for (unsigned curve = bytes.number(2) & 0x1F; curve != 0; curve >>= 1)
        if ((curve & 1) != 0)
            bytes.real();
    return bytes.reals<N>();
}

void read_node(chunk_bytes bytes, bool camera, file_3ds *file)
{
    node_3ds node;
    node.camera = camera;
    bytes.chunks([&node](unsigned id, chunk_bytes part) {
        if (id == 0xB010) {
            node.name = part.text();
            part.number(4); // flags
            const auto parent = static_cast<int>(part.number(2));
            node.parent = parent == 0xFFFF ? -1 : parent;
        } else if (id == 0xB011) {
            node.instance = part.text();
        } else if (id == 0xB013) {
            node.pivot = part.reals<3>();
        } else if (id == 0xB020) {
            node.place = first_key<3>(part, &node);
            node.moves = true;
        } else if (id == 0xB021) {
            const std::array<float, 4> key = first_key<4>(part, &node);
            node.turn = {key[1], key[2], key[3], key[0]};
        } else if (id == 0xB022) {
            node.scale = first_key<3>(part, &node);
        } else if (id == 0xB030) {
            node.id = static_cast<int>(part.number(2));
        }
    });
    file->nodes.push_back(std::move(node));
}

} // namespace

bool scan_3ds(std::string_view bytes, file_3ds *file)
{
    chunk_bytes all(bytes, &file->damaged);
    if (all.size() < 6 || all.number(2) != main_chunk)
        return false;
    all.number(4); // its length: whatever it says, the rest of the file is its content
    all.chunks([file](unsigned id, chunk_bytes part) {
        if (id != 0x3D3D && id != 0xB000)
            return;
        part.chunks([&](unsigned kind, chunk_bytes content) {
            if (id == 0x3D3D && kind == 0xAFFF)
                read_material(content, file);
            else if (id == 0x3D3D && kind == 0x4000)
                read_object(content, file);
            else if (id == 0xB000 && kind >= 0xB001 && kind <= 0xB007)
                read_node(content, kind != 0xB002 && kind != 0xB005 && kind != 0xB007, file);
        });
    });
    return true;
}

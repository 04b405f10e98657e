#ifndef VESK_FILEIO_VESK_GEOMETRY_H
#define VESK_FILEIO_VESK_GEOMETRY_H

// Reads the blocks of vertices and surfaces of a model file. Every count in the file is a claim:
// nothing is allocated by it that the bytes that are left could not hold.

#include "fileio/vesk_lines.h"
#include "fileio/vesk_scan.h"
#include "model/flat_mesh.h"

#include <vector>

class vesk_geometry {
public:
    explicit vesk_geometry(vesk_lines &lines) : lines_(lines), scanner_(lines.place, lines.end()) {}

    std::vector<int> materials; // palette index of each material of the file
    [[nodiscard]] int last_material() const { return static_cast<int>(materials.size()) - 1; }
    [[nodiscard]] int palette_index(int number) const
    {
        return number < 0 ? 0 : materials[static_cast<std::size_t>(number)];
    }

    // The block whose count is on the line; read_surfaces is false when the file ends within it. What a
    // file gives in the plain form, vertices and then surfaces, is gathered.
    void read_vertices(object_t *object);
    bool read_surfaces(object_t *object);
    // Makes what was gathered the object's, before anybody looks at its lists.
    void settle();
    // Something else changed the vertices of the object.
    void forget_vertices() { known_ = nullptr; }

private:
    struct gathered_t {
        object_t *object = nullptr; // null: nothing is gathered
        std::vector<point3_t> positions;
        std::vector<flat_surface> surfaces;
        std::vector<std::int32_t> offsets, corners;
        std::vector<flat_uv> uv;
    };
    void know_vertices(const object_t *object);
    void gather_vertices(object_t *object);
    void gather_surfaces(const scan_piece &piece);
    // Makes room for so many surfaces, as far as the rest of the file could hold them.
    void reserve_surfaces(int claimed);
    // Counts the reference's line; false, with a complaint, when there is no such vertex of so many.
    bool is_reference(const scanned_ref &ref, std::size_t num_vertices);
    bool read_surface(object_t *object);
    void read_references(surface_t *surface, int claimed);
    void add_reference(surface_t *surface, listitem **last, const scanned_ref &ref);
    void set_material(surface_t *surface, int number);

    vesk_lines &lines_;
    block_scanner scanner_;
    gathered_t gathered_;
    const object_t *known_ = nullptr;
    std::vector<vertex *> points_; // of `known_`, by index
};

#endif

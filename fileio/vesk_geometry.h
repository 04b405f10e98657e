#ifndef VESK_FILEIO_VESK_GEOMETRY_H
#define VESK_FILEIO_VESK_GEOMETRY_H

// Reads the blocks of vertices and surfaces of a model file. Every count in the file is a claim:
// nothing is allocated by it.

#include "fileio/vesk_lines.h"
#include "fileio/vesk_scan.h"
#include "model/object.h"

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

    // The block whose count is on the line; read_surfaces is false when the file ends within it.
    void read_vertices(object_t *object);
    bool read_surfaces(object_t *object);
    // Something else changed the vertices of the object.
    void forget_vertices() { known_ = nullptr; }

private:
    void know_vertices(const object_t *object);
    void build_surfaces(object_t *object, const scan_piece &piece);
    bool read_surface(object_t *object);
    void read_references(surface_t *surface, int claimed);
    void add_reference(surface_t *surface, listitem **last, const scanned_ref &ref);
    void set_material(surface_t *surface, int number);

    vesk_lines &lines_;
    block_scanner scanner_;
    const object_t *known_ = nullptr;
    std::vector<vertex *> points_; // of `known_`, by index
};

#endif

#include "draw/buffer_uploads_gl.h"

#include <algorithm>

namespace {

std::size_t bytes_of(upload_kind kind)
{
    switch (kind) {
    case upload_kind::positions:
        return position_bytes;
    case upload_kind::normals:
        return normal_bytes;
    case upload_kind::texture_coords:
        return uv_bytes;
    default:
        return index_bytes;
    }
}

void write_positions(const object_buffers_t &buffers, const slot_run_t &run)
{
    std::vector<float> data(3 * run.count);
    layout_positions(buffers.layout, *buffers.flat, run, data.data());
    buffers.page->positions.write(GL_ARRAY_BUFFER,
                                  (buffers.first_slot + run.first) * position_bytes, data.data(),
                                  data.size() * sizeof(float));
}

void write_normals(const object_buffers_t &buffers, const slot_run_t &run)
{
    std::vector<std::int16_t> data(4 * run.count);
    layout_normals(buffers.layout, *buffers.flat, run, data.data());
    buffers.page->normals.write(GL_ARRAY_BUFFER, (buffers.first_slot + run.first) * normal_bytes,
                                data.data(), data.size() * sizeof(std::int16_t));
}

void write_texture_coords(const object_buffers_t &buffers, const slot_run_t &run)
{
    std::vector<float> data(2 * run.count);
    layout_texture_coords(buffers.layout, *buffers.flat, run, data.data());
    buffers.page->texture_coords.write(GL_ARRAY_BUFFER, (buffers.first_slot + run.first) * uv_bytes,
                                       data.data(), data.size() * sizeof(float));
}

// From `first` on in the page; the list is given up after its last piece.
void write_indices(const object_buffers_t &buffers, gpu_buffer &buffer, std::size_t first,
                   std::vector<std::uint32_t> &indices, const slot_run_t &run)
{
    std::uint32_t *piece = indices.data() + run.first;
    for (std::size_t i = 0; buffers.first_slot > 0 && i < run.count; ++i)
        piece[i] += buffers.first_slot;
    buffer.write(GL_ELEMENT_ARRAY_BUFFER, (first + run.first) * index_bytes, piece,
                 run.count * index_bytes);
    if (run.first + run.count == indices.size())
        std::vector<std::uint32_t>().swap(indices);
}

void write(object_buffers_t &buffers, upload_kind kind, const slot_run_t &run)
{
    mesh_layout_t &layout = buffers.layout;
    switch (kind) {
    case upload_kind::positions:
        return write_positions(buffers, run);
    case upload_kind::normals:
        return write_normals(buffers, run);
    case upload_kind::texture_coords:
        return write_texture_coords(buffers, run);
    case upload_kind::triangles:
        return write_indices(buffers, buffers.page->triangles, buffers.first_triangle_index,
                             layout.triangles, run);
    case upload_kind::edges:
        return write_indices(buffers, buffers.page->edges, buffers.edges.first, layout.edges, run);
    case upload_kind::lines:
        return write_indices(buffers, buffers.page->edges, buffers.first_line_index, layout.lines,
                             run);
    }
}

} // namespace

void uploads_add(object_buffers_t &buffers, upload_kind kind, const std::vector<slot_run_t> &runs)
{
    for (const slot_run_t &run : runs)
        if (run.count > 0)
            buffers.uploads.push_back({kind, run});
}

void uploads_add_layout(object_buffers_t &buffers)
{
    const mesh_layout_t &layout = buffers.layout;
    buffers.uploads.clear();
    uploads_add(buffers, upload_kind::positions, {{0, buffers.num_slots}});
    uploads_add(buffers, upload_kind::normals, {{0, buffers.num_slots}});
    if (buffers.textured)
        uploads_add(buffers, upload_kind::texture_coords, {{0, buffers.num_slots}});
    uploads_add(buffers, upload_kind::triangles, {{0, layout.triangles.size()}});
    uploads_add(buffers, upload_kind::edges, {{0, layout.edges.size()}});
    uploads_add(buffers, upload_kind::lines, {{0, layout.lines.size()}});
}

bool uploads_write(object_buffers_t &buffers, std::size_t most_bytes)
{
    std::size_t done = 0; // uploads
    while (done < buffers.uploads.size() && most_bytes > 0) {
        upload_t &upload = buffers.uploads[done];
        const std::size_t bytes = bytes_of(upload.kind);
        const std::size_t count = std::min(upload.run.count, most_bytes / bytes + 1);
        write(buffers, upload.kind, {upload.run.first, count});
        most_bytes -= std::min(most_bytes, count * bytes);
        upload.run = {upload.run.first + count, upload.run.count - count};
        done += upload.run.count == 0 ? 1 : 0;
    }
    buffers.uploads.erase(buffers.uploads.begin(),
                          buffers.uploads.begin() + static_cast<std::ptrdiff_t>(done));
    return buffers.uploads.empty();
}

// The native writer. The model's world coordinates become coordinates relative to the parent; the
// text of big objects is formatted in blocks by two threads and written in order.

#include "fileio/vesk_writer.h"

#include "base/atomic_file.h"
#include "base/current_file.h"
#include "base/messages.h"
#include "base/worker.h"
#include "fileio/output.h"
#include "fileio/vesk_format.h"
#include "model/alloc_internal.h"
#include "model/each.h"
#include "model/flat_mesh.h"
#include "model/list.h"
#include "model/material_values.h"
#include "model/palette.h"
#include "model/textures/texture_search.h"
#include "model/textures/textures.h"
#include "model/world.h"

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

namespace {

constexpr int block_size = 4096;    // vertices or surfaces formatted at a time
constexpr int threads_from = 20000; // smaller files are not worth a second thread
constexpr size_t blocks_ahead = 16; // finished blocks that may wait to be written

// ---- used materials ----

// Palette indices of the file's materials, ascending. Deliberate: kept after a failed save, whose
// entries the next save then writes too.
std::vector<int> used_materials;

int place_of_material(int material)
{
    const auto found = std::lower_bound(used_materials.begin(), used_materials.end(), material);
    return static_cast<int>(found - used_materials.begin());
}

void collect_materials(object_t *top)
{
    std::set<int> used(used_materials.begin(), used_materials.end());
    for_each_object(top, [&](object_t *object) {
        int last = -1; // neighbours mostly share their material
        for (const flat_surface &surface : *object_flat(object)->surfaces) {
            if (std::exchange(last, surface.material) != surface.material)
                used.insert(surface.material);
        }
    });
    used_materials.assign(used.begin(), used.end());
}

// ---- text ----

std::string palette_text()
{
    std::string text;
    for (const int index : used_materials) {
        if (index >= 0 && index < vesk_get_num_palette()) {
            const material *entry = vesk_palette_get_material(index);
            append_material(text, *entry, entry->name);
            continue;
        }
        const material_values
            missing; // a surface names an entry that is not there: keep the numbering
        append_material(text, missing, missing.name);
    }
    return text;
}

// ---- one object ----

// Vertices and surfaces of one object, formatted in blocks.
struct geometry_t {
    const object_t *object;
    flat_ptr mesh;
    local_frame_t frame;
};

struct block_t {
    std::string text;                     // ready, or made by format_block
    const geometry_t *geometry = nullptr; // null: the text is ready
    bool surfaces = false;
    int begin = 0, end = 0;
    std::atomic<bool> done = false;
};

// References that the flat mesh left out are counted in the file all the same.
int reference_count(const geometry_t &g, int i, int corners)
{
    const surface_t *surface = (*g.mesh->surface_records)[static_cast<size_t>(i)];
    if (surface->num_refs == corners)
        return corners;
    return std::max(list_count(surface->refs), corners);
}

void format_block(block_t &block)
{
    if (block.geometry == nullptr)
        return;
    block.text.reserve(static_cast<size_t>(block.end - block.begin) * (block.surfaces ? 80 : 30));
    const geometry_t &g = *block.geometry;
    if (block.surfaces) {
        append_surfaces(block.text, *g.mesh, block.begin, block.end, place_of_material,
                        [&](int i, int corners) { return reference_count(g, i, corners); });
    } else {
        append_vertices(block.text, *g.mesh, g.frame, block.begin, block.end);
    }
}

// ---- the file as blocks ----

struct plan_t {
    std::string texture_base; // the file that texture names are relative to
    std::vector<std::unique_ptr<geometry_t>> geometries;
    std::vector<std::unique_ptr<block_t>> blocks;
    int elements = 0;

    std::string &text() // of a block that is ready
    {
        if (blocks.empty() || blocks.back()->geometry != nullptr)
            blocks.push_back(std::make_unique<block_t>());
        return blocks.back()->text;
    }
    void add(const geometry_t *geometry, bool surfaces, int count)
    {
        elements += count;
        for (int begin = 0; begin < count; begin += block_size) {
            auto block = std::make_unique<block_t>();
            block->geometry = geometry;
            block->surfaces = surfaces;
            block->begin = begin;
            block->end = std::min(count, begin + block_size);
            blocks.push_back(std::move(block));
        }
    }
};

void tell_bad_references(const geometry_t &g)
{
    for (int i = 0; i < g.mesh->num_surfaces(); ++i) {
        const surface_t *surface = (*g.mesh->surface_records)[static_cast<size_t>(i)];
        const auto kept = static_cast<int>(g.mesh->surface_corners(i).size());
        for (int bad = reference_count(g, i, kept) - kept; bad > 0; --bad) {
            debugf("save_vesk_object: bad surface vertex index in object %x, Surface %x (numvert "
                   "%d)\n",
                   static_cast<unsigned>(reinterpret_cast<uintptr_t>(g.object)),
                   static_cast<unsigned>(reinterpret_cast<uintptr_t>(surface)),
                   g.object->num_vertices);
        }
    }
}

// The name that stands in the file; null for none.
const char *texture_of(const object_t *object, const std::string &base)
{
    const char *name = nullptr;
    if (object->has_texture != 0) {
        const char *file = texture_id_to_name(object->texture);
        if (file != nullptr)
            name = search_texture_save(base.c_str(), file);
    } else {
        name = object_missing_texture(object); // not found at load: nothing is lost
    }
    if (name != nullptr)
        debugf("OUTNAME %s\n", name);
    return name;
}

void append_header(std::string &out, const object_t *object, const local_frame_t &local,
                   const std::string &texture_base)
{
    append_object_header(
        out, *object, {object->name, object->url, object->data, texture_of(object, texture_base)},
        local);
    debugf("TEXTURE OFFSET save %f %f\n", static_cast<double>(object->texture_offset_x),
           static_cast<double>(object->texture_offset_y));
}

// Adds an object without its children.
void plan_object(plan_t &plan, object_t *object, const local_frame_t &frame)
{
    append_header(plan.text(), object, frame, plan.texture_base);

    const flat_ptr mesh = object_flat(object);
    plan.geometries.push_back(std::make_unique<geometry_t>(geometry_t{object, mesh, frame}));
    const geometry_t *geometry = plan.geometries.back().get();
    tell_bad_references(*geometry);
    if (mesh->num_vertices() != 0) {
        append_count(plan.text(), "numvert", mesh->num_vertices());
        plan.add(geometry, false, mesh->num_vertices());
    }
    if (mesh->num_surfaces() != 0) {
        append_count(plan.text(), "numsurf", mesh->num_surfaces());
        plan.add(geometry, true, mesh->num_surfaces());
    }
    append_count(plan.text(), "kids", list_count(object->children));
}

// ---- formatting beside writing ----

// Formats blocks in order on a second thread, and on the calling thread while it waits for one.
class formatter_t {
public:
    explicit formatter_t(plan_t &formatted) : plan(formatted)
    {
        if (plan.elements >= threads_from)
            worker = worker_t([this] { work(); }, [this] { worker_ended(); });
    }
    ~formatter_t()
    {
        {
            const std::lock_guard lock(mutex);
            stopped = true;
        }
        changed.notify_all();
        worker.wait();
    }
    formatter_t(const formatter_t &) = delete;
    formatter_t &operator=(const formatter_t &) = delete;

    // The text of block `i`, which is asked for in order; it is dropped with the next call.
    const std::string &text(size_t i)
    {
        if (i > 0)
            recycle(plan.blocks[i - 1]->text);
        while (!plan.blocks[i]->done.load(std::memory_order_acquire)) {
            if (!format_next(i))
                wait_for(i);
        }
        {
            const std::lock_guard lock(mutex);
            written = i + 1;
        }
        changed.notify_all();
        return plan.blocks[i]->text;
    }

private:
    // Buffers are handed from block to block: freed on another thread than took them they would
    // pile up.
    void recycle(std::string &text)
    {
        const std::lock_guard lock(mutex);
        text.clear();
        spare.push_back(std::move(text));
        text = std::string();
    }
    // Takes the next block that nobody formats; false when there is none near enough.
    bool format_next(size_t wanted)
    {
        size_t mine = 0;
        {
            const std::lock_guard lock(mutex);
            if (next >= plan.blocks.size() || next > wanted + blocks_ahead)
                return false;
            mine = next++;
            block_t &block = *plan.blocks[mine];
            if (block.geometry != nullptr && !spare.empty()) {
                block.text = std::move(spare.back());
                spare.pop_back();
            }
        }
        format_block(*plan.blocks[mine]);
        {
            const std::lock_guard lock(mutex);
            plan.blocks[mine]->done.store(true, std::memory_order_release);
        }
        changed.notify_all();
        return true;
    }
    void wait_for(size_t i)
    {
        std::unique_lock lock(mutex);
        changed.wait(lock, [&] { return plan.blocks[i]->done.load() || ended; });
        lock.unlock();
        if (!plan.blocks[i]->done.load())
            worker.join(); // throws what ended it
    }
    void worker_ended()
    {
        const std::lock_guard lock(mutex);
        ended = true;
        changed.notify_all();
    }
    void work()
    {
        for (;;) {
            size_t at = 0;
            {
                std::unique_lock lock(mutex);
                changed.wait(lock, [&] {
                    return stopped || next >= plan.blocks.size() || next <= written + blocks_ahead;
                });
                if (stopped || next >= plan.blocks.size())
                    return;
                at = written;
            }
            format_next(at);
        }
    }

    plan_t &plan;
    std::vector<std::string> spare;
    worker_t worker;
    std::mutex mutex;
    std::condition_variable changed;
    size_t next = 0;    // first block that nobody has taken
    size_t written = 0; // blocks that are out of the way
    bool stopped = false;
    bool ended = false; // the worker
};

void tell_failure(const atomic_writer_t &file, const char *name, size_t header, size_t palette)
{
    if (!file.opened()) {
        windows_message_dialog("can't open file '%s' for writing", name);
    } else if (file.written() < header) {
        windows_message_dialog("An error occured when first writing the .vesk file \"%s\"", name);
    } else if (file.written() < header + palette) {
        windows_message_dialog("An error occured when writing the palette to the .vesk file \"%s\"",
                               name);
    } else {
        windows_message_dialog("An error occured when writing the .vesk file \"%s\"", name);
    }
    tell_write_reason(name);
}

// Hands the text of the objects on, piece by piece, for as long as `write` returns true.
template <class Write>
void write_objects(object_t *top, const std::string &texture_base, const Write &write)
{
    plan_t plan;
    plan.texture_base = texture_base;
    for_each_written(top, [&](object_t *object, const local_frame_t &frame) {
        plan_object(plan, object, frame);
    });
    formatter_t formatter(plan);
    for (size_t i = 0; i < plan.blocks.size(); ++i) {
        if (!write(formatter.text(i)))
            return;
    }
}

} // namespace

int write_vesk(const char *filename)
{
    const std::string name = filename; // may be a text that the current file holds
    current_file_set(name.c_str());
    vesk_write_model(name, vesk_get_world(), name);
    return 1;
}

int write_vesk_object(const char *filename, object_t *object)
{
    return vesk_write_model(filename, object, current_file().name);
}

int vesk_write_model(const std::string &filename, object_t *object, const std::string &texture_base)
{
    const std::string name = filename; // messages let scripts run
    atomic_writer_t file(name.c_str());
    if (!file.opened()) {
        tell_failure(file, name.c_str(), 0, 0);
        return 0;
    }
    std::string header;
    append_file_header(header);
    collect_materials(object);
    const std::string palette = palette_text();
    if (file.write(header) && file.write(palette))
        write_objects(object, texture_base,
                      [&](const std::string &text) { return file.write(text); });
    if (!file.commit()) {
        tell_failure(file, name.c_str(), header.size(), palette.size());
        return 0;
    }
    used_materials.clear();
    debugf("written file %s OK\n", name.c_str());
    display_message("written file %s", name.c_str());
    return 1;
}

std::string vesk_object_text(object_t *object)
{
    const std::vector<int> kept = std::exchange(used_materials, {});
    std::string text;
    append_file_header(text);
    collect_materials(object);
    text += palette_text();
    write_objects(object, "", [&](const std::string &piece) {
        text += piece;
        return true;
    });
    used_materials = kept;
    return text;
}

int output_string(FILE *stream, const char *text)
{
    std::string quoted;
    append_quoted(quoted, text);
    fwrite(quoted.data(), 1, quoted.size(), stream);
    return 1;
}

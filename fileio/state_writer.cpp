#include "fileio/state_writer.h"

#include "base/atomic_file.h"
#include "fileio/vesk_format.h"
#include "model/matrix.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

namespace {

// ---- sinks ----

// Collects text and hands it on in large pieces.
class file_sink {
public:
    explicit file_sink(atomic_writer_t &file) : file_(file) { text_.reserve(piece + 4096); }
    ~file_sink() { flush(); }
    file_sink(const file_sink &) = delete;
    file_sink &operator=(const file_sink &) = delete;

    void append(const char *text, std::size_t size)
    {
        text_.append(text, size);
        if (text_.size() >= piece)
            flush();
    }
    void operator+=(char c) { text_ += c; }
    void operator+=(const char *text) { append(text, std::strlen(text)); }

private:
    static constexpr std::size_t piece = 1u << 18;
    void flush()
    {
        file_.write(text_); // a failure is found at the commit
        text_.clear();
    }

    atomic_writer_t &file_;
    std::string text_;
};

// Writes through a buffer that is there from the start.
class bare_sink {
public:
    explicit bare_sink(int fd) : fd_(fd) {}

    void append(const char *text, std::size_t size)
    {
        while (size > 0) {
            const std::size_t part = std::min(size, sizeof buffer - used_);
            std::memcpy(buffer + used_, text, part);
            used_ += part;
            text += part;
            size -= part;
            if (used_ == sizeof buffer)
                flush();
        }
    }
    void operator+=(char c) { append(&c, 1); }
    void operator+=(const char *text) { append(text, std::strlen(text)); }

    bool finish()
    {
        flush();
        return !failed_;
    }

private:
    void flush()
    {
        const char *from = buffer;
        while (used_ > 0 && !failed_) {
            const ssize_t written = write(fd_, from, used_);
            failed_ = written <= 0;
            from += std::max<ssize_t>(written, 0);
            used_ -= static_cast<std::size_t>(std::max<ssize_t>(written, 0));
        }
        used_ = 0;
    }

    static char buffer[1u << 16];
    int fd_;
    std::size_t used_ = 0;
    bool failed_ = false;
};
char bare_sink::buffer[1u << 16];

// ---- the file ----

// The frame that a reader will rebuild of an entry, from its ancestors. Neighbours mostly share
// their parent, or are parent and child: these two are remembered.
class rebuilt_frames {
public:
    explicit rebuilt_frames(const model_state &state) : state_(state) {}

    local_frame_t frame(int i)
    {
        const int parent = state_.entry(i).parent;
        const object_t record = state_.entry(i).image->record();
        if (parent < 0) {
            own_ = {i, frame_of(&record, nullptr).rebuilt};
            return frame_of(&record, nullptr);
        }
        if (parent == own_.entry) {
            parent_ = own_;
        } else if (parent != parent_.entry) {
            parent_ = {parent, rebuilt(parent)};
        }
        const local_frame_t frame = frame_of(&record, &parent_.frame);
        own_ = {i, frame.rebuilt};
        return frame;
    }

private:
    [[nodiscard]] rebuilt_t rebuilt(int i) const
    {
        rebuilt_t frame = {{}, {0, 0, 0}};
        matrix_set_identity(frame.rotation);
        if (state_.entry(i).parent >= 0)
            frame.centre = state_.entry(i).image->centre;
        for (; state_.entry(i).parent >= 0; i = state_.entry(i).parent) {
            const object_image &image = *state_.entry(i).image;
            if (matrix_is_identity(image.rotation) == 0) {
                matrix_copy(image.rotation, frame.rotation);
                break;
            }
        }
        return frame;
    }

    struct known {
        int entry;
        rebuilt_t frame;
    };
    const model_state &state_;
    known own_ = {-1, {}};
    known parent_ = {-1, {}};
};

const char *text_of(const std::optional<std::string> &text)
{
    return text ? text->c_str() : nullptr;
}

// A texture that was not found at load is kept as a property.
const char *texture_of(const object_image &image)
{
    const object_details &details = *image.details;
    if (details.record.has_texture != 0)
        return text_of(details.texture_file);
    for (const property_image &prop : details.properties) {
        if (prop.name == missing_texture_property)
            return prop.value.c_str();
    }
    return nullptr;
}

template <class Out>
void append_state(Out &out, const model_state &state)
{
    append_file_header(out);
    for (const material_image &entry : *state.palette)
        append_material(out, entry.values, text_of(entry.name));
    const auto palette_size = static_cast<int>(state.palette->size());
    const auto place_of = [&](int index) { return index < palette_size ? std::max(index, 0) : 0; };
    rebuilt_frames frames(state);
    for (int i = 0; i < state.num_objects; ++i) {
        const state_entry &entry = state.entry(i);
        const object_image &image = *entry.image;
        const flat_mesh &mesh = *image.geometry;
        const local_frame_t frame = frames.frame(i);
        append_object_header(out, image.record(),
                             {image.name.c_str(), text_of(image.details->url),
                              text_of(image.details->data), texture_of(image)},
                             frame);
        if (mesh.num_vertices() != 0) {
            append_count(out, "numvert", mesh.num_vertices());
            append_vertices(out, mesh, frame, 0, mesh.num_vertices());
        }
        if (mesh.num_surfaces() != 0) {
            append_count(out, "numsurf", mesh.num_surfaces());
            append_surfaces(out, mesh, 0, mesh.num_surfaces(), place_of,
                            [](int, int corners) { return corners; });
        }
        append_count(out, "kids", entry.num_children);
    }
}

} // namespace

bool write_model_state(const model_state &state, const char *file)
{
    atomic_writer_t target(file);
    if (!target.opened())
        return false;
    {
        file_sink sink(target);
        append_state(sink, state);
    }
    return target.commit();
}

bool write_model_state_bare(const model_state &state, const char *temporary, const char *file)
{
    const int fd = open(temporary, O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
    if (fd < 0)
        return false;
    bare_sink sink(fd);
    append_state(sink, state);
    const bool whole = sink.finish() && fsync(fd) == 0;
    close(fd);
    return whole && rename(temporary, file) == 0;
}

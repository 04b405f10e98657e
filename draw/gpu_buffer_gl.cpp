#include "draw/gpu_buffer_gl.h"

#include <cstring>

namespace {
std::uint64_t all_bytes = 0;
} // namespace

void gpu_buffer::reserve(GLenum target, std::size_t bytes)
{
    if (!device_caps().buffers) {
        memory_.resize(bytes);
        return;
    }
    glGenBuffers(1, &id_);
    glBindBuffer(target, id_);
    glBufferData(target, static_cast<GLsizeiptr>(bytes), nullptr, GL_STATIC_DRAW);
    glBindBuffer(target, 0); // or the next small array would be read from it
}

void gpu_buffer::write(GLenum target, std::size_t offset, const void *data, std::size_t bytes)
{
    if (bytes == 0)
        return;
    all_bytes += bytes;
    if (id_ == 0) {
        std::memcpy(memory_.data() + offset, data, bytes);
        return;
    }
    glBindBuffer(target, id_);
    glBufferSubData(target, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(bytes), data);
    glBindBuffer(target, 0);
}

void gpu_buffer::read(GLenum target, std::size_t offset, void *data, std::size_t bytes) const
{
    if (bytes == 0)
        return;
    if (id_ == 0) {
        std::memcpy(data, memory_.data() + offset, bytes);
        return;
    }
    glBindBuffer(target, id_);
    glGetBufferSubData(target, static_cast<GLintptr>(offset), static_cast<GLsizeiptr>(bytes), data);
    glBindBuffer(target, 0);
}

const void *gpu_buffer::bind(GLenum target, std::size_t offset) const
{
    if (id_ == 0) {
        if (device_caps().buffers)
            glBindBuffer(target, 0);
        return memory_.data() + offset;
    }
    glBindBuffer(target, id_);
    return reinterpret_cast<const void *>(offset);
}

void gpu_buffer::release()
{
    if (id_ != 0)
        glDeleteBuffers(1, &id_);
    id_ = 0;
    memory_ = {};
}

std::uint64_t gpu_buffer::uploaded_bytes() { return all_bytes; }

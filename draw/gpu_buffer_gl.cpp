#include "draw/gpu_buffer_gl.h"

#include <cstring>
#include <sys/mman.h>

namespace {

std::uint64_t all_bytes = 0;

constexpr std::size_t page_bytes = std::size_t{2} << 20;
constexpr std::size_t least_in_own_memory = page_bytes;

} // namespace

// False: the driver does not take them.
bool gpu_buffer::reserve_pages(std::size_t bytes)
{
    const std::size_t room = (bytes + page_bytes - 1) / page_bytes * page_bytes;
    void *pages = mmap(nullptr, room, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
    if (pages == MAP_FAILED)
        return false;
#ifdef MADV_HUGEPAGE
    madvise(pages, room, MADV_HUGEPAGE);
#endif
    constexpr int most_errors = 8; // of somebody else; a lost context tells them for ever
    for (int i = 0; i < most_errors && glGetError() != GL_NO_ERROR; ++i)
        continue;
    glBindBuffer(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, id_);
    glBufferData(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, static_cast<GLsizeiptr>(bytes), pages,
                 GL_STATIC_DRAW);
    glBindBuffer(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, 0);
    if (glGetError() != GL_NO_ERROR) {
        munmap(pages, room);
        return false;
    }
    pages_ = pages;
    num_bytes_ = room;
    return true;
}

void gpu_buffer::reserve(GLenum target, std::size_t bytes)
{
    if (!device_caps().buffers) {
        memory_.resize(bytes);
        return;
    }
    glGenBuffers(1, &id_);
    if (device_caps().own_memory && bytes >= least_in_own_memory && reserve_pages(bytes))
        return;
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
    if (pages_ != nullptr) {
        glFinish(); // what is drawn reads them
        munmap(pages_, num_bytes_);
    }
    *this = {};
}

std::uint64_t gpu_buffer::uploaded_bytes() { return all_bytes; }

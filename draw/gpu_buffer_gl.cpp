#include "draw/gpu_buffer_gl.h"

#include "base/big_vector.h"
#include "base/job_queue.h"

#include <cstring>
#include <sys/mman.h>
#include <utility>

namespace {

std::uint64_t all_bytes = 0;

constexpr std::size_t page_bytes = std::size_t{2} << 20;
constexpr std::size_t least_in_own_memory = page_bytes;

} // namespace

struct own_pages_t : queued_job_t {
    explicit own_pages_t(std::size_t bytes)
        : num_bytes((bytes + page_bytes - 1) / page_bytes * page_bytes),
          start(
              mmap(nullptr, num_bytes, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0))
    {
#ifdef MADV_HUGEPAGE
        if (is_there())
            madvise(start, num_bytes, MADV_HUGEPAGE);
#endif
    }
    ~own_pages_t()
    {
        if (is_there())
            munmap(start, num_bytes);
    }
    own_pages_t(const own_pages_t &) = delete;
    own_pages_t &operator=(const own_pages_t &) = delete;

    [[nodiscard]] bool is_there() const { return start != MAP_FAILED; }

    void run()
    {
        for (std::size_t at = 0; at < num_bytes && !cancelled; at += page_bytes)
            touch_memory(static_cast<unsigned char *>(start) + at, page_bytes);
    }

    std::size_t num_bytes;
    void *start;
};

// False: the driver does not take them.
bool gpu_buffer::reserve_pages(std::size_t bytes)
{
    auto pages = std::make_shared<own_pages_t>(bytes);
    if (!pages->is_there())
        return false;
    constexpr int most_errors = 8; // of somebody else; a lost context tells them for ever
    for (int i = 0; i < most_errors && glGetError() != GL_NO_ERROR; ++i)
        continue;
    glBindBuffer(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, id_);
    glBufferData(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, static_cast<GLsizeiptr>(bytes),
                 pages->start, GL_STATIC_DRAW);
    glBindBuffer(GL_EXTERNAL_VIRTUAL_MEMORY_BUFFER_AMD, 0);
    if (glGetError() != GL_NO_ERROR)
        return false;
    static job_queue<own_pages_t> queue;
    queue.add(pages);
    pages_ = std::move(pages);
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
        pages_->cancelled = true;
    }
    *this = {};
}

std::uint64_t gpu_buffer::uploaded_bytes() { return all_bytes; }

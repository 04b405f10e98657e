#ifndef VESK_DRAW_GPU_BUFFER_GL_H
#define VESK_DRAW_GPU_BUFFER_GL_H

#include "draw/draw_device_gl.h"

#include <cstddef>
#include <memory>
#include <vector>

struct own_pages_t;

// A buffer object, or memory of our own where there are none. Where the processor draws, a large buffer
// object is memory of our own, too: the driver would clear its own at once, and the first touch of so many
// pages takes longer than an event may wait; here each page is touched when it is written.
// A worker brings the pages meanwhile.
class gpu_buffer {
public:
    void reserve(GLenum target, std::size_t bytes);
    void write(GLenum target, std::size_t offset, const void *data, std::size_t bytes);
    void read(GLenum target, std::size_t offset, void *data, std::size_t bytes) const;
    // `offset` as a pointer call takes it, with the buffer bound.
    [[nodiscard]] const void *bind(GLenum target, std::size_t offset = 0) const;
    void release();

    // By all buffers since the start, for tests.
    static std::uint64_t uploaded_bytes();

private:
    bool reserve_pages(std::size_t bytes);

    GLuint id_ = 0;
    std::vector<unsigned char> memory_;
    std::shared_ptr<own_pages_t> pages_; // of the buffer object
};

#endif

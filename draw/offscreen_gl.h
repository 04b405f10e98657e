#ifndef VESK_DRAW_OFFSCREEN_GL_H
#define VESK_DRAW_OFFSCREEN_GL_H

// A drawing surface without a window and without a display, current as long as it lives. The
// library behind it is opened at first use.

#include <memory>
#include <string>

struct offscreen_state_t;

class offscreen_t {
public:
    offscreen_t(int width, int height);
    ~offscreen_t();
    offscreen_t(const offscreen_t &) = delete;
    offscreen_t &operator=(const offscreen_t &) = delete;

    // "" when it can be drawn into.
    [[nodiscard]] const std::string &problem() const { return problem_; }

private:
    std::unique_ptr<offscreen_state_t> state_;
    std::string problem_;
};

#endif

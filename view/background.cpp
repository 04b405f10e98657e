#include "view/background.h"

namespace {
background_t backgrounds[3];
} // namespace

background_t &view_background(int view) { return backgrounds[view]; }

void backgrounds_reset_for_test()
{
    for (background_t &background : backgrounds) {
        background = {};
    }
}

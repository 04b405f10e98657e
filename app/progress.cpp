#include "app/progress.h"

#include "app/messages.h"
#include "app/session_state.h"
#include "app/ui_port.h"

#include <algorithm>

namespace {
constexpr double pump_interval = 0.1; // seconds
constexpr double show_after = 0.3;
constexpr int calls_between_looks = 64;
} // namespace

progress_t::progress_t(double work)
    : total(std::max(work, 1.0)), started(ui_port().now_seconds()), last_pump(started)
{
    session().cancel_requested = false;
}

progress_t::~progress_t()
{
    if (session().progress_shown)
        set_progress_bar(0);
    session().progress_shown = false;
}

bool progress_t::step(double done)
{
    if (was_cancelled)
        return false;
    return ++calls % calls_between_looks != 0 || look(done);
}

bool progress_t::look(double done)
{
    if (was_cancelled)
        return false;
    const double now = ui_port().now_seconds();
    if (now - last_pump < pump_interval)
        return true;
    last_pump = now;
    if (now - started > show_after) {
        session().progress_shown = true;
        set_progress_bar(static_cast<int>(std::clamp(done / total, 0.0, 1.0) * 100.0));
    }
    handle_tcl_events();
    was_cancelled = session().cancel_requested;
    return !was_cancelled;
}

void progress_cancel() { session().cancel_requested = true; }

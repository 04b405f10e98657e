#include "base/progress.h"

#include "base/messages.h"
#include "base/session_state.h"
#include "base/ui_port.h"

#include <algorithm>
#include <memory>

namespace {
constexpr double pump_interval = 0.1; // seconds
constexpr double show_after = 0.3;
constexpr int calls_between_looks = 64;
constexpr double parts_between_looks = 1.0 / 128; // of the whole

// A plug-in's.
std::unique_ptr<progress_t> &current_work()
{
    static std::unique_ptr<progress_t> work;
    return work;
}
} // namespace

progress_t::progress_t(double work)
    : total(std::max(work, 1.0)), started(ui_port().now_seconds()), last_pump(started)
{
    session().cancel_requested = false;
}

progress_t::~progress_t()
{
    if (!session().progress_shown)
        return;
    set_progress_bar(0);
    session().progress_shown = false;
    ui_port().busy_cursor(0);
}

bool progress_t::step(double done)
{
    if (was_cancelled)
        return false;
    if (++calls % calls_between_looks != 0 && done - last_done < total * parts_between_looks)
        return true;
    return look(done);
}

bool progress_t::look(double done)
{
    if (was_cancelled)
        return false;
    last_done = done;
    const double now = ui_port().now_seconds();
    if (now - last_pump < pump_interval)
        return true;
    last_pump = now;
    if (now - started > show_after) {
        session().progress_shown = true;
        ui_port().busy_cursor(1);
        set_progress_bar(static_cast<int>(std::clamp(done / total, 0.0, 1.0) * 100.0));
    }
    handle_tcl_events();
    was_cancelled = session().cancel_requested;
    return !was_cancelled;
}

void progress_cancel() { session().cancel_requested = true; }

void vesk_progress_begin(double total)
{
    vesk_progress_end();
    current_work() = std::make_unique<progress_t>(total);
}

int vesk_progress_step(double done)
{
    return current_work() != nullptr && current_work()->step(done) ? 1 : 0;
}

void vesk_progress_end(void) { current_work().reset(); }

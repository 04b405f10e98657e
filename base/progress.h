#ifndef VESK_BASE_PROGRESS_H
#define VESK_BASE_PROGRESS_H

#include "base/types.h"

VESK_BEGIN_DECLS

/* Long work of a plug-in: after 0.3 seconds the status line shows a bar with a cancel button, which
   gives the command "cancel". Other commands are refused meanwhile. One at a time; importers and
   exporters need not end theirs. */

/* Work of `total` steps, in any unit, begins. */
VESK_API void vesk_progress_begin(double total);

/* `done` steps of it are done. Cheap: looks at the clock only every so often, and lets events in ten
   times a second. Returns 1; 0 when the user cancelled or no work was begun: the model must then stay
   as it was before, and what was made is to be freed. */
VESK_API int vesk_progress_step(double done);

/* Ends the work and hides the bar. */
VESK_API void vesk_progress_end(void);

VESK_END_DECLS

#ifdef VESK_INTERNAL
// Long work: moves the progress bar, lets events in ten times a second and tells whether the user
// cancelled. Only the computing half of an operation uses it, never the commit.
class progress_t {
public:
    explicit progress_t(double total);
    ~progress_t();
    progress_t(const progress_t &) = delete;
    progress_t &operator=(const progress_t &) = delete;

    // `done` of `total`; false when the user cancelled. Cheap: looks at the clock only every so
    // often, and when a good part was done at once.
    bool step(double done);
    // The same for work that calls seldom: looks at the clock each time.
    bool look(double done);
    bool cancelled() const { return was_cancelled; }

private:
    double total;
    double started;
    double last_pump;
    double last_done = 0;
    int calls = 0;
    bool was_cancelled = false;
};

// The "cancel" command.
void progress_cancel();
#endif

#endif

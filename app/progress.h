#ifndef VESK_APP_PROGRESS_H
#define VESK_APP_PROGRESS_H

// Long work: moves the progress bar, lets events in ten times a second and tells whether the user
// cancelled. Only the computing half of an operation uses it, never the commit.
class progress_t {
public:
    explicit progress_t(double total);
    ~progress_t();
    progress_t(const progress_t &) = delete;
    progress_t &operator=(const progress_t &) = delete;

    // `done` of `total`; false when the user cancelled. Cheap: looks at the clock only every so
    // often.
    bool step(double done);
    // The same for work that comes by seldom: looks at the clock each time.
    bool look(double done);
    bool cancelled() const { return was_cancelled; }

private:
    double total;
    double started;
    double last_pump;
    int calls = 0;
    bool was_cancelled = false;
};

// The "cancel" command.
void progress_cancel();

#endif

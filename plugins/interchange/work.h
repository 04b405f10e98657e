// Long work in phases, each of which takes its share of the status line's bar, and the files that
// an export writes.
#ifndef INTERCHANGE_WORK_H
#define INTERCHANGE_WORK_H

#include "text.h"

#include <plugin/vesk.h>
#include <string>
#include <string_view>
#include <vector>

class job {
public:
    job() { vesk_progress_begin(1); }
    ~job() { vesk_progress_end(); }
    job(const job &) = delete;
    job &operator=(const job &) = delete;

    // From here on `steps` bring the bar to `share` of the whole.
    void phase(double share, double steps)
    {
        from_ = to_;
        to_ = share;
        scale_ = (to_ - from_) / (steps > 1 ? steps : 1);
        done_ = 0;
    }

    // False when the user cancelled.
    bool step(double count = 1)
    {
        done_ += count;
        return at(done_);
    }
    // The same with the steps done by now.
    bool at(double done)
    {
        cancelled_ = cancelled_ || vesk_progress_step(from_ + done * scale_) == 0;
        return !cancelled_;
    }
    [[nodiscard]] bool cancelled() const { return cancelled_; }

private:
    double from_ = 0, to_ = 0, scale_ = 0, done_ = 0;
    bool cancelled_ = false;
};

// The files of one export: all of them replace the former ones, or none does.
class export_files {
public:
    explicit export_files(job &work) : work_(work) {}
    ~export_files();
    export_files(const export_files &) = delete;
    export_files &operator=(const export_files &) = delete;

    // The next bytes are those of another file.
    void begin(const std::string &filename);
    void write(std::string_view bytes);
    // A whole file.
    void add(const std::string &filename, const std::string &bytes);

    // Keeps the files, unless the user cancelled, with one message: the outcome and the losses.
    // Returns 1 or 0.
    int finish(const std::string &filename, const char *format);

private:
    job &work_;
    std::vector<vesk_output_t *> files_;
    bool good_ = true;
};

// A file's text that is written piece by piece while it grows.
class growing_text : public text_out {
public:
    growing_text(job &work, export_files &files) : work_(work), files_(files) {}

    // One step of the work is done. False when the user cancelled.
    bool goes_on();
    void send();

private:
    job &work_;
    export_files &files_;
};

// A whole file, as the first phase of an import when there is `work`.
bool read_file(const std::string &name, std::string *bytes, job *work = nullptr);

// The box about a file that cannot be read, or the message that the user cancelled; returns null.
object_t *refuse(const job &work, const std::string &filename, const std::string &reason);

#endif

#include "fileio/vesk_messages.h"

#include "base/messages.h"
#include "fileio/finite_numbers.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <string>

namespace {

struct complaint_record {
    int count = 0;
    std::string first;
};

complaint_record &complaints()
{
    static complaint_record record;
    return record;
}

} // namespace

void tell_newer_version(const char *filename)
{
    windows_message_dialog("Load VESK file:\n\nThe VESK file '%s' cannot be loaded because it is "
                           "from a newer version of VESK.\nSee 'about' for details on how to get "
                           "the latest version.",
                           filename);
}

void tell_not_valid(const char *filename)
{
    windows_message_dialog("Load VESK file:\nThe file '%s' is not a valid VESK file.", filename);
}

void complaints_clear() { complaints() = {}; }

void complain(const char *format, ...)
{
    complaint_record &record = complaints();
    if (++record.count > 1 && !debug_mode())
        return;
    char text[message_size];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    debugf("%s", text);
    if (record.count == 1) {
        record.first = text;
        record.first.erase(std::min(record.first.find('\n'), record.first.size()));
    }
}

void complain_of_numbers(object_t *top)
{
    if (const int wrong = numbers_make_finite(top); wrong > 0)
        complain("%d numbers are none or too large - 0 is taken\n", wrong);
}

void tell_load_done()
{
    display_message("Done.");
    set_progress_bar(0);
    const complaint_record &record = complaints();
    if (record.count == 1)
        display_message("1 problem in the file: %s", record.first.c_str());
    else if (record.count > 1)
        display_message("%d problems in the file, the first: %s", record.count,
                        record.first.c_str());
}

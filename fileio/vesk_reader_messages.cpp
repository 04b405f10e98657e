// What the readers of model files tell the user.

#include "base/messages_internal.h"
#include "fileio/vesk_reader_internal.h"

#include <algorithm>
#include <charconv>
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

std::optional<unsigned> vesk_revision_of(std::string_view word)
{
    if (word.substr(0, 4) != "VESK")
        return std::nullopt;
    unsigned revision = 0;
    const auto [after, error] =
        std::from_chars(word.data() + 4, word.data() + word.size(), revision, 16);
    return error == std::errc::result_out_of_range ? UINT32_MAX : revision;
}

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

int vesk_reader_complaints() { return complaints().count; }

const char *vesk_reader_first_complaint() { return complaints().first.c_str(); }

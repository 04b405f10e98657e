#include "work.h"

#include <cstdio>
#include <sys/stat.h>

namespace {

constexpr std::size_t piece = 1 << 20; // bytes written at once
constexpr double reading = 0.1;        // share of getting a file's bytes

} // namespace

export_files::~export_files()
{
    for (vesk_output_t *file : files_)
        vesk_output_close(file, 0);
}

void export_files::begin(const std::string &filename)
{
    files_.push_back(vesk_output_open(filename.c_str()));
}

void export_files::write(std::string_view bytes)
{
    good_ = good_ && !work_.cancelled() &&
            vesk_output_write(files_.back(), bytes.data(), bytes.size()) != 0;
}

void export_files::add(const std::string &filename, const std::string &bytes)
{
    begin(filename);
    work_.phase(1, static_cast<double>(bytes.size()));
    for (std::size_t at = 0; at < bytes.size() && good_; at += piece) {
        const std::string_view next = std::string_view(bytes).substr(at, piece);
        write(next);
        work_.step(static_cast<double>(next.size()));
    }
}

int export_files::finish(const std::string &filename, const char *format)
{
    if (work_.cancelled()) {
        display_message("write %s - cancelled", format);
        return 0;
    }
    // The main file, which is the last, before those beside it; after a failure the others stay as
    // they were.
    bool kept = true;
    for (auto file = files_.rbegin(); file != files_.rend(); ++file)
        kept = vesk_output_close(*file, kept ? 1 : 0) != 0 && kept;
    files_.clear();
    if (kept)
        display_message("written file %s%s", filename.c_str(), vesk_report_losses(format));
    return kept ? 1 : 0;
}

bool growing_text::goes_on()
{
    if (text.size() > piece)
        send();
    return work_.step();
}

void growing_text::send()
{
    files_.write(text);
    text.clear();
}

bool read_file(const std::string &name, std::string *bytes, job *work)
{
    std::FILE *file = std::fopen(name.c_str(), "rb");
    if (file == nullptr)
        return false;
    struct stat about = {};
    if (fstat(fileno(file), &about) == 0 && S_ISREG(about.st_mode)) // a folder has no size
        bytes->reserve(static_cast<std::size_t>(about.st_size));
    if (work != nullptr)
        work->phase(reading, static_cast<double>(bytes->capacity()));
    char buffer[65536];
    std::size_t count = 0;
    while ((count = std::fread(buffer, 1, sizeof buffer, file)) > 0) {
        bytes->append(buffer, count);
        if (work != nullptr && !work->step(static_cast<double>(count)))
            break;
    }
    const bool whole = std::ferror(file) == 0;
    std::fclose(file);
    return whole;
}

object_t *refuse(const job &work, const std::string &filename, const std::string &reason)
{
    if (work.cancelled())
        display_message("import - cancelled");
    else
        windows_message_dialog("can't read %s\n%s", filename.c_str(), reason.c_str());
    return nullptr;
}

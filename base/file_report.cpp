#include "base/file_report.h"

#include "base/numbers.h"
#include "base/utf8.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <sys/resource.h>

namespace {

constexpr size_t most_kept = 1000; // complaints

file_report report;

void add_count(std::vector<file_report::count> &counts, int number, const char *what)
{
    if (number <= 0)
        return;
    for (file_report::count &count : counts) {
        if (count.what == what) {
            count.number += number;
            return;
        }
    }
    counts.push_back({number, what});
}

// "data text" of "data texts", "address" of "addresses", "folder of textures" of "folders of
// textures": the first word that ends as plurals do.
std::string one_of(const std::string &things)
{
    for (std::size_t end = 0; end < things.size(); ++end) {
        end = std::min(things.find(' ', end), things.size());
        if (end > 1 && things[end - 1] == 's') {
            const bool long_end = end > 4 && things.compare(end - 4, 4, "sses") == 0;
            return things.substr(0, end - (long_end ? 2 : 1)) + things.substr(end);
        }
    }
    return things;
}

// ---- JSON ----

std::string json_text(const std::string &text) { return vesk_json_text(text.c_str()); }

class json_writer {
public:
    std::string text = "{";

    void field(const char *name, const std::string &value)
    {
        text += text.size() > 1 ? ",\n  " : "\n  ";
        text += json_text(name) + ": " + value;
    }
    void field(const char *name, int value) { field(name, std::to_string(value)); }
    template <class Items, class Show>
    void list(const char *name, const Items &items, Show &&show)
    {
        std::string value = "[";
        for (const auto &item : items)
            value += (value.size() > 1 ? ", " : "") + show(item);
        field(name, value + "]");
    }
};

std::string shown(const file_report::count &count)
{
    return "{\"count\": " + std::to_string(count.number) + ", \"what\": " + json_text(count.what) +
           "}";
}

std::string seconds_text(double seconds)
{
    char buffer[32];
    return {buffer, write_g(buffer, static_cast<float>(seconds))};
}

int peak_kilobytes()
{
    rusage used = {};
    getrusage(RUSAGE_SELF, &used);
    rusage helpers = {};
    getrusage(RUSAGE_CHILDREN, &helpers);
    return static_cast<int>(std::max(used.ru_maxrss, helpers.ru_maxrss));
}

} // namespace

void vesk_report_warning(int line, const char *format, ...)
{
    char text[2048];
    va_list arguments;
    va_start(arguments, format);
    std::vsnprintf(text, sizeof text, format, arguments);
    va_end(arguments);
    ++report.warnings_in_all;
    if (report.warnings.size() < most_kept)
        report.warnings.push_back({line, text});
}

void vesk_report_loss(int count, const char *what) { add_count(report.losses, count, what); }
void vesk_report_note(int count, const char *what) { add_count(report.notes, count, what); }

file_report &last_file_report() { return report; }

void file_report_begin(const char *file)
{
    report = {};
    report.file = file;
}

void file_report_box(const std::string &text)
{
    if (report.file.empty() || report.read || !report.error.empty())
        return;
    // The box begins with a line that names the file.
    const std::size_t line = text.find('\n');
    const bool named = text.starts_with("can't read ") && line != std::string::npos;
    report.error = named ? text.substr(line + 1) : text;
}

void file_report_texture(const char *name, const char *found)
{
    const bool known = std::any_of(report.textures.begin(), report.textures.end(),
                                   [&](const auto &texture) { return texture.name == name; });
    if (known)
        return;
    report.textures.push_back({name, found});
    if (*found == '\0')
        vesk_report_warning(0, "the texture %s was not found", name);
}

void file_report_merged(const char *name, const char *into)
{
    if (report.merged_materials.size() < most_kept)
        report.merged_materials.push_back(std::string(name) + " = " + into);
}

void vesk_report_export(const char *filename)
{
    report.written = filename;
    report.losses.clear();
    report.notes.clear();
}

const char *vesk_report_losses(const char *format)
{
    static std::string text;
    std::string counts;
    std::string lacks;
    for (const file_report::count &loss : report.losses) {
        counts += (counts.empty() ? "" : ", ") + std::to_string(loss.number) + ' ' +
                  (loss.number == 1 ? one_of(loss.what) : loss.what);
        lacks += (lacks.empty() ? "" : ", ") + loss.what;
    }
    const bool one = report.losses.size() == 1 && report.losses.front().number == 1;
    text = counts.empty() ? ""
                          : " - " + counts + (one ? " was" : " were") + " left out: " + format +
                                " has no " + lacks;
    return text.c_str();
}

std::string file_report_json(const file_report &shown_report)
{
    const file_report &r = shown_report;
    json_writer json;
    json.field("file", json_text(r.file));
    json.field("format", json_text(r.format));
    json.field("unit", r.unit.empty() ? "null" : json_text(r.unit));
    json.field("read", std::string(r.read ? "true" : "false"));
    json.field("error", r.read || r.error.empty() ? "null" : json_text(r.error));
    json.field("objects", r.objects);
    json.field("vertices", r.vertices);
    json.field("surfaces", r.surfaces);
    json.field("lights", r.lights);
    json.field("materials", r.materials);
    json.list("textures", r.textures, [](const file_report::texture &texture) {
        return "{\"name\": " + json_text(texture.name) +
               ", \"found\": " + (texture.found.empty() ? "null" : json_text(texture.found)) + "}";
    });
    json.list("images", r.images, json_text);
    json.list("merged_materials", r.merged_materials, json_text);
    json.list("warnings", r.warnings, [](const file_report::complaint &complaint) {
        return "{\"line\": " + std::to_string(complaint.line) +
               ", \"text\": " + json_text(complaint.text) + "}";
    });
    json.field("warnings_in_all", static_cast<int>(r.warnings_in_all));
    json.field("written", r.written.empty() ? "null" : json_text(r.written));
    json.list("losses", r.losses, shown);
    json.list("notes", r.notes, shown);
    json.field("seconds", seconds_text(r.seconds));
    json.field("peak_memory_kb", peak_kilobytes());
    return json.text + "\n}\n";
}

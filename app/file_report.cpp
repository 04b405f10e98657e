#include "app/file_report.h"

#include "app/numbers.h"

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

// Length of the UTF-8 letter that begins there, 0 when none does.
size_t letter_length(const std::string &text, size_t at)
{
    const auto byte = [&](size_t i) {
        return at + i < text.size() ? static_cast<unsigned char>(text[at + i]) : 0u;
    };
    const unsigned first = byte(0);
    const size_t length = first < 0x80                     ? 1
                          : first >= 0xC2 && first <= 0xDF ? 2
                          : first >= 0xE0 && first <= 0xEF ? 3
                          : first >= 0xF0 && first <= 0xF4 ? 4
                                                           : 0;
    for (size_t i = 1; i < length; ++i)
        if (byte(i) < 0x80 || byte(i) > 0xBF)
            return 0;
    const unsigned second = byte(1);
    const bool odd = (first == 0xE0 && second < 0xA0) || (first == 0xED && second > 0x9F) ||
                     (first == 0xF0 && second < 0x90) || (first == 0xF4 && second > 0x8F);
    return odd ? 0 : length;
}

// ---- JSON ----

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

void file_report_export_begin(const char *file)
{
    report.written = file;
    report.losses.clear();
    report.notes.clear();
}

std::string file_report_told_losses(const char *format)
{
    std::string counts;
    std::string lacks;
    for (const file_report::count &loss : report.losses) {
        counts += (counts.empty() ? "" : ", ") + std::to_string(loss.number) + ' ' + loss.what;
        lacks += (lacks.empty() ? "" : ", ") + loss.what;
    }
    if (counts.empty())
        return {};
    return " - " + counts + " were left out: " + format + " has no " + lacks;
}

std::string json_text(const std::string &text)
{
    std::string out = "\"";
    for (size_t at = 0; at < text.size();) {
        const size_t length = letter_length(text, at);
        const auto byte = static_cast<unsigned char>(text[at]);
        if (length > 1) {
            out.append(text, at, length);
        } else if (length == 0) {
            out += static_cast<char>(0xC0 | byte >> 6);
            out += static_cast<char>(0x80 | (byte & 0x3F));
        } else if (byte == '"' || byte == '\\') {
            out += '\\';
            out += text[at];
        } else if (byte < ' ' || byte == 0x7F) {
            char code[8];
            std::snprintf(code, sizeof code, "\\u%04x", static_cast<unsigned>(byte));
            out += code;
        } else {
            out += text[at];
        }
        at += std::max(length, size_t{1});
    }
    return out + '"';
}

std::string file_report_json(const file_report &shown_report)
{
    const file_report &r = shown_report;
    json_writer json;
    json.field("file", json_text(r.file));
    json.field("format", json_text(r.format));
    json.field("read", std::string(r.read ? "true" : "false"));
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

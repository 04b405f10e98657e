#include "model/object_notes.h"

#include <algorithm>

namespace {

constexpr std::string_view marks[] = {note_of_selection_set, note_of_dimension,
                                      note_of_vertex_colours};

std::string_view data_of(const object_t *object)
{
    return object->data == nullptr ? std::string_view() : object->data;
}

// Where the lines begin, with the line end before them; the text's end when there are none.
std::size_t end_of_user_data(std::string_view data)
{
    std::size_t end = data.size();
    for (const std::string_view mark : marks)
        end = data.starts_with(mark) ? 0 : std::min(end, data.find("\n" + std::string(mark)));
    return end;
}

// Those of all marks.
std::vector<std::string_view> lines_of(std::string_view data)
{
    std::vector<std::string_view> lines;
    data.remove_prefix(end_of_user_data(data));
    while (!data.empty()) {
        const std::size_t end = std::min(data.find('\n'), data.size());
        if (end > 0)
            lines.push_back(data.substr(0, end));
        data.remove_prefix(std::min(end + 1, data.size()));
    }
    return lines;
}

void write(object_t *object, const std::string &user, const std::vector<std::string> &lines)
{
    std::string data = user;
    for (const std::string &line : lines)
        data += (data.empty() ? "" : "\n") + line;
    object_set_userdata(object, data.empty() ? nullptr : data.c_str());
}

} // namespace

std::string object_user_data(const object_t *object)
{
    const std::string_view data = data_of(object);
    return std::string(data.substr(0, end_of_user_data(data)));
}

void object_set_user_data(object_t *object, const std::string &text)
{
    const std::vector<std::string_view> kept = lines_of(data_of(object));
    write(object, text, {kept.begin(), kept.end()});
}

bool object_has_note(const object_t *object, std::string_view mark)
{
    const std::vector<std::string_view> lines = lines_of(data_of(object));
    return std::any_of(lines.begin(), lines.end(),
                       [&](std::string_view line) { return line.starts_with(mark); });
}

std::vector<std::string> object_notes(const object_t *object, std::string_view mark)
{
    std::vector<std::string> notes;
    for (const std::string_view line : lines_of(data_of(object))) {
        if (line.starts_with(mark))
            notes.emplace_back(line.substr(mark.size()));
    }
    return notes;
}

void object_set_notes(object_t *object, std::string_view mark,
                      const std::vector<std::string> &lines)
{
    std::vector<std::string> all;
    for (const std::string_view line : lines_of(data_of(object))) {
        if (!line.starts_with(mark))
            all.emplace_back(line);
    }
    for (const std::string &line : lines)
        all.push_back(std::string(mark) + line);
    write(object, object_user_data(object), all);
}

std::string object_counts(const object_t *object)
{
    return std::to_string(object->num_vertices) + "/" + std::to_string(object->num_surfaces);
}

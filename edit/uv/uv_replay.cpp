#include "edit/uv/uv_replay.h"

#include "base/messages.h"
#include "base/numbers.h"
#include "base/redraw.h"
#include "edit/document/element_text.h"
#include "edit/uv/uv_editor.h"

#include <cmath>
#include <cstring>

std::string uv_corner_text(const std::vector<char> &corners)
{
    std::vector<int> places;
    for (std::size_t i = 0; i < corners.size(); ++i) {
        if (corners[i] != 0)
            places.push_back(static_cast<int>(i));
    }
    return places_text(places);
}

void command_uv_select_corners(const char *places)
{
    const uv_state &state = uv_editor();
    std::vector<char> corners(state.mesh.at.size(), 0);
    for (const int place : places_of_text(places, static_cast<int>(corners.size())))
        corners[place] = 1;
    uv_choose(std::move(corners));
    redraw_all();
    display_status();
}

int uv_transform_by(const char *kind, const uv_matrix &matrix)
{
    const uv_state &state = uv_editor();
    const std::string label = std::string(kind) + " texture coordinates";
    return uv_commit(label.c_str(),
                     uv_transformed(state.mesh.at, uv_moving_corners(state), matrix));
}

void command_uv_transform(int, const char *const *words)
{
    double numbers[6];
    bool usable = false;
    for (const char *kind : {"move", "rotate", "scale"})
        usable = usable || std::strcmp(words[0], kind) == 0;
    for (int i = 0; i < 6; ++i) {
        numbers[i] = double_of(words[1 + i]);
        usable = usable && std::isfinite(numbers[i]);
    }
    if (!usable) {
        display_message("texture coordinates - move, rotate or scale, and six numbers");
        return;
    }
    uv_transform_by(words[0],
                    {numbers[0], numbers[1], numbers[2], numbers[3], numbers[4], numbers[5]});
    redraw_all();
    display_status();
}

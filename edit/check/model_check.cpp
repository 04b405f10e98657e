#include "edit/check/model_check.h"

#include "edit/check/findings.h"
#include "edit/check/mesh_check.h"
#include "model/change_marks.h"
#include "model/each.h"
#include "model/textures/textures.h"

#include <algorithm>
#include <cstring>

namespace {

// Adds the findings of an object's geometry and of its record, of each kind no more than `most` in all.
void append(object_t *object, const model_findings &more, int most, model_findings *all)
{
    std::array<int, num_model_problems> listed = all->totals;
    const auto list = [&](const found_problem &problem) {
        if (listed[static_cast<std::size_t>(problem.kind)]++ < most) {
            all->problems.push_back(problem);
            all->problems.back().object = object;
        }
    };
    for (const found_problem &problem : more.problems)
        list(problem);
    for (std::size_t kind = 0; kind < all->totals.size(); ++kind) {
        all->totals[kind] += more.totals[kind];
        all->notes[kind] += more.notes[kind];
    }
    if (object_missing_texture(object) != nullptr) {
        list({model_problem::missing_texture, object, -1, -1});
        ++all->totals[static_cast<std::size_t>(model_problem::missing_texture)];
    }
}

void sort_by_kind(model_findings *findings)
{
    std::stable_sort(
        findings->problems.begin(), findings->problems.end(),
        [](const found_problem &a, const found_problem &b) { return a.kind < b.kind; });
}

model_findings find_anew(object_t *object, int most_of_each)
{
    return mesh_find_problems(object_flat(object), most_of_each, [] { return true; });
}

// The last findings of the whole model, which are asked for several times in a row.
struct whole_findings {
    std::uint64_t model_count = 0;
    const object_t *top = nullptr;
    int most = 0;
    model_findings findings;
};
whole_findings &last_whole()
{
    static auto *const last = new whole_findings;
    return *last;
}

struct problem_words {
    const char *name;
    const char *text; // of its first and second place, and the surface
};
const problem_words words[num_model_problems] = {
    {"open_edge", "edge %d-%d belongs to surface %d only"},
    {"crowded_edge", "edge %d-%d belongs to more than two surfaces"},
    {"t_vertex", "vertex %d lies on the edge from vertex %d of surface %d"},
    {"duplicate_vertex", "vertex %d is at the place of vertex %d"},
    {"duplicate_surface", "surface %d has the vertices of surface %d"},
    {"zero_area", "surface %d has no area"},
    {"non_planar", "surface %d is not flat"},
    {"flipped", "surface %d faces against its neighbour %d"},
    {"unused_vertex", "vertex %d belongs to no surface"},
    {"missing_texture", ""},
    {"crossing", "surface %d goes through surface %d"},
};

const problem_words &words_of(model_problem kind) { return words[static_cast<std::size_t>(kind)]; }

} // namespace

model_findings object_find_problems(object_t *object, int most_of_each)
{
    model_findings own;
    append(object, find_anew(object, most_of_each), most_of_each, &own);
    sort_by_kind(&own);
    return own;
}

model_findings model_find_problems(object_t *top, int most_of_each)
{
    whole_findings &last = last_whole();
    if (last.top == top && last.most == most_of_each && last.model_count == model_change_count())
        return last.findings;
    const bool keeps = most_of_each <= problems_shown;
    model_findings all;
    for_each_object(top, [&](object_t *object) {
        append(object, keeps ? findings_of(object) : find_anew(object, most_of_each), most_of_each,
               &all);
    });
    sort_by_kind(&all);
    if (!keeps)
        return all;
    findings_sweep();
    last = {model_change_count(), top, most_of_each, std::move(all)};
    return last.findings;
}

const char *model_problem_name(model_problem kind) { return words_of(kind).name; }

bool model_problem_of_name(const char *name, model_problem *kind)
{
    for (int i = 0; i < num_model_problems; ++i) {
        if (std::strcmp(words[i].name, name) == 0) {
            *kind = static_cast<model_problem>(i);
            return true;
        }
    }
    return false;
}

std::string problem_text(const found_problem &problem)
{
    if (problem.kind == model_problem::missing_texture) {
        const char *file = object_missing_texture(problem.object);
        std::string text = std::string("texture ") + (file == nullptr ? "" : file);
        std::replace(text.begin(), text.end(), '\n', ' ');
        return text + " was not found";
    }
    // A text names as many of the numbers as it has places for them.
    std::string text;
    const int numbers[] = {problem.first, problem.second, problem.surface};
    const int *number = numbers;
    for (const char *p = words_of(problem.kind).text; *p != '\0'; ++p) {
        if (p[0] == '%' && p[1] == 'd') {
            text += std::to_string(*number++);
            ++p;
        } else {
            text += *p;
        }
    }
    return text;
}

std::string problem_element(const found_problem &problem)
{
    switch (problem.kind) {
    case model_problem::missing_texture:
        return "-";
    case model_problem::open_edge:
    case model_problem::crowded_edge:
        return std::to_string(problem.first) + "-" + std::to_string(problem.second);
    default:
        return std::to_string(problem.first);
    }
}

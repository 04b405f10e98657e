#ifndef VESK_TESTS_VIEW_DRAG_FIXTURE_H
#define VESK_TESTS_VIEW_DRAG_FIXTURE_H

#include "edit/document/undo.h"
#include "model/each.h"
#include "tests/view/tool_fixture.h"

#include <algorithm>
#include <vector>

class Drags : public Tools {
protected:
    // The cube's vertices, bit by bit.
    std::vector<point3_t> positions() const
    {
        std::vector<point3_t> all;
        for (const vertex *v : each<vertex>(cube->vertices)) {
            all.push_back(v->position);
        }
        return all;
    }
    static bool same(const std::vector<point3_t> &a, const std::vector<point3_t> &b)
    {
        return a.size() == b.size() &&
               std::equal(a.begin(), a.end(), b.begin(), [](const point3_t &p, const point3_t &q) {
                   return p.x == q.x && p.y == q.y && p.z == q.z;
               });
    }
    static int undos() { return *undo_count_address(); }
};

#endif

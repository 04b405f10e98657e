#ifndef VESK_MODEL_MATERIAL_VALUES_H
#define VESK_MODEL_MATERIAL_VALUES_H

#include "model/material.h"

// The defaults, with a name of its own that goes with it: for values on the way to the palette, which
// takes a copy.
struct material_values : material {
    material_values() { material_init(this); }
    material_values(const material_values &from) : material(from) { copy_name(from); }
    material_values &operator=(const material_values &from)
    {
        if (this != &from) {
            vesk_material_set_name(this, nullptr);
            static_cast<material &>(*this) = from;
            copy_name(from);
        }
        return *this;
    }
    ~material_values() { vesk_material_set_name(this, nullptr); }

private:
    void copy_name(const material_values &from)
    {
        name = nullptr;
        vesk_material_set_name(this, from.name);
    }
};

#endif

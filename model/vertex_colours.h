#ifndef VESK_MODEL_VERTEX_COLOURS_H
#define VESK_MODEL_VERTEX_COLOURS_H

#include "model/object.h"

VESK_BEGIN_DECLS

/* Colours of an object's vertices, as scanned and painted models have them. They stand in place of the
   diffuse colours of the surfaces; the views show these, to which readers give a shade of the mean of
   their corners'. The colours are kept as a line of the object's data
   text below the user's own, so that they travel in model files, copies and the history. */

/* Red, green and blue of each vertex, 0 to 255, in the order of the object's vertices. Null when it has
   none, or when those that are kept are of another number of vertices. In one buffer that each call
   overwrites. */
VESK_API const unsigned char *vesk_object_get_vertex_colours(const object_t *object);

/* Whether colours are kept with the object, of the right number or not. */
VESK_API int vesk_object_has_vertex_colours(const object_t *object);

/* Keeps three numbers for each vertex that the object has now; null takes the colours away. */
VESK_API void vesk_object_set_vertex_colours(object_t *object, const unsigned char *rgb);

/* Whether the object has a data text of the user's, beside the lines that the program keeps there. */
VESK_API int vesk_object_has_user_data(const object_t *object);

VESK_END_DECLS

#ifdef VESK_INTERNAL
#include <vector>
// Empty where the function above gives null.
std::vector<unsigned char> object_vertex_colours(const object_t *object);
// For exporters to formats without them: reports the objects of the world that have any as a loss.
void report_lost_vertex_colours();
#endif

#endif

#include "view/overlay.h"

overlay_t &overlay()
{
    static overlay_t shown;
    return shown;
}

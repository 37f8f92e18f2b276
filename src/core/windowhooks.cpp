#include "windowhooks.h"

WindowHooks &Hooks()
{
    static WindowHooks hooks;
    return hooks;
}

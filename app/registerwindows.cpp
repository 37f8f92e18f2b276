#include "registerwindows.h"

#include "core/windowhooks.h"
#include "settings/frmsettings.h"

void RegisterWindows()
{
    WindowHooks &hooks = Hooks();
    hooks.loadSettings = [] { LoadSettings(); };
    hooks.settings = [] { ShowSettings(); };
}

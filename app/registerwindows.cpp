#include "registerwindows.h"

#include "cabinet/cabinettools.h"
#include "cabinet/frmcabinet.h"
#include "core/dbupkeep.h"
#include "core/windowhooks.h"
#include "menus/frmmenu.h"
#include "recipes/frmadd2.h"
#include "search/frmsearch.h"
#include "settings/frmmaint.h"
#include "settings/frmsettings.h"
#include "transfer/mealmastercommands.h"
#include "transfer/transfercommands.h"

void RegisterWindows()
{
    WindowHooks &hooks = Hooks();
    hooks.loadSettings = [] { LoadSettings(); };
    hooks.settings = [] { ShowSettings(); };
    hooks.listMaintenance = [] { ShowListMaintenance(); };
    hooks.addRecipe = [] { OpenNewRecipeEditor(); };
    hooks.searchRecipes = [] { ShowSearchWindow(); };
    hooks.cabinet = [] { ShowCabinetWindow(); };
    hooks.menuPlanner = [] { ShowMenuWindow(); };
    hooks.cleanCabinet = [] { CleanCabinet(); };
    hooks.refreshCabinet = [] { RefreshCabinet(); };
    hooks.repairCabinet = [] { RepairCabinet(); };
    hooks.backupDatabase = [] { BackupDatabase(); };
    hooks.restoreDatabase = [] { RestoreDatabase(); };
    hooks.resetRatings = [] { ResetRatings(); };
    hooks.exportTransfer = [] { ExportTransfer(); };
    hooks.importMealMaster = [] { ImportMealMaster(); };
    hooks.exportMealMaster = [] { ExportMealMaster(); };
    hooks.importTransfer = [] { ImportTransfer(); };
    hooks.viewTransferFile = [] { ViewTransferFile(); };
    hooks.resetTransferFile = [] { ResetTransferFile(); };
}

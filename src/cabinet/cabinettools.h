#pragma once
// The tools that keep the cabinet in step with the recipes: cleaning removes items no
// ingredient names, refreshing adds every cabinet name the recipes use, repairing shortens the
// ingredients' cabinet names to a compact stem. Each asks first and works under the progress
// window.

void CleanCabinet();
void RefreshCabinet();
void RepairCabinet();

#pragma once
// How the main window reaches the working windows of the other parts of the program without
// depending on them: the program registers an opener per command at start-up. A command
// whose opener is not registered stays disabled in the main window.

#include <functional>

struct WindowHooks {
    std::function<void()> addRecipe;     // a new editor of the current recipe type
    std::function<void()> searchRecipes; // the search window for the current type
    std::function<void()> cabinet;
    std::function<void()> menuPlanner;
    std::function<void()> loadSettings;  // loads and unloads the settings dialog
    std::function<void()> settings;      // shows the settings dialog
    std::function<void()> listMaintenance;
    std::function<void()> resetTransferFile;
    std::function<void()> viewTransferFile;
    std::function<void()> importTransfer;
    std::function<void()> exportTransfer;
    std::function<void()> importMealMaster;
    std::function<void()> exportMealMaster;
    std::function<void()> repairCabinet;
    std::function<void()> refreshCabinet;
    std::function<void()> cleanCabinet;
    std::function<void()> backupDatabase;
    std::function<void()> restoreDatabase;
    std::function<void()> resetRatings;
};

WindowHooks &Hooks();

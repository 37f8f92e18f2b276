#pragma once

// Tells the main window how to open each working window of the program.
void RegisterWindows();

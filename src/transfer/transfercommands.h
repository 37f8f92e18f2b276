#pragma once
// The Transfer Files commands of the main window.

// Chooses recipes in the search window and appends them to the transfer file.
void ExportTransfer();
// Reads the transfer file's recipes into the database.
void ImportTransfer();
// Shows the transfer file, line by line, in the print preview.
void ViewTransferFile();
// Deletes the transfer file after asking.
void ResetTransferFile();

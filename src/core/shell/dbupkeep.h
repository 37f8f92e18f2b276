#pragma once
// Database upkeep from the main window's Database menu: a backup copy beside the database,
// putting the backup back (keeping the replaced database), and clearing every rating.

void BackupDatabase();
void RestoreDatabase();
void ResetRatings();

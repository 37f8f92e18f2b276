#pragma once
// Database upkeep from the main window's Database menu: a backup copy beside the database,
// putting the backup back (keeping the replaced database), and clearing every rating.

#include "core/db/datasources.h"

void BackupDatabase();
void RestoreDatabase();
void ResetRatings();

// For a collection on a server, Backup and Restore name the server's own commands instead.
struct ServerBackupCommands {
    QString dump;
    QString restore;
};
ServerBackupCommands BackupCommandsFor(const DataSource &source);

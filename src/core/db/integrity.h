#pragma once
// Whether the database file is whole. A file damaged by a failing disk or a crash of another
// program still opens and shows most recipes; writing on into it spreads the damage, and a
// backup of it would replace the household's last good copy.

#include <QString>

// The engine's quick check of every page and index of the open file database: "" when whole,
// else what it found first. Reads only; about 70 ms for 30,000 recipes. "" on a server, which
// looks after its own files.
QString CheckDatabaseIntegrity();
// Whether the open file database may only be read (the file or its folder may not be written
// to): the household can still find and print its recipes, but nothing is saved.
bool DatabaseIsReadOnly();
// The open database file's size and time of last change as one text, to tell at the next start
// whether anything but this program changed it since; "" on a server.
QString DatabaseFileStamp();
// The damage found in the open database; while it is known, nothing is written into it.
// Opening a database forgets it.
void SetKnownDamage(const QString &damage);
QString KnownDamage();

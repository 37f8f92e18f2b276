#pragma once
// Keeping the recipe database compact. Saved a recipe at a time over the years, the pages of
// the recipes, their lines and their indexes lie interleaved in the file; the first search
// after a start then reads the file all over (on a fragmented 30,000-recipe file the first
// title search took twice as long as on the same file rewritten in order).

// The share of the recipe tables' leaf pages that do not follow the page before them in their
// table: under 0.1 for a compact file (interior pages stand between some leaves), towards 1
// for a scattered one. Only the tables count, which searches read a recipe after the other;
// an index is looked up, where its pages lie matters little. 0 when the engine cannot tell
// (another engine than SQLite, or no connection).
double DatabaseScatter();

// Rewrites the database in order (the engine's VACUUM, all or nothing) when it is large enough
// to matter and scattered; the progress window shows meanwhile. True when it was rewritten.
bool CompactDatabaseIfScattered();
// Rewrites the database in order whatever its state; true when it was rewritten. A rewrite
// that fails on the way leaves the database as it was.
bool CompactDatabase();

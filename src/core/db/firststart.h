#pragma once
// The first-start record: the highest recipe number when Mirepan first ran on this collection,
// kept in the settings file, so that a search can offer only the recipes entered since.

// Reads [Misc] MaxRecipeID into gMaxRecipeID; when it is 0 and the collection holds recipes,
// records the highest recipe number there.
void RecordMaxRecipeID();

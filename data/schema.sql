-- The Mirepan recipe database. Text compares without regard to case, as households expect
-- of titles, categories and cabinet names. A recipe's ingredient and direction lines belong
-- to it: deleting or overwriting the recipe removes them.
CREATE TABLE RECIPE (
    id INTEGER PRIMARY KEY,
    servings TEXT COLLATE NOCASE,
    type TEXT COLLATE NOCASE,
    category TEXT COLLATE NOCASE,
    title TEXT COLLATE NOCASE,
    prep_time TEXT COLLATE NOCASE,
    cook_time TEXT COLLATE NOCASE,
    notes TEXT COLLATE NOCASE,
    rating TEXT COLLATE NOCASE
);
-- Lines are kept in recipe order, one per position: reading a recipe, or walking every
-- recipe's lines in order, reads them where they lie.
CREATE TABLE INGREDIENTS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    ingred_id INTEGER NOT NULL,
    amount TEXT COLLATE NOCASE,
    measure TEXT COLLATE NOCASE,
    ingredient TEXT COLLATE NOCASE,
    cabinet TEXT COLLATE NOCASE,
    PRIMARY KEY (recipe_id, ingred_id)
) WITHOUT ROWID;
CREATE INDEX INGREDIENTS_cabinet ON INGREDIENTS(cabinet);
CREATE TABLE DIRECTIONS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    step INTEGER NOT NULL,
    direction TEXT COLLATE NOCASE,
    PRIMARY KEY (recipe_id, step)
) WITHOUT ROWID;
-- One item per name and recipe type.
CREATE TABLE CABINET (
    item TEXT COLLATE NOCASE NOT NULL,
    type TEXT COLLATE NOCASE NOT NULL,
    available INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (item, type)
) WITHOUT ROWID;
CREATE TABLE MENU (
    ID INTEGER,
    parent TEXT COLLATE NOCASE,
    key TEXT COLLATE NOCASE CHECK (length(key) <= 255),
    text TEXT COLLATE NOCASE
);

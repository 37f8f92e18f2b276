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
CREATE TABLE INGREDIENTS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    ingred_id INTEGER,
    amount TEXT COLLATE NOCASE,
    measure TEXT COLLATE NOCASE,
    ingredient TEXT COLLATE NOCASE,
    cabinet TEXT COLLATE NOCASE
);
CREATE INDEX INGREDIENTS_recipe ON INGREDIENTS(recipe_id, ingred_id);
CREATE INDEX INGREDIENTS_cabinet ON INGREDIENTS(cabinet);
CREATE TABLE DIRECTIONS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    step INTEGER,
    direction TEXT COLLATE NOCASE
);
CREATE INDEX DIRECTIONS_recipe ON DIRECTIONS(recipe_id, step);
CREATE TABLE CABINET (
    item TEXT COLLATE NOCASE,
    type TEXT COLLATE NOCASE,
    available INTEGER NOT NULL DEFAULT 0,
    UNIQUE (item, type)
);
CREATE TABLE MENU (
    ID INTEGER,
    parent TEXT COLLATE NOCASE,
    key TEXT COLLATE NOCASE CHECK (length(key) <= 255),
    text TEXT COLLATE NOCASE
);

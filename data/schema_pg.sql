-- The Mirepan recipe database on a PostgreSQL server. It keeps the meaning of the file
-- database: texts are citext, so =, LIKE, ORDER BY and DISTINCT ignore case as households
-- expect of titles, categories and cabinet names; a recipe's ingredient and direction lines
-- belong to it and go with it.
CREATE EXTENSION IF NOT EXISTS citext;
CREATE TABLE RECIPE (
    id INTEGER PRIMARY KEY,
    servings CITEXT,
    type CITEXT,
    category CITEXT,
    title CITEXT,
    prep_time CITEXT,
    cook_time CITEXT,
    notes CITEXT,
    rating CITEXT
);
CREATE TABLE INGREDIENTS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    ingred_id INTEGER NOT NULL,
    amount CITEXT,
    measure CITEXT,
    ingredient CITEXT,
    cabinet CITEXT,
    PRIMARY KEY (recipe_id, ingred_id)
);
CREATE INDEX INGREDIENTS_cabinet ON INGREDIENTS(cabinet);
CREATE TABLE DIRECTIONS (
    recipe_id INTEGER NOT NULL REFERENCES RECIPE(id) ON DELETE CASCADE,
    step INTEGER NOT NULL,
    direction CITEXT,
    PRIMARY KEY (recipe_id, step)
);
-- One item per name and recipe type.
CREATE TABLE CABINET (
    item CITEXT NOT NULL,
    type CITEXT NOT NULL,
    available INTEGER NOT NULL DEFAULT 0,
    PRIMARY KEY (item, type)
);
CREATE TABLE MENU (
    ID INTEGER,
    parent CITEXT,
    key CITEXT CHECK (length(key) <= 255),
    text CITEXT
);

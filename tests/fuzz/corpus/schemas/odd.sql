CREATE TABLE "settings"(id TEXT PRIMARY KEY, [CustomName1], `CustomName1 `, "CUSTOMNAME2" GENERATED ALWAYS AS (id || 'x')) WITHOUT ROWID;
CREATE TABLE TREE(NAME, ID, "fatherId" integer, motherId real, "a,b" text, "quote""d", CHECK(length(NAME) < 90));
CREATE UNIQUE INDEX i ON TREE(name, lower(id)) WHERE id > 0;
INSERT INTO settings VALUES ('k', 'a,b', 'c');
INSERT INTO TREE VALUES ('Ada', '1', '1''; DROP TABLE TREE', 1.5, 'x', 'y'), ('Bob', 2, 1, NULL, '', '');
UPDATE TREE SET motherId = id;
DELETE FROM TREE WHERE name = 'none';
CREATE VIRTUAL TABLE search USING fts3(name);
ALTER TABLE TREE ADD COLUMN dob DEFAULT '2010-04-03'

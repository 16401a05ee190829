CREATE TABLE animals(id integer PRIMARY KEY, name, fatherId DEFAULT (abs(-5)), motherId COLLATE NOCASE);
INSERT INTO animals(name) VALUES ('Ada'), ('Bob'), (NULL);
CREATE VIEW tree AS SELECT id, name, (SELECT name FROM animals b WHERE b.id = a.id - 1) AS fatherId, motherId,
  replace(hex(zeroblob(30)), '0', 'x') AS notes FROM animals a ORDER BY name DESC;
CREATE VIEW settings AS WITH RECURSIVE n(id) AS (SELECT 1 UNION ALL SELECT id + 1 FROM n WHERE id < 100)
  SELECT id, 'heading ' || id AS CustomName1 FROM n

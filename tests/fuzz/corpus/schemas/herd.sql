CREATE TABLE settings(id integer NOT NULL PRIMARY KEY, CustomName1 Varchar, CustomName15 Varchar);
CREATE TABLE tree(id integer NOT NULL PRIMARY KEY, name Varchar, fatherId Varchar, motherId Varchar, colour Varchar,
  breed Varchar, sex Varchar, dob DATE, notes varchar, cage Varchar, tag Varchar, customField1 Varchar, callname Varchar,
  prefix Varchar, suffix Varchar);
INSERT INTO settings VALUES (1, 'Eyes', NULL);
INSERT INTO tree(id, name, fatherId, motherId, sex, dob, notes) VALUES (1, 'Ada', '', '', 'female', '2010-04-03', 'a, b'),
  (2, 'Bob', '99', '1', 'male', 'spring', 'at 10:00'), (3, 'Cid`s', '2', '1', 'undefined', '3/4/2010', NULL);
INSERT INTO tree(id, name, dob, notes) VALUES (4, x'00FF41', 2455290.5, zeroblob(3000)), (-9223372036854775808, 1e400, x'', -0.0)

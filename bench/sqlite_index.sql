-- An index of 100,000 names by a collation, by its keys and by SQLite's NOCASE:  sqlite3 :memory: < bench/sqlite_index.sql
.load build/release/integrations/sqlite/nls
SELECT nls_collation_load('de', '1252/german', 'fold');
CREATE TABLE names(name);
WITH RECURSIVE row(i) AS (VALUES(1) UNION ALL SELECT i + 1 FROM row WHERE i < 100000)
INSERT INTO names SELECT substr('ÄÖÜäöüßmnrstl', 1 + abs(random() % 13), 1) || hex(randomblob(5)) || 'ä' FROM row;
.timer on
CREATE INDEX by_nls ON names(name COLLATE de);
CREATE INDEX by_key ON names(nls_key(name, 'de'));
CREATE INDEX by_nocase ON names(name COLLATE NOCASE);

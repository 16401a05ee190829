"""The common list over pyodbc: argument 1 is the connection string."""

import datetime
import decimal
import sys
import uuid

import pyodbc

COLUMNS = ["id", "name", "notes", "tame", "legs", "cage", "tag", "price", "ratio", "weight", "born", "chip", "photo",
           "mark", "amount"]
NAMES = ["Снежок", "Ωmega", "兎", "Paw 🐾", "Việt", "O'Brien", "a" * 127, "b" * 128]


def row(name, notes):
    return (name, notes, True, 200, -300, 70000, decimal.Decimal("-12.5000"), 0.5, 1321.9,
            datetime.datetime(2020, 2, 29, 10, 20, 30), b"\x00\x01\xfe\xff", b"picture" * 1000,
            uuid.UUID("01234567-89ab-cdef-0123-456789abcdef"), decimal.Decimal("12345678901234.5678"))


INSERT = "INSERT INTO everything (%s) VALUES (%s)" % (",".join(COLUMNS[1:]), ",".join("?" * 14))


def same(got, wanted, what):
    if got != wanted:
        sys.exit("%s: got %.200r and wanted %.200r" % (what, got, wanted))


def refused(call, state, what):
    try:
        call()
    except pyodbc.Error as error:
        same(error.args[0], state, what)
        return
    sys.exit(what + " was not refused")


connection = pyodbc.connect(sys.argv[1], autocommit=False)
cursor = connection.cursor()
same([t.table_name for t in cursor.tables(tableType="TABLE")], ["everything"], "tables")
same([c.column_name for c in cursor.columns("everything")], COLUMNS, "columns")
same([k.column_name for k in cursor.primaryKeys("everything")], ["id"], "primary key")
same([(k.pkcolumn_name, k.fkcolumn_name, k.fk_name) for k in cursor.foreignKeys("everything")], [("id", "tag", "Parents")],
     "foreign keys")
same(list(cursor.procedures()), [], "procedures")
same(sorted({i.index_name for i in cursor.statistics("everything") if i.index_name}), ["PrimaryKey", "cage"], "indexes")

long = "Fell: glänzend, 🐹. " * 1053  # 20,007 characters of UTF-16 units or so
for name in NAMES:
    cursor.execute(INSERT, row(name, long[:20000]))
cursor.execute(INSERT, (None,) * 2 + (False,) + (None,) * 11)
connection.commit()

same(cursor.execute("SELECT @@IDENTITY").fetchone()[0], len(NAMES) + 1, "id of the last row")

rows = cursor.execute("SELECT * FROM everything").fetchall()
same(len(rows), len(NAMES) + 1, "number of rows")
for number, (got, name) in enumerate(zip(rows, NAMES), 1):
    wanted = row(name, long[:20000])
    # A GUID comes as text.
    for value, expected, column in zip(got, (number,) + wanted, COLUMNS):
        if column == "mark":
            value = uuid.UUID(str(value))
        same(value, expected, "%s of row %d" % (column, number))
same(tuple(rows[-1]), (len(NAMES) + 1, None, None, False) + (None,) * 11, "the row of Nulls")

same(cursor.execute("SELECT id FROM everything WHERE name = ?", "paw 🐾").fetchone()[0], 4, "search for a name")
same(cursor.execute("SELECT name FROM everything WHERE born = {ts '2020-02-29 10:20:30'}").fetchone()[0], "Снежок",
     "search for a date")

# One call for many rows, with arrays of parameters.
cursor.fast_executemany = True
cursor.executemany("INSERT INTO everything (name, tag, born) VALUES (?, ?, ?)",
                   [("many %d" % i, i, datetime.datetime(2020, 1, 1 + i % 28)) for i in range(500)])
same(cursor.execute("SELECT COUNT(*) FROM everything").fetchone()[0], 509, "rows after many")
connection.rollback()
same(cursor.execute("SELECT COUNT(*) FROM everything").fetchone()[0], 9, "rows after a rollback")

cursor.execute("UPDATE everything SET notes = ? WHERE id = ?", "c" * 128, 1)
same(cursor.rowcount, 1, "rows changed")
cursor.execute("UPDATE everything SET notes = 'd' WHERE id = 99")
same(cursor.rowcount, 0, "rows changed where there are none")
connection.commit()

found = cursor.execute("SELECT TOP 3 t.name AS n, t.id FROM everything AS t WHERE t.name LIKE ? OR t.id IN (?, ?) "
                       "ORDER BY t.id DESC", "Paw%", 1, 3).fetchall()
same([tuple(r) for r in found], [("Paw 🐾", 4), ("兎", 3), ("Снежок", 1)], "a sorted search")
cursor.execute("DELETE FROM everything WHERE id BETWEEN ? AND 8", 7)
same(cursor.rowcount, 2, "rows deleted")
same(tuple(cursor.execute("SELECT COUNT(*), MIN(tag), SUM(price) FROM everything").fetchone()),
     (7, 70000, decimal.Decimal("-75.0000")), "sums")
connection.rollback()

refused(lambda: cursor.execute("SELECT * FROM nowhere"), "42S02", "a table that is not there")
refused(lambda: cursor.execute("SELEKT 1"), "42000", "no statement")
refused(lambda: cursor.execute("INSERT INTO everything (legs) VALUES (?)", 256), "22003", "a number out of range")
refused(lambda: cursor.execute("INSERT INTO everything (id) VALUES (1)"), "23000", "a key that is there")
connection.close()

again = pyodbc.connect(sys.argv[1])
same(again.execute("SELECT notes FROM everything WHERE id = 1").fetchone()[0], "c" * 128, "after connecting again")
again.close()
reader = pyodbc.connect(sys.argv[1], readonly=True)
same(reader.execute("SELECT COUNT(*) FROM everything").fetchone()[0], 9, "rows of a connection for reading")
refused(lambda: reader.execute("UPDATE everything SET tag = 1"), "HY000", "a change on a connection for reading")
reader.close()
print("pyodbc: all as it should be")

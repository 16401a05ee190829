// The common list over Qt's SQL module and its ODBC plugin. Argument 1 is the connection string.

#include <cstdio>
#include <cstdlib>

#include <QCoreApplication>
#include <QDateTime>
#include <QSqlDatabase>
#include <QSqlError>
#include <QSqlField>
#include <QSqlIndex>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QSqlTableModel>
#include <QStringList>

namespace {

constexpr int skipped = 77;

[[noreturn]] void fail(const QString& what) {
    std::fprintf(stderr, "Qt: %s\n", qPrintable(what));
    std::exit(1);
}

void check(bool good, const QString& what, const QSqlError& error = {}) {
    if (!good) fail(what + " " + error.text());
}

template <class T>
void same(const T& got, const T& wanted, const QString& what) {
    if (!(got == wanted)) {
        fail(what + ": got " + QVariant(got).toString().left(200) + " and wanted " +
             QVariant(wanted).toString().left(200));
    }
}

const QStringList columns = {"id",    "name",   "notes", "tame", "legs",  "cage", "tag",   "price",
                             "ratio", "weight", "born",  "chip", "photo", "mark", "amount"};
const QStringList names = {"Снежок", "Paw 🐾", QString(128, 'b')};

QVariantList rowOf(const QString& name) {
    return {name,
            QString("Fell: glänzend, 🐹. ").repeated(1053).left(20000),
            true,
            200,
            -300,
            70000,
            "-12.5000",
            0.5,
            1321.9,
            QDateTime(QDate(2020, 2, 29), QTime(10, 20, 30)),
            QByteArray("\x00\x01\xFE\xFF", 4),
            QByteArray("picture").repeated(1000),
            "01234567-89AB-CDEF-0123-456789ABCDEF",
            "12345678901234.5678"};
}

void insert(QSqlQuery& query, const QVariantList& values) {
    for (int i = 0; i < values.size(); ++i) query.bindValue(i, values[i]);
    check(query.exec(), "insert", query.lastError());
}

// Numbers come in types of the plugin's choice, so each value is compared in the type that was written.
bool isSame(const QVariant& got, const QVariant& wanted) {
    if (wanted.typeId() == QMetaType::QString && got.typeId() == QMetaType::Double) {
        return got.toDouble() == wanted.toDouble();
    }
    QVariant converted = got;
    return converted.convert(wanted.metaType()) && converted == wanted;
}

void schema(const QSqlDatabase& database) {
    same(database.tables(), QStringList{"everything"}, "tables");
    const QSqlRecord record = database.record("everything");
    QStringList found;
    for (int i = 0; i < record.count(); ++i) found << record.fieldName(i);
    same(found, columns, "columns");
    same(database.primaryIndex("everything").fieldName(0), QString("id"), "primary key");
}

void rows(QSqlDatabase& database) {
    check(database.transaction(), "transaction", database.lastError());
    QSqlQuery query(database);
    check(query.prepare("INSERT INTO everything (" + columns.mid(1).join(",") + ") VALUES (" +
                        QStringList(14, "?").join(",") + ")"),
          "prepare", query.lastError());
    for (const QString& name : names) insert(query, rowOf(name));
    QVariantList nulls(14, QVariant(QMetaType::fromType<QString>()));
    nulls[2] = false;
    insert(query, nulls);
    check(query.exec("SELECT @@IDENTITY") && query.next(), "identity", query.lastError());
    same(query.value(0).toInt(), static_cast<int>(names.size()) + 1, "id of the last row");
    check(database.commit(), "commit", database.lastError());

    check(query.exec("SELECT * FROM everything"), "select", query.lastError());
    for (int number = 1; query.next(); ++number) {
        same(query.value(0).toInt(), number, "id");
        const bool isNulls = number > names.size();
        const QVariantList wanted = isNulls ? nulls : rowOf(names[number - 1]);
        for (int i = 1; i < columns.size(); ++i) {
            const QVariant got = query.value(i);
            check(isNulls && i != 3 ? got.isNull() : isSame(got, wanted[i - 1]),
                  columns[i] + " of row " + QString::number(number) + ": " + got.toString().left(200));
        }
    }
    check(query.last() && query.value(0).toInt() == names.size() + 1, "number of rows");
    check(query.first() && query.seek(1) && query.value(1).toString() == "Paw 🐾", "going anywhere");
}

void model(const QSqlDatabase& database) {
    QSqlTableModel model(nullptr, database);
    model.setTable("everything");
    model.setEditStrategy(QSqlTableModel::OnFieldChange);
    check(model.select(), "model", model.lastError());
    same(model.rowCount(), static_cast<int>(names.size()) + 1, "rows of the model");
    check(model.setData(model.index(1, 1), "Omega"), "change in the model", model.lastError());
    model.setFilter("name = 'Omega'");
    check(model.select(), "filter", model.lastError());
    same(model.rowCount(), 1, "rows of the filtered model");
    same(model.data(model.index(0, 0)).toInt(), 2, "the changed row");
}

void transactionsAndErrors(QSqlDatabase& database) {
    QSqlQuery query(database);
    check(database.transaction() && query.exec("UPDATE everything SET name = 'gone' WHERE id = 1") &&
              query.numRowsAffected() == 1 && database.rollback(),
          "rollback", database.lastError());
    check(query.exec("SELECT name FROM everything WHERE id = 1") && query.next(), "select", query.lastError());
    same(query.value(0).toString(), names[0], "after a rollback");
    check(!query.exec("SELECT * FROM nowhere") && query.lastError().text().contains("nowhere"), "a missing table");
    check(!query.exec("INSERT INTO everything (id) VALUES (1)"), "a key that is there");
    check(!query.exec("INSERT INTO everything (legs) VALUES (256)"), "a number out of range");
}

}  // namespace

int main(int count, char** values) {
    const QCoreApplication application(count, values);
    if (!QSqlDatabase::isDriverAvailable("QODBC")) {
        std::puts("skipped: Qt's ODBC plugin is not installed");
        return skipped;
    }
    QSqlDatabase database = QSqlDatabase::addDatabase("QODBC");
    database.setDatabaseName(values[1]);
    check(database.open(), "connect", database.lastError());
    schema(database);
    rows(database);
    model(database);
    transactionsAndErrors(database);
    database.close();
    std::puts("Qt: all as it should be");
    return 0;
}

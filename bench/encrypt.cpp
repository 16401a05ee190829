#include "bench/encrypt.h"

#include <filesystem>

#include "platform/database/sqliteDatabase.h"
#include "platform/values/failure.h"

namespace bench {

void encrypt(const std::string& plain, const std::string& encrypted) {
    const std::string key = "mbtfwqzkhl";
    std::filesystem::remove(encrypted);
    SQLiteDatabase made;
    made.DatabaseFile = FileReference(encrypted);
    made.EncryptionKey = key;
    if (!made.createDatabaseFile()) throw DatabaseFailure(made.errorMessage());
    made.close();
    SQLiteDatabase source;
    source.DatabaseFile = FileReference(plain);
    if (!source.connect()) throw DatabaseFailure(source.errorMessage());
    source.execute("ATTACH '" + encrypted + "' AS encrypted KEY '" + key + "'");
    source.prepare("SELECT sqlcipher_export('encrypted')").step();
    if (source.errorCode() != 0 && source.errorCode() != 100) throw DatabaseFailure(source.errorMessage());
}

}  // namespace bench

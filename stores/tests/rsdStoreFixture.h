#pragma once

#include "platform/database/sqliteDatabase.h"
#include "shell/state/appSystem.h"
#include "stores/rsdAccess.h"
#include "stores/rsdSchema.h"
#include "tests/support/programFixture.h"
#include "tests/support/sqlFile.h"

/// Tests of the way to RSD files, on files that the program lays out.
class RsdStore : public ProgramTest {
  protected:
    using Texts = std::vector<std::string>;

    static constexpr const char* programsKey = "mbtfwqzkhl";

    /// A new file with the nineteen tables, as the program lays them out; the program's path leads to it.
    std::string makeFile(const std::string& name, const std::string& key = "") {
        SQLiteDatabase database;
        database.DatabaseFile = FileReference(path(name));
        database.EncryptionKey = key;
        EXPECT_TRUE(database.createDatabaseFile());
        appSystem::makeRSDfields(database);
        return appSystem::dataPath = path(name);
    }
};

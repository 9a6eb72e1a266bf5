#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "store/session.h"
#include "support/folder.h"
#include "support/ports.h"
#include "support/random.h"

namespace bmr::test {

/// A session over the ports of a test, with no database.
struct TestSession {
    FixedClock clock;
    ScriptedPrompter prompter;
    SeededRandom random;
    MapRegistry registry;
    store::Session session{{prompter, clock, random, registry}};
};

/// A fresh, empty database that is open under a keystring of its own: no passphrase, no user, no settings.
struct TempStore : TestSession {
    TempStore() {
        session.DatabasePath = folder.Path() / "test.bmr";
        if (engine::CreateStore(session.DatabasePath) != 0) throw std::runtime_error("no test database");
        session.cipher.Keystring = Secret(cry::RandomBytes(random, 256));
        Open();
    }
    /// Opens the file again under the same keys, as after a restart.
    void Reopen() {
        session.ProgramDb.reset();
        Open();
    }
    /// The rows that a statement such as "SELECT fPK FROM tt WHERE fSec=15" gives.
    int Count(const std::string& statement) {
        auto rows = session.ProgramDb->Select(statement);
        EXPECT_TRUE(rows) << statement;
        int count = 0;
        while (rows && rows->Next())
            ++count;
        return count;
    }
    /// The first row of a statement; the test fails without one.
    std::unique_ptr<engine::Recordset> Row(const std::string& statement) {
        auto rows = session.ProgramDb->OpenRecordset(statement, engine::RecordsetType::Snapshot);
        if (!rows || (*rows)->Eof()) throw std::runtime_error("no row: " + statement);
        return std::move(*rows);
    }

    /// Every column of every row, by keys.
    std::vector<std::string> Rows() {
        std::vector<std::string> rows;
        auto cursor = session.ProgramDb->Select(
            "SELECT fPK, fSec, fSub, fR1, fR2, fR3, fR4, fR5, fF1, fF2, fF3, fG1, AE, fEtx, fT1, fT2, fT3 "
            "FROM tt ORDER BY fPK");
        EXPECT_TRUE(cursor);
        while (cursor && cursor->Next()) {
            std::string row;
            for (int column = 0; column < 17; ++column)
                row += (cursor->IsNull(column) ? "Null" : std::string(cursor->Bytes(column))) + "|";
            rows.push_back(row);
        }
        return rows;
    }

    /// Sets one column of a row behind the program's back.
    void Set(std::int32_t fPK, const char* column, const Value& value) {
        auto rows = session.ProgramDb->OpenRecordset("tt");
        ASSERT_TRUE(rows);
        ASSERT_EQ((*rows)->FindFirst("fPK=?", {fPK}), 0);
        ASSERT_FALSE((*rows)->NoMatch()) << fPK;
        (*rows)->Edit();
        (*rows)->SetField(column, value);
        ASSERT_EQ((*rows)->Update(), 0);
    }

    TempFolder folder;

  private:
    void Open() {
        auto db = engine::Database::Open(session.DatabasePath);
        if (!db) throw std::runtime_error("test database does not open: " + db.error().detail);
        session.ProgramDb = std::move(*db);
        session.DatabaseOpen = true;
    }
};

}  // namespace bmr::test

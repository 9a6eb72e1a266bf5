#pragma once

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "custody/lifecycle.h"
#include "support/store.h"

namespace bmr::test {

inline constexpr const char* kPassphrase = "correct Horse 9";

inline std::string FileBytes(const std::filesystem::path& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void WriteFile(const std::filesystem::path& path, std::string_view bytes) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

/// All columns of a row, by name.
using RowValues = std::map<std::string, Value>;

inline std::vector<RowValues> RowsOf(engine::Database& db, const std::string& clauses = "") {
    auto found = db.OpenRecordset("SELECT * FROM tt" + clauses, engine::RecordsetType::Snapshot);
    if (!found) throw std::runtime_error(found.error().detail);
    std::vector<RowValues> rows;
    for (engine::Recordset& row = **found; !row.Eof(); row.MoveNext()) {
        RowValues values;
        for (const char* name : {"fPK", "fEtx", "fSec", "fSub", "fR1", "fR2", "fR3", "fR4", "fR5", "fF1",
                                 "fF2", "fF3", "fT1", "fT2", "fT3", "fG1", "AE"})
            values[name] = row.Field(name);
        rows.push_back(std::move(values));
    }
    return rows;
}

/// A person who makes, opens and closes one database file, `file`, by the real ways.
struct Sitting : TestSession {
    TempFolder folder;
    std::filesystem::path file = folder.Path() / "test.bmr";

    /// A new database at `file`, open.
    void Make(const std::string& passphrase = kPassphrase) {
        prompter.files.push_back(file);
        prompter.Type(passphrase);
        ASSERT_EQ(custody::NewDatabase(session), 0);
    }
    /// Opens `file` with what the script types.
    int OpenFile() {
        session.DatabasePath = file;
        return custody::OpenDatabaseFile(session);
    }
    int Open(const std::string& passphrase = kPassphrase) {
        prompter.Type(passphrase);
        return OpenFile();
    }
    void Close() { ASSERT_EQ(custody::CloseDatabase(session), 0); }

    /// Changes the first row that meets `criteria` in the closed file.
    void Edit(const std::string& criteria, const std::function<void(engine::Recordset&)>& change) {
        auto db = engine::Database::Open(file);
        ASSERT_TRUE(db) << db.error().detail;
        auto rows = (*db)->OpenRecordset("tt");
        ASSERT_TRUE(rows);
        ASSERT_EQ((*rows)->FindFirst(criteria), 0);
        ASSERT_FALSE((*rows)->NoMatch()) << criteria;
        (*rows)->Edit();
        change(**rows);
        ASSERT_EQ((*rows)->Update(), 0);
    }
    void Execute(const std::string& statement) {
        auto db = engine::Database::Open(file);
        ASSERT_TRUE(db) << db.error().detail;
        ASSERT_EQ((*db)->Execute(statement), 0) << (*db)->LastError();
    }
    std::vector<RowValues> Rows(const std::string& clauses = "") {
        auto db = engine::Database::Open(file);
        if (!db) throw std::runtime_error(db.error().detail);
        return RowsOf(**db, clauses);
    }
};

}  // namespace bmr::test

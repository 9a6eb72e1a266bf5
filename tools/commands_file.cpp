#include <iostream>

#include "address/rowcheck.h"
#include "base/languageus.h"
#include "budget/rowcheck.h"
#include "calendar/dayorder.h"
#include "calendar/rowcheck.h"
#include "commands.h"
#include "custody/keyrecords.h"
#include "custody/lifecycle.h"
#include "custody/systemrecord.h"
#include "diary/rowcheck.h"
#include "recordjson.h"
#include "recordkinds.h"
#include "sitting.h"
#include "store/indices.h"
#include "store/record_get.h"

namespace bmr::tools {

void RunNew(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Create(options.file);
    sitting.Close();
}

void RunPasswd(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.prompter().KeepCurrent();
    sitting.Open(options.file);
    const auto change = custody::ChangePassphrase(sitting.session());
    if (change == custody::PassphraseChange::Unsure) throw Failure(sitting.prompter().LastBox().text);
    if (change != custody::PassphraseChange::Changed) {
        const std::string& problem = sitting.prompter().Problem();
        throw Failure(problem.empty() ? Msg(124) : problem + " " + Msg(124));
    }
    sitting.Close();
}

void RunCompact(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.prompter().KeepCurrent();
    sitting.Open(options.file);
    sitting.Check(custody::RepairAndCompact(sitting.session()));
    sitting.Close();
}

namespace {

/// Rows by class, counted without deciphering.
Json CountRows(store::Session& session) {
    Json counts = Json::object();
    auto cursor =
        session.ProgramDb->Select("SELECT fSec, Count(*) AS N FROM tt WHERE fSec >= 11 GROUP BY fSec");
    if (!cursor) throw Failure(session.ProgramDb->LastError());
    while (cursor->Next()) {
        counts[TitleOf(cursor->Int(0), 0)] = cursor->Int(1);
    }
    return counts;
}

/// What a list shows must be what the record says.
std::string FaultInColumns(const Row& row, std::string_view payload) {
    const auto* section = store::FactsOf(row.fSec);
    const auto* name = section ? section->NameRule() : nullptr;
    if (!name || name->kind == store::Kind::ColumnName) return {};
    const Bytes text = TextOf(store::GetPayloadField(payload, name->number));
    if (TrimBlanks(row.listText) == TrimBlanks(text)) return {};
    return "fT1 and " + std::string(name->name) + " differ";
}

/// Sections whose lists stand in alphabetical order without being deciphered.
std::int64_t ReportDisorder(store::Session& session) {
    std::int64_t faults = 0;
    for (const store::SectionFacts* section : store::Sections()) {
        if (!section->order) continue;
        for (const std::int32_t fPK : store::FindDisorder(session, section->code)) {
            std::cout
                << "fPK " << fPK << ", fSec " << int{section->code}
                << ": out of alphabetical order (the record is whole, but stands in the wrong place of its "
                   "list, and new ones beside it may too; a change of its name gives it its place)\n";
            ++faults;
        }
    }
    return faults;
}

/// The calendar has another order, and tells in columns what a view chooses its rows by.
std::int64_t ReportCalendar(Sitting& sitting) {
    store::Session& session = sitting.session();
    std::int64_t faults = 0;
    const auto tell = [&faults](std::int32_t fPK, const std::string& what) {
        std::cout << "fPK " << fPK << ", fSec " << int{store::Section::Calendar} << ": " << what << '\n';
        ++faults;
    };
    const auto rows = calendar::CheckRows(session);
    sitting.Check(rows ? 0 : rows.error().number);
    for (const calendar::RowFault& row : *rows)
        tell(row.fPK, row.what);
    for (const std::int32_t fPK : calendar::FindDisorder(session))
        tell(fPK,
             "out of the order of its day (the record is whole, but fR1 does not put it where its time "
             "belongs; a change of its time gives it its place)");
    return faults;
}

/// What is told of a row beside its record: a line each.
template <class Fault>
std::int64_t ReportRows(const std::vector<Fault>& rows, std::uint8_t section, bool note) {
    for (const Fault& row : rows)
        std::cout << (note ? "note: " : "") << "fPK " << row.fPK << ", fSec " << int{section} << ": "
                  << row.what << '\n';
    return note ? 0 : static_cast<std::int64_t>(rows.size());
}

/// What the list of the address book shows, and by what it leaves rows out.
std::int64_t ReportAddresses(Sitting& sitting) {
    const auto checked = address::CheckRows(sitting.session());
    sitting.Check(checked ? 0 : checked.error().number);
    const std::int64_t faults = ReportRows(checked->faults, store::Section::Address, false);
    if (checked->nameless > 0)
        std::cout << "note: " << checked->nameless
                  << (checked->nameless == 1 ? " address has" : " addresses have")
                  << " no name to be filed under, and no list shows it\n";
    return faults;
}

std::int64_t ReportBudgets(Sitting& sitting) {
    std::int64_t faults = 0;
    for (const std::uint8_t section :
         {store::Section::Budget1, store::Section::Budget2, store::Section::Budget3}) {
        const auto checked = budget::CheckRows(sitting.session(), section);
        sitting.Check(checked ? 0 : checked.error().number);
        faults += ReportRows(checked->faults, section, false);
        ReportRows(checked->notes, section, true);
    }
    return faults;
}

std::int64_t ReportDiary(Sitting& sitting) {
    const auto checked = diary::CheckRows(sitting.session());
    sitting.Check(checked ? 0 : checked.error().number);
    return ReportRows(*checked, store::Section::Diary, false);
}

}  // namespace

void RunInfo(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    Json info;
    info["file"] = options.file.string();
    info["bytes"] = std::filesystem::file_size(options.file);
    info["version"] = custody::ReadDatabaseVersion(session);
    info["user"] = ToUtf8(session.user.UserName);
    info["showPrivate"] = session.ShowPrivate;
    info["records"] = CountRows(session);
    if (options.json) {
        std::cout << DumpLine(info, 2) << '\n';
        return;
    }
    for (const auto& [name, value] : info.items())
        if (name != "records")
            std::cout << Printable(name + ": " +
                                   (value.is_string() ? value.get<std::string>() : value.dump()))
                      << '\n';
    for (const auto& [name, count] : info["records"].items())
        std::cout << name << ": " << count << '\n';
}

void RunCheck(const Options& options) {
    Sitting sitting(options.passphraseFd);
    sitting.Open(options.file, engine::Access::Read);
    store::Session& session = sitting.session();
    std::int64_t faults = 0;
    std::int64_t records = 0;
    for (const std::string& line : session.ProgramDb->CheckIntegrity()) {
        std::cout << "file: " << Printable(line) << '\n';
        ++faults;
    }
    const int error =
        ForEachRow(session, "", ListTexts::Decipher, [&](const Row& row, std::string_view payload) {
            ++records;
            if (!KindOf(row.fSec, row.fSub)) {
                std::cout << "note: fPK " << row.fPK << ", fSec " << row.fSec
                          << ": the class is unknown to this version\n";
                return;
            }
            std::string fault = FaultOf(row, payload);
            if (fault.empty()) fault = FaultInColumns(row, payload);
            if (fault.empty())
                for (const std::string& note : NotesOf(row, payload))
                    std::cout << "note: fPK " << row.fPK << ", fSec " << row.fSec << ": " << note << '\n';
            if (fault.empty()) return;
            std::cout << "fPK " << row.fPK << ", fSec " << row.fSec << ": " << fault << '\n';
            ++faults;
        });
    sitting.Check(error);
    faults += ReportDisorder(session);
    faults += ReportCalendar(sitting);
    faults += ReportAddresses(sitting);
    faults += ReportBudgets(sitting);
    faults += ReportDiary(sitting);
    if (faults != 0)
        throw Failure(std::to_string(faults) + " faults found in " + options.file.string() + ".");
    std::cout << records << " records, all whole.\n";
}

}  // namespace bmr::tools

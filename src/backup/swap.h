#pragma once

#include <filesystem>
#include <functional>
#include <string>
#include <vector>

#include "base/result.h"

namespace bmr::backup {

/// A restored file takes the place of its database, in steps of which each is one rename: whenever the
/// program is killed, the database or the file that it was before is whole, and `FindLeftRestore` tells at
/// the next start how far it came.
enum class SwapAction {
    DropOldest,    ///< the third database from before goes
    AgeFormer,     ///< one from before gets an older name
    KeepDatabase,  ///< the database becomes the one from before (".bmb")
    KeepJournal,   ///< what a broken-off save left beside it goes with it
    TakeRestored,  ///< the restored file becomes the database
    PutBack,       ///< after a failure: the database's name stands again, and the one from before stays too
};

struct SwapStep {
    SwapAction action = SwapAction::TakeRestored;
    std::filesystem::path from;
    std::filesystem::path to;  ///< empty where a file goes
    int number = 0;            ///< 0 done, or the engine's number
};

struct SwapReport {
    std::filesystem::path database;
    std::vector<SwapStep> steps;  ///< those that had something to do, the failed one included
    int number = 0;               ///< of the first failure; 0: the restored file is the database
    /// One sentence for each step.
    std::string Words() const;
};

/// Whether a restored file may take a database's place: the engine finds it whole, and it holds a keystring
/// and a user. Number 0 when it may.
Error TestRestored(const std::filesystem::path& restored);

/// Puts the restored file of `database` into its place. The databases before it are kept, three at most.
/// Steps without a file to move are left out; at the first that fails the name is put back and nothing more
/// is done. A database that another program has open is left alone (`InUse`, no steps). `before`, if any, is
/// called before each step. REQUIRES: the database is not open in this process.
SwapReport SwapIn(const std::filesystem::path& database,
                  const std::function<void(const SwapStep&)>& before = {});

/// What a restore that did not end has left.
enum class LeftRestore {
    None,
    Ready,       ///< database and restored file both stand: the swap never began
    Broken,      ///< the restored file stands, and the database is the one from before
    OnlyFormer,  ///< neither stands, but the database from before
};
LeftRestore FindLeftRestore(const std::filesystem::path& database);

/// What happened and what can be done, for the next start; empty for `None`.
std::string LeftText(LeftRestore left, const std::filesystem::path& database);

/// Ends it: tests the restored file and swaps it in, or puts the database from before back.
SwapReport FinishRestore(const std::filesystem::path& database);

/// Gives it up: the restored file goes. Where no database stands, the one from before is put back.
SwapReport GiveUpRestore(const std::filesystem::path& database);

}  // namespace bmr::backup

#pragma once

#include <array>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>

#include "confidential/generator.h"

namespace bmr::tools {

/// What stood on the command line. Texts in UTF-8.
struct Options {
    std::filesystem::path file;
    int passphraseFd = -1;
    bool json = false;
    /// List private records too, whatever the settings say.
    bool showPrivate = false;
    /// Completed tasks too.
    bool all = false;
    std::string section = "todo";
    std::string category;
    std::int32_t fPK = 0;

    /// Show secrets in tables too.
    bool plain = false;

    /// What `add` was given; each belongs to one section.
    std::optional<std::string> task;
    std::optional<std::string> note;
    std::optional<std::string> due;
    std::optional<std::string> priority;
    std::optional<std::string> subject;
    std::optional<std::string> body;
    std::array<std::optional<std::string>, 5> n;
    std::optional<std::string> notes;
    /// Kind of confidential record, for `add` and `list`.
    std::optional<std::int32_t> kind;
    int secretFd = -1;
    bool makePrivate = false;

    confidential::PasswordRecipe recipe;
};

/// Each runs one command, prints to standard output and throws `Failure`.
void RunNew(const Options& options);
void RunInfo(const Options& options);
void RunList(const Options& options);
void RunShow(const Options& options);
void RunDump(const Options& options);
void RunAdd(const Options& options);
void RunDone(const Options& options);
void RunDelete(const Options& options);
void RunPasswd(const Options& options);
void RunCompact(const Options& options);
void RunCheck(const Options& options);
void RunGenerate(const Options& options);

}  // namespace bmr::tools

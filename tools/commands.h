#pragma once

#include <cstdint>
#include <filesystem>
#include <string>

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

    std::string task;
    std::string note;
    std::string due;
    std::string priority = "normal";
    bool makePrivate = false;
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

}  // namespace bmr::tools

#include <io.h>
#include <windows.h>

#include <vector>

#include "terminal.h"
#include "terminal_system.h"

namespace bmr::tools {
namespace {

/// Without the line end of the console.
std::size_t WithoutLineEnd(const wchar_t* units, std::size_t count) {
    while (count > 0 && (units[count - 1] == L'\n' || units[count - 1] == L'\r'))
        --count;
    return count;
}

bool ToUtf8(const wchar_t* units, std::size_t count, Secret& line) {
    if (count == 0) return true;
    const int wide = static_cast<int>(count);
    const int size = WideCharToMultiByte(CP_UTF8, 0, units, wide, nullptr, 0, nullptr, nullptr);
    if (size <= 0) return false;
    line.Resize(static_cast<std::size_t>(size));
    return WideCharToMultiByte(CP_UTF8, 0, units, wide, reinterpret_cast<char*>(line.span().data()), size,
                               nullptr, nullptr) == size;
}

}  // namespace

// Windows writes no dump of a failed program unless the machine was set up to do so.
void HardenProcess() {}

LineResult ReadFdLine(int fd, Secret& line) {
    line.Wipe();
    for (;;) {
        char byte = 0;
        const int n = _read(fd, &byte, 1);
        if (n < 0 || (n == 0 && line.empty())) return LineResult::NoInput;
        if (n == 0 || byte == '\n') break;
        if (line.size() == kLongestLine) return LineResult::TooLong;
        line.Append({&byte, 1});
    }
    if (!line.empty() && line.view().back() == '\r') line.Resize(line.size() - 1);
    return LineResult::Read;
}

LineResult ReadTerminalLine(const std::string& prompt, bool echo, Secret& line) {
    line.Wipe();
    const HANDLE input = CreateFileW(L"CONIN$", GENERIC_READ | GENERIC_WRITE, FILE_SHARE_READ, nullptr,
                                     OPEN_EXISTING, 0, nullptr);
    const HANDLE output =
        CreateFileW(L"CONOUT$", GENERIC_WRITE, FILE_SHARE_WRITE, nullptr, OPEN_EXISTING, 0, nullptr);
    DWORD mode = 0;
    LineResult result = LineResult::NoTerminal;
    if (input != INVALID_HANDLE_VALUE && GetConsoleMode(input, &mode)) {
        DWORD done = 0;
        WriteConsoleA(output, prompt.data(), static_cast<DWORD>(prompt.size()), &done, nullptr);
        const DWORD lines = ENABLE_LINE_INPUT | ENABLE_PROCESSED_INPUT;
        SetConsoleMode(input, echo ? lines | ENABLE_ECHO_INPUT : lines);
        std::vector<wchar_t, WipingAllocator<wchar_t>> units(kLongestLine);
        const BOOL read = ReadConsoleW(input, units.data(), static_cast<DWORD>(units.size()), &done, nullptr);
        SetConsoleMode(input, mode);
        if (!echo) WriteConsoleA(output, "\r\n", 2, nullptr, nullptr);
        const bool whole = read && done > 0 && units[done - 1] == L'\n';
        if (!read || done == 0)
            result = LineResult::NoInput;
        else if (!whole || !ToUtf8(units.data(), WithoutLineEnd(units.data(), done), line))
            result = LineResult::TooLong;
        else
            result = LineResult::Read;
    }
    if (input != INVALID_HANDLE_VALUE) CloseHandle(input);
    if (output != INVALID_HANDLE_VALUE) CloseHandle(output);
    return result;
}

}  // namespace bmr::tools

#include <SQLiteCpp/Exception.h>

#include <cmath>
#include <optional>

#include "engine/db_engine.h"

namespace bmr::engine {
namespace {

constexpr double kLowest = -9223372036854775808.0;

/// Gives a whole number as one where it fits.
void ResultWhole(sqlite3_context* context, double value) {
    if (value >= kLowest && value < -kLowest) {
        sqlite3_result_int64(context, static_cast<sqlite3_int64>(value));
    } else {
        sqlite3_result_double(context, value);
    }
}

bool IsNumber(sqlite3_value* value) {
    const int type = sqlite3_value_type(value);
    return type == SQLITE_INTEGER || type == SQLITE_FLOAT;
}

/// An operand of Mod and \: rounded to the nearest whole number, halves to even.
std::optional<std::int64_t> Rounded(sqlite3_value* value) {
    if (sqlite3_value_type(value) == SQLITE_INTEGER) return sqlite3_value_int64(value);
    if (sqlite3_value_type(value) != SQLITE_FLOAT) return std::nullopt;
    const double rounded = std::nearbyint(sqlite3_value_double(value));
    if (!(rounded > kLowest && rounded < -kLowest)) return std::nullopt;
    return static_cast<std::int64_t>(rounded);
}

// A function that sets no result gives Null.
void Floor(sqlite3_context* context, int, sqlite3_value** args) {
    if (sqlite3_value_type(args[0]) == SQLITE_INTEGER) {
        sqlite3_result_int64(context, sqlite3_value_int64(args[0]));
    } else if (IsNumber(args[0])) {
        ResultWhole(context, std::floor(sqlite3_value_double(args[0])));
    }
}

void Power(sqlite3_context* context, int, sqlite3_value** args) {
    if (IsNumber(args[0]) && IsNumber(args[1]))
        sqlite3_result_double(context,
                              std::pow(sqlite3_value_double(args[0]), sqlite3_value_double(args[1])));
}

void Remainder(sqlite3_context* context, int, sqlite3_value** args) {
    const auto left = Rounded(args[0]);
    const auto right = Rounded(args[1]);
    if (!left || !right || *right == 0) return;
    sqlite3_result_int64(context, *right == -1 ? 0 : *left % *right);
}

void Quotient(sqlite3_context* context, int, sqlite3_value** args) {
    const auto left = Rounded(args[0]);
    const auto right = Rounded(args[1]);
    if (!left || !right || *right == 0 || (*left == INT64_MIN && *right == -1)) return;
    sqlite3_result_int64(context, *left / *right);
}

}  // namespace

void AddDialectFunctions(sqlite3* db) {
    struct Function {
        const char* name;
        int arguments;
        void (*call)(sqlite3_context*, int, sqlite3_value**);
    };
    constexpr Function kFunctions[] = {{"dialect_int", 1, Floor},
                                       {"dialect_power", 2, Power},
                                       {"dialect_mod", 2, Remainder},
                                       {"dialect_quotient", 2, Quotient}};
    for (const auto& function : kFunctions) {
        // Only statements may call them, never a schema that came with a file.
        const int code = sqlite3_create_function_v2(db, function.name, function.arguments,
                                                    SQLITE_UTF8 | SQLITE_DETERMINISTIC | SQLITE_DIRECTONLY,
                                                    nullptr, function.call, nullptr, nullptr, nullptr);
        if (code != SQLITE_OK) throw SQLite::Exception(db, code);
    }
}

}  // namespace bmr::engine

#pragma once

namespace bmr::engine {

/// The engine's numbers that the logic tells apart. Every other failure has the number `Failed`.
struct EngineNumber {
    static constexpr int Failed = 3000;
    static constexpr int Unsure = 3001;        ///< a write failed, and nobody can say whether it stands
    static constexpr int Damaged = 3049;       ///< not a database, or a damaged one
    static constexpr int InUse = 3045;         ///< locked by another process
    static constexpr int NotFound = 3024;      ///< no such file
    static constexpr int NoPermission = 3051;  ///< may not be opened or written
    static constexpr int DiskFull = 3026;
    static constexpr int BadStatement = 3075;  ///< the dialect does not know it
};

}  // namespace bmr::engine

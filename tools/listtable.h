#pragma once

#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "recordjson.h"
#include "recordkinds.h"

namespace bmr::tools {

/// Gathers the records of a section and prints them as a table or as a JSON array.
class ListTable {
  public:
    ListTable(const store::SectionFacts& section, bool json) : section_(section), json_(json) {}

    void Add(const Row& row, const Json& record);
    /// In the order of `keys`, and what they lack behind them by its text.
    void Print(std::ostream& out, const std::vector<std::int32_t>& keys);

  private:
    struct Line {
        std::int32_t fPK = 0;
        std::string headline;
        std::vector<std::string> cells;  ///< one, the JSON text, when JSON is wanted
    };
    const store::SectionFacts& section_;
    bool json_;
    std::vector<Line> lines_;
};

}  // namespace bmr::tools

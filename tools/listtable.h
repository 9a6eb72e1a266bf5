#pragma once

#include <ostream>
#include <string>
#include <vector>

#include "base/serialdate.h"
#include "recordjson.h"
#include "recordkinds.h"

namespace bmr::tools {

/// Gathers the records of a section and prints them in the order of the window's list, as a table or as a
/// JSON array.
class ListTable {
  public:
    ListTable(const RecordKind& kind, bool json, Day today) : kind_(kind), json_(json), today_(today) {}

    void Add(const Row& row, const Json& record);
    void Print(std::ostream& out);

  private:
    struct Line {
        std::string sortKey;
        std::vector<std::string> cells;  ///< one, the JSON text, when JSON is wanted
    };
    const RecordKind& kind_;
    bool json_;
    Day today_;
    std::vector<Line> lines_;
};

}  // namespace bmr::tools

#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "base/result.h"

namespace bmr::store {
struct Session;
}

namespace bmr::custody {

/// What windows remember of a file beside its settings: lines "name=value" in field 15 of the system record.
/// Names are lower-case letters with points ("budget.balance"); lines of other programs are kept.
class ViewOptions {
  public:
    /// An error when the record does not decode: what stands there is then never written over.
    static Result<ViewOptions> Read(store::Session& session);

    /// The value of a name; `standard` where there is none.
    std::string Of(std::string_view name, std::string_view standard = {}) const;
    bool Flag(std::string_view name) const { return Of(name) == "1"; }
    /// A value has no line ends. An empty one takes the line away.
    void Set(std::string_view name, std::string_view value);
    void SetFlag(std::string_view name, bool on) { Set(name, on ? "1" : ""); }

    /// Stores the lines when they differ from those in the file. 0 or an error number with nothing changed.
    [[nodiscard]] int Write(store::Session& session) const;

  private:
    std::string Text() const;

    std::vector<std::string> lines_;
    std::string stored_;
};

}  // namespace bmr::custody

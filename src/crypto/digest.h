#pragma once

#include <memory>
#include <string_view>

#include "base/bytes.h"

namespace bmr::cry {

/// SHA-256 of bytes that come in parts, to tell whether two files are the same. Not for secrets: nothing of
/// it is wiped.
class Digest {
  public:
    Digest();
    ~Digest();
    Digest(const Digest&) = delete;
    Digest& operator=(const Digest&) = delete;
    void Add(std::string_view part);
    /// 32 bytes; begins anew.
    Bytes Finish();

  private:
    struct Impl;
    std::unique_ptr<Impl> impl_;
};

}  // namespace bmr::cry

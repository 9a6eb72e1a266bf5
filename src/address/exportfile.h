#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <string_view>
#include <vector>

#include "base/result.h"
#include "base/wiped.h"
#include "store/session.h"

namespace bmr::address {

/// Writes what `next` gives until it gives an empty text to a file that takes the place of `path` in one
/// step, once all is on the disk. Only its owner may read it. On an error nothing has changed.
Result<bool> ReplaceFile(store::Session& session, const std::filesystem::path& path,
                         const std::function<std::string_view()>& next);

/// Hands over the records of `keys` in their order, deciphered many at a time: the plain payload, and fT1.
class PayloadSource {
  public:
    PayloadSource(store::Session& session, std::vector<std::int32_t> keys)
        : session_(session), keys_(std::move(keys)) {}

    /// Gives the next some hundred records to `each`. False when there were none left, or none could be read
    /// (`error`).
    bool Next(
        const std::function<void(std::int32_t key, std::string_view payload, std::string_view name)>& each);
    int error() const { return error_; }

  private:
    store::Session& session_;
    std::vector<std::int32_t> keys_;
    std::size_t at_ = 0;
    int error_ = 0;
};

}  // namespace bmr::address

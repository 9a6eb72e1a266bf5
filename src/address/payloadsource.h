#pragma once

#include <cstdint>
#include <functional>
#include <string_view>
#include <utility>
#include <vector>

#include "store/session.h"

namespace bmr::address {

/// A record as it is handed over; the texts live only inside the call.
struct PayloadRow {
    std::int32_t key = 0;
    std::int32_t category = 0;
    std::string_view payload;  ///< plain
    std::string_view name;     ///< plain fT1, where names are read
};

/// Hands over the records of `keys` in their order, deciphered many at a time: the plain payload, and fT1.
/// Many at once share key schedules; few leave a window alive.
class PayloadSource {
  public:
    enum class Step : std::uint8_t { Large, Small };
    enum class Names : bool { Leave, Read };

    PayloadSource(store::Session& session, std::vector<std::int32_t> keys, Step step = Step::Large,
                  Names names = Names::Read)
        : session_(session), keys_(std::move(keys)), step_(step), names_(names) {}

    /// Gives the next records to `each`. False when there were none left, or none could be read (`error`).
    bool Next(const std::function<void(const PayloadRow& row)>& each);
    int error() const { return error_; }
    /// How many were not handed over yet.
    std::size_t Left() const { return keys_.size() - at_; }

  private:
    store::Session& session_;
    std::vector<std::int32_t> keys_;
    Step step_;
    Names names_;
    std::size_t at_ = 0;
    int error_ = 0;
};

}  // namespace bmr::address

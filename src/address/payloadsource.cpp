#include "address/payloadsource.h"

#include <algorithm>

#include "base/wiped.h"

namespace bmr::address {
namespace {

constexpr std::size_t kSmallStep = 1024;
constexpr std::size_t kLargeStep = 65536;
/// Bytes that wait to be deciphered.
constexpr std::size_t kMostBytes = std::size_t{16} << 20;

}  // namespace

bool PayloadSource::Next(const std::function<void(const PayloadRow& row)>& each) {
    const std::size_t most = step_ == Step::Small ? kSmallStep : kLargeStep;
    const std::size_t end = std::min(at_ + most, keys_.size());
    if (at_ == end || error_ != 0) return false;
    const bool named = names_ == Names::Read;
    std::vector<Bytes> ciphered;
    std::vector<PayloadRow> read;
    for (std::size_t bytes = 0; at_ < end && bytes < kMostBytes; ++at_) {
        auto row = session_.ProgramDb->Select("SELECT fEtx, fT1, fG1 FROM tt WHERE fPK=?", {keys_[at_]});
        if (!row) {
            error_ = row.error().number;
            return false;
        }
        if (!row->Next()) continue;
        read.push_back({keys_[at_], row->Int(2), {}, {}});
        if (named) ciphered.emplace_back(row->Bytes(1));
        bytes += ciphered.emplace_back(row->Bytes(0)).size();
    }
    WipedText name;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
        if (named && i % 2 == 0) {
            name = plain;
            return;
        }
        PayloadRow& row = read[named ? i / 2 : i];
        row.payload = plain;
        row.name = name;
        each(row);
    });
    return true;
}

}  // namespace bmr::address

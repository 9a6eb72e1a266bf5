#include "address/payloadsource.h"

#include <algorithm>

#include "base/wiped.h"

namespace bmr::address {
namespace {

constexpr std::size_t kChunk = 512;

}  // namespace

bool PayloadSource::Next(
    const std::function<void(std::int32_t key, std::string_view payload, std::string_view name)>& each) {
    const std::size_t end = std::min(at_ + kChunk, keys_.size());
    if (at_ == end || error_ != 0) return false;
    std::vector<Bytes> ciphered;
    std::vector<std::int32_t> read;
    for (; at_ < end; ++at_) {
        auto row = session_.ProgramDb->Select("SELECT fT1, fEtx FROM tt WHERE fPK=?", {keys_[at_]});
        if (!row) {
            error_ = row.error().number;
            return false;
        }
        if (!row->Next()) continue;
        read.push_back(keys_[at_]);
        ciphered.emplace_back(row->Bytes(0));
        ciphered.emplace_back(row->Bytes(1));
    }
    WipedText name;
    const std::vector<std::string_view> views(ciphered.begin(), ciphered.end());
    cry::DecipherBatch(session_.cipher, views, [&](std::size_t i, std::string_view plain) {
        if (i % 2 == 0)
            name = plain;
        else
            each(read[i / 2], plain, name);
    });
    return true;
}

}  // namespace bmr::address

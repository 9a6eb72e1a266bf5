#include "crypto/digest.h"

#include <botan/hash.h>

namespace bmr::cry {

struct Digest::Impl {
    std::unique_ptr<Botan::HashFunction> hash = Botan::HashFunction::create_or_throw("SHA-256");
};

Digest::Digest() : impl_(std::make_unique<Impl>()) {}
Digest::~Digest() = default;

void Digest::Add(std::string_view part) {
    impl_->hash->update(reinterpret_cast<const std::uint8_t*>(part.data()), part.size());
}

Bytes Digest::Finish() {
    const auto bytes = impl_->hash->final();
    return {bytes.begin(), bytes.end()};
}

}  // namespace bmr::cry

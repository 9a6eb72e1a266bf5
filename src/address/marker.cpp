#include "address/marker.h"

#include "crypto/cry.h"

namespace bmr::address {
namespace {

constexpr std::size_t kPlace = 6;

}  // namespace

Bytes PrivateMarkerOf(bool isPrivate, double drawn, std::string_view bytes) {
    const unsigned code = (static_cast<unsigned>(255 * drawn) & ~1U) + (isPrivate ? 1 : 0);
    Bytes marker(bytes.substr(0, kPlace));
    marker += ByteChar(code);
    marker += bytes.substr(kPlace);
    return marker;
}

Bytes AddressPrivateMarker(bool isPrivate, RandomSource& random) {
    const double drawn = random.Uniform();
    const std::int32_t length = DrawBelow(random, 15) + 10;
    return PrivateMarkerOf(isPrivate, drawn, cry::RandomBytes(random, length));
}

bool IsPrivateMarker(std::string_view plain) {
    return plain.size() <= kPlace || (ByteAt(plain, kPlace) & 1U) != 0;
}

}  // namespace bmr::address

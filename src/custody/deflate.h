#pragma once

#include <cstddef>
#include <optional>
#include <string_view>

#include "crypto/secret.h"

namespace bmr::custody {

/// `text` in the zlib format (RFC 1950), whose check sum tells later whether it is whole. All memory on the
/// way is wiped.
Secret Deflate(std::string_view text);

/// Nothing for what is no such text, is cut short, has more behind it, or grows beyond `most` bytes.
std::optional<Secret> Inflate(std::string_view packed, std::size_t most);

}  // namespace bmr::custody

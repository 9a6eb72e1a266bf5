#pragma once

#include <zlib.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

namespace bmr::test {

/// The library's own one-shot way, as other programs use it.
inline std::string PlainCompress(std::string_view text) {
    uLongf size = compressBound(text.size());
    std::string packed(size, '\0');
    if (compress(reinterpret_cast<Bytef*>(packed.data()), &size, reinterpret_cast<const Bytef*>(text.data()),
                 text.size()) != Z_OK)
        throw std::runtime_error("zlib does not compress");
    packed.resize(size);
    return packed;
}

/// Nothing where the library finds no whole stream of `size` bytes.
inline std::optional<std::string> PlainUncompress(std::string_view packed, std::size_t size) {
    std::string text(size + 1, '\0');
    uLongf room = text.size();
    uLong taken = packed.size();
    if (uncompress2(reinterpret_cast<Bytef*>(text.data()), &room,
                    reinterpret_cast<const Bytef*>(packed.data()), &taken) != Z_OK ||
        room != size || taken != packed.size())
        return std::nullopt;
    text.resize(size);
    return text;
}

}  // namespace bmr::test

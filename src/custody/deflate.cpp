#include "custody/deflate.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <stdexcept>

namespace bmr::custody {
namespace {

// The library's windows hold the text itself, so they are wiped. It does not tell sizes when it gives memory
// back: each piece carries its own in front, in a slot that keeps the alignment.
constexpr std::size_t kSlot = alignof(std::max_align_t);

voidpf TakeMemory(voidpf, uInt count, uInt size) {
    const std::size_t whole = kSlot + std::size_t{count} * size;
    auto* piece = static_cast<char*>(::operator new(whole, std::nothrow));
    if (piece == nullptr) return Z_NULL;
    *reinterpret_cast<std::size_t*>(piece) = whole;
    return piece + kSlot;
}

void GiveBack(voidpf, voidpf memory) {
    char* piece = static_cast<char*>(memory) - kSlot;
    WipeMemory(piece, *reinterpret_cast<std::size_t*>(piece));
    ::operator delete(piece);
}

z_stream MakeStream(std::string_view input) {
    z_stream stream{};
    stream.zalloc = TakeMemory;
    stream.zfree = GiveBack;
    // The library only reads what it is given, whatever its type says.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(input.data()));
    stream.avail_in = static_cast<uInt>(input.size());
    return stream;
}

}  // namespace

Secret Deflate(std::string_view text) {
    z_stream stream = MakeStream(text);
    if (deflateInit(&stream, Z_DEFAULT_COMPRESSION) != Z_OK) throw std::bad_alloc();
    Secret packed(deflateBound(&stream, static_cast<uLong>(text.size())));
    stream.next_out = packed.span().data();
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, Z_FINISH);
    packed.Resize(stream.total_out);
    deflateEnd(&stream);
    if (result != Z_STREAM_END) throw std::logic_error("deflateBound was too small");
    return packed;
}

std::optional<Secret> Inflate(std::string_view packed, std::size_t most) {
    z_stream stream = MakeStream(packed);
    if (inflateInit(&stream) != Z_OK) throw std::bad_alloc();
    Secret text;
    int result = Z_OK;
    while (result == Z_OK && text.size() < most) {
        const std::size_t done = text.size();
        text.Resize(std::min(most, std::max<std::size_t>(4096, done * 2)));
        stream.next_out = text.span().data() + done;
        stream.avail_out = static_cast<uInt>(text.size() - done);
        result = inflate(&stream, Z_NO_FLUSH);
        text.Resize(stream.total_out);
    }
    const bool whole = result == Z_STREAM_END && stream.avail_in == 0;
    inflateEnd(&stream);
    if (!whole) return std::nullopt;
    return text;
}

}  // namespace bmr::custody

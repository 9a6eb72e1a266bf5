#include "backup/packing.h"

#include <zlib.h>

#include <algorithm>
#include <new>
#include <stdexcept>
#include <thread>

namespace bmr::backup {
namespace {

constexpr std::size_t kBlock = 1 << 20;
constexpr std::size_t kWindow = 32 << 10;
/// Blocks on the way at once. With what is made of them they take some 30 MiB.
constexpr unsigned kMostCores = 8;
/// A database is mostly cipher text: the quick levels lose 1 % of its size to the thorough one, and take less
/// than its time. What shrinks further than this is no cipher text, and is done again thoroughly.
constexpr int kQuickLevel = 2;
constexpr std::size_t kShrinksTenths = 7;
/// Looking for what repeats takes most of the time. Where a few pages of a block show that it would gain less
/// than so much of it, only runs of one byte are packed, as the unused ends of pages are.
constexpr std::size_t kGainThousandths = 12;
constexpr std::size_t kPages = 8;
constexpr std::size_t kPage = 4096;
constexpr int kRawWindow = -15;  ///< no head and no check sum of its own

constexpr std::size_t kRead = 256 << 10;
constexpr std::size_t kGiven = 1 << 20;

using Part = std::shared_ptr<const std::string>;

Bytef* BytesOf(std::string_view text) {
    // The library only reads what it is given, whatever its type says.
    return reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
}

/// How a block is deflated.
struct Way {
    int level = kQuickLevel;
    int strategy = Z_DEFAULT_STRATEGY;
};
constexpr Way kRunsAlone{1, Z_RLE};
constexpr Way kThorough{Z_DEFAULT_COMPRESSION, Z_DEFAULT_STRATEGY};

std::string DeflateAt(Way way, std::string_view text, std::string_view dictionary, bool last) {
    z_stream stream{};
    if (deflateInit2(&stream, way.level, Z_DEFLATED, kRawWindow, 9, way.strategy) != Z_OK)
        throw std::bad_alloc();
    if (!dictionary.empty())
        deflateSetDictionary(&stream, BytesOf(dictionary), static_cast<uInt>(dictionary.size()));
    // A block that is not the last ends in an empty stored block, on a whole byte.
    std::string packed(deflateBound(&stream, static_cast<uLong>(text.size())) + 16, '\0');
    stream.next_in = BytesOf(text);
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    const int result = deflate(&stream, last ? Z_FINISH : Z_SYNC_FLUSH);
    packed.resize(packed.size() - stream.avail_out);
    const bool whole = result == (last ? Z_STREAM_END : Z_OK) && stream.avail_in == 0;
    deflateEnd(&stream);
    if (!whole) throw std::logic_error("deflateBound was too small");
    return packed;
}

std::uint32_t SumOf(std::string_view text) {
    return static_cast<std::uint32_t>(
        adler32(adler32(0, nullptr, 0), BytesOf(text), static_cast<uInt>(text.size())));
}

}  // namespace

struct Packer::Block {
    std::string packed;
    std::uint32_t sum = 0;
    std::size_t length = 0;
    bool last = false;
};

namespace {

/// Whether it is worth the time to look for what repeats, by some pages from all over the block.
bool HoldsRepeats(std::string_view text) {
    if (text.size() < 2 * kPages * kPage) return true;
    std::string pages;
    pages.reserve(kPages * kPage);
    for (std::size_t i = 0; i < kPages; ++i)
        pages += text.substr(text.size() / kPages * i, kPage);
    const std::size_t runs = DeflateAt(kRunsAlone, pages, {}, true).size();
    return DeflateAt({}, pages, {}, true).size() * 1000 < runs * (1000 - kGainThousandths);
}

Packer::Block Deflate(const Part& text, const Part& before, bool last) {
    const std::uint32_t sum = SumOf(*text);
    if (!HoldsRepeats(*text)) return {DeflateAt(kRunsAlone, *text, {}, last), sum, text->size(), last};
    std::string_view dictionary;
    if (before)
        dictionary = std::string_view(*before).substr(before->size() - std::min(before->size(), kWindow));
    Packer::Block block{DeflateAt({}, *text, dictionary, last), sum, text->size(), last};
    if (block.packed.size() * 10 < text->size() * kShrinksTenths)
        block.packed = DeflateAt(kThorough, *text, dictionary, last);
    return block;
}

}  // namespace

Packer::Packer(std::istream& source, std::function<void(std::string_view)> seen, unsigned cores)
    : source_(source), seen_(std::move(seen)) {
    if (cores == 0) cores = std::thread::hardware_concurrency();
    // One more than there are cores: none waits while a finished block is written.
    most_ = std::clamp(cores, 1U, kMostCores) + 1;
}

Packer::~Packer() = default;

/// Starts the work on one more block; `ahead_` is the one that is read but not begun.
void Packer::Read() {
    auto block = std::make_shared<std::string>(kBlock, '\0');
    source_.read(block->data(), static_cast<std::streamsize>(block->size()));
    block->resize(static_cast<std::size_t>(source_.gcount()));
    whole_ = source_.eof() && !source_.bad();
    ended_ = block->empty() || !source_;
    if (seen_ && !block->empty()) seen_(*block);
    // What was read may be the last block only once the end has been seen.
    const auto start = [this](const Part& text, bool last) {
        blocks_.push_back(
            std::async(std::launch::async | std::launch::deferred, Deflate, text, before_, last));
        before_ = text;
    };
    if (ahead_) start(ahead_, ended_ && block->empty());
    ahead_ = nullptr;
    if (ended_ && !block->empty()) start(block, true);
    if (!ended_) ahead_ = block;
}

void Packer::Finish(Block& block) {
    if (!begun_) bytes_ = std::string("\x78\x9c", 2);
    begun_ = true;
    bytes_ += block.packed;
    sum_ = static_cast<std::uint32_t>(adler32_combine(sum_, block.sum, static_cast<z_off_t>(block.length)));
    done_ += block.length;
    for (int shift = 24; block.last && shift >= 0; shift -= 8)
        bytes_ += static_cast<char>((sum_ >> shift) & 0xff);
}

std::string_view Packer::Next() {
    while (!ended_ && blocks_.size() < most_)
        Read();
    bytes_.clear();
    if (blocks_.empty()) return {};
    Block block = blocks_.front().get();
    blocks_.pop_front();
    Finish(block);
    return bytes_;
}

struct Unpacker::State {
    z_stream stream{};
    std::string in = std::string(kRead, '\0');
    std::string out = std::string(kGiven, '\0');
    int result = Z_OK;
};

Unpacker::Unpacker(std::istream& source, std::uint64_t length)
    : source_(source), length_(length), state_(std::make_unique<State>()) {
    if (inflateInit(&state_->stream) != Z_OK) throw std::bad_alloc();
}

Unpacker::~Unpacker() {
    inflateEnd(&state_->stream);
}

std::string_view Unpacker::Next() {
    z_stream& stream = state_->stream;
    stream.next_out = reinterpret_cast<Bytef*>(state_->out.data());
    stream.avail_out = static_cast<uInt>(state_->out.size());
    while (state_->result == Z_OK && stream.avail_out > 0) {
        if (stream.avail_in == 0) {
            const auto part = static_cast<std::streamsize>(std::min<std::uint64_t>(kRead, length_ - read_));
            source_.read(state_->in.data(), part);
            const auto got = source_.gcount();
            // Without more, the library may still have bytes to give; else it says so.
            read_ += static_cast<std::uint64_t>(got);
            stream.next_in = reinterpret_cast<Bytef*>(state_->in.data());
            stream.avail_in = static_cast<uInt>(got);
        }
        state_->result = inflate(&stream, Z_NO_FLUSH);
    }
    return std::string_view(state_->out).substr(0, state_->out.size() - stream.avail_out);
}

bool Unpacker::Whole() const {
    return state_->result == Z_STREAM_END && state_->stream.avail_in == 0 && read_ == length_;
}

}  // namespace bmr::backup

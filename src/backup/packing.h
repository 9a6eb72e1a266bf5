#pragma once

#include <cstdint>
#include <deque>
#include <functional>
#include <future>
#include <istream>
#include <memory>
#include <string>
#include <string_view>

/// Compressed bytes as streams: neither way holds more than some blocks in memory, whatever a file's length.
namespace bmr::backup {

/// Told of the bytes done and of all; false stops the work.
using Progress = std::function<bool(std::uint64_t done, std::uint64_t all)>;

/// A zlib stream (RFC 1950) of what `source` gives, made by all cores: each deflates a block of it, with the
/// block before as its dictionary, and the blocks' check sums are combined. The stream depends on the source
/// alone, not on the number of cores.
class Packer {
  public:
    /// `seen`, if any, gets each block of the source in order. `cores` 0: those of the machine.
    explicit Packer(std::istream& source, std::function<void(std::string_view)> seen = {},
                    unsigned cores = 0);
    ~Packer();
    Packer(const Packer&) = delete;
    Packer& operator=(const Packer&) = delete;

    /// The next bytes of the stream, which live until the next call; empty at its end.
    std::string_view Next();
    /// Bytes of the source that the stream holds so far.
    std::uint64_t Done() const { return done_; }
    /// Whether the source was read to its end. False after a failed read: the stream is then no good.
    bool Whole() const { return whole_; }

    struct Block;

  private:
    void Read();
    void Finish(Block& block);

    std::istream& source_;
    std::function<void(std::string_view)> seen_;
    std::size_t most_;
    std::deque<std::future<Block>> blocks_;
    std::shared_ptr<const std::string> before_;  ///< the source's last block
    std::shared_ptr<const std::string> ahead_;   ///< and the next, to tell which is the last
    std::string bytes_;
    std::uint64_t done_ = 0;
    std::uint32_t sum_ = 1;
    bool begun_ = false;
    bool ended_ = false;
    bool whole_ = false;
};

/// The bytes of a zlib stream that lies in the first `length` bytes of `source`.
class Unpacker {
  public:
    Unpacker(std::istream& source, std::uint64_t length);
    ~Unpacker();
    Unpacker(const Unpacker&) = delete;
    Unpacker& operator=(const Unpacker&) = delete;

    /// The next bytes, which live until the next call; empty at the end of the stream, and where it is
    /// broken.
    std::string_view Next();
    /// Compressed bytes read so far.
    std::uint64_t Read() const { return read_; }
    /// Whether the stream ended with its right check sum and with its last byte.
    bool Whole() const;

  private:
    struct State;
    std::istream& source_;
    std::uint64_t length_;
    std::uint64_t read_ = 0;
    std::unique_ptr<State> state_;
};

}  // namespace bmr::backup

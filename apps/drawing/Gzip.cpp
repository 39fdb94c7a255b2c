// SPDX-License-Identifier: MIT

#include "Gzip.h"

#include "Error.h"
#include "Input.h"

#include <array>
#include <new>

#include <zlib.h>

namespace tool {

namespace {

/// zlib's window of 32 KiB, and its mark for the gzip format.
constexpr int kGzipWindow = 15 + 16;
constexpr int kMemoryLevel = 8; ///< zlib's default

/// An unpacking in progress.
class Inflater {
public:
    Inflater() {
        if (inflateInit2(&mStream, kGzipWindow) != Z_OK) {
            throw std::bad_alloc();
        }
    }
    ~Inflater() { inflateEnd(&mStream); }
    Inflater(Inflater const&) = delete;
    Inflater& operator=(Inflater const&) = delete;

    z_stream& Stream() { return mStream; }

private:
    z_stream mStream{};
};

} // namespace

bool LooksZipped(std::string_view content) { return content.substr(0, 2) == "\x1F\x8B"; }

std::string Unzipped(std::string const& file, std::string_view content) {
    Inflater inflater;
    z_stream& stream = inflater.Stream();
    std::string text;
    std::array<char, 1 << 16> buffer;
    // zlib does not write to its input, but its interface is older than const.
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(content.data())); // NOLINT
    stream.avail_in = static_cast<uInt>(content.size());
    for (;;) {
        stream.next_out = reinterpret_cast<Bytef*>(buffer.data());
        stream.avail_out = static_cast<uInt>(buffer.size());
        int const status = inflate(&stream, Z_NO_FLUSH);
        text.append(buffer.data(), buffer.size() - stream.avail_out);
        if (text.size() > kLargestFile) {
            throw Error(file, "", "unpacks to more than 128 MiB");
        }
        if (status == Z_STREAM_END) {
            std::size_t const left = stream.avail_in;
            if (!LooksZipped(content.substr(content.size() - left))) {
                return text; // what follows the last member is padding
            }
            inflateReset(&stream);
        } else if (status == Z_MEM_ERROR) {
            throw std::bad_alloc();
        } else if (status != Z_OK) {
            throw Error(file, "",
                        stream.avail_in == 0 ? "is compressed, and ends too early"
                                             : "is compressed, and damaged");
        }
    }
}

std::string Zipped(std::string_view text) {
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_COMPRESSION, Z_DEFLATED, kGzipWindow, kMemoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK) {
        throw std::bad_alloc();
    }
    std::string packed;
    try {
        packed.resize(deflateBound(&stream, static_cast<uLong>(text.size())));
    } catch (...) {
        deflateEnd(&stream);
        throw;
    }
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data())); // NOLINT
    stream.avail_in = static_cast<uInt>(text.size());
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = static_cast<uInt>(packed.size());
    deflate(&stream, Z_FINISH); // the bound holds all of it
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace tool

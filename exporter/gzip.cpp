// SPDX-License-Identifier: Apache-2.0
#include "gzip.hpp"

#include <zlib.h>

namespace morvath::exporter
{

std::string gzip(const std::string& text)
{
    // Half the usual memory: metrics repeat themselves within few lines.
    constexpr int gzipWindow = 14 + 16;
    constexpr int memoryLevel = 7;
    z_stream stream{};
    if (deflateInit2(&stream, Z_BEST_SPEED, Z_DEFLATED, gzipWindow, memoryLevel,
                     Z_DEFAULT_STRATEGY) != Z_OK)
    {
        return {};
    }
    std::string packed(deflateBound(&stream, text.size()), '\0');
    stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
    stream.avail_in = text.size();
    stream.next_out = reinterpret_cast<Bytef*>(packed.data());
    stream.avail_out = packed.size();
    deflate(&stream, Z_FINISH);
    packed.resize(stream.total_out);
    deflateEnd(&stream);
    return packed;
}

} // namespace morvath::exporter

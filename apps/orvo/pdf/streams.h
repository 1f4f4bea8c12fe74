// The data of a document's streams, so many bytes at most: a few bytes may stand for any number.
#ifndef APPS_ORVO_PDF_STREAMS_H
#define APPS_ORVO_PDF_STREAMS_H

#include <cstdint>
#include <functional>
#include <qpdf/QPDFObjectHandle.hh>
#include <string>

namespace client {

using TakeBytes = std::function<void(const unsigned char* bytes, std::size_t count)>;

// Hands the decoded data on, JPEG files as samples too, up to `most` bytes, and tells how many
// there were.
std::uint64_t PassOn(QPDFObjectHandle stream, std::uint64_t most, const TakeBytes& take);
// The decoded data; empty when there are more.
std::string BytesOf(const QPDFObjectHandle& stream, std::size_t most);

}  // namespace client

#endif  // APPS_ORVO_PDF_STREAMS_H

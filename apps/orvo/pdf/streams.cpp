#include "streams.h"

#include <algorithm>
#include <qpdf/Pl_Function.hh>
#include <stdexcept>

namespace client {

std::uint64_t PassOn(QPDFObjectHandle stream, std::uint64_t most, const TakeBytes& take) {
  std::uint64_t passed = 0;
  std::exception_ptr fault;
  Pl_Function sink("data", nullptr, [&](const unsigned char* bytes, std::size_t count) {
    const auto taken = static_cast<std::size_t>(std::min<std::uint64_t>(count, most - passed));
    try {
      take(bytes, taken);
    } catch (...) {
      fault = std::current_exception();
      throw;
    }
    passed += taken;
    // The library takes what is thrown here for damage, and stops.
    if (taken < count) throw std::length_error("more than needed");
  });
  (void)stream.pipeStreamData(&sink, 0, qpdf_dl_all, true);
  if (fault) std::rethrow_exception(fault);
  return passed;
}

std::string BytesOf(const QPDFObjectHandle& stream, std::size_t most) {
  std::string all;
  (void)PassOn(stream, most + 1, [&](const unsigned char* bytes, std::size_t count) {
    all.append(reinterpret_cast<const char*>(bytes), count);
  });
  return all.size() > most ? std::string() : all;
}

}  // namespace client

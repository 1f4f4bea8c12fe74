#include "format_list.h"

#include <algorithm>
#include <iomanip>
#include <sstream>

#include "beside_toolkit.h"
#include "pictures/libraries.h"

namespace client {
namespace {

// The client's own libraries, which lie beside the toolkit.
constexpr std::string_view kPdfReader = "orvo_pages.so";
constexpr std::string_view kPdfWriter = "orvo_documents.so";

struct Format {
  std::string_view name;
  std::string_view extensions;  // separated by spaces
  std::string_view depths;      // in which such files load, or, of those only written, are written
  std::string_view reader;      // a library; empty: not read
  std::string_view writer;      // likewise
  bool pages = false;           // all are read and written, not only the first
};

constexpr Format kFormats[] = {
    {"JPEG", "jpg jpeg jpe", "8 24", "libjpeg", "libjpeg"},
    {"PNG", "png", "1 4 8 24 32", "libpng", "libpng"},
    {"TIFF", "tif tiff", "1 4 8 24 32", "libtiff", "libtiff", true},
    {"PDF", "pdf", "1 4 8 24", kPdfReader, kPdfWriter, true},
    {"WebP", "webp", "24 32", "libwebpdemux", "libwebp"},
    {"HEIC", "heic heif", "24 32", "libheif", {}},
    {"AVIF", "avif", "24 32", "libheif", {}},
    {"JPEG XL", "jxl", "24 32", "libjxl", {}},
    {"GIF", "gif", "1 4 8 32", "giflib", {}},
    {"Windows bitmap", "bmp jff", "1 4 8 16 24 32", "own", "own"},
    {"Photoshop", "psd", "1 8 24 32", "own", "own"},
    {"Targa", "tga", "8 16 24 32", "own", "GraphicsMagick"},
    {"PCX", "pcx", "1 4 8 24", "GraphicsMagick", "GraphicsMagick"},
    {"DCX", "dcx", "1 8 24", "GraphicsMagick", {}},
    {"Sun raster", "ras", "1 8 24", "GraphicsMagick", "GraphicsMagick"},
    {"PICT", "pct", "24", "GraphicsMagick", "GraphicsMagick"},
    {"Windows metafile", "wmf", "24", "GraphicsMagick", {}},
    {"WordPerfect", "wpg", "1 4 8 24", "GraphicsMagick", {}},
    {"Photo CD", "pcd", "24", "GraphicsMagick", {}},
    {"PostScript", "eps", "1 4 8 24", {}, "GraphicsMagick"},
};

bool Has(std::string_view library) {
  if (library.empty()) return false;
  const bool isOwn = library == kPdfReader || library == kPdfWriter;
  return isOwn ? LoadLibraryA(BesideToolkit(library).c_str()) != nullptr
               : modules::HasLibrary(library);
}

Report::List Words(std::string_view words, const auto& convert) {
  Report::List list;
  std::istringstream text{std::string(words)};
  for (std::string word; text >> word;) list.emplace_back(convert(word));
  return list;
}

void AddRow(std::ostream& table, const auto& name, const auto& extensions, const auto& reads,
            const auto& writes, const auto& pages, const auto& depths) {
  constexpr int kName = 18;
  constexpr int kExtensions = 14;
  constexpr int kMark = 7;
  table << std::left << std::setw(kName) << name << std::setw(kExtensions) << extensions
        << std::setw(kMark) << reads << std::setw(kMark) << writes << std::setw(kMark) << pages
        << depths << '\n';
}

const char* Mark(bool yes) {
  return yes ? "yes" : "-";
}

}  // namespace

int ListFormats(Job& job) {
  ORVOVERSIONINFO version{};
  const bool hasModules = job.toolkit.GetVersion(&version) != ORVO_ERR_NO_VENDOR;
  Report::List list;
  std::ostringstream table;
  AddRow(table, "format", "extensions", "read", "write", "pages", "bits of a pixel");
  for (const Format& format : kFormats) {
    const bool reads = hasModules && Has(format.reader);
    const bool writes = hasModules && Has(format.writer);
    const bool there = reads || writes;
    AddRow(table, format.name, format.extensions, Mark(reads), Mark(writes),
           format.pages ? "all" : "first", there ? format.depths : "not there");
    list.emplace_back(Report::Fields{
        {"name", format.name},
        {"extensions", Words(format.extensions, [](const std::string& word) { return word; })},
        {"read", reads},
        {"write", writes},
        {"pages", format.pages ? "all" : "first"},
        {"depths", Words(format.depths, [](const std::string& word) { return std::stoi(word); })},
        {"there", there}});
  }
  if (job.parameters.has("json")) {
    job.report.set("formats", std::move(list));
  } else {
    job.report = table.str();
  }
  return ORVO_OK;
}

}  // namespace client

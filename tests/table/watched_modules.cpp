#include "watched_modules.h"

#include <dlfcn.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <span>
#include <sstream>

#include "binding/module_contract.h"
#include "support/pictures.h"

namespace watched {

State& TheState() {
  static State state;
  return state;
}

namespace {

// Whatever a call was given, in words; bitmaps by their measures.
std::string Text(const void* pointer) {
  const auto name = TheState().names.find(pointer);
  return pointer == nullptr ? "0" : name == TheState().names.end() ? "*" : name->second;
}
std::string Text(StatusCallback callback) {
  return Text(reinterpret_cast<const void*>(callback));
}
std::string Text(const char* text) {
  if (text == nullptr) return "0";
  const std::string& folder = TheState().folder;
  const bool own = !folder.empty() && std::string(text).starts_with(folder);
  return own ? "~" + std::string(text + folder.size()) : text;
}
std::string Numbers(const void* record, std::size_t count, const char* between = " ") {
  std::string text;
  for (const int number : std::span(static_cast<const int*>(record), count)) {
    text.append(text.empty() ? "" : between).append(std::to_string(number));
  }
  return text;
}
std::string Text(const struct_LEAD_Bitmap* bitmap) {
  return Numbers(bitmap, 3, "x");
}
std::string Text(const LTLOADOPTIONS* options) {
  return options == nullptr ? "0" : Numbers(options, 2);
}
std::string Text(const LTTHUMBNAILOPTIONS* options) {
  return Numbers(options, 9);
}
template <class Number>
requires std::is_arithmetic_v<Number> std::string Text(Number number) {
  std::ostringstream text;
  text << number;
  return text.str();
}

template <std::size_t size>
struct Name {
  char text[size];
  consteval Name(const char (&name)[size]) { std::copy_n(name, size, text); }  // NOLINT
};

template <Name kName, class Function>
struct Entry;

template <Name kName, class Result, class... Arguments>
struct Entry<kName, Result(Arguments...)> {
  static inline void* own = nullptr;  // the module's function

  static Result Call(Arguments... arguments) {
    State& state = TheState();
    const auto function = reinterpret_cast<Result (*)(Arguments...)>(own);
    if (!state.writes) return function(arguments...);
    std::string line;
    ((line.append(line.empty() ? "" : ", ").append(Text(arguments))), ...);
    state.log.push_back(std::string(kName.text).append("(").append(line).append(")"));
    std::deque<double>& answers = state.answers[kName.text];
    if constexpr (std::is_arithmetic_v<Result>) {
      if (answers.empty()) return function(arguments...);
      const double answer = answers.front();
      answers.pop_front();
      return static_cast<Result>(answer);
    } else if constexpr (std::is_same_v<Result, DibHandle>) {
      DibHandle block = function(arguments...);
      if (!answers.empty()) {
        answers.pop_front();
        GlobalFree(block);
        return nullptr;
      }
      if (!state.newHandles || block == nullptr) return block;
      const orvo::OwnedDib old(block);
      return pictures::CopyOf(block).release();
    } else {
      return function(arguments...);
    }
  }
};

struct Row {
  void* call;
  void** own;
};

template <Name kName, class Function>
Row RowOf() {
  return {reinterpret_cast<void*>(&Entry<kName, Function>::Call), &Entry<kName, Function>::own};
}

std::map<std::string, Row> rows;
Log names;

// clang-format off
#define ROW(name) names.push_back(#name), rows[#name] = RowOf<#name, decltype(::name)>();
void MakeRows() {
  ROW(PDF_new) ROW(PDF_open_file) ROW(PDF_set_info) ROW(PDF_open_image_file) ROW(PDF_get_value)
  ROW(PDF_begin_page) ROW(PDF_scale) ROW(PDF_place_image) ROW(PDF_close_image) ROW(PDF_end_page)
  ROW(PDF_close) ROW(PDF_delete)
  ROW(L_ChangeFromDIB) ROW(L_ChangeToDIB) ROW(L_ChangeToDIB2) ROW(L_ColorResBitmap)
  ROW(L_DefaultDithering) ROW(L_FreeBitmap) ROW(L_GrayScaleBitmap) ROW(L_RotateBitmap)
  ROW(L_SetStatusCallBack) ROW(L_TrimBitmap) ROW(L_VersionInfo) ROW(L_ConvertToDIB)
  ROW(L_ConvertFromDIB) ROW(L_SizeBitmap) ROW(L_IsGrayScaleBitmap)
  ROW(L_ChangeBitmapContrast) ROW(L_ChangeBitmapHue) ROW(L_ChangeBitmapIntensity)
  ROW(L_GammaCorrectBitmap) ROW(L_InvertBitmap) ROW(L_RemapBitmapIntensity) ROW(L_SharpenBitmap)
  ROW(L_ChangeBitmapSaturation)
  ROW(L_CreateThumbnailFromFile) ROW(L_FileInfo) ROW(L_LoadBitmap) ROW(L_SaveBitmap)
  ROW(L_SaveFile) ROW(L_FileConvert)
}
#undef ROW
// clang-format on

// The platform layer's own function, behind the one of the same name that this program defines.
template <class Function>
Function* Real(const char* name) {
  return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

void Write(const std::string& line) {
  if (TheState().writes) TheState().log.push_back(line);
}

std::map<void*, std::string>& Loaded() {
  static std::map<void*, std::string> loaded;
  return loaded;
}

}  // namespace

const Log& EntryNames() {
  if (names.empty()) MakeRows();
  return names;
}

}  // namespace watched

using namespace watched;

// The toolkit is linked into this program, so its calls come here. It looks for the modules beside
// the program; they lie elsewhere, and stay loaded.

void* LoadLibraryA(const char* path) {
  static auto* const real = Real<decltype(LoadLibraryA)>("LoadLibraryA");
  static const auto beside = std::filesystem::read_symlink("/proc/self/exe").parent_path();
  if (path == nullptr || std::filesystem::path(path).parent_path() != beside) return real(path);
  const std::string name = std::filesystem::path(path).filename();
  Write("load " + name);
  EntryNames();
  if (TheState().absent.contains(name)) return nullptr;
  void* const module = real((MODULES_FOLDER "/" + name).c_str());
  Loaded()[module] = name;
  return module;
}

void* GetProcAddress(void* module, const char* name) {
  static auto* const real = Real<decltype(GetProcAddress)>("GetProcAddress");
  if (!Loaded().contains(module)) return real(module, name);
  Write("find " + std::string(name));
  void* const own = TheState().absent.contains(name) ? nullptr : real(module, name);
  const auto row = rows.find(name);
  if (own == nullptr || row == rows.end()) return own;
  *row->second.own = own;
  return row->second.call;
}

int FreeLibrary(void* module) {
  static auto* const real = Real<decltype(FreeLibrary)>("FreeLibrary");
  const bool own = Loaded().contains(module);
  Write("unload " + (own ? Loaded()[module] : "another"));
  return own ? 1 : real(module);
}

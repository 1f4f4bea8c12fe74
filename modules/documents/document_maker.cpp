#include "documents/document_maker.h"

#include <map>
#include <qpdf/QUtil.hh>

#include "documents/bitmap_reader.h"
#include "documents/document_file.h"
#include "documents/image_object.h"
#include "documents/page_content.h"
#include "documents/picture_coding.h"

namespace modules {
namespace {

using Object = QPDFObjectHandle;

constexpr double kPointsPerInch = 72;

// Points across and down for each pixel.
std::pair<double, double> ScaleOf(const Shown& shown) {
  const auto x = static_cast<double>(shown.xResolution);
  const auto y = static_cast<double>(shown.yResolution);
  if (x > 0 && y > 0) return {kPointsPerInch / x, kPointsPerInch / y};
  if (x < 0 && y < 0) return {1, y / x};
  return {1, 1};
}

template <class Work>
int Done(const Work& work) noexcept {
  return Guarded([&] {
    work();
    return kModuleSuccess;
  });
}

class Maker : public DocumentMaker {
 public:
  Maker(const char* neighbour, Report report)
      : report_(report), file_(neighbour), sources_(report) {
    const std::string now = QUtil::qpdf_time_to_pdf_time(QUtil::get_current_qpdf_time());
    file_.setInfo("CreationDate", now);
    file_.setInfo("ModDate", now);
  }

  int setInfo(const char* key, const char* text) override {
    return Done([&] { file_.setInfo(key, text); });
  }

  int addFile(std::string_view type, const char* path, int page, const PageExtras& extras,
              PageFacts& facts) override {
    return Done([&] {
      CodingRules rules;
      rules.takesParts = true;
      rules.ground = extras.ground;
      const auto coded = sources_.take(type, path, page, *file_.spool(), rules);
      Require(coded, kModuleBadParameter);
      addPage(*coded, extras, facts);
    });
  }

  int addBitmap(DibHandle bitmap, const PageExtras& extras, PageFacts& facts) override {
    return Done([&] {
      CodingRules rules;
      rules.ground = extras.ground;
      BitmapReader reader(bitmap);
      addPage(CodePicture(reader, {}, rules, *file_.spool()), extras, facts);
    });
  }

  int write(const char* path) override {
    return Done([&] { file_.write(path, report_); });
  }

 private:
  void addPage(const CodedPicture& coded, const PageExtras& extras, PageFacts& facts) {
    const Picture& picture = coded.picture;
    facts = {coded.isFromFile, coded.showsGround,
             coded.bits < picture.narrowedFrom ? picture.narrowedFrom : 0, coded.colorComponents()};
    const bool isExplained =
        !extras.profile.empty() && extras.profileComponents == facts.components;
    Object image = MakeImageObject(file_.objects(), coded, file_.spool(),
                                   isExplained ? &profileObject(extras) : nullptr);
    if (!extras.xmp.empty()) image.getDict().replaceKey("/Metadata", metadataObject(extras.xmp));
    const std::string name = "/Im0";
    const Shown shown = ShownOf(picture);
    const auto [x, y] = ScaleOf(shown);
    OpenPage page;
    page.width = shown.width * x;
    page.height = shown.height * y;
    page.images.replaceKey(name, image);
    page.content = ScaleContent(x, y) + PlaceContent(name, picture, 0, 0, 1);
    file_.addPage(page);
  }

  Object streamOf(std::string_view bytes) {
    Spool& spool = *file_.spool();
    const std::uint64_t start = spool.size();
    spool.append(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size());
    return MakeStream(file_.objects(), file_.spool(), spool.rangeSince(start));
  }

  // Pages share equal profiles.
  const Object& profileObject(const PageExtras& extras) {
    const auto [place, isNew] = profiles_.try_emplace(std::string(extras.profile));
    Object& object = place->second;
    if (isNew) {
      object = streamOf(extras.profile);
      object.getDict().replaceKey("/N", Object::newInteger(extras.profileComponents));
    }
    return object;
  }

  // Left plain, so that programs which know nothing of documents find it.
  Object metadataObject(std::string_view xmp) {
    Object object = streamOf(xmp);
    object.getDict().replaceKey("/Type", Object::newName("/Metadata"));
    object.getDict().replaceKey("/Subtype", Object::newName("/XML"));
    return object;
  }

  Report report_;
  DocumentFile file_;
  PictureFiles sources_;
  std::map<std::string, Object> profiles_;
};

}  // namespace
}  // namespace modules

modules::DocumentMaker* NewDocumentMaker(const char* neighbour, modules::Report report) noexcept {
  try {
    return new modules::Maker(neighbour, report);
  } catch (...) {
    return nullptr;
  }
}

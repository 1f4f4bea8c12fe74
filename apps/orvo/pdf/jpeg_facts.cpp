#include "jpeg_facts.h"

#include "pictures/codecs.h"

namespace client {

std::optional<JpegFacts> ReadJpegFacts(const std::string& path) {
  JpegFacts facts;
  const int code = modules::Guarded([&] {
    const modules::ReaderHandle reader = modules::OpenJpeg(path.c_str(), nullptr);
    (void)reader->goTo(1);
    const modules::Picture& picture = reader->picture();
    const auto stretch = reader->codedStretch();
    facts = {.width = picture.width,
             .height = picture.height,
             .components = picture.samples,
             .inverted = picture.reversed,
             .mixesColors = !stretch || stretch->coding == modules::Coding::kJpeg};
    return kModuleSuccess;
  });
  return code == kModuleSuccess ? std::optional(facts) : std::nullopt;
}

}  // namespace client

// PDF documents of one and of several pictures.
#include "bmp_files.h"
#include "client.h"
#include "support/pictures.h"

namespace {

using Names = std::vector<std::string>;

class DocumentTest : public ClientTest {
 protected:
  DocumentTest() {
    for (const char* folder : {"in", "out"}) std::filesystem::create_directory(path(folder));
    write("a.bmp", BmpOf(pictures::Noise(20, 10, 24, 1)));  // 300 dots per inch
    write("b.bmp", BmpOf(pictures::Noise(30, 40, 8, 2)));
    write("in/broken.bmp", "BM");
  }

  // The sizes of the pages, in points, as the document's bytes have them.
  [[nodiscard]] Names sizes(const std::string& document) const {
    const std::string all = bytes(document);
    const std::string mark = "/MediaBox [ 0 0 ";
    Names found;
    for (auto at = all.find(mark); at != std::string::npos; at = all.find(mark, at + 1)) {
      const std::size_t begin = at + mark.size();
      found.push_back(all.substr(begin, all.find(" ]", begin) - begin));
    }
    return found;
  }
};

TEST_F(DocumentTest, EveryPictureBecomesAPage) {
  EXPECT_EQ(run({"pdf", "a.bmp", "-o", "none/book.pdf"}).status, 1);
  ASSERT_EQ(run({"pdf", "a.bmp", "b.bmp", "a.bmp", "-o", "out/book.PDF"}).status, 0);
  EXPECT_EQ(names("out"), Names{"book.PDF"});
  EXPECT_EQ(sizes("out/book.PDF"), (Names{"4.8 2.4", "7.2 9.6", "4.8 2.4"}));
  // Another document that stands there is replaced.
  ASSERT_EQ(run({"convert", "b.bmp", "-o", "out/book.PDF"}).status, 0);
  EXPECT_EQ(names("out"), Names{"book.PDF"});
  EXPECT_EQ(sizes("out/book.PDF"), Names{"7.2 9.6"});
}

TEST_F(DocumentTest, WithoutAPageThereIsNoDocument) {
  write("out/book.pdf", "old");
  const Outcome outcome = run({"pdf", "a.bmp", "in/broken.bmp", "b.bmp", "-o", "out/book.pdf"});
  EXPECT_EQ(outcome.status, 1);
  EXPECT_NE(outcome.errors.find("out/book.pdf: not written"), std::string::npos) << outcome.errors;
  EXPECT_EQ(names("out"), Names{"book.pdf"});
  EXPECT_EQ(bytes("out/book.pdf"), "old");
}

TEST_F(DocumentTest, WrongNamesAreRefused) {
  EXPECT_EQ(run({"pdf", "a.bmp", "b.bmp", "-o", "book.tif"}).status, 2);
  EXPECT_EQ(run({"pdf", "a.bmp", "b.bmp"}).status, 2);
  write("in/x.pdf", "old");
  EXPECT_EQ(run({"pdf", "a.bmp", "in/x.pdf", "-o", "in/x.pdf"}).status, 2);
  EXPECT_EQ(bytes("in/x.pdf"), "old");
}

}  // namespace

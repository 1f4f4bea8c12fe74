#include "page_scan.h"

#include <algorithm>
#include <map>
#include <qpdf/Pl_Function.hh>
#include <qpdf/QPDFPageObjectHelper.hh>

namespace client {
namespace {

using Object = QPDFObjectHandle;

constexpr Box kEverywhere{-1e30, -1e30, 1e30, 1e30};

enum class Ink { kBlack, kWhite, kOther };

struct State {
  Matrix place;
  Box clip = kEverywhere;
  bool clipsOddly = false;
  Ink ink = Ink::kBlack;
  bool knowsSpace = true;  // of the ink: tones and colours of devices
  bool blends = false;
  bool isThin = false;
  bool isMasked = false;
  int textMode = 0;
};

// What all forms of a page share.
struct Found {
  DrawnPicture picture;
  State state;  // when the picture was drawn
  bool hasPicture = false;
  int forms = 0;
};

Matrix MatrixOf(const Object& numbers) {
  const auto m = Object(numbers).getArrayAsMatrix();
  return {m.a, m.b, m.c, m.d, m.e, m.f};
}

Box BoxOf(const Object& numbers) {
  const auto r = Object(numbers).getArrayAsRectangle();
  return {r.llx, r.lly, r.urx, r.ury};
}

// Content is read into memory as a whole.
void RequireModest(QPDFPageObjectHelper holder) {
  constexpr std::size_t kMostBytes = std::size_t{16} << 20U;
  std::size_t bytes = 0;
  Pl_Function count("content", nullptr, [&](const unsigned char*, std::size_t more) {
    bytes += more;
    if (bytes > kMostBytes) throw PdfFault("too long");
  });
  try {
    holder.pipeContents(&count);
  } catch (const std::exception&) {
    throw PdfFault(bytes > kMostBytes ? "its content is too long" : "its content is damaged");
  }
}

class Scanner : public Object::ParserCallbacks {
 public:
  Scanner(const Object& resources, const State& state, std::vector<std::string> names, Found& found)
      : resources_(resources), state_(state), names_(std::move(names)), found_(found) {}

  void handleObject(Object object) override {
    constexpr std::size_t kMostOperands = 64;
    if (!object.isOperator()) {
      if (operands_.size() == kMostOperands) operands_.erase(operands_.begin());
      operands_.push_back(object);
      return;
    }
    const auto row = Table().find(object.getOperatorValue());
    if (row != Table().end()) (this->*row->second)();
    operands_.clear();
  }
  void handleEOF() override {}

 private:
  using Instruction = void (Scanner::*)();

  // What is not listed draws nothing.
  static const std::map<std::string, Instruction>& Table() {
    static const std::map<std::string, Instruction> table{
        {"q", &Scanner::save},         {"Q", &Scanner::restore},
        {"cm", &Scanner::concatenate}, {"gs", &Scanner::takeParameters},
        {"g", &Scanner::takeTones},    {"rg", &Scanner::takeTones},
        {"k", &Scanner::takeInks},     {"cs", &Scanner::takeSpace},
        {"sc", &Scanner::takeTint},    {"scn", &Scanner::takeTint},
        {"m", &Scanner::addPoint},     {"l", &Scanner::addPoint},
        {"c", &Scanner::bend},         {"v", &Scanner::bend},
        {"y", &Scanner::bend},         {"re", &Scanner::addBox},
        {"W", &Scanner::clip},         {"W*", &Scanner::clip},
        {"n", &Scanner::endPath},      {"f", &Scanner::fill},
        {"F", &Scanner::fill},         {"f*", &Scanner::fill},
        {"S", &Scanner::paint},        {"s", &Scanner::paint},
        {"B", &Scanner::paint},        {"B*", &Scanner::paint},
        {"b", &Scanner::paint},        {"b*", &Scanner::paint},
        {"sh", &Scanner::paint},       {"Tr", &Scanner::takeTextMode},
        {"Tj", &Scanner::write},       {"TJ", &Scanner::write},
        {"'", &Scanner::write},        {"\"", &Scanner::write},
        {"BI", &Scanner::showInline},  {"BDC", &Scanner::beginMarked},
        {"Do", &Scanner::draw}};
    return table;
  }

  [[nodiscard]] double number(std::size_t fromEnd) const {
    if (fromEnd >= operands_.size()) return 0;
    const Object& operand = operands_[operands_.size() - 1 - fromEnd];
    return Object(operand).isNumber() ? Object(operand).getNumericValue() : 0;
  }
  [[nodiscard]] std::string name(std::size_t fromEnd) const {
    if (fromEnd >= operands_.size()) return {};
    Object operand = operands_[operands_.size() - 1 - fromEnd];
    return operand.isName() ? operand.getName() : "";
  }
  [[nodiscard]] bool areAll(double value, std::size_t count) const {
    for (std::size_t i = 0; i < count; ++i) {
      if (number(i) != value) return false;
    }
    return true;
  }
  Object resource(const std::string& kind, const std::string& key) {
    Object all = resources_.isDictionary() ? resources_.getKey(kind) : Object::newNull();
    return all.isDictionary() ? all.getKey(key) : Object::newNull();
  }

  void save() {
    constexpr std::size_t kMostSaved = 1000;
    if (saved_.size() == kMostSaved) throw PdfFault("its content is damaged");
    saved_.push_back(state_);
  }
  void restore() {
    if (saved_.empty()) return;
    state_ = saved_.back();
    saved_.pop_back();
  }
  void concatenate() {
    state_.place =
        Then({number(5), number(4), number(3), number(2), number(1), number(0)}, state_.place);
  }

  void takeParameters() {
    Object parameters = resource("/ExtGState", name(0));
    if (!parameters.isDictionary()) return;
    Object blending = parameters.getKey("/BM");
    if (blending.isArray() && blending.getArrayNItems() > 0) blending = blending.getArrayItem(0);
    if (blending.isName()) {
      state_.blends = blending.getName() != "/Normal" && blending.getName() != "/Compatible";
    }
    Object alpha = parameters.getKey("/ca");
    if (alpha.isNumber()) state_.isThin = alpha.getNumericValue() < 1;
    Object mask = parameters.getKey("/SMask");
    if (!mask.isNull()) state_.isMasked = mask.isDictionary();
  }

  void takeTones() {
    const std::size_t count = std::max<std::size_t>(operands_.size(), 1);
    state_.ink = areAll(0, count) ? Ink::kBlack : areAll(1, count) ? Ink::kWhite : Ink::kOther;
  }
  void takeInks() {
    const bool colorless = number(1) == 0 && number(2) == 0 && number(3) == 0;
    state_.ink = !colorless         ? Ink::kOther
                 : number(0) == 1.0 ? Ink::kBlack
                 : number(0) == 0.0 ? Ink::kWhite
                                    : Ink::kOther;
  }
  void takeSpace() {
    const std::string space = name(0);
    state_.knowsSpace = space == "/DeviceGray" || space == "/DeviceRGB";
    state_.ink = state_.knowsSpace ? Ink::kBlack : Ink::kOther;
  }
  void takeTint() {
    if (state_.knowsSpace) {
      takeTones();
    } else {
      state_.ink = Ink::kOther;
    }
  }

  void extend(Point point) {
    constexpr std::size_t kMostPoints = 6;  // one more than any box has
    if (path_.size() < kMostPoints) path_.push_back(At(state_.place, point));
  }
  void addPoint() { extend({number(1), number(0)}); }
  void bend() {
    for (int i = 0; i < 6; ++i) addPoint();
  }
  void addBox() {
    const double left = number(3);
    const double bottom = number(2);
    const double right = left + number(1);
    const double top = bottom + number(0);
    for (const Point& corner : {Point{left, bottom}, {right, bottom}, {right, top}, {left, top}}) {
      extend(corner);
    }
  }
  void clip() { clips_ = true; }
  void endPath() {
    if (clips_) limitTo(BoxOfCorners(path_));
    clips_ = false;
    path_.clear();
  }
  void limitTo(const std::optional<Box>& box) {
    if (box) {
      state_.clip = Common(state_.clip, *box);
    } else {
      state_.clipsOddly = true;
    }
  }
  // White paper may be painted before the picture lies on it.
  void fill() {
    if (state_.ink != Ink::kWhite || found_.hasPicture) paint();
    endPath();
  }
  void paint() { throw PdfFault("it shows a drawing"); }

  void takeTextMode() { state_.textMode = static_cast<int>(number(0)); }
  void write() {
    constexpr int kInvisible = 3;
    if (state_.textMode != kInvisible) throw PdfFault("it shows text");
    found_.picture.hasHiddenText = true;
  }
  void showInline() { throw PdfFault("its picture lies within its content"); }
  void beginMarked() {
    if (name(1) == "/OC") throw PdfFault("it has layers");
  }

  void draw() {
    const std::string key = name(0);
    Object drawn = resource("/XObject", key);
    if (!drawn.isStream()) return;
    if (drawn.getDict().hasKey("/OC")) throw PdfFault("it has layers");
    std::vector<std::string> names = names_;
    names.push_back(key);
    const std::string kind = drawn.getDict().getKey("/Subtype").isName()
                                 ? drawn.getDict().getKey("/Subtype").getName()
                                 : "";
    if (kind == "/Form") return drawForm(drawn, std::move(names));
    if (kind != "/Image") return;
    if (found_.hasPicture) throw PdfFault("it shows several pictures");
    found_.hasPicture = true;
    found_.state = state_;
    found_.picture.image = drawn;
    found_.picture.names = std::move(names);
  }
  void drawForm(Object form, std::vector<std::string> names) {
    constexpr std::size_t kMostDepth = 8;
    constexpr int kMostForms = 100;
    if (names.size() > kMostDepth || ++found_.forms > kMostForms) {
      throw PdfFault("its content is nested too deeply");
    }
    Object dictionary = form.getDict();
    State state = state_;
    if (dictionary.getKey("/Matrix").isMatrix()) {
      state.place = Then(MatrixOf(dictionary.getKey("/Matrix")), state.place);
    }
    Object own = dictionary.getKey("/Resources");
    Scanner scanner(own.isDictionary() ? own : resources_, state, std::move(names), found_);
    if (dictionary.getKey("/BBox").isRectangle()) {
      const Box box = BoxOf(dictionary.getKey("/BBox"));
      for (const Point& corner : {Point{box.left, box.bottom},
                                  {box.right, box.bottom},
                                  {box.right, box.top},
                                  {box.left, box.top}}) {
        scanner.extend(corner);
      }
      scanner.clips_ = true;
      scanner.endPath();
    }
    QPDFPageObjectHelper holder(form);
    RequireModest(holder);
    holder.parseContents(&scanner);
  }

  Object resources_;
  State state_;
  std::vector<State> saved_;
  std::vector<std::string> names_;
  Found& found_;
  std::vector<Object> operands_;
  std::vector<Point> path_;
  bool clips_ = false;
};

Box PageBox(QPDFPageObjectHelper page) {
  constexpr Box kLetter{0, 0, 612, 792};
  const auto usable = [](const Box& box) { return box.left < box.right && box.bottom < box.top; };
  Box media = page.getMediaBox().isRectangle() ? BoxOf(page.getMediaBox()) : kLetter;
  if (!usable(media)) media = kLetter;
  if (!page.getCropBox().isRectangle()) return media;
  const Box shown = Common(media, BoxOf(page.getCropBox()));
  return usable(shown) ? shown : media;
}

}  // namespace

DrawnPicture ScanPage(QPDFObjectHandle page) {
  constexpr double kTolerance = 2;       // points: paper sizes are rounded
  constexpr double kLastDecimal = 1e-6;  // of numbers in content
  QPDFPageObjectHelper holder(page);
  RequireModest(holder);
  Found found;
  Scanner scanner(holder.getAttribute("/Resources", false), State{}, {}, found);
  holder.parseContents(&scanner);
  if (!found.hasPicture) throw PdfFault("it shows no picture");

  DrawnPicture& picture = found.picture;
  picture.place = found.state.place;
  picture.inksBlack = found.state.ink == Ink::kBlack;
  picture.box = PageBox(holder);
  Object turn = holder.getAttribute("/Rotate", false);
  if (turn.isInteger()) picture.turn = TurnOf(static_cast<int>(turn.getIntValue() % 360));
  Object unit = page.getKey("/UserUnit");
  if (unit.isNumber() && unit.getNumericValue() > 0) picture.unit = unit.getNumericValue();

  if (found.state.blends || found.state.isThin || found.state.isMasked) {
    throw PdfFault("its picture lets the ground show through");
  }
  const Box square = BoxOfSquare(picture.place);
  // In a large unit the content begins with its inverse as a factor.
  const double longest = std::max(square.right - square.left, square.top - square.bottom);
  const double tolerance = kTolerance / picture.unit + kLastDecimal * picture.unit * longest;
  if (found.state.clipsOddly || !Holds(Common(picture.box, found.state.clip), square, tolerance)) {
    throw PdfFault("it shows a part of its picture only");
  }
  return picture;
}

}  // namespace client

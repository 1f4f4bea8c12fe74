// Options as data. A command lists its options as rows; help, range checks, JSON and shell
// completion are all made from them.
#ifndef APPS_ORVO_OPTIONS_H
#define APPS_ORVO_OPTIONS_H

#include <cstddef>
#include <map>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace client {

enum class ValueKind { kWhole, kAmount, kDecimal, kChoice, kText, kFile, kFlag };

// Fields stand in the order in which rows read best.
// NOLINTNEXTLINE(clang-analyzer-optin.performance.Padding)
struct Option {
  std::string_view name;     // without dashes
  std::string_view meaning;  // one line of help, with the unit
  ValueKind kind = ValueKind::kWhole;
  // Numbers: the range of each, how many, and what stands between them.
  double least = 0;
  double most = 0;
  std::size_t fewest = 1;
  std::size_t atMost = 1;
  char separator = ',';
  std::span<const std::string_view> choices = {};
  std::string_view fallback = {};  // the value when the option is not given; empty for none
  std::string_view bare = {};      // the value when it is given without one; others need a "="
  bool required = false;
  bool positional = false;
  bool repeatable = false;  // values of several times become one list
  char shortName = 0;
};

struct Value {
  std::string text;             // as given
  std::vector<double> numbers;  // of a choice: its index
};

// Reads `text` as a value of the option. Empty on success, else what is wrong with it.
std::string ReadValue(const Option& option, const std::string& text, Value& value);

// What stands for the value in the help, such as "N" or "W x H" or "nearest|best".
std::string Placeholder(const Option& option);

// The meaning with range and default.
std::string HelpText(const Option& option);

// The values of one call. Asking for a value that has neither been given nor a fallback is a fault.
class Parameters {
 public:
  void set(const Option& option, Value value) {
    values_[std::string(option.name)] = std::move(value);
  }
  [[nodiscard]] bool has(std::string_view name) const { return values_.contains(name); }
  [[nodiscard]] const std::string& text(std::string_view name) const { return find(name).text; }
  [[nodiscard]] const std::vector<double>& numbers(std::string_view name) const {
    return find(name).numbers;
  }
  [[nodiscard]] double number(std::string_view name, std::size_t index = 0) const {
    return find(name).numbers.at(index);
  }
  [[nodiscard]] int whole(std::string_view name, std::size_t index = 0) const {
    return static_cast<int>(number(name, index));
  }

 private:
  [[nodiscard]] const Value& find(std::string_view name) const {
    return values_.find(name)->second;
  }

  std::map<std::string, Value, std::less<>> values_;
};

}  // namespace client

#endif  // APPS_ORVO_OPTIONS_H

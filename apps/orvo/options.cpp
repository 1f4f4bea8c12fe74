#include "options.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <optional>
#include <sstream>

namespace client {
namespace {

std::string Spell(double number) {
  std::ostringstream out;
  out << number;
  return out.str();
}

std::string RangeText(const Option& option) {
  return Spell(option.least) + " to " + Spell(option.most);
}

std::optional<double> NumberIn(std::string_view text) {
  double number = 0;
  const char* end = text.data() + text.size();
  const auto [stop, fault] = std::from_chars(text.data(), end, number);
  if (fault != std::errc{} || stop != end) return std::nullopt;
  return number;
}

// A whole number in all, or in thousands, millions or billions.
std::optional<double> AmountIn(std::string_view text) {
  double unit = 1;
  for (const char letter : {'k', 'M', 'G'}) {
    unit *= 1000;
    if (!text.ends_with(letter)) continue;
    const auto number = NumberIn(text.substr(0, text.size() - 1));
    return number ? std::optional(*number * unit) : std::nullopt;
  }
  return NumberIn(text);
}

std::string ReadNumbers(const Option& option, std::string_view text, std::vector<double>& numbers) {
  for (std::size_t start = 0; start <= text.size();) {
    const std::size_t stop = std::min(text.find(option.separator, start), text.size());
    const std::string_view item = text.substr(start, stop - start);
    const auto number = option.kind == ValueKind::kAmount ? AmountIn(item) : NumberIn(item);
    if (!number) return "is not " + Placeholder(option);
    // Put so that a NaN fails too.
    if (!(*number >= option.least && *number <= option.most)) {
      return Spell(*number) + " lies outside " + RangeText(option);
    }
    if (option.kind == ValueKind::kWhole && *number != std::trunc(*number)) {
      return Spell(*number) + " is not a whole number";
    }
    numbers.push_back(*number);
    start = stop + 1;
  }
  if (numbers.size() < option.fewest || numbers.size() > option.atMost) {
    return "is not " + Placeholder(option);
  }
  return {};
}

std::string JoinedChoices(const Option& option) {
  std::string joined;
  for (const std::string_view word : option.choices) {
    if (!joined.empty()) joined += '|';
    joined += word;
  }
  return joined;
}

}  // namespace

std::string ReadValue(const Option& option, const std::string& text, Value& value) {
  value.text = text;
  value.numbers.clear();
  switch (option.kind) {
    case ValueKind::kWhole:
    case ValueKind::kAmount:
    case ValueKind::kDecimal:
      return ReadNumbers(option, text, value.numbers);
    case ValueKind::kChoice: {
      const auto found = std::find(option.choices.begin(), option.choices.end(), text);
      if (found == option.choices.end()) return "is not one of " + JoinedChoices(option);
      value.numbers = {static_cast<double>(found - option.choices.begin())};
      return {};
    }
    case ValueKind::kText:
    case ValueKind::kFile:
      return text.empty() ? "is empty" : "";
    case ValueKind::kFlag:
      break;
  }
  return {};
}

std::string Placeholder(const Option& option) {
  switch (option.kind) {
    case ValueKind::kWhole:
    case ValueKind::kDecimal: {
      std::string text = "N";
      for (std::size_t i = 1; i < option.fewest; ++i) {
        text += option.separator;
        text += 'N';
      }
      if (option.atMost == option.fewest) return text;
      text += '[';
      text += option.separator;
      text += option.atMost == option.fewest + 1 ? "N]" : "N...]";
      return text;
    }
    case ValueKind::kAmount:
      return "N[k|M|G]";
    case ValueKind::kChoice:
      return JoinedChoices(option);
    case ValueKind::kText:
      return "TEXT";
    case ValueKind::kFile:
      return "FILE";
    case ValueKind::kFlag:
      break;
  }
  return {};
}

std::string HelpText(const Option& option) {
  std::string text(option.meaning);
  const bool numeric = option.kind == ValueKind::kWhole || option.kind == ValueKind::kDecimal;
  if (numeric) text += ", " + RangeText(option);
  if (!option.fallback.empty()) text += " (default " + std::string(option.fallback) + ")";
  return text;
}

}  // namespace client

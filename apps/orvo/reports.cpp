#include "reports.h"

#include <iostream>
#include <nlohmann/json.hpp>

#include "messages.h"

namespace client {
namespace {

using nlohmann::ordered_json;

constexpr int kIndent = 2;

Report Number(const Option& option, double number) {
  if (option.kind == ValueKind::kWhole) return static_cast<long>(number);
  return number;
}

Report Given(const Option& option, const Parameters& parameters) {
  if (option.kind == ValueKind::kFlag) return true;
  if (option.kind != ValueKind::kWhole && option.kind != ValueKind::kDecimal) {
    return parameters.text(option.name);
  }
  if (option.atMost == 1) return Number(option, parameters.number(option.name));
  Report::List list;
  for (const double number : parameters.numbers(option.name))
    list.push_back(Number(option, number));
  return list;
}

ordered_json ToJson(const Report& report);

ordered_json Converted(const Report::List& list) {
  ordered_json json = ordered_json::array();
  for (const Report& item : list) json.push_back(ToJson(item));
  return json;
}
ordered_json Converted(const Report::Fields& fields) {
  ordered_json json = ordered_json::object();
  for (const auto& [name, value] : fields) json[name] = ToJson(value);
  return json;
}
ordered_json Converted(const auto& value) {
  return value;
}

ordered_json ToJson(const Report& report) {
  return std::visit([](const auto& value) { return Converted(value); }, report.value());
}

std::string Spell(const ordered_json& value) {
  if (value.empty()) return "none";  // a null or an empty list
  if (value.is_string()) return Printable(value.get<std::string>());
  if (!value.is_array()) return value.dump();
  std::string joined;
  for (const ordered_json& item : value) {
    if (!joined.empty()) joined += item.is_array() ? ", " : " ";
    joined += Spell(item);
  }
  return joined;
}

void PrintLines(const ordered_json& object, std::size_t indent) {
  for (const auto& [name, value] : object.items()) {
    std::cout << std::string(indent, ' ') << name << ':';
    if (value.is_object()) {
      std::cout << '\n';
      PrintLines(value, indent + kIndent);
    } else if (value.is_array() && !value.empty() && value.front().is_object()) {
      std::cout << '\n';
      for (const ordered_json& item : value) PrintLines(item, indent + kIndent);
    } else {
      std::cout << ' ' << Spell(value) << '\n';
    }
  }
}

}  // namespace

Report ReportOfCall(const Operation& operation, const Parameters& parameters) {
  Report::Fields given;
  for (const Option& option : operation.options) {
    if (parameters.has(option.name)) given.emplace_back(option.name, Given(option, parameters));
  }
  return Report::Fields{{"command", operation.name}, {"parameters", std::move(given)}};
}

void PrintJson(const Report& report) {
  std::cout << ToJson(report).dump(kIndent, ' ', false, ordered_json::error_handler_t::replace)
            << '\n';
}

void PrintText(const std::string& heading, const Report& report) {
  if (const auto* const text = std::get_if<std::string>(&report.value())) {
    std::cout << *text;
    return;
  }
  if (!heading.empty()) std::cout << Printable(heading) << ":\n";
  PrintLines(ToJson(report), heading.empty() ? 0 : kIndent);
}

}  // namespace client

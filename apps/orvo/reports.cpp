#include "reports.h"

#include <iostream>

namespace client {
namespace {

using nlohmann::ordered_json;

constexpr int kIndent = 2;

ordered_json Number(const Option& option, double number) {
  if (option.kind == ValueKind::kWhole) return static_cast<long>(number);
  return number;
}

ordered_json ToJson(const Option& option, const Parameters& parameters) {
  if (option.kind == ValueKind::kFlag) return true;
  if (option.kind != ValueKind::kWhole && option.kind != ValueKind::kDecimal) {
    return parameters.text(option.name);
  }
  if (option.atMost == 1) return Number(option, parameters.number(option.name));
  ordered_json list = ordered_json::array();
  for (const double number : parameters.numbers(option.name))
    list.push_back(Number(option, number));
  return list;
}

std::string Spell(const ordered_json& value) {
  if (value.empty()) return "none";  // a null or an empty list
  if (value.is_string()) return value.get<std::string>();
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
    } else {
      std::cout << ' ' << Spell(value) << '\n';
    }
  }
}

}  // namespace

ordered_json StartDocument(const Operation& operation, const Parameters& parameters) {
  ordered_json given = ordered_json::object();
  for (const Option& option : operation.options) {
    if (parameters.has(option.name)) given[std::string(option.name)] = ToJson(option, parameters);
  }
  return {{"command", operation.name}, {"parameters", given}};
}

void PrintJson(const ordered_json& document) {
  std::cout << document.dump(kIndent, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

void PrintText(const std::string& heading, const ordered_json& report) {
  if (report.is_string()) {
    std::cout << report.get_ref<const std::string&>();
    return;
  }
  if (!heading.empty()) std::cout << heading << ":\n";
  PrintLines(report, heading.empty() ? 0 : kIndent);
}

}  // namespace client

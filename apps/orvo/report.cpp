#include "report.h"

#include <algorithm>

namespace client {

void Report::set(std::string_view name, Report value) {
  field(name) = std::move(value);
}

void Report::append(std::string_view name, Report value) {
  Report& list = field(name);
  if (!std::holds_alternative<List>(list.value_)) list.value_ = List{};
  std::get<List>(list.value_).push_back(std::move(value));
}

void Report::take(const Report& other) {
  if (const auto* const fields = std::get_if<Fields>(&other.value_)) {
    for (const auto& [name, value] : *fields) set(name, value);
  }
}

Report& Report::field(std::string_view name) {
  if (!std::holds_alternative<Fields>(value_)) value_ = Fields{};
  auto& fields = std::get<Fields>(value_);
  const auto found = std::ranges::find(fields, name, &Field::first);
  return found == fields.end() ? fields.emplace_back(name, nullptr).second : found->second;
}

}  // namespace client

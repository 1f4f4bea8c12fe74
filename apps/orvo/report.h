// What a command found: names with values, shown to people and as JSON alike. A small type of its
// own, so that only what prints it needs the JSON library.
#ifndef APPS_ORVO_REPORT_H
#define APPS_ORVO_REPORT_H

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <utility>
#include <variant>
#include <vector>

namespace client {

class Report {
 public:
  using List = std::vector<Report>;
  using Field = std::pair<std::string, Report>;
  using Fields = std::vector<Field>;  // in the order of their finding
  using Value = std::variant<std::nullptr_t, bool, std::int64_t, double, std::string, List, Fields>;

  // Values turn into reports by themselves.
  Report(std::nullptr_t value = nullptr) : value_(value) {}
  Report(bool value) : value_(value) {}
  template <std::integral Whole>
  Report(Whole value) : value_(static_cast<std::int64_t>(value)) {}
  Report(double value) : value_(value) {}
  Report(std::string value) : value_(std::move(value)) {}
  Report(std::string_view value) : value_(std::string(value)) {}
  Report(const char* value) : value_(std::string(value)) {}
  Report(List value) : value_(std::move(value)) {}
  Report(Fields value) : value_(std::move(value)) {}

  [[nodiscard]] const Value& value() const { return value_; }
  [[nodiscard]] bool isNothing() const { return value_.index() == 0; }

  // Sets a field of a report of fields; a report of nothing becomes one.
  void set(std::string_view name, Report value);
  // Adds to a list below that name, which is made if need be.
  void append(std::string_view name, Report value);
  // Takes over all fields of another, if it has fields.
  void take(const Report& other);

 private:
  Report& field(std::string_view name);

  Value value_;
};

}  // namespace client

#endif  // APPS_ORVO_REPORT_H

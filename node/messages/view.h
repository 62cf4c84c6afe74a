#pragma once
// A message that was read, field by field by name.

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "decode.h"

namespace messages {

// The fields of a message, of a group or of an item of a list; those that stand in them are not among them. As long as
// what was decoded.
class View {
 public:
  explicit View(const Decoded& of) : of_(&of), end_(of.nodes.size()) {}

  std::optional<i64> number(std::string_view name) const;  // of a scaled one its value without the decimals
  i64 numberOr(std::string_view name, i64 otherwise) const { return number(name).value_or(otherwise); }
  std::optional<double> scaled(std::string_view name) const;  // none also for more decimals than there are
  std::string text(std::string_view name) const;              // up to its end; bytes whole
  std::string word(std::string_view name) const;              // of a number: by its words, else in digits
  std::vector<View> items(std::string_view list) const;       // or the group of that name

 private:
  View(const Decoded& of, std::size_t at, std::size_t end) : of_(&of), at_(at), end_(end) {}
  const Node* find(std::string_view name) const;

  const Decoded* of_;
  std::size_t at_ = 0, end_ = 0;
};

}  // namespace messages

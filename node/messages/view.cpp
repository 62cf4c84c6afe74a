#include "view.h"

#include <algorithm>

namespace messages {

static bool isInner(const Field& field) { return field.kind == Kind::list || field.kind == Kind::group; }

const Node* View::find(std::string_view name) const {
  for (std::size_t at = at_; at < end_; at = of_->nodes[at].end)
    if (of_->nodes[at].field->name == name) return &of_->nodes[at];
  return nullptr;
}

std::optional<i64> View::number(std::string_view name) const {
  const Node* const node = find(name);
  return node == nullptr ? std::nullopt : std::optional(node->number);
}

std::optional<double> View::scaled(std::string_view name) const {
  constexpr double kTens[] = {1, 10, 100, 1000, 10000, 100000};
  const Node* const node = find(name);
  if (node == nullptr) return {};
  const std::size_t decimals = node->head & 0xff;
  if (decimals >= std::size(kTens)) return {};
  return static_cast<double>(node->number) / kTens[decimals];
}

std::string View::text(std::string_view name) const {
  const Node* const node = find(name);
  if (node == nullptr) return {};
  const Bytes own = of_->bytes.subspan(node->offset, node->size);
  const auto end = node->field->kind == Kind::text ? std::ranges::find(own, u8{0}) : own.end();
  return {own.begin(), end};
}

std::string View::word(std::string_view name) const {
  const Node* const node = find(name);
  if (node == nullptr) return {};
  const auto word = std::ranges::find(node->field->words, node->number, &Word::value);
  return word != node->field->words.end() ? word->text : std::to_string(node->number);
}

std::vector<View> View::items(std::string_view list) const {
  std::vector<View> all;
  for (std::size_t at = at_; at < end_; at = of_->nodes[at].end)
    if (of_->nodes[at].field->name == list && isInner(*of_->nodes[at].field))
      all.push_back({*of_, at + 1, of_->nodes[at].end});
  return all;
}

}  // namespace messages

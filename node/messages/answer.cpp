#include "answer.h"

#include <algorithm>

#include "decode.h"
#include "numbers.h"

namespace messages {

namespace {

class Answerer {
 public:
  Answerer(const Decoded& question, const Layout& layout, const Knowledge& knowledge)
      : question_(question), knowledge_(knowledge), registers_(layout.registers) {
    put(layout.fields, {0, question.nodes.size()});
  }
  std::vector<u8> take() { return std::move(to_); }

 private:
  // Nodes of the question that stand where we are in the answer: those of an item, of a group, or of the whole.
  struct Scope {
    std::size_t at = 0, end = 0;
  };

  // The node of a name; of a list its item i.
  const Node* find(Scope scope, const Field& field, i64 i) const {
    for (std::size_t at = scope.at; at < scope.end; at = question_.nodes[at].end) {
      const Node& node = question_.nodes[at];
      if (node.field->name != field.name || node.field->kind != field.kind) continue;
      if (field.kind != Kind::list || node.number == i) return &node;
    }
    return nullptr;
  }

  Scope inside(const Node* node) const {
    if (node == nullptr) return {};
    return {static_cast<std::size_t>(node - question_.nodes.data()) + 1, node->end};
  }

  // Behind the last byte nothing is left.
  i64 valueOf(const Amount& amount) const { return messages::valueOf(amount, registers_, 0); }

  void put(const std::vector<Field>& fields, Scope scope) {
    for (const Field& field : fields) put(field, scope);
  }

  void put(const Field& field, Scope scope) {
    switch (field.kind) {
      case Kind::when:
        put(holds(field, valueOf(field.amount)) ? field.fields : field.otherwise, scope);
        return;
      case Kind::list:
        putItems(field, scope);
        return;
      case Kind::group:
        put(field.fields, inside(find(scope, field, 0)));
        return;
      case Kind::details:
        return;
      case Kind::number:
        putNumber(field, scope);
        return;
      default:
        putBytes(field, scope);
    }
  }

  void putItems(const Field& field, Scope scope) {
    for (i64 i = 0; i < valueOf(field.amount); ++i) {
      place_.push_back(i);
      put(field.fields, inside(find(scope, field, i)));
      place_.pop_back();
    }
  }

  void putNumber(const Field& field, Scope scope) {
    const Node* const asked = find(scope, field, 0);
    i64 number = 0;
    if (field.fixed)
      number = valueOf(field.amount);
    else if (const auto known = knowledge_.find(field, place_))
      number = known->number;
    else if (asked != nullptr)
      number = asked->number;
    else if (!field.words.empty())
      number = field.words.front().value;
    else if (!field.ranges.empty() && field.ranges.front().low > 0)
      number = field.ranges.front().low;
    registers_[static_cast<std::size_t>(field.keep)] = number;
    writeNumber(number, field, to_);
  }

  void putBytes(const Field& field, Scope scope) {
    const i64 size = field.width != 0 ? field.width : std::max<i64>(valueOf(field.amount), 0);
    const std::size_t end = to_.size() + static_cast<std::size_t>(size);
    const Node* const asked = field.name.empty() ? nullptr : find(scope, field, 0);
    const auto known = field.name.empty() ? std::nullopt : knowledge_.find(field, place_);
    if (known && field.kind == Kind::scaled) {
      to_.insert(to_.end(), {0, known->decimals});
      writeNumber(known->number, kScaledValue, to_);
    } else if (known) {
      const std::string_view bytes = std::string_view(known->bytes).substr(0, static_cast<std::size_t>(size));
      to_.insert(to_.end(), bytes.begin(), bytes.end());
    } else if (asked != nullptr && asked->size <= size) {
      const Bytes own = question_.bytes.subspan(asked->offset, asked->size);
      to_.insert(to_.end(), own.begin(), own.end());
    }
    to_.resize(end);
  }

  const Decoded& question_;
  const Knowledge& knowledge_;
  std::vector<i64> registers_;
  std::vector<i64> place_;
  std::vector<u8> to_;
};

}  // namespace

std::optional<Decoded> readMessage(const Book& book, Road ask, u16 id, Bytes question) {
  const Message* const message = book.find(id);
  const Layout* const asked = message == nullptr ? nullptr : message->find(ask);
  if (asked == nullptr) return {};
  Decoded decoded = decode(*message, *asked, question);
  const auto isOfForm = [](const Problem& problem) { return problem.fault == Fault::form; };
  if (std::ranges::any_of(decoded.problems, isOfForm)) return {};
  return decoded;
}

std::optional<std::vector<u8>> answer(const Book& book, Road ask, u16 id, Bytes question, const Knowledge& knowledge) {
  const auto decoded = readMessage(book, ask, id, question);
  if (!decoded) return {};
  const Layout* const answered = decoded->message->find(static_cast<Road>(static_cast<int>(ask) + 1));
  if (answered == nullptr) return {};
  return Answerer(*decoded, *answered, knowledge).take();
}

std::optional<std::vector<u8>> plainAnswer(const Book& book, Road ask, u16 id, Bytes question) {
  struct Nothing : Knowledge {
    std::optional<Value> find(const Field&, std::span<const i64>) const override { return {}; }
  };
  return answer(book, ask, id, question, Nothing());
}

}  // namespace messages

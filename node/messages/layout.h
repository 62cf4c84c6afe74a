#pragma once
// What a message looks like: a tree of fields in the order of its bytes, as a description file tells it.

#include <limits>
#include <map>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "platform/types.h"

namespace messages {

using Bytes = std::span<const u8>;

// The ways that messages take, named as in a scenario's record. The two answers to a manager share one form for errors.
enum class Road : u8 {
  set,
  setReply,
  get,
  getReply,
  gpon,
  gponAsk,
  gponAnswer,
  gepon,
  geponAsk,
  geponAnswer,
  epon,
  ngn,
  ngnAsk,
  ngnAnswer,
};
inline constexpr std::size_t kRoads = 14;
std::string_view roadName(Road road);  // "set reply", "gpon ask"

// A number that stands in the message, or follows from one that does: factor * registers[source] + constant, or all
// that is left.
struct Amount {
  static constexpr i16 kConstant = -1;
  static constexpr i16 kRest = -2;
  i16 source = kConstant;  // else the register of an earlier number
  i32 factor = 1;
  i64 constant = 0;
  std::string text;  // as it is written
};

struct Word {
  i64 value = 0;
  std::string text;
};

struct Range {
  i64 low = std::numeric_limits<i64>::min();
  i64 high = std::numeric_limits<i64>::max();
};

enum class Kind : u8 {
  number,
  scaled,  // a zero byte, the count of decimals, a signed number of four bytes
  text,    // padded with zeros; a full one has no end
  bytes,
  mac,
  ip,
  gap,
  list,     // `amount` times `fields`
  group,    // `fields`, under a name
  when,     // `fields` or `otherwise`: nothing of its own
  details,  // of an error: what its code tells
};

enum class Order : u8 { network, little, host };
enum class Compare : u8 { equal, unequal, less, atMost, more, atLeast };

struct Field {
  std::string name;
  Kind kind = Kind::number;
  Order order = Order::network;
  u8 width = 0;  // bytes of a number
  bool isSigned = false;
  bool hex = false;     // how people write it
  bool loose = false;   // the bytes of a gap, or behind a text, may be anything
  bool open = false;    // values without a word are good
  bool fixed = false;   // the number is always `amount`
  bool counts = false;  // the number tells the length of what follows
  i16 keep = -1;        // the register that takes the number
  u32 divisor = 1;
  std::string unit;
  std::string note;
  std::vector<Word> words;
  std::vector<Range> ranges;
  Amount amount;  // bytes of a text, bytes or gap; items of a list; the constant of a number
  // Of `when`: registers[amount.source] (or what is left) against any of the values.
  Compare compare = Compare::equal;
  std::vector<i64> values;
  std::string condition;  // as it is written
  std::vector<Field> fields;
  std::vector<Field> otherwise;
};

struct Layout {
  std::vector<Field> fields;
  u16 registers = 0;
  bool given = false;
  std::string note;  // of an error: what its code means
};

struct Message {
  std::vector<u16> ids;
  std::string name;
  std::string note;
  std::string file;
  std::vector<std::string> shows;  // syntaxes of the commands that show what its GET answers
  Layout roads[kRoads];
  std::map<u16, Layout> details;  // of an error packet, by its code

  const Layout* find(Road road) const;
};

// All messages, and the packet by which any of them tells an error.
struct Book {
  std::vector<Message> messages;
  Layout errorPacket;

  const Message* find(u16 id) const;
};

// The descriptions that the programs were built with. The first call reads them; it throws BadDescription if they are
// bad.
const Book& book();

struct Source {
  std::string_view name;
  std::string_view text;
};
std::span<const Source> sources();

// Throws BadDescription.
Book readBook(std::span<const Source> sources);

}  // namespace messages

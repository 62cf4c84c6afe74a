#pragma once
// Bytes into fields by a layout, and back.

#include <string>
#include <vector>

#include "layout.h"

namespace messages {

// A field as it stands in a message; of a list, one for each of its items. What belongs to a node follows it.
struct Node {
  const Field* field = nullptr;
  u32 offset = 0;
  u32 size = 0;
  u32 end = 0;     // the index of the node behind this one and what belongs to it
  i64 number = 0;  // its number; the bits of a u64; of an item its index, from 0
  u16 head = 0;    // of a scaled number: its two bytes ahead of the value
};

// What can be wrong with a field: the form of the message, a value without a word, one outside its ranges. What a
// recovery takes unchecked may have any value, and go out again with it where a number is concerned.
enum class Fault : u8 { form, word, range };

struct Problem {
  u32 offset = 0;
  std::string field;  // "object[2].row[0].tlsVid"
  std::string why;
  Fault fault = Fault::form;
};

// The nodes point to the layout's fields and into the bytes, which must live as long. With a problem, the nodes are
// those ahead of the first byte that could not be read.
struct Decoded {
  Bytes bytes;
  const Layout* layout = nullptr;
  const Message* message = nullptr;
  std::vector<Node> nodes;
  std::vector<Problem> problems;
};

// Null if the message has no such way. An answer to a manager that is the packet of an error is read as that.
const Layout* layoutOf(const Book& book, const Message& message, Road road, Bytes bytes);

Decoded decode(const Message& message, const Layout& layout, Bytes bytes);

// The bytes that the nodes stand for, put together by the layout; throws std::runtime_error if they don't fit it.
std::vector<u8> encode(const Decoded& decoded);

// What is wrong with a message: an unknown id or way, faults of its fields up to `worst`, another result when it is put
// together again.
std::vector<std::string> check(const Book& book, Road road, u16 id, Bytes bytes, Fault worst);

}  // namespace messages

#pragma once
// A manager's dealings with a message by name, for the tools.

#include <string>

#include "words.h"

namespace messages {

// By its number, or by its name in whatever capitals. Null if there is none. `id` is the number, or the message's
// first.
const Message* findNamed(const Book& book, std::string_view text, u16& id);

// What a GET asks for with these values, or words; those that the question does not have are left out.
std::vector<u8> questionOf(const Message& message, const Json& values);

// A reply's values; of an error {"error": {"code": -120, "meaning": "no such mode", "message": 3087, ...}}. Of items
// with an id, those alone that `only` has, if it has any.
Json readReply(const Book& book, const Message& message, Road road, Bytes bytes, const Json& only);
bool isRefusal(const Book& book, const Message& message, Road road, Bytes bytes);

// For people: fields in lines, an error in one: "refused: -120, no such mode (CIDMode 5)".
std::string replyText(const Book& book, const Message& message, Road road, Bytes bytes, const Json& only);

// For programs: the values as JSON, in lines.
std::string jsonText(const Json& values);

// What can be set and asked for, and what is answered.
std::string description(const Message& message);

}  // namespace messages

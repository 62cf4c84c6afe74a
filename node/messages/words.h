#pragma once
// The values of a message as words of a line:
//   rfc2833Neg=auto       a field; its name may be shortened, in capitals or not, while it is clear which one
//   row[1].tlsVid=100     a field of an item of a list, or of a group
//   1/5, 1/all            the item of this port or slot in the message's list: the words behind it belong to it

#include <optional>
#include <span>
#include <string>
#include <vector>

#include "json.h"

namespace messages {

// Whether a word is one of these, and not bytes.
bool isValueWord(std::string_view word);

enum class Strange : u8 { refused, leftOut };

// Puts the words into `values`. A name that the layout does not have is refused (BadValue), or left out.
void assign(const Layout& layout, std::span<const std::string> words, Strange strange, Json& values);

// Throws BadValue for an item of the message's lists that does not say which it is: by slot and port, or by id.
void requireNames(const Layout& layout, const Json& told);

// Fills what `told` leaves open from `known`: members of objects, and those of an item of an array from the item of the
// same slot and port, of the same id (or, `like` told, of that id), else of the same index. Items with such a name that
// are not told stay away; one of an id that is not known, with no `like`, is a BadValue.
void fill(Json& told, const Json& known, std::optional<i64> like = {});

// The JSON pointers of all values that are not objects or arrays.
std::vector<std::string> pathsOf(const Json& values);

}  // namespace messages

#pragma once
// Messages as JSON, for programs: an object with a member for each field, under its name; a list is an array of
// objects.
//
// A number with words is its word, one with decimals is shown with them; a text and an address are strings, other bytes
// a string of hex digits. A text's bytes are letters of Latin-1. Counts of lists, constants and gaps of zeros have no
// member: they follow from the rest. A gap that is not zero is "reserved", one more in the same object "reserved2".

#include <nlohmann/json_fwd.hpp>
#include <stdexcept>
#include <string>
#include <vector>

#include "decode.h"

namespace messages {

using Json = nlohmann::ordered_json;

inline constexpr int kMostDecimals = 9;  // of a scaled number; one with more is shown as its bytes, "0x..."

Json toJson(const Decoded& decoded);

// A value that its field can't hold: the path of the member, and why.
struct BadValue : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// The message that has these values. A field without a member has its first word, its lowest value or zero. Members
// that are not the message's are left out and named in `unused`, as JSON pointers. Throws BadValue.
std::vector<u8> fromJson(const Layout& layout, const Json& values, std::vector<std::string>& unused);

// What gets lost when a message goes into JSON and back; empty: nothing, or it is none that decodes whole.
std::string lostInJson(const Book& book, Road road, u16 id, Bytes bytes);

// The name of an unnamed field, which is the `count`-th gap of its object.
std::string gapName(const Field& field, int& count);

}  // namespace messages

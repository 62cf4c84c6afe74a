#pragma once
// Trace lines of the voice area, and the place that a line names.

#include <string_view>
#include <type_traits>

#include "common/debug_control.h"
#include "platform/types.h"

// The place that a trace or log line names: the caller's, when taken as a default argument. A step that an item takes
// as all do is named by its family's spelling ("nParse*") and the item's stem, at the item's row.
struct Where {
  const char* function = "";
  const char* file = "";
  int line = 0;
  const char* stem = "";  // for a * in the function
  static constexpr Where here(const char* function = __builtin_FUNCTION(), const char* file = __builtin_FILE(),
                              int line = __builtin_LINE()) {
    return {function, file, line, ""};
  }
};

// The source file of a place, without its folders.
const char* fileName(Where where);

// The function of a place, as a line prints it.
struct FunctionName {
  explicit FunctionName(Where where);
  char text[64];
};

// The next conversion of a printf text: 's' for a text, 'd' for a number, 0 at the end.
constexpr char nextConversion(std::string_view& text) {
  while (text.find('%') != text.npos) {
    text.remove_prefix(text.find_first_of("%sducxXp", text.find('%') + 1));
    const char kind = text.front();
    text.remove_prefix(1);
    if (kind != '%') return kind == 's' ? 's' : 'd';
  }
  return 0;
}

template <class... Arguments>
constexpr bool conversionsFit(std::string_view text) {
  return ((nextConversion(text) == (std::is_pointer_v<Arguments> ? 's' : 'd')) && ...) && nextConversion(text) == 0;
}

// A printf text whose conversions the compiler has held against its arguments.
template <class... Arguments>
struct Text {
  const char* format;
  Where where;
  consteval Text(const char* text, Where place = Where::here()) : format(text), where(place) {
    if (!conversionsFit<Arguments...>(text)) throw "the conversions do not fit the arguments";
  }
};

// Prints "\r\n FUNCTION, FILE LINE, words. \r\n" on standard output while the voice area's func word is on.
void printTrace(Where where, const char* words, ...);

template <class... Arguments>
void trace(Text<std::type_identity_t<Arguments>...> text, Arguments... arguments) {
  printTrace(text.where, text.format, arguments...);
}

// The same for the other areas, whose lines go to the log at severity 10.
void printTrace(Area area, Where where, const char* words, ...);

template <Area area, class... Arguments>
void areaTrace(Text<std::type_identity_t<Arguments>...> text, Arguments... arguments) {
  printTrace(area, text.where, text.format, arguments...);
}

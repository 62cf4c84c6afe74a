#include "common/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <iterator>

#include "common/debug_control.h"
#include "common/msan_init.h"
#include "platform/log.h"

const char* fileName(Where where) {
  const char* slash = std::strrchr(where.file, '/');
  return slash != nullptr ? slash + 1 : where.file;
}

FunctionName::FunctionName(Where where) {
  char* to = text;
  const auto append = [&](char c) {
    if (to + 1 < std::end(text)) *to++ = c;
  };
  for (const char* at = where.function; *at != '\0'; ++at) {
    if (*at != '*') {
      append(*at);
    } else {
      for (const char* stem = where.stem; *stem != '\0'; ++stem) append(*stem);
    }
  }
  *to = '\0';
}

// A text with its arguments filled in, as much of it as a line takes.
struct Words {
  Words(const char* format, std::va_list arguments) { std::vsnprintf(text, sizeof text, format, arguments); }
  char text[1024];
};

void printTrace(Where where, const char* words, ...) {
  if (!debugOn(Area::voice)) return;
  std::va_list arguments;
  va_start(arguments, words);
  const Words line(words, arguments);
  va_end(arguments);
  // In one call, so that lines of two doors do not mix.
  std::printf("\r\n %s, %s %d, %s. \r\n", FunctionName(where).text, fileName(where), where.line, line.text);
}

void printTrace(Area area, Where where, const char* words, ...) {
  if (!debugOn(area)) return;
  std::va_list arguments;
  va_start(arguments, words);
  const Words line(words, arguments);
  va_end(arguments);
  ulogPrintf(gModuleId_Msan, kLogDebug, "\r\n %s, %s %d, %s. \r\n", FunctionName(where).text, fileName(where),
             where.line, line.text);
}

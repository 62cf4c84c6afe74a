#include "common/trace.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "common/debug_control.h"

const char* fileName(Where where) {
  const char* slash = std::strrchr(where.file, '/');
  return slash != nullptr ? slash + 1 : where.file;
}

void printTrace(Where where, const char* words, ...) {
  if (!debugOn(Area::voice)) return;
  char line[1024];
  std::va_list arguments;
  va_start(arguments, words);
  std::vsnprintf(line, sizeof line, words, arguments);
  va_end(arguments);
  // In one call, so that lines of two doors do not mix.
  std::printf("\r\n %s, %s %d, %s. \r\n", where.function, fileName(where), where.line, line);
}

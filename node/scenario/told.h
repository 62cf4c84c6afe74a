#pragma once
// The messages in a record: what the lines and the directives say, as bytes on their way.

#include <map>
#include <string>
#include <string_view>
#include <vector>

#include "compare.h"
#include "messages/layout.h"
#include "reader.h"

namespace scenario {

struct Told {
  static constexpr std::size_t kDirective = ~std::size_t{0};
  messages::Road road = messages::Road::set;
  u16 slot = 0;
  u16 id = 0;
  std::vector<u8> bytes;
  std::size_t line = kDirective;  // of the record, else the directive itself is the message
};

// Reads directives with their records, in order. What comes in pieces is told with its last one.
class TellingReader {
 public:
  std::vector<Told> read(const std::string& directive, const std::vector<std::string>& record);

  // True while nobody checks what is set.
  bool recovering() const { return recovering_; }

 private:
  void readManager(std::string_view directive, const std::vector<std::string>& record, std::vector<Told>& all);

  std::map<u16, std::vector<u8>> requests_, replies_;  // unfinished
  bool recovering_ = false;
};

// What an `answer` directive says; false for another directive.
bool readAnswer(std::string_view directive, Told& told);

// A record's line that is a message to a card or to the voice side; false if it is none.
bool readSent(std::string_view line, Told& told);

// The fields by which lines that a directive did not give differ from those that were expected in their place.
std::vector<std::string> fieldDifferences(const Directive& directive, const std::vector<Pair>& pairs,
                                          const std::vector<std::string>& record);

// The manager's answer began with the word for success, which a few messages write low byte first.
bool isSuccess(const std::vector<u8>& reply);

}  // namespace scenario

#include "told.h"

#include <algorithm>
#include <charconv>
#include <utility>

#include "arguments.h"
#include "text.h"

namespace scenario {

namespace {

constexpr std::pair<std::string_view, messages::Road> kMarks[] = {
    {"gpon", messages::Road::gpon},       {"gpon?", messages::Road::gponAsk}, {"gepon", messages::Road::gepon},
    {"gepon?", messages::Road::geponAsk}, {"epon", messages::Road::epon},     {"ngn", messages::Road::ngn},
    {"ngn?", messages::Road::ngnAsk},
};

// The bytes behind a mark; empty without such a line.
std::vector<u8> bytesBehind(std::string_view mark, const std::vector<std::string>& record, std::size_t& line) {
  for (line = 0; line < record.size(); ++line)
    if (firstWord(record[line]) == mark && record[line] != "reply none")
      return parseBytes(std::string_view(record[line]).substr(mark.size() + 1));
  return {};
}

}  // namespace

bool readSent(std::string_view line, Told& told) {
  const auto* const mark =
      std::ranges::find(kMarks, firstWord(line), &std::pair<std::string_view, messages::Road>::first);
  if (mark == std::end(kMarks)) return false;
  Arguments arguments(line.substr(mark->first.size()));
  const bool toCard = !mark->first.starts_with("ngn");
  if (toCard) told.slot = static_cast<u16>(arguments.number("slot", 0, 65535));
  told.road = mark->second;
  told.id = static_cast<u16>(arguments.number("id", 0, 65535));
  told.bytes = arguments.bytes();
  return true;
}

bool isSuccess(const std::vector<u8>& reply) {
  static constexpr u8 kDone[] = {0, 0, 0, 1};
  return reply.size() >= 4 && (std::equal(std::begin(kDone), std::end(kDone), reply.begin()) ||
                               std::equal(std::rbegin(kDone), std::rend(kDone), reply.begin()));
}

bool readAnswer(std::string_view directive, Told& told) {
  using messages::Road;
  if (!directive.starts_with("answer ")) return false;
  Arguments arguments(directive.substr(7));
  static constexpr Road kRoads[] = {Road::gponAnswer, Road::geponAnswer, Road::ngnAnswer};
  told.road = kRoads[arguments.choice({"gpon", "gepon", "ngn"})];
  if (told.road != Road::ngnAnswer) told.slot = arguments.slot();
  told.id = arguments.id();
  told.bytes = arguments.bytes();
  return true;
}

std::vector<Told> TellingReader::read(const std::string& directive, const std::vector<std::string>& record) {
  std::vector<Told> all;
  if (directive.starts_with("recover ")) recovering_ = directive == "recover on";
  if (directive.starts_with("snmp ")) readManager(std::string_view(directive).substr(5), record, all);
  for (std::size_t i = 0; i < record.size(); ++i) {
    Told told;
    if (!readSent(record[i], told)) continue;
    told.line = i;
    all.push_back(std::move(told));
  }
  return all;
}

void TellingReader::readManager(std::string_view directive, const std::vector<std::string>& record,
                                std::vector<Told>& all) {
  Arguments arguments(directive);
  const std::string_view word = arguments.word("direction");
  const bool isGet = word == "get";
  const auto id = static_cast<u16>(arguments.number("id", 0, 65535));
  const std::string_view text = arguments.rest();
  const std::vector<u8> frame = text == "null" ? std::vector<u8>() : parseBytes(text);
  std::vector<u8>& request = requests_[id];
  if (isGet) request.clear();
  request.insert(request.end(), frame.begin(), frame.end());
  std::vector<u8>& reply = replies_[id];
  std::size_t line = 0;
  const std::vector<u8> piece = bytesBehind("reply", record, line);
  reply.insert(reply.end(), piece.begin(), piece.end());
  const bool more = word == "set-more" || (isGet && std::ranges::find(record, "last 0") != record.end());
  if (more) return;
  const bool good = isSuccess(reply);
  if (good) all.push_back({isGet ? messages::Road::get : messages::Road::set, 0, id, request, Told::kDirective});
  if (!reply.empty()) all.push_back({isGet ? messages::Road::getReply : messages::Road::setReply, 0, id, reply, line});
  request.clear();
  reply.clear();
}

}  // namespace scenario

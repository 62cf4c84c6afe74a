#include "named.h"

#include <fmt/format.h>

#include <algorithm>
#include <nlohmann/json.hpp>

#include "messages/named.h"

namespace frame {

namespace {

using messages::BadValue;
using messages::Json;
using messages::Road;

// What a request tells, by a layout.
Json tellBy(const messages::Layout* layout, const Request& request, messages::Strange strange) {
  Json values = Json::object();
  if (!request.from.empty()) values = Json::parse(request.from, nullptr, false);
  if (!values.is_object()) throw BadValue("the values are no JSON object");
  if (layout == nullptr) return values;
  try {
    messages::assign(*layout, request.words, strange, values);
    return values;
  } catch (const Json::exception&) {  // a member of the text is a list where there is none, or the other way round
    throw BadValue("the words do not fit what the JSON text has");
  }
}

bool isRefusal(const Request& request, Road road, const std::vector<u8>& reply) {
  return messages::isRefusal(messages::book(), *request.message, road, reply);
}

std::string textOf(const Request& request, Road road, const std::vector<u8>& reply, const Json& only) {
  const auto& book = messages::book();
  if (request.json) return messages::jsonText(messages::readReply(book, *request.message, road, reply, only));
  return messages::replyText(book, *request.message, road, reply, only);
}

// A value that the message has no place for is a mistake where it was told, and nothing where the node answered it.
void refuseUnused(const std::vector<std::string>& told, const std::vector<std::string>& unused) {
  for (const std::string& path : told)
    for (const std::string& lost : unused)
      if (path == lost || path.starts_with(lost + "/"))
        throw BadValue(fmt::format("{}: the message has no such field, or not with these values", path.substr(1)));
}

std::vector<u8> wholeAnswer(Client& client, u16 id, const std::vector<u8>& question) {
  if (!question.empty()) client.query(id, question);
  std::vector<u8> answer;
  for (bool last = false; !last;) {
    const Piece piece = client.next(id);
    answer.insert(answer.end(), piece.bytes.begin(), piece.bytes.end());
    last = piece.last;
  }
  return answer;
}

// What the node has fills what is not told: of a new profile, what profile 0 has. False with the refusal in `text`.
bool fillFromNode(Client& client, const Request& request, Json& values, std::string& text) {
  if (request.message->find(Road::getReply) == nullptr) return true;
  const auto answer = wholeAnswer(client, request.id, messages::questionOf(*request.message, values));
  if (isRefusal(request, Road::getReply, answer)) {
    text = textOf(request, Road::getReply, answer, Json::object());
    if (!request.json) text += "what the node has can't be read; --new begins with defaults\n";
    return false;
  }
  const auto known = messages::readReply(messages::book(), *request.message, Road::getReply, answer, Json::object());
  messages::fill(values, known, request.fresh ? std::optional<i64>(0) : std::nullopt);
  return true;
}

// Whether the items of the message are told apart by their ids alone: then id 0 has the defaults.
bool hasProfiles(const messages::Layout& layout) {
  return std::ranges::any_of(layout.fields, [](const messages::Field& field) {
    return field.kind == messages::Kind::list && field.fields.front().name == "id";
  });
}

}  // namespace

bool getNamed(Client& client, const Request& request, std::string& text) {
  const Json told = tellBy(request.message->find(Road::getReply), request, messages::Strange::refused);
  const auto answer = wholeAnswer(client, request.id, messages::questionOf(*request.message, told));
  text = textOf(request, Road::getReply, answer, told);
  return !isRefusal(request, Road::getReply, answer);
}

bool setNamed(Client& client, const Request& request, std::string& text) {
  const messages::Layout* const layout = request.message->find(Road::set);
  if (layout == nullptr) throw BadValue(fmt::format("{} can't be set", request.message->name));
  Json values = tellBy(layout, request, messages::Strange::refused);
  messages::requireNames(*layout, values);
  const auto told = messages::pathsOf(values);
  if ((!request.fresh || hasProfiles(*layout)) && !fillFromNode(client, request, values, text)) return false;
  std::vector<std::string> unused;
  const std::vector<u8> frame = messages::fromJson(*layout, values, unused);
  refuseUnused(told, unused);
  const SetResult result = client.set(request.id, frame);
  text = textOf(request, Road::setReply, result.reply, Json::object());
  if (text.empty()) text = "done\n";
  return result.accepted && !isRefusal(request, Road::setReply, result.reply);
}

}  // namespace frame

// The descriptions' statements, and the messages that come of them.

#include <algorithm>

#include "field_reader.h"
#include "layout.h"
#include "lines.h"

namespace messages {

namespace {

constexpr std::string_view kRoadNames[kRoads] = {
    "set",   "set reply", "get",          "get reply", "gpon", "gpon ask", "gpon answer",
    "gepon", "gepon ask", "gepon answer", "epon",      "ngn",  "ngn ask",  "ngn answer",
};

// Reads all files: first what may be used anywhere, then the messages.
class BookReader {
 public:
  Book read(std::span<const Source> sources) {
    std::vector<Line> messages;
    for (const Source& source : sources)
      for (Line& line : readLines(source.name, source.text)) {
        const Token& word = line.tokens.front();
        if (word.is("message"))
          messages.push_back(std::move(line));
        else if (word.is("record") || word.is("frame") || word.is("codes"))
          templates_.add(word.text, std::move(line));
        else
          line.bad("not one of record, frame, codes, message: " + word.text);
      }
    for (const Line& line : messages) addMessage(line);
    book_.errorPacket = readLayout(templates_.expand("record", errorPacketUse()), templates_);
    return std::move(book_);
  }

 private:
  static Line errorPacketUse() { return {"", 0, 0, {{"use", false}, {"errorPacket", false}}, {}}; }

  void addMessage(const Line& line) {
    Message message;
    message.file = line.file;
    for (std::size_t i = 1; i < line.tokens.size(); ++i) {
      const Token& token = line.tokens[i];
      if (token.quoted)
        message.note = token.text;
      else if (i == 1)
        message.name = token.text;
      else
        message.ids.push_back(static_cast<u16>(numberOf(line, token.text)));
    }
    if (message.name.empty() || message.ids.empty()) line.bad("a message has a name and at least one id");
    for (const u16 id : message.ids)
      if (book_.find(id) != nullptr) line.bad("the id is described twice");
    if (std::ranges::find(book_.messages, message.name, &Message::name) != book_.messages.end())
      line.bad("the name is taken");
    addRoads(message, line.under, 0);
    addDefaults(message);
    book_.messages.push_back(std::move(message));
  }

  // What a message tells itself goes ahead of what its frames tell.
  void addRoads(Message& message, const std::vector<Line>& lines, int depth) {
    for (const Line& line : lines) {
      if (line.tokens.front().is("errors"))
        addErrors(message, line.under, 0);
      else if (line.tokens.front().is("show"))
        addShow(message, line);
      else if (!line.tokens.front().is("as"))
        addRoad(message, line);
    }
    for (const Line& line : lines) {
      if (!line.tokens.front().is("as")) continue;
      if (depth == kDeepest) line.bad("it is part of itself");
      addRoads(message, templates_.expand("frame", line), depth + 1);
    }
  }

  static void addShow(Message& message, const Line& line) {
    if (line.tokens.size() != 2 || !line.tokens.back().quoted)
      line.bad("the syntax of a command, in quotes, is needed");
    message.shows.push_back(line.tokens.back().text);
  }

  void addRoad(Message& message, const Line& line) {
    std::vector<std::string> names(1);
    for (const Token& token : line.tokens) {
      if (token.is(","))
        names.emplace_back();
      else
        names.back() += (names.back().empty() ? "" : " ") + token.text;
    }
    for (const std::string& name : names) {
      const auto* const found = std::ranges::find(kRoadNames, name);
      if (found == std::end(kRoadNames)) line.bad("no such way: " + name);
      Layout& layout = message.roads[found - std::begin(kRoadNames)];
      if (!layout.given) layout = readLayout(line.under, templates_);
    }
  }

  void addErrors(Message& message, const std::vector<Line>& lines, int depth) {
    for (const Line& line : lines) {
      if (line.tokens.front().is("use")) continue;
      std::string note;
      if (line.tokens.back().quoted) note = line.tokens.back().text;
      Layout layout = readLayout(line.under, templates_);
      layout.note = note;
      for (const Token& token : line.tokens)
        if (!token.quoted) message.details.try_emplace(static_cast<u16>(numberOf(line, token.text)), layout);
    }
    for (const Line& line : lines) {
      if (!line.tokens.front().is("use")) continue;
      if (depth == kDeepest) line.bad("it is part of itself");
      addErrors(message, templates_.expand("codes", line), depth + 1);
    }
  }

  static void addDefaults(Message& message) {
    static const auto layoutOf = [](std::string_view text) { return readLayout(readLines("", text), Templates()); };
    auto& roads = message.roads;
    Layout& setReply = roads[static_cast<int>(Road::setReply)];
    if (roads[static_cast<int>(Road::set)].given && !setReply.given) setReply = layoutOf("done u32 = 1");
    Layout& get = roads[static_cast<int>(Road::get)];
    if (roads[static_cast<int>(Road::getReply)].given && !get.given) get = layoutOf("any rest");
  }

  Templates templates_;
  Book book_;
};

}  // namespace

std::string_view roadName(Road road) { return kRoadNames[static_cast<int>(road)]; }

const Layout* Message::find(Road road) const {
  const Layout& layout = roads[static_cast<int>(road)];
  return layout.given ? &layout : nullptr;
}

const Message* Book::find(u16 id) const {
  for (const Message& message : messages)
    if (std::ranges::find(message.ids, id) != message.ids.end()) return &message;
  return nullptr;
}

Book readBook(std::span<const Source> sources) { return BookReader().read(sources); }

const Book& book() {
  static const Book one = readBook(sources());
  return one;
}

}  // namespace messages

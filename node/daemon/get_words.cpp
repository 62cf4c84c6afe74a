#include "get_words.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <string>
#include <string_view>
#include <vector>

#include "host/terminal.h"
#include "messages/named.h"
#include "module_read.h"
#include "platform_words.h"

namespace msand {

namespace {

using messages::Json, messages::Message, messages::Road;

constexpr std::string_view kJson = "--json";

int refuse(const PlatformCall& call, std::string_view why) {
  call.text.append(why) += "\r\n";
  return -1;
}

void addLines(std::string_view lines, std::string& text) {
  for (const char letter : lines) {
    if (letter == '\n') text += '\r';
    text += letter;
  }
}

int get(const PlatformCall& call, const std::string& name, const std::vector<std::string>& words, bool json) {
  const messages::Book& book = messages::book();
  u16 id = 0;
  const Message* const message = messages::findNamed(book, name, id);
  if (message == nullptr) return refuse(call, "there is no message " + name);
  const messages::Layout* const answered = message->find(Road::getReply);
  if (answered == nullptr) return refuse(call, message->name + " can't be asked for");
  Json told = Json::object();
  messages::assign(*answered, words, messages::Strange::refused, told);
  const std::vector<u8> bytes = readModule(id, messages::questionOf(*message, told));
  if (bytes.empty()) return refuse(call, "the module has no answer");
  addLines(json ? messages::jsonText(messages::readReply(book, *message, Road::getReply, bytes, told))
                : messages::replyText(book, *message, Road::getReply, bytes, told),
           call.text);
  return messages::isRefusal(book, *message, Road::getReply, bytes) ? -1 : 0;
}

int getCommand(const CommandElement*, Vty* vty, int argc, char** argv) {
  std::vector<std::string> words(argv + 1, argv + argc);
  const bool json = std::erase(words, kJson) > 0;
  return leave(vty, [name = std::string(argv[0]), words = std::move(words), json](const PlatformCall& call) {
    return get(call, name, words, json);
  });
}

void listMessages(const void*, CommandOffers* to) {
  for (const Message& one : messages::book().messages)
    if (one.find(Road::getReply) != nullptr)
      offer_to_cli(to, one.ids.front(), one.name.data(), static_cast<u32>(one.name.size()));
}

const CommandElement kElements[] = {
    {"get <message> {[--json|<messageValue>]}*16", getCommand,
     "what the module tells a manager, field by field by name"},
};

}  // namespace

std::span<const CommandElement> getWords() { return kElements; }

void offerMessages() {
  install_offers("get", listMessages, nullptr);
  std::map<std::string_view, std::vector<std::string_view>> shown;
  for (const Message& one : messages::book().messages)
    for (const std::string& syntax : one.shows) shown[syntax].push_back(one.name);
  for (const auto& [syntax, names] : shown) host::addToHelp(syntax, fmt::format(" (get {})", fmt::join(names, ", ")));
}

}  // namespace msand

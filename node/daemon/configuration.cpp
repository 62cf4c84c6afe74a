#include "configuration.h"

#include <fmt/format.h>
#include <sys/stat.h>
#include <toml++/toml.h>

#include <algorithm>
#include <charconv>
#include <filesystem>

#include "files.h"

namespace msand {

namespace {

constexpr std::size_t kMaxFile = 1 << 20;

// Reads the tables of one file and names it in its complaints.
class Reader {
 public:
  explicit Reader(const std::string& path) : path_(path), folder_(std::filesystem::path(path).parent_path()) {}

  Configuration read(const toml::table& file) const;

 private:
  [[noreturn]] void fail(const toml::source_region& at, const std::string& what) const {
    throw ConfigurationError(fmt::format("{}:{}: {}", path_, at.begin.line, what));
  }
  Told told(std::string value, const toml::node& where) const {
    return {std::move(value), fmt::format("{}:{}: ", path_, where.source().begin.line)};
  }
  std::string text(const toml::key& key, const toml::node& value) const;
  std::string file(const toml::key& key, const toml::node& value) const {
    return (folder_ / text(key, value)).string();
  }
  gid_t group(const toml::key& key, const toml::node& value) const;
  u16 slotNumber(const toml::key& key) const;
  SlotConfiguration slot(const toml::key& key, const toml::node& value) const;
  const host::CardType* card(const toml::key& key, const toml::node& value) const;
  host::CardState state(const toml::key& key, const toml::node& value) const;
  void log(const toml::key& key, const toml::node& value, Configuration& into) const;
  std::vector<SlotConfiguration> slots(const toml::key& key, const toml::node& value) const;
  const toml::table& table(const toml::key& key, const toml::node& value) const;
  const toml::array& array(const toml::key& key, const toml::node& value) const;
  std::size_t mebibytes(const toml::key& key, const toml::node& value) const;
  std::vector<Told> texts(const toml::key& key, const toml::node& value) const;
  std::string plain(const toml::key& key, const toml::node& value) const;
  std::string name(const toml::key& key, const toml::node& value, std::size_t longest) const;
  std::string secret(const toml::key& key, const toml::node& value) const;
  bool writes(const toml::key& key, const toml::node& value) const;
  std::string source(const toml::key& key, const toml::node& value) const;
  Community community(const toml::key& key, const toml::node& value) const;
  User user(const toml::key& key, const toml::node& value) const;
  template <class Manager>
  void add(std::vector<Manager>& to, Manager one, const toml::node& at) const {
    for (const Manager& other : to)
      if (other.name == one.name) fail(at.source(), "the name is there twice");
    to.push_back(std::move(one));
  }
  std::vector<std::string> listen(const toml::key& key, const toml::node& value) const;
  std::vector<std::string> notified(const toml::key& key, const toml::node& value) const;
  SnmpSettings snmp(const toml::key& key, const toml::node& value) const;

  const std::string& path_;
  std::filesystem::path folder_;
};

std::string Reader::text(const toml::key& key, const toml::node& value) const {
  const auto* string = value.as_string();
  if (string == nullptr) fail(value.source(), fmt::format("{} must be a text in quotes", key.str()));
  if (string->get().empty()) fail(value.source(), fmt::format("{} must not be empty", key.str()));
  return string->get();
}

gid_t Reader::group(const toml::key& key, const toml::node& value) const {
  const std::string name = text(key, value);
  const auto found = findGroup(name);
  if (!found) fail(value.source(), fmt::format("there is no group \"{}\" of users", name));
  return *found;
}

u16 Reader::slotNumber(const toml::key& key) const {
  const std::string_view digits = key.str();
  u16 number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size() || !host::holdsServiceCard(number))
    fail(key.source(), fmt::format("\"{}\" is no slot for a service card: these are 1 to 8 and 11 to 18", digits));
  return number;
}

const host::CardType* Reader::card(const toml::key& key, const toml::node& value) const {
  const auto* number = value.as_integer();
  const std::string name = number != nullptr ? std::to_string(number->get()) : text(key, value);
  const host::CardType* type = host::findCardType(name);
  if (type == nullptr) fail(value.source(), fmt::format("there is no card type \"{}\"", name));
  return type;
}

host::CardState Reader::state(const toml::key& key, const toml::node& value) const {
  const std::string word = text(key, value);
  if (word == "up") return host::CardState::up;
  if (word == "present") return host::CardState::present;
  if (word == "down") return host::CardState::absent;
  fail(value.source(), fmt::format("state must be \"up\", \"present\" or \"down\", not \"{}\"", word));
}

SlotConfiguration Reader::slot(const toml::key& key, const toml::node& value) const {
  SlotConfiguration slot{.slot = slotNumber(key)};
  const toml::table* table = value.as_table();
  if (table == nullptr) fail(value.source(), "a slot must be a table such as { card = \"adsl32\", state = \"up\" }");
  for (const auto& [name, entry] : *table) {
    if (name == "card")
      slot.card = card(name, entry);
    else if (name == "state")
      slot.state = state(name, entry);
    else
      fail(name.source(), fmt::format("unknown key \"{}\" of a slot: there are card and state", name.str()));
  }
  if (slot.card == nullptr) fail(key.source(), fmt::format("slot {} names no card", slot.slot));
  return slot;
}

std::vector<SlotConfiguration> Reader::slots(const toml::key& key, const toml::node& value) const {
  const toml::table* table = value.as_table();
  if (table == nullptr) fail(key.source(), "slots must be a table");
  std::vector<SlotConfiguration> slots;
  for (const auto& [number, entry] : *table) {
    slots.push_back(slot(number, entry));
    for (std::size_t other = 0; other + 1 < slots.size(); ++other)  // 1 and 01
      if (slots[other].slot == slots.back().slot) fail(number.source(), "the slot is there twice");
  }
  std::ranges::sort(slots, {}, &SlotConfiguration::slot);
  return slots;
}

void Reader::log(const toml::key& key, const toml::node& value, Configuration& into) const {
  const std::string where = text(key, value);
  if (where == "stderr")
    into.logTo = host::LogTo::standardError;
  else if (where == "nowhere")
    into.logTo = host::LogTo::nowhere;
  else {
    into.logTo = host::LogTo::file;
    into.logFile = told(file(key, value), value);
  }
}

// --- the manager's door. Names of communities and what users prove themselves with are secrets: no complaint shows
// them.

const toml::table& Reader::table(const toml::key& key, const toml::node& value) const {
  const auto* table = value.as_table();
  if (table == nullptr) fail(value.source(), fmt::format("{} must be a table", key.str()));
  return *table;
}

const toml::array& Reader::array(const toml::key& key, const toml::node& value) const {
  const auto* array = value.as_array();
  if (array == nullptr) fail(value.source(), fmt::format("{} must be a list", key.str()));
  return *array;
}

std::size_t Reader::mebibytes(const toml::key& key, const toml::node& value) const {
  constexpr i64 kMost = 2000;
  const auto* number = value.as_integer();
  if (number == nullptr || number->get() < 1 || number->get() > kMost)
    fail(value.source(), fmt::format("{} must be a number of MiB, 1 to {}", key.str(), kMost));
  return static_cast<std::size_t>(number->get()) << 20;
}

std::vector<Told> Reader::texts(const toml::key& key, const toml::node& value) const {
  std::vector<Told> all;
  for (const toml::node& entry : array(key, value)) all.push_back(told(text(key, entry), entry));
  return all;
}

std::string Reader::plain(const toml::key& key, const toml::node& value) const {
  std::string read = text(key, value);
  if (!isPlainText(read))
    fail(value.source(), fmt::format("{} holds a letter that is not ASCII, a quote or a backslash", key.str()));
  return read;
}

std::string Reader::name(const toml::key& key, const toml::node& value, std::size_t longest) const {
  std::string read = plain(key, value);
  if (read.size() > longest) fail(value.source(), fmt::format("{} must have at most {} letters", key.str(), longest));
  return read;
}

std::string Reader::secret(const toml::key& key, const toml::node& value) const {
  std::string read = plain(key, value);
  if (read.size() < kShortestSecret)
    fail(value.source(), fmt::format("{} must have at least {} letters", key.str(), kShortestSecret));
  return read;
}

bool Reader::writes(const toml::key& key, const toml::node& value) const {
  const std::string word = text(key, value);
  if (word != "read-only" && word != "read-write")
    fail(value.source(), fmt::format("{} must be \"read-only\" or \"read-write\"", key.str()));
  return word == "read-write";
}

std::string Reader::source(const toml::key& key, const toml::node& value) const {
  std::string read = text(key, value);
  if (!isSource(read))
    fail(value.source(), fmt::format("{} must be an address or a network such as 10.0.0.0/8", key.str()));
  return read;
}

Community Reader::community(const toml::key& key, const toml::node& value) const {
  Community read;
  for (const auto& [name, entry] : table(key, value)) {
    if (name == "name")
      read.name = this->name(name, entry, kLongestCommunity);
    else if (name == "source")
      read.source = source(name, entry);
    else if (name == "access")
      read.writes = writes(name, entry);
    else
      fail(name.source(),
           fmt::format("unknown key \"{}\" of a community: there are name, source and access", name.str()));
  }
  if (read.name.empty()) fail(value.source(), "a community has no name");
  return read;
}

User Reader::user(const toml::key& key, const toml::node& value) const {
  User read;
  for (const auto& [name, entry] : table(key, value)) {
    if (name == "name")
      read.name = this->name(name, entry, kLongestUser);
    else if (name == "access")
      read.writes = writes(name, entry);
    else if (name == "auth") {
      read.authentication = text(name, entry);
      if (read.authentication != "SHA" && read.authentication != "SHA-256" && read.authentication != "SHA-512")
        fail(entry.source(), "auth must be \"SHA\", \"SHA-256\" or \"SHA-512\"");
    } else if (name == "auth-secret")
      read.authenticationSecret = secret(name, entry);
    else if (name == "priv-secret")
      read.privacySecret = secret(name, entry);
    else
      fail(name.source(),
           fmt::format("unknown key \"{}\" of a user: there are name, access, auth, auth-secret and priv-secret",
                       name.str()));
  }
  if (read.name.empty() || read.authenticationSecret.empty() || read.privacySecret.empty())
    fail(value.source(), "a user needs name, auth-secret and priv-secret");
  return read;
}

std::vector<std::string> Reader::listen(const toml::key& key, const toml::node& value) const {
  std::vector<std::string> all;
  for (const toml::node& entry : array(key, value)) {
    const std::string word = text(key, entry);
    try {
      for (std::string& address : listenAddresses(word)) {
        for (const std::string& other : all)
          if (overlap(address, other))
            fail(entry.source(), fmt::format("\"{}\" can't be listened at beside {}", word, other));
        all.push_back(std::move(address));
      }
    } catch (const std::invalid_argument& error) {
      fail(entry.source(), fmt::format("\"{}\" {}", word, error.what()));
    }
  }
  return all;
}

// Managers that are told of something, by UDP.
std::vector<std::string> Reader::notified(const toml::key& key, const toml::node& value) const {
  std::vector<std::string> all;
  for (const toml::node& entry : array(key, value)) {
    const std::string word = text(key, entry);
    try {
      all.push_back(listenAddresses(word).front());
    } catch (const std::invalid_argument& error) {
      fail(entry.source(), fmt::format("\"{}\" {}", word, error.what()));
    }
    if (!all.back().starts_with("udp")) fail(entry.source(), fmt::format("\"{}\" is not of UDP", word));
  }
  return all;
}

SnmpSettings Reader::snmp(const toml::key& key, const toml::node& value) const {
  SnmpSettings settings;
  for (const auto& [name, entry] : table(key, value)) {
    if (name == "listen")
      settings.listen = listen(name, entry);
    else if (name == "name")
      settings.name = text(name, entry);
    else if (name == "location")
      settings.location = text(name, entry);
    else if (name == "contact")
      settings.contact = text(name, entry);
    else if (name == "notify")
      settings.notify = notified(name, entry);
    else if (name == "communities")
      for (const toml::node& one : array(name, entry)) add(settings.communities, community(name, one), one);
    else if (name == "users")
      for (const toml::node& one : array(name, entry)) add(settings.users, user(name, one), one);
    else
      fail(name.source(),
           fmt::format("unknown key \"{}\" of snmp: there are listen, name, location, contact, communities and users",
                       name.str()));
  }
  return settings;
}

Configuration Reader::read(const toml::table& table) const {
  Configuration configuration;
  for (const auto& [key, value] : table) {
    if (key == "socket")
      configuration.socket = told(file(key, value), value);
    else if (key == "group")
      configuration.operators.group = group(key, value);
    else if (key == "startup")
      configuration.startup = file(key, value);
    else if (key == "module")
      configuration.module = told(file(key, value), value);
    else if (key == "log")
      log(key, value, configuration);
    else if (key == "metrics")
      configuration.metrics = told(file(key, value), value);
    else if (key == "slots")
      configuration.slots = slots(key, value);
    else if (key == "flow")
      configuration.flow = texts(key, value);
    else if (key == "lines")
      configuration.lines = texts(key, value);
    else if (key == "captures")
      configuration.capture.folder = file(key, value);
    else if (key == "capture-size")
      configuration.capture.most = mebibytes(key, value);
    else if (key == "snmp")
      configuration.snmp = snmp(key, value);
    else
      fail(key.source(),
           fmt::format("unknown key \"{}\": there are socket, group, startup, module, log, metrics, lines, flow, "
                       "captures, capture-size, snmp and slots",
                       key.str()));
  }
  return configuration;
}

}  // namespace

Configuration parseConfiguration(std::string_view text, const std::string& path) {
  try {
    return Reader(path).read(toml::parse(text, std::string_view(path)));
  } catch (const toml::parse_error& error) {
    throw ConfigurationError(fmt::format("{}:{}: {}", path, error.source().begin.line, error.description()));
  }
}

Configuration readConfiguration(const std::string& path) {
  std::string text;
  try {
    text = readFile(path, kMaxFile);
  } catch (const std::exception& error) {
    throw ConfigurationError(error.what());
  }
  Configuration configuration = parseConfiguration(text, path);
  const bool secrets = !configuration.snmp.communities.empty() || !configuration.snmp.users.empty();
  struct stat status {};
  if (secrets && (stat(path.c_str(), &status) != 0 || (status.st_mode & S_IROTH) != 0))
    throw ConfigurationError(path + ": holds secrets, and everybody may read it: chmod o-r");
  return configuration;
}

}  // namespace msand

#include "words.h"

#include <fmt/format.h>

#include <algorithm>
#include <charconv>
#include <nlohmann/json.hpp>
#include <optional>

namespace messages {

namespace {

std::string small(std::string_view text) {
  std::string all(text);
  for (char& letter : all)
    if (letter >= 'A' && letter <= 'Z') letter = static_cast<char>(letter + ('a' - 'A'));
  return all;
}

std::optional<std::size_t> indexOf(std::string_view digits) {
  std::size_t number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (digits.empty() || error != std::errc() || end != digits.data() + digits.size() || number > 0xFFFF) return {};
  return number;
}

// "1/5": slot and port.
struct Place {
  i64 slot = 0;
  i64 port = 0;
};
std::optional<Place> placeOf(std::string_view word) {
  const auto cut = word.find('/');
  if (cut == word.npos) return {};
  const auto slot = indexOf(word.substr(0, cut));
  const auto port = word.substr(cut + 1) == "all" ? std::optional<std::size_t>(0xFFFF) : indexOf(word.substr(cut + 1));
  if (!slot || !port) return {};
  return Place{static_cast<i64>(*slot), static_cast<i64>(*port)};
}

// A field by its name, with the groups that it is found in.
struct Found {
  std::vector<std::string> path;
  const Field* field = nullptr;
  int grade = 0;  // 3 the name itself, 2 with other capitals, 1 its beginning
};

int gradeOf(const std::string& name, std::string_view typed) {
  if (name == typed) return 3;
  const std::string a = small(name);
  const std::string b = small(typed);
  return a == b ? 2 : a.starts_with(b) ? 1 : 0;
}

void search(const std::vector<Field>& fields, std::string_view typed, std::vector<std::string>& path,
            std::vector<Found>& found) {
  for (const Field& field : fields) {
    if (field.kind == Kind::when) {
      search(field.fields, typed, path, found);
      search(field.otherwise, typed, path, found);
    }
    if (field.kind == Kind::when || field.name.empty() || field.fixed || field.counts) continue;
    path.push_back(field.name);
    if (const int grade = gradeOf(field.name, typed); grade > 0) found.push_back({path, &field, grade});
    if (field.kind == Kind::group) search(field.fields, typed, path, found);
    path.pop_back();
  }
}

// The field that a name means; none if there is no such one. Throws BadValue where it may mean several.
std::optional<Found> find(const std::vector<Field>& fields, std::string_view typed) {
  std::vector<Found> all;
  std::vector<std::string> path;
  search(fields, typed, path, all);
  if (all.empty()) return {};
  const int best = std::ranges::max(all, {}, &Found::grade).grade;
  std::erase_if(all, [best](const Found& one) { return one.grade < best; });
  std::string names;
  for (const Found& one : all)
    if (one.path != all.front().path) names += ", " + fmt::format("{}", fmt::join(one.path, "."));
  if (!names.empty()) throw BadValue(fmt::format("{}: which of {}{}?", typed, fmt::join(all.front().path, "."), names));
  return all.front();
}

// Lists are searched in whatever stands around them but other lists.
void listsOf(const std::vector<Field>& fields, std::vector<const Field*>& lists) {
  for (const Field& field : fields) {
    if (field.kind == Kind::list) lists.push_back(&field);
    if (field.kind != Kind::when) continue;
    listsOf(field.fields, lists);
    listsOf(field.otherwise, lists);
  }
}

bool hasField(const Field& list, std::string_view name) {
  return std::ranges::find(list.fields, name, &Field::name) != list.fields.end();
}

// Where the words are: the fields of an object, and the object.
struct Scope {
  const std::vector<Field>* fields;
  Json::json_pointer at;
};

class Assigner {
 public:
  Assigner(const Layout& layout, Strange strange, Json& values)
      : strange_(strange), values_(values), top_{&layout.fields, Json::json_pointer()}, scope_(top_) {
    if (!values.is_object()) values = Json::object();
  }

  void word(const std::string& word) {
    if (const auto place = placeOf(word)) return enter(word, *place);
    const auto sign = word.find('=');
    if (sign == word.npos || sign == 0) throw BadValue(fmt::format("{}: neither NAME=VALUE nor SLOT/PORT", word));
    set(word.substr(0, sign), word.substr(sign + 1));
  }

 private:
  void enter(const std::string& word, const Place& place) {
    std::vector<const Field*> lists;
    listsOf(*top_.fields, lists);
    const auto list =
        std::ranges::find_if(lists, [](const Field* one) { return hasField(*one, "slot") && hasField(*one, "port"); });
    if (list == lists.end()) {
      if (strange_ == Strange::refused) throw BadValue(fmt::format("{}: the message has no list of ports", word));
      return;
    }
    Json& items = values_[(*list)->name];
    if (!items.is_array()) items = Json::array();
    const auto isThere = [&](const Json& item) {
      return item.value("slot", Json()) == Json(place.slot) && portOf(item) == place.port;
    };
    const auto item = std::ranges::find_if(items, isThere);
    const auto index = static_cast<std::size_t>(item - items.begin());
    scope_ = {&(*list)->fields, Json::json_pointer() / (*list)->name / index};
    if (index == items.size()) items.push_back({{"slot", place.slot}, {"port", place.port}});
  }

  static i64 portOf(const Json& item) {
    const auto port = item.find("port");
    if (port == item.end()) return -1;
    return port->is_number() ? port->get<i64>() : 0xFFFF;
  }

  void set(const std::string& name, const std::string& value) {
    Scope scope = scope_;
    const std::vector<Field>* known = scope_.fields;
    std::string_view left = name;
    for (bool first = true;; first = false) {
      const auto dot = left.find('.');
      std::string_view part = left.substr(0, dot);
      std::optional<std::size_t> index;
      if (const auto open = part.find('['); open != part.npos && part.ends_with(']')) {
        index = indexOf(part.substr(open + 1, part.size() - open - 2));
        if (!index) throw BadValue(fmt::format("{}: no index", name));
        part = part.substr(0, open);
      }
      const auto found = first ? findAround(scope, part) : find(*scope.fields, part);
      if (!found) {
        if (strange_ == Strange::leftOut) return;
        throw BadValue(fmt::format("{}: no such field; there are {}", name, namesOf(*known)));
      }
      for (const std::string& step : found->path) scope.at /= step;
      const bool holder = found->field->kind == Kind::list || found->field->kind == Kind::group;
      if (index) scope.at /= openItem(name, *found->field, scope.at, *index);
      if (dot == left.npos && !holder) break;
      if (!holder || dot == left.npos || (found->field->kind == Kind::list && !index))
        throw BadValue(
            fmt::format("{}: {}", name, holder ? "a field of it is needed: NAME[0].FIELD=VALUE" : "has no fields"));
      known = scope.fields = &found->field->fields;
      left.remove_prefix(dot + 1);
    }
    values_[scope.at] = value;
  }

  // In the item of the last place, then in the message, then in the only item of its only list that has it.
  std::optional<Found> findAround(Scope& scope, std::string_view name) {
    if (auto found = find(*scope.fields, name)) return found;
    scope = top_;
    if (auto found = find(*scope.fields, name)) return found;
    std::vector<const Field*> lists;
    listsOf(*scope.fields, lists);
    std::erase_if(lists, [&](const Field* list) { return !find(list->fields, name); });
    if (lists.size() != 1) return {};
    scope.at /= lists.front()->name;
    scope.at /= openItem(std::string(name), *lists.front(), scope.at, 0);
    scope.fields = &lists.front()->fields;
    return find(*scope.fields, name);
  }

  // The index of an item, which is there from now on.
  std::size_t openItem(const std::string& name, const Field& field, const Json::json_pointer& at, std::size_t index) {
    if (field.kind != Kind::list) throw BadValue(fmt::format("{}: {} is no list", name, field.name));
    Json& items = values_[at];
    if (!items.is_array()) items = Json::array();
    while (index >= items.size()) items.push_back(Json::object());
    return index;
  }

  static std::string namesOf(const std::vector<Field>& fields) {
    std::vector<Found> all;
    std::vector<std::string> path;
    search(fields, "", path, all);
    std::vector<std::string> names;
    for (const Found& one : all)
      if (one.field->kind != Kind::gap && one.field->kind != Kind::group)
        names.push_back(fmt::format("{}{}", fmt::join(one.path, "."), one.field->kind == Kind::list ? "[0]. ..." : ""));
    return fmt::format("{}", fmt::join(names, ", "));
  }

  Strange strange_;
  Json& values_;
  Scope top_;
  Scope scope_;
};

// --- fill

using Key = std::vector<const char*>;
const Key kKeys[] = {{"slot", "port"}, {"id"}};

bool hasKey(const Json& item, const Key& key) {
  return std::ranges::all_of(key, [&](const char* name) { return item.is_object() && item.contains(name); });
}

// A number that was typed is a text still.
bool same(const Json& a, const Json& b) {
  if (a == b) return true;
  const auto text = [](const Json& value) { return value.is_string() ? value.get<std::string>() : value.dump(); };
  return text(a) == text(b);
}

// The known item that a told one is about; null for none.
const Json* knownFor(const Json& told, std::size_t index, const Json& known, std::optional<i64> like) {
  for (const Key& key : kKeys) {
    if (known.empty() || !hasKey(known.front(), key)) continue;
    if (!hasKey(told, key)) return nullptr;
    const auto item = std::ranges::find_if(known, [&](const Json& one) {
      if (key.size() == 1 && like) return one["id"] == *like;
      return std::ranges::all_of(key, [&](const char* name) { return same(told[name], one[name]); });
    });
    return item == known.end() ? nullptr : &*item;
  }
  return index < known.size() ? &known[index] : nullptr;
}

void addPaths(const Json& values, const Json::json_pointer& at, std::vector<std::string>& paths) {
  if (values.is_object()) {
    for (const auto& [name, value] : values.items()) addPaths(value, at / name, paths);
  } else if (values.is_array()) {
    for (std::size_t i = 0; i < values.size(); ++i) addPaths(values[i], at / i, paths);
  } else {
    paths.push_back(at.to_string());
  }
}

}  // namespace

bool isValueWord(std::string_view word) { return word.find('=') != word.npos || placeOf(word).has_value(); }

void assign(const Layout& layout, std::span<const std::string> words, Strange strange, Json& values) {
  Assigner assigner(layout, strange, values);
  for (const std::string& word : words) assigner.word(word);
}

void requireNames(const Layout& layout, const Json& told) {
  std::vector<const Field*> lists;
  listsOf(layout.fields, lists);
  for (const Field* const list : lists) {
    const auto items = told.find(list->name);
    const auto isKey = [&](const Key& key) {
      return std::ranges::all_of(key, [&](const char* name) { return hasField(*list, name); });
    };
    const auto* const key = std::ranges::find_if(kKeys, isKey);
    if (items == told.end() || !items->is_array() || key == std::end(kKeys)) continue;
    if (!std::ranges::all_of(*items, [&](const Json& item) { return hasKey(item, *key); }))
      throw BadValue(key == kKeys ? "for which port? SLOT/PORT" : "for which id? id=NUMBER");
  }
}

void fill(Json& told, const Json& known, std::optional<i64> like) {
  if (told.is_object() && known.is_object()) {
    for (const auto& [name, value] : known.items()) {
      if (!told.contains(name)) {
        if (!value.is_array() || value.empty() || !hasKey(value.front(), kKeys[0])) told[name] = value;
      } else {
        fill(told[name], value, like);
      }
    }
  } else if (told.is_array() && known.is_array()) {
    const bool named =
        !known.empty() && std::ranges::any_of(kKeys, [&](const Key& key) { return hasKey(known[0], key); });
    for (std::size_t i = 0; i < told.size(); ++i) {
      const Json* const item = knownFor(told[i], i, known, like);
      if (item != nullptr) fill(told[i], *item, like);
      if (item != nullptr || like || !(named || known.empty()) || !hasKey(told[i], kKeys[1])) continue;
      const Json& id = told[i]["id"];
      throw BadValue("there is no id " + (id.is_string() ? id.get<std::string>() : id.dump()) + "; --new makes one");
    }
    for (std::size_t i = told.size(); i < known.size() && !named; ++i) told.push_back(known[i]);
  }
}

std::vector<std::string> pathsOf(const Json& values) {
  std::vector<std::string> paths;
  addPaths(values, Json::json_pointer(), paths);
  return paths;
}

}  // namespace messages

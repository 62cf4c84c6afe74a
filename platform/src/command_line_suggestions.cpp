#include "command_line_suggestions.h"

#include <algorithm>
#include <map>
#include <string>

namespace command_line {
namespace {

using host::Suggested;
using host::Suggestion;

constexpr std::string_view kEnd = "<cr>";
constexpr std::string_view kMore = "<...>";
constexpr std::size_t kShownNextWords = 4;
constexpr std::size_t kShownExisting = 64;

struct LessFolded {
  bool operator()(std::string_view a, std::string_view b) const {
    return std::ranges::lexicographical_compare(a, b, {}, fold, fold);
  }
};

// A place in a command at which the suggested word stands, and the step that led to it.
struct Place {
  u32 command = 0;
  std::size_t element = 0;
  u16 alternative = 0;
  const Step* before = nullptr;
};

using Words = std::map<std::string_view, std::vector<Place>, LessFolded>;

bool mayBecome(std::string_view typed, const Syntax& syntax, const Alternative& alternative) {
  switch (alternative.kind) {
    case Alternative::word:
      return begins(typed, syntax.textOf(alternative));
    case Alternative::range:
      return std::ranges::all_of(typed, isDigit);
    case Alternative::parameter:
      return true;
  }
  return false;
}

// Collects what may stand at a position of a command and begins with `typed`.
void collect(const Node& node, Place place, std::string_view typed, Words& words) {
  const Syntax& syntax = node.command(place.command).syntax;
  const bool mayEnd = syntax.eachNext(place.element, [&](std::size_t next) {
    const Element& element = syntax.elements[next];
    for (u16 i = 0; i < element.alternatives; ++i) {
      const u16 index = static_cast<u16>(element.first + i);
      const Alternative& alternative = syntax.alternatives[index];
      if (!mayBecome(typed, syntax, alternative)) continue;
      words[syntax.textOf(alternative)].push_back({place.command, next, index, place.before});
    }
  });
  if (mayEnd && typed.empty()) words[kEnd].push_back(place);
}

// The help of the command that a keyword leads to; of several, the words that may follow.
std::string helpOf(const Node& node, const std::vector<Place>& places) {
  const std::string& help = node.command(places.front().command).help;
  const auto sameHelp = [&](const Place& place) { return node.command(place.command).help == help; };
  if (std::ranges::all_of(places, sameHelp)) return help;
  Words next;
  for (const Place& place : places) collect(node, {.command = place.command, .element = place.element + 1}, {}, next);
  std::string list;
  std::size_t shown = 0;
  for (const auto& [word, unused] : next) {
    if (!list.empty()) list += ", ";
    if (shown++ == kShownNextWords) return list + "...";
    list += word;
  }
  return list;
}

// The nearest keyword ahead of an element behind which things come from somewhere.
const OfferSource* sourceAhead(const Syntax& syntax, std::size_t element, const std::vector<OfferSource>& sources) {
  while (element-- != 0) {
    const Element& ahead = syntax.elements[element];
    if (ahead.choice || syntax.alternatives[ahead.first].kind != Alternative::word) continue;
    const std::string_view word = syntax.textOf(syntax.alternatives[ahead.first]);
    const auto behind = [&](const OfferSource& source) { return equal(source.keyword, word); };
    const auto found = std::ranges::find_if(sources, behind);
    if (found != sources.end()) return &*found;
  }
  return nullptr;
}

class Suggester {
 public:
  // `taken` words are taken, the next one is being typed.
  Suggester(const Node& node, const Reading& reading, std::size_t taken, std::string_view typed,
            const std::vector<OfferSource>& sources)
      : node_(node), reading_(reading), taken_(taken), typed_(typed), sources_(sources) {}

  // Parameters come with their own lines, keywords with those of their commands.
  std::vector<Suggestion> list(const Words& words) {
    for (const auto& [word, places] : words) {
      if (word == kEnd) {
        end_.push_back({std::string(word), helpOf(node_, places), Suggested::end});
      } else if (alternativeOf(places.front()).kind == Alternative::word) {
        list_.push_back({std::string(word), helpOf(node_, places)});
      } else {
        for (const Place& place : places) parameter(std::string(word), place);
      }
    }
    cutExisting();
    std::ranges::move(existing_, std::back_inserter(list_));
    std::ranges::move(end_, std::back_inserter(list_));
    return std::move(list_);
  }

 private:
  const Alternative& alternativeOf(const Place& place) const {
    return node_.command(place.command).syntax.alternatives[place.alternative];
  }

  static void addOnce(std::vector<Suggestion>& list, Suggestion one) {
    const auto same = [&](const Suggestion& other) { return other.word == one.word && other.help == one.help; };
    if (std::ranges::none_of(list, same)) list.push_back(std::move(one));
  }

  void parameter(std::string word, const Place& place) {
    const Syntax& syntax = node_.command(place.command).syntax;
    const Alternative& alternative = alternativeOf(place);
    addOnce(list_, {std::move(word), parameterHelp(syntax, place.element, alternative)});
    const ParameterRow* row = parameterRow(syntax, place.element, alternative);
    if (row == nullptr || row->names == Names::nothing) return;
    const Asked asked{.names = row->names,
                      .typed = typed_,
                      .choice = choiceAhead(place),
                      .slot = slotAhead(place),
                      .profiles = sourceAhead(syntax, place.element, sources_)};
    const AskedFor same{row->names, asked.choice, asked.slot, asked.profiles};
    if (std::ranges::find(asked_, same) != asked_.end()) return;
    asked_.push_back(same);
    for (Offer& offer : offers(asked, sources_))
      existing_.push_back({std::move(offer.word), std::move(offer.help), Suggested::existing});
  }

  std::string_view choiceAhead(const Place& place) const {
    if (place.before == nullptr) return {};
    const Syntax& syntax = node_.command(place.command).syntax;
    return syntax.elements[place.before->element].choice ? syntax.textOf(syntax.alternatives[place.before->alternative])
                                                         : std::string_view();
  }

  // What was typed for the nearest slot ahead.
  std::string_view slotAhead(const Place& place) const {
    const Syntax& syntax = node_.command(place.command).syntax;
    std::size_t word = taken_;
    for (const Step* step = place.before; step != nullptr; step = reading_.before(*step)) {
      --word;
      const ParameterRow* row = parameterRow(syntax, step->element, syntax.alternatives[step->alternative]);
      if (row != nullptr && row->names == Names::slot) return reading_.words()[word].text;
    }
    return {};
  }

  // Of many, some are shown: among them the one that is the least like the first, so that what all of them begin with
  // is what those shown begin with.
  void cutExisting() {
    if (existing_.size() <= kShownExisting) return;
    const auto alike = [&](const Suggestion& one) {
      return std::ranges::mismatch(one.word, existing_.front().word).in1 - one.word.begin();
    };
    const auto last = existing_.begin() + kShownExisting - 1;
    const auto least = std::ranges::min_element(existing_, {}, alike);
    if (least > last) std::iter_swap(last, least);
    const std::size_t more = existing_.size() - kShownExisting;
    existing_.resize(kShownExisting);
    existing_.push_back({std::string(kMore), std::to_string(more) + " more: type how they begin", Suggested::more});
  }

  struct AskedFor {
    Names names;
    std::string_view choice;
    std::string_view slot;
    const OfferSource* profiles;
    bool operator==(const AskedFor&) const = default;
  };

  const Node& node_;
  const Reading& reading_;
  std::size_t taken_;
  std::string_view typed_;
  const std::vector<OfferSource>& sources_;
  std::vector<AskedFor> asked_;
  std::vector<Suggestion> list_;
  std::vector<Suggestion> existing_;
  std::vector<Suggestion> end_;
};

}  // namespace

std::vector<Suggestion> suggest(const Node& node, Reading& reading, std::string_view line,
                                const std::vector<OfferSource>& sources) {
  if (!reading.split(line, node.longestLine())) return {};
  const bool newWord = line.empty() || isBlank(line.back());
  const std::size_t taken = reading.words().size() - (newWord ? 0 : 1);
  const std::string_view typed = newWord ? std::string_view() : reading.words().back().text;
  Words words;
  reading.take(node, taken);
  if (taken == 0) {
    for (u32 command = 0; command < node.size(); ++command) collect(node, {.command = command}, typed, words);
  } else {
    for (const Step& step : reading.open())
      collect(node, {.command = step.command, .element = step.element + std::size_t{1}, .before = &step}, typed, words);
  }
  return Suggester(node, reading, taken, typed, sources).list(words);
}

}  // namespace command_line

// Every command of the node, all installed together.

#include <fstream>
#include <sstream>

#include "command_line_fixture.h"

namespace {

// A line made from a syntax, and the arguments that it has to give.
struct Made {
  std::string line;
  std::string arguments;
};

// Writes the shortest or the longest line of a syntax: groups left out and first words, or groups as often as they may
// come and last words.
class LineMaker {
 public:
  LineMaker(std::string syntax, bool longest) : syntax_(std::move(syntax)), longest_(longest) {}

  Made make() {
    for (std::size_t at = 0; at < syntax_.size();) at = element(at);
    return made_;
  }

 private:
  std::size_t element(std::size_t at) {
    switch (syntax_[at]) {
      case ' ':
        return at + 1;
      case '{':
        return group(at);
      case '[': {
        const std::size_t end = syntax_.find(']', at);
        const std::string words = syntax_.substr(at + 1, end - at - 1);
        argument(longest_ ? words.substr(words.rfind('|') + 1) : words.substr(0, words.find('|')));
        return end + 1;
      }
      case '<': {
        const std::size_t end = syntax_.find('>', at);
        argument(syntax_.substr(at, end - at + 1));
        return end + 1;
      }
      default: {
        const std::size_t end = std::min(syntax_.find_first_of(" [<{}", at), syntax_.size());
        made_.line += syntax_.substr(at, end - at) + " ";
        return end;
      }
    }
  }

  std::size_t group(std::size_t at) {
    const std::size_t close = syntax_.find('}', at);
    const bool counted = close + 1 < syntax_.size() && syntax_[close + 1] == '*';
    const int count = counted ? syntax_[close + 2] - '0' : 1;
    for (int i = 0; longest_ && i < count; ++i) {
      for (std::size_t inside = at + 1; inside < close;) inside = element(inside);
    }
    return close + (counted ? 3 : 1);
  }

  void argument(const std::string& form) {
    std::string word = form;
    if (form[0] == '<') {
      const std::size_t dash = form.find('-');
      const std::string low = form.substr(1, dash - 1);
      const std::string high = dash == form.npos ? "" : form.substr(dash + 1, form.size() - dash - 2);
      word = dash == form.npos ? "-Val" + std::to_string(++values_) : longest_ ? high : low;
    }
    made_.line += word + " ";
    made_.arguments += (made_.arguments.empty() ? "" : ",") + word;
  }

  std::string syntax_;
  bool longest_;
  int values_ = 0;
  Made made_;
};

std::string upperCase(std::string text) {
  for (char& letter : text) letter = static_cast<char>(std::toupper(static_cast<unsigned char>(letter)));
  return text;
}

class NodeCommands : public CommandLine {
 protected:
  NodeCommands() {
    std::ifstream file(MSAN_UNIT_DATA "/catalogue.txt");
    constexpr std::string_view kCommand = "command ";
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(kCommand)) add(line.substr(kCommand.size()));
    add("50 set adsl interface <ifStr> [selt|delt] test [start|stop]");  // which the node installs
  }

  void add(const std::string& line) {
    const int node = std::stoi(line);
    commands_.emplace_back(node, line.substr(line.find(' ') + 1));
    EXPECT_EQ(0, install(node, commands_.back().second, std::to_string(commands_.size()))) << line;
  }

  // The arguments of the command that a line runs.
  static std::string argumentsOf(std::string_view line, int node) {
    const std::string call = run(line, node);
    const std::size_t open = call.find('(');
    return open == call.npos ? call : call.substr(open);
  }

  std::vector<std::pair<int, std::string>> commands_;
};

TEST_F(NodeCommands, EachTakesItsShortestAndItsLongestLine) {
  EXPECT_EQ(commands_.size(), 303U);
  for (std::size_t i = 0; i < commands_.size(); ++i) {
    const auto& [node, syntax] = commands_[i];
    for (const bool longest : {false, true}) {
      const Made made = LineMaker(syntax, longest).make();
      EXPECT_EQ(run(made.line, node), std::to_string(i + 1) + "(" + made.arguments + ")") << made.line;
    }
    // Capitals change parameters only, and here these hold none that differ.
    Made made = LineMaker(syntax, true).make();
    made.line = upperCase(made.line);
    for (std::size_t at = 0; (at = made.arguments.find("Val", at)) != std::string::npos;)
      made.arguments.replace(at, 3, "VAL");
    EXPECT_EQ(run(made.line, node), std::to_string(i + 1) + "(" + made.arguments + ")") << made.line;
  }
}

// What neither the shortest nor the longest line shows.
TEST_F(NodeCommands, GiveTheirHandlersTheseArguments) {
  struct Row {
    const char* line;
    const char* arguments;
  };
  // clang-format off
  const Row rows[] = {
      {"set voice md5 authentication open shared key K", "(open,K)"},
      {"set voice port dsp profile name d interface 3/1", "(name,d,3/1)"},
      {"set voice dhcp operation enable base b suffix s", "(enable,b,s)"},
      {"set adsl toneblackout number 2 0 start 1 end 2 1 start 3 end 4 ", "(2,0,1,2,1,3,4)"},
      {"set adsl UpRateMode startadpt", "(StartAdpt)"},
      {"set vdslextra para vectenable enable annexus0 annexA pmsf disable dnNMFlr 1.0 dnNMTop 2.0 dnAdaTimeFlr 3 "
       "dnAdaTimeTop 4 upNMFlr 5.0 upNMTop 6.0 upAdaTimeFlr 7 upAdaTimeTop 8  ", "(enable,annexa,disable,1.0,2.0,3,4,5.0,6.0,7,8)"},
      {"set tls enable", "(enable)"},
      {"add unicast translation cv tpid 33024 vid 5 cos null outv tpid 33024 vid 7 cos 3 r rule7 q tpid 33024 vid 9 cos 1 r null",
       "(33024,5,null,33024,7,3,rule7,33024,9,1,null)"},
      {"\r\nset storm-suppression broadcast enable rate 64 multicast disable rate 0 unknown enable rate 9 interface 5\r\n",
       "(broadcast,enable,64,multicast,disable,0,unknown,enable,9,5)"},
      {"attach policy interface 3/1 pvc 2  up 1 2 down 3 4  up 5 6 down 7 8 ", "(3/1,2,1,2,3,4,5,6,7,8)"},
      {"attach policy interface 3/1 up 1 2 down 3 4 ", "(3/1,1,2,3,4)"},
  };
  // clang-format on
  for (const Row& row : rows) EXPECT_EQ(argumentsOf(row.line, CONFIG_NODE), row.arguments) << row.line;
  EXPECT_EQ(argumentsOf("set msan debug on cmdid 3087 module voice cmdid 1", DEBUG_NODE),
            "(on,cmdid,3087,module,voice,cmdid,1)");
}

TEST_F(NodeCommands, AreShortenedAsFarAsTheyStayUnique) {
  EXPECT_EQ(argumentsOf("sh cid m", CONFIG_NODE), "()");
  EXPECT_EQ(argumentsOf("set pots gen para imp mode 680", CONFIG_NODE), "(680)");
  EXPECT_EQ(argumentsOf("set adsl Snrm down MaxSnrm 9 MinSnrm 1", CONFIG_NODE), "(down,9,1)");
  EXPECT_EQ(argumentsOf("set adsl Snrm down 9", CONFIG_NODE), "unknown");  // not SnrmMargin
  EXPECT_EQ(argumentsOf("show voice", CONFIG_NODE), "incomplete");
  EXPECT_EQ(argumentsOf("set fax packet interval tx 1 rx 10", CONFIG_NODE), "unknown");
  EXPECT_EQ(argumentsOf("set vdslline para psd 43", CONFIG_NODE), "unknown");
  EXPECT_EQ(argumentsOf("add pvc prof p", CONFIG_NODE), "(p)");
  EXPECT_EQ(argumentsOf("show v profile all", CONFIG_NODE), "ambiguous");
}

}  // namespace

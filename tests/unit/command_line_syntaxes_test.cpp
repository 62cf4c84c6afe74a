// Every command of the node, all installed together.

#include <fstream>

#include "command_line_fixture.h"

namespace {

class NodeCommands : public CommandLine {
 protected:
  NodeCommands() {
    std::ifstream file(MSAN_UNIT_DATA "/catalogue.txt");
    constexpr std::string_view kCommand = "command ";
    for (std::string line; std::getline(file, line);)
      if (line.starts_with(kCommand)) add(line.substr(kCommand.size()));
  }

  void add(const std::string& command) {
    EXPECT_EQ(0, install(std::stoi(command), command.substr(command.find(' ') + 1))) << command;
  }
};

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
      // Shortened as far as they stay unique.
      {"sh cid m", "()"},
      {"set pots gen para imp mode 680", "(680)"},
      {"set adsl Snrm down MaxSnrm 9 MinSnrm 1", "(down,9,1)"},
      {"set adsl Snrm down 9", "unknown"},  // not SnrmMargin
      {"show voice", "incomplete"},
      {"set fax packet interval tx 1 rx 10", "unknown"},
      {"set vdslline para psd 43", "unknown"},
      {"add pvc prof p", "(p)"},
      {"show v profile all", "ambiguous"},
  };
  // clang-format on
  for (const Row& row : rows) EXPECT_EQ(run(row.line), row.arguments) << row.line;
  EXPECT_EQ(run("set msan debug on cmdid 3087 module voice cmdid 1", DEBUG_NODE),
            "(on,cmdid,3087,module,voice,cmdid,1)");
}

}  // namespace

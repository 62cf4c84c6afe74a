// Runs a program under the system-call filter of a systemd unit: confine UNIT PROGRAM ARGUMENT...
// Groups of calls are taken from the lists that systemd itself prints.
#include <fmt/format.h>
#include <seccomp.h>
#include <sys/mman.h>
#include <sys/socket.h>
#include <unistd.h>

#include <array>
#include <cstdio>
#include <fstream>
#include <map>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>

static const std::map<std::string, unsigned> kFamilies = {
    {"AF_UNIX", AF_UNIX}, {"AF_INET", AF_INET}, {"AF_INET6", AF_INET6}};

static void rule(scmp_filter_ctx filter, u_int32_t action, const char* call, scmp_arg_cmp condition) {
  if (seccomp_rule_add_array(filter, action, seccomp_syscall_resolve_name(call), 1, &condition) != 0)
    throw std::runtime_error(fmt::format("confine: no rule for {}", call));
}

static void allow(scmp_filter_ctx filter, const std::string& name);

static void allowGroup(scmp_filter_ctx filter, const std::string& group) {
  const std::string command = "systemd-analyze syscall-filter --no-pager " + group;
  const std::unique_ptr<FILE, int (*)(FILE*)> listing(popen(command.c_str(), "r"), pclose);
  std::array<char, 256> line;
  bool any = false;
  while (listing && std::fgets(line.data(), line.size(), listing.get()) != nullptr) {
    std::string word;
    if (line[0] != ' ' || !(std::istringstream(line.data()) >> word) || word[0] == '#') continue;
    allow(filter, word);
    any = true;
  }
  if (!any) throw std::runtime_error("confine: systemd knows no calls of " + group);
}

// The calls with conditions have rules of their own; those of other machines are not known here.
static void allow(scmp_filter_ctx filter, const std::string& name) {
  if (name[0] == '@') return allowGroup(filter, name);
  const int call = seccomp_syscall_resolve_name(name.c_str());
  if (call >= 0 && name != "socket" && name != "mmap" && name != "mprotect")
    seccomp_rule_add(filter, SCMP_ACT_ALLOW, call, 0);
}

static void confine(const char* unit) {
  const scmp_filter_ctx filter = seccomp_init(SCMP_ACT_KILL_PROCESS);
  std::ifstream file(unit);
  std::string line, word;
  int lists = 0;
  while (std::getline(file, line)) {
    std::istringstream words(line.substr(line.find('=') + 1));
    if (line.starts_with("SystemCallFilter="))
      for (++lists; words >> word;) allow(filter, word);
    if (line.starts_with("RestrictAddressFamilies="))
      for (++lists; words >> word;) rule(filter, SCMP_ACT_ALLOW, "socket", SCMP_A0(SCMP_CMP_EQ, kFamilies.at(word)));
  }
  if (lists < 2) throw std::runtime_error(fmt::format("confine: {} holds no lists", unit));
  allowGroup(filter, "@default");
  // Memory is written or executed, not both.
  constexpr unsigned kBoth = PROT_WRITE | PROT_EXEC;
  for (const unsigned one : {0u, unsigned{PROT_WRITE}, unsigned{PROT_EXEC}})
    rule(filter, SCMP_ACT_ALLOW, "mmap", SCMP_A2(SCMP_CMP_MASKED_EQ, kBoth, one));
  rule(filter, SCMP_ACT_ALLOW, "mprotect", SCMP_A2(SCMP_CMP_MASKED_EQ, PROT_EXEC, 0));
  if (const int code = seccomp_load(filter); code != 0)
    throw std::runtime_error(fmt::format("confine: not permitted here ({})", code));
}

int main(int argc, char** argv) try {
  if (argc < 3) throw std::runtime_error("confine UNIT PROGRAM ARGUMENT...");
  confine(argv[1]);
  execv(argv[2], argv + 2);
  throw std::runtime_error(fmt::format("confine: can't run {}", argv[2]));
} catch (const std::exception& error) {
  std::fprintf(stderr, "%s\n", error.what());
  return 125;
}

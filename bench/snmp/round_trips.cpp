// Round trips of one manager with one session: round_trips AGENT COUNT set|get OID [HEX|i:NUMBER]. Prints requests a
// second, and the median and the 99th percentile of a round trip in microseconds. Or round_trips AGENT COUNT walk ENTRY
// ROWS COLUMN...: COUNT requests of a walk over a table, again and again, each for so many rows of these columns.
// Prints rows a second instead; the requests that find the end do not count.

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
// clang-format on

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <numeric>
#include <string>
#include <utility>
#include <vector>

using Clock = std::chrono::steady_clock;

namespace {

[[noreturn]] void fail(const char* why) {
  std::fprintf(stderr, "round_trips: %s\n", why);
  std::exit(1);
}

struct Request {
  int command = SNMP_MSG_GET;
  oid name[MAX_OID_LEN];
  std::size_t length = MAX_OID_LEN;
  u_char type = ASN_NULL;
  std::vector<u_char> value;  // as it stands in memory

  void read(const std::string& word) {
    if (word.starts_with("i:")) {
      const long number = std::atol(word.c_str() + 2);
      type = ASN_INTEGER;
      value.resize(sizeof number);
      std::memcpy(value.data(), &number, sizeof number);
      return;
    }
    type = ASN_OCTET_STR;
    for (std::size_t i = 0; i + 1 < word.size(); i += 2)
      value.push_back(static_cast<u_char>(std::strtoul(word.substr(i, 2).c_str(), nullptr, 16)));
  }

  netsnmp_pdu* pdu() const {
    netsnmp_pdu* made = snmp_pdu_create(command);
    if (snmp_pdu_add_variable(made, name, length, type, value.data(), value.size()) == nullptr) fail("a bad value");
    return made;
  }
};

// The answer, and how long it took.
netsnmp_pdu* ask(void* session, netsnmp_pdu* pdu, double& took) {
  netsnmp_pdu* response = nullptr;
  const auto began = Clock::now();
  if (snmp_sess_synch_response(session, pdu, &response) != STAT_SUCCESS || response->errstat != SNMP_ERR_NOERROR)
    fail("a request failed");
  took = std::chrono::duration<double, std::micro>(Clock::now() - began).count();
  return response;
}

double roundTrip(void* session, const Request& request) {
  double took = 0;
  snmp_free_pdu(ask(session, request.pdu(), took));
  return took;
}

using Name = std::vector<oid>;

class Walk {
 public:
  Walk(void* session, const Request& entry, long rows, std::vector<oid> columns)
      : session_(session), entry_(entry.name, entry.name + entry.length), rows_(rows), columns_(std::move(columns)) {}

  // The next request that finds rows.
  double step() {
    double took = 0;
    while (!find(took)) {
      if (at_.empty()) fail("there are no rows");
      at_.clear();
    }
    return took;
  }
  std::size_t found = 0;  // rows

 private:
  Name columnOf(std::size_t i) const {
    Name name = entry_;
    name.push_back(columns_[i]);
    return name;
  }

  bool find(double& took) {
    netsnmp_pdu* const pdu = snmp_pdu_create(SNMP_MSG_GETBULK);
    pdu->non_repeaters = 0;
    pdu->max_repetitions = rows_;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
      Name name = columnOf(i);
      name.insert(name.end(), at_.begin(), at_.end());
      snmp_add_null_var(pdu, name.data(), name.size());
    }
    netsnmp_pdu* const response = ask(session_, pdu, took);
    const Name first = columnOf(0);
    std::size_t place = 0, rows = 0;
    for (const auto* one = response->variables; one != nullptr; one = one->next_variable) {
      if (place++ % columns_.size() != 0) continue;
      if (one->name_length <= first.size() || !std::equal(first.begin(), first.end(), one->name)) break;
      at_.assign(one->name + first.size(), one->name + one->name_length);
      ++rows;
    }
    snmp_free_pdu(response);
    found += rows;
    return rows != 0;
  }

  void* const session_;
  const Name entry_;
  const long rows_;
  const std::vector<oid> columns_;
  Name at_;  // the index of the last row
};

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) fail("AGENT COUNT set|get OID [VALUE]");
  Request request;
  request.command = std::string(argv[3]) == "set" ? SNMP_MSG_SET : SNMP_MSG_GET;
  const bool walks = std::string(argv[3]) == "walk";
  if (walks && argc < 7) fail("walk ENTRY ROWS COLUMN...");
  if (argc > 5 && !walks) request.read(argv[5]);
  init_snmp("round_trips");
  if (read_objid(argv[4], request.name, &request.length) == 0) fail("a bad OID");
  netsnmp_session session;
  snmp_sess_init(&session);
  session.version = SNMP_VERSION_2c;
  session.peername = argv[1];
  session.community = reinterpret_cast<u_char*>(const_cast<char*>("public"));
  session.community_len = 6;
  void* handle = snmp_sess_open(&session);
  if (handle == nullptr) fail("no session");
  std::vector<oid> columns;
  for (int i = 6; walks && i < argc; ++i) columns.push_back(static_cast<oid>(std::atol(argv[i])));
  Walk walk(handle, request, walks ? std::atol(argv[5]) : 0, columns);
  const auto once = [&] { return walks ? walk.step() : roundTrip(handle, request); };
  std::vector<double> took(static_cast<std::size_t>(std::atoi(argv[2])));
  for (int i = 0; i < 200; ++i) once();
  walk.found = 0;
  const auto began = Clock::now();
  for (double& one : took) one = once();
  const double seconds = walks ? std::accumulate(took.begin(), took.end(), 0.0) / 1e6
                               : std::chrono::duration<double>(Clock::now() - began).count();
  std::sort(took.begin(), took.end());
  std::printf("%.0f %.1f %.1f\n", static_cast<double>(walks ? walk.found : took.size()) / seconds,
              took[took.size() / 2], took[took.size() * 99 / 100]);
  snmp_sess_close(handle);
}

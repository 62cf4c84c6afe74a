// Round trips of one manager with one session: round_trips AGENT COUNT set|get OID [HEX|i:NUMBER]. Prints requests a
// second, and the median and the 99th percentile of a round trip in microseconds.

// clang-format off
#include <net-snmp/net-snmp-config.h>
#include <net-snmp/net-snmp-includes.h>
// clang-format on

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
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

double roundTrip(void* session, const Request& request) {
  netsnmp_pdu* const pdu = request.pdu();
  netsnmp_pdu* response = nullptr;
  const auto began = Clock::now();
  if (snmp_sess_synch_response(session, pdu, &response) != STAT_SUCCESS || response->errstat != SNMP_ERR_NOERROR)
    fail("a request failed");
  const double took = std::chrono::duration<double, std::micro>(Clock::now() - began).count();
  snmp_free_pdu(response);
  return took;
}

}  // namespace

int main(int argc, char** argv) {
  if (argc < 5) fail("AGENT COUNT set|get OID [VALUE]");
  Request request;
  request.command = std::string(argv[3]) == "set" ? SNMP_MSG_SET : SNMP_MSG_GET;
  if (argc > 5) request.read(argv[5]);
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
  std::vector<double> took(static_cast<std::size_t>(std::atoi(argv[2])));
  for (int i = 0; i < 200; ++i) roundTrip(handle, request);
  const auto began = Clock::now();
  for (double& one : took) one = roundTrip(handle, request);
  const double seconds = std::chrono::duration<double>(Clock::now() - began).count();
  std::sort(took.begin(), took.end());
  std::printf("%.0f %.1f %.1f\n", static_cast<double>(took.size()) / seconds, took[took.size() / 2],
              took[took.size() * 99 / 100]);
  snmp_sess_close(handle);
}

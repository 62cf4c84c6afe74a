#include "settings.h"

#include <arpa/inet.h>

#include <algorithm>
#include <array>
#include <charconv>

namespace msand {

static bool isAddress(int family, const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes;
  return inet_pton(family, host.c_str(), bytes.data()) == 1;
}

static bool isPort(std::string_view digits) {
  unsigned port = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), port);
  return error == std::errc{} && end == digits.data() + digits.size() && port >= 1 && port <= 65535;
}

std::vector<std::string> listenAddresses(std::string_view word) {
  std::string_view left = word;
  std::vector<std::string> transports = {"udp", "tcp"};
  for (const std::string_view one : {"udp", "tcp"}) {
    if (!left.starts_with(one) || left.substr(one.size(), 1) != ":") continue;
    transports = {std::string(one)};
    left.remove_prefix(one.size() + 1);
    break;
  }
  const auto colon = left.rfind(':');
  std::string host(left.substr(0, colon));
  const bool six = host.size() > 2 && host.front() == '[' && host.back() == ']';
  const std::string bare = six ? host.substr(1, host.size() - 2) : host;
  if (colon == left.npos || !isPort(left.substr(colon + 1)) || !isAddress(six ? AF_INET6 : AF_INET, bare))
    throw std::invalid_argument("is no address such as 127.0.0.1:16100, udp:127.0.0.1:16100 or tcp:[::1]:16100");
  std::vector<std::string> addresses;
  for (const std::string& transport : transports)
    addresses.push_back(transport + (six ? "6:" : ":") + std::string(left));
  return addresses;
}

bool isPlainText(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

}  // namespace msand

#include "settings.h"

#include <arpa/inet.h>
#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <charconv>
#include <optional>

namespace msand {

static std::optional<unsigned> readNumber(std::string_view digits) {
  unsigned number = 0;
  const auto [end, error] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (error != std::errc{} || end != digits.data() + digits.size()) return std::nullopt;
  return number;
}

// The one text of an address, which may be written in several ways.
static std::optional<std::string> plainAddress(int family, const std::string& host) {
  std::array<unsigned char, sizeof(in6_addr)> bytes;
  std::array<char, INET6_ADDRSTRLEN> text;
  if (inet_pton(family, host.c_str(), bytes.data()) != 1) return std::nullopt;
  return inet_ntop(family, bytes.data(), text.data(), text.size());
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
  const auto port = colon == left.npos ? std::nullopt : readNumber(left.substr(colon + 1));
  const auto address = plainAddress(six ? AF_INET6 : AF_INET, bare);
  if (!address || !port || *port < 1 || *port > 65535)
    throw std::invalid_argument("is no address such as 127.0.0.1:16100, udp:127.0.0.1:16100 or tcp:[::1]:16100");
  std::vector<std::string> addresses;
  for (const std::string& transport : transports)
    addresses.push_back(six ? fmt::format("{}6:[{}]:{}", transport, *address, *port)
                            : fmt::format("{}:{}:{}", transport, *address, *port));
  return addresses;
}

bool overlap(std::string_view address, std::string_view other) {
  const auto parts = [](std::string_view text) {
    const auto host = text.find(':') + 1, port = text.rfind(':');
    return std::array{text.substr(0, host), text.substr(host, port - host), text.substr(port)};
  };
  const auto [transport, host, port] = parts(address);
  const auto [otherTransport, otherHost, otherPort] = parts(other);
  const auto isAll = [](std::string_view one) { return one == "0.0.0.0" || one == "[::]"; };
  return transport == otherTransport && port == otherPort && (host == otherHost || isAll(host) || isAll(otherHost));
}

using AddressBytes = std::array<unsigned char, sizeof(in6_addr)>;

// The bytes of a mask, whether it is a number of bits or written as an address.
static std::optional<AddressBytes> readMask(int family, const std::string& text) {
  AddressBytes mask{};
  if (family == AF_INET && inet_pton(AF_INET, text.c_str(), mask.data()) == 1) return mask;
  const auto bits = readNumber(text);
  if (!bits || *bits > (family == AF_INET ? 32u : 128u)) return std::nullopt;
  for (unsigned bit = 0; bit < *bits; ++bit) mask[bit / 8] |= static_cast<unsigned char>(0x80u >> bit % 8);
  return mask;
}

bool isSource(const std::string& text) {
  const int family = text.find(':') == text.npos ? AF_INET : AF_INET6;
  const auto slash = text.find('/');
  AddressBytes address{};
  if (inet_pton(family, text.substr(0, slash).c_str(), address.data()) != 1) return false;
  if (slash == text.npos) return true;
  const auto mask = readMask(family, text.substr(slash + 1));
  if (!mask) return false;
  for (std::size_t i = 0; i < mask->size(); ++i)
    if ((address[i] & ~(*mask)[i]) != 0) return false;
  return true;
}

bool isPlainText(std::string_view text) {
  return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~' && c != '"' && c != '\\'; });
}

}  // namespace msand

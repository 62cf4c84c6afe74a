#pragma once
// What the manager's door is told by the configuration.

#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace msand {

// Managers of version 1 and 2c. Source: an address, a network such as 10.0.0.0/8, or empty for everywhere.
struct Community {
  std::string name;
  std::string source;
  bool writes = false;
};

// A manager of version 3, with authentication and privacy.
struct User {
  std::string name;
  std::string authentication = "SHA-256";  // SHA, SHA-256, SHA-512
  std::string authenticationSecret;
  std::string privacySecret;  // AES
  bool writes = false;
};

inline constexpr std::size_t kShortestSecret = 8;
inline constexpr std::size_t kLongestCommunity = 255;  // the library cuts what is longer
inline constexpr std::size_t kLongestUser = 32;

struct SnmpSettings {
  std::vector<std::string> listen = {"udp:127.0.0.1:16100", "tcp:127.0.0.1:16100"};
  std::string name = "msan";
  std::string location;
  std::string contact;
  std::vector<Community> communities;
  std::vector<User> users;
  std::vector<std::string> notify;  // where notifications go, "udp:127.0.0.1:162"
};

// The library's names of the addresses that a word such as "udp:127.0.0.1:16100", "tcp:[::1]:16100" or
// "127.0.0.1:16100" (both) stands for. Throws std::invalid_argument for one that is none; the host must be an address.
std::vector<std::string> listenAddresses(std::string_view word);

// True if no two sockets can have both: the same transport and port, and the same host or one that stands for all.
bool overlap(std::string_view address, std::string_view other);

// True for an address, and for a network whose mask (a number of bits, or 255.0.0.0) covers all that it names.
bool isSource(const std::string& text);

// True if a text can stand as a name or a secret: printable, without quotes and backslashes.
bool isPlainText(std::string_view text);

}  // namespace msand

#pragma once
// A manager: reads and writes the table of frames of a node.

#include <memory>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "platform/types.h"

namespace frame {

struct Access {
  std::string agent = "udp:127.0.0.1:16100";
  std::string community = "public";
  std::string user;  // not empty: version 3, with authentication and privacy
  std::string authentication = "SHA-256";
  std::string authenticationSecret;
  std::string privacySecret;
  double timeout = 5;     // seconds
  std::size_t piece = 0;  // largest piece of a frame; 0: as the transport asks for
};

// No answer, or the agent's own refusal; what() says which.
struct ClientError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// What a SET gave. `accepted` false: the reply says why.
struct SetResult {
  bool accepted = false;
  std::vector<u8> reply;
};

struct Piece {
  std::vector<u8> bytes;
  bool last = true;
};

class Client {
 public:
  explicit Client(const Access& access);  // throws ClientError
  ~Client();
  Client(const Client&) = delete;
  Client& operator=(const Client&) = delete;

  // Hands over a frame, in as many pieces as it takes. All throw ClientError.
  SetResult set(u16 id, const std::vector<u8>& frame);
  // The frame that goes with the next piece.
  void query(u16 id, const std::vector<u8>& frame);
  Piece next(u16 id);

 private:
  struct Session;
  std::unique_ptr<Session> session_;
};

// The code of an error packet, in words: a line for each error in it. Empty for a packet that tells none.
std::string errorWords(const std::vector<u8>& reply);

}  // namespace frame

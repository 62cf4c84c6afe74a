#pragma once
// What msand and its shadow say to each other: values over a socket, each as CBOR behind its length, a u32.

#include <chrono>
#include <nlohmann/json.hpp>
#include <optional>
#include <stdexcept>

namespace msand {

using Value = nlohmann::json;

// The other end has gone, takes too long, or says what can't be read.
struct ChannelError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Bytes that are no text of a value otherwise: what a module prints, and what an operator types.
Value bytesValue(std::string_view bytes);
std::string bytesOf(const Value& value);

// By when the other end has to have taken or said all of it; none: as long as it takes.
using Deadline = std::optional<std::chrono::steady_clock::time_point>;

void sendValue(int socket, const Value& value, Deadline deadline = {});  // throws ChannelError
// None: the other end has closed the socket. Throws ChannelError.
std::optional<Value> receiveValue(int socket, Deadline deadline = {});

}  // namespace msand

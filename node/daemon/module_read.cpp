#include "module_read.h"

#include <fmt/format.h>

#include <algorithm>

#include "recorded_frames.h"
#include "session_record.h"

namespace msand {

using messages::Decoded, messages::View;

namespace {

constexpr std::size_t kEnvelope = 32, kHead = kEnvelope + 4, kItem = 20;
constexpr int kMostPieces = 64;

void put(std::vector<u8>& frame, std::size_t at, u16 value) {
  frame[at] = static_cast<u8>(value >> 8);
  frame[at + 1] = static_cast<u8>(value);
}

std::vector<u8> question(u16 slot, u16 port) {
  std::vector<u8> frame(slot == 0 ? kHead : kHead + kItem);
  if (slot == 0) return frame;
  put(frame, kEnvelope + 2, 1);
  put(frame, kHead, slot);
  put(frame, kHead + 2, port);
  return frame;
}

// What the module refused, in the words of the description.
std::string reasonOf(const Decoded& error) {
  const i64 code = View(error).numberOr("code", 0);
  const auto found = error.message->details.find(static_cast<u16>(code));
  if (found == error.message->details.end() || found->second.note.empty()) return fmt::format("error {}", code);
  return found->second.note;
}

}  // namespace

std::vector<u8> readModule(u16 id, const std::vector<u8>& question) {
  std::vector<u8> all;
  const Turn turn;
  for (int piece = 0; piece < kMostPieces; ++piece) {
    std::vector<u8> frame = question;
    const host::Answer answer = recordedGet(id, frame);
    if (answer.reply) all.insert(all.end(), answer.reply->begin(), answer.reply->end());
    if (answer.last != 0 || !answer.reply || answer.reply->empty()) break;
  }
  return all;
}

ModuleReply::ModuleReply(u16 id, u16 slot, u16 port) : bytes_(readModule(id, question(slot, port))) {
  const messages::Book& book = messages::book();
  const messages::Message* const message = book.find(id);
  const messages::Layout* const layout =
      message == nullptr ? nullptr : messages::layoutOf(book, *message, messages::Road::getReply, bytes_);
  if (layout == nullptr || bytes_.empty()) {
    why_ = "the module has no answer";
    return;
  }
  decoded_ = messages::decode(*message, *layout, bytes_);
  const bool readable = std::ranges::none_of(
      decoded_.problems, [](const messages::Problem& problem) { return problem.fault == messages::Fault::form; });
  if (!readable)
    why_ = "the answer can't be read";
  else if (layout == &book.errorPacket)
    why_ = reasonOf(decoded_);
}

View ModuleReply::first(std::string_view list) const {
  static const Decoded nothing;
  if (!good()) return View(nothing);
  const std::vector<View> items = whole().items(list);
  return items.empty() ? View(nothing) : items.front();
}

}  // namespace msand

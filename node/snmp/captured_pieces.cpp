#include "captured_pieces.h"

#include "capture_file.h"

namespace msand {

using messages::Road;

// More than a capture takes of a message is not kept.
static void append(std::vector<u8>& to, const std::vector<u8>& piece) {
  if (to.size() <= messages::kMostCaptured) to.insert(to.end(), piece.begin(), piece.end());
}

void CapturedPieces::addRequest(const ModuleRequest& request) {
  if (!captureFile().wanted()) {
    requests_.clear();
    replies_.clear();
  } else if (request.column == kAnswer) {
    if (!replies_.contains(request.id)) captureFile().add(Road::get, 0, request.id, request.bytes);
  } else {
    append(requests_[request.id], request.bytes);
    if (request.column == kFrameMore) return;
    captureFile().add(Road::set, 0, request.id, requests_[request.id]);
    requests_.erase(request.id);
  }
}

void CapturedPieces::addAnswer(const ModuleRequest& request, const host::Answer& answer) {
  if (!captureFile().wanted() || !answer.reply || answer.reply->empty()) return;
  if (request.column == kAnswer) {
    append(replies_[request.id], *answer.reply);
    if (answer.last == 0) return;
    captureFile().add(Road::getReply, 0, request.id, replies_[request.id]);
    replies_.erase(request.id);
  } else if (request.column == kFrame) {
    captureFile().add(Road::setReply, 0, request.id, *answer.reply);
  } else if (FrameTable::isRefusal(answer)) {  // of a piece, with which the others are gone
    captureFile().add(Road::set, 0, request.id, requests_[request.id]);
    captureFile().add(Road::setReply, 0, request.id, *answer.reply);
    requests_.erase(request.id);
  }
}

void CapturedPieces::forget(u16 id) { requests_.erase(id); }

}  // namespace msand

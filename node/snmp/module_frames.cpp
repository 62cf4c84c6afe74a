#include "module_frames.h"

#include <algorithm>
#include <array>

#include "capture_file.h"
#include "recorded_frames.h"

namespace msand {

static constexpr std::size_t kEnvelope = 32;
static constexpr std::array<u8, 4> kSuccess = {0, 0, 0, 1};

static std::vector<u8> frameOf(const std::vector<u8>& area) {
  std::vector<u8> frame(kEnvelope + area.size());
  std::ranges::copy(area, frame.begin() + kEnvelope);
  return frame;
}

static bool isSuccess(const host::Answer& answer) {
  return answer.result != 0 && answer.reply && answer.reply->size() >= kSuccess.size() &&
         std::ranges::equal(kSuccess, std::span(*answer.reply).first<kSuccess.size()>());
}

std::optional<std::vector<u8>> askModule(u16 id, const std::vector<u8>& area) {
  std::vector<u8> frame = frameOf(area);
  captureFile().add(messages::Road::get, 0, id, frame);
  const host::Answer answer = recordedGet(id, frame);
  if (answer.reply) captureFile().add(messages::Road::getReply, 0, id, *answer.reply);
  constexpr std::size_t kHead = kSuccess.size() + kEnvelope;
  if (!isSuccess(answer) || answer.reply->size() < kHead) return std::nullopt;
  return std::vector<u8>(answer.reply->begin() + kHead, answer.reply->end());
}

bool tellModule(u16 id, const std::vector<u8>& area) {
  std::vector<u8> frame = frameOf(area);
  captureFile().add(messages::Road::set, 0, id, frame);
  const host::Answer answer = recordedSet(id, true, frame);
  if (answer.reply) captureFile().add(messages::Road::setReply, 0, id, *answer.reply);
  return isSuccess(answer);
}

}  // namespace msand

#include "platform/snmp_agent.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <mutex>

#include "constants.h"
#include "host/agent.h"
#include "host/log.h"
#include "host/watcher.h"
#include "sanitizers.h"

namespace {

constexpr u32 kNotSet = 0xFFFFFFFF;

std::mutex mutex;
host::Hooks hooks;
std::vector<host::Announced>& announced() {
  static std::vector<host::Announced> all;
  return all;
}

// The thread's reply buffer.
struct ReplyBuffer {
  const std::unique_ptr<u8[]> bytes{new u8[host::kReplyCapacity]()};
  bool zeroed = true;

  void zero() {
    if (!zeroed) std::memset(bytes.get(), 0, host::kReplyCapacity);
    zeroed = true;
  }
};

ReplyBuffer& replyBuffer() {
  thread_local ReplyBuffer buffer;
  return buffer;
}

// It, zeroed, to be written to.
u8* freshReply() {
  ReplyBuffer& buffer = replyBuffer();
  buffer.zero();
  buffer.zeroed = false;
  return buffer.bytes.get();
}

// A frame as the hooks get it. An empty one has an address, too, and ends where its memory ends.
struct Frame {
  explicit Frame(std::vector<u8>* bytes) {
    if (bytes == nullptr) return;
#if defined(__SANITIZE_ADDRESS__)
    bytes->shrink_to_fit();
#endif
    if (bytes->empty()) empty.reset(new u8[0]);
    data = bytes->empty() ? empty.get() : bytes->data();
    length = static_cast<i32>(bytes->size());
  }
  std::unique_ptr<u8[]> empty;
  u8* data = nullptr;
  i32 length = 0;
};

// Tells the watcher of a request, when its answer is complete.
class Timed {
 public:
  Timed(u16 id, bool isSet, const host::Answer& answer)
      : watcher_(host::watcher()), id_(id), isSet_(isSet), answer_(answer) {
    if (watcher_ != nullptr) begin_ = Clock::now();
  }
  ~Timed() {
    if (watcher_ == nullptr) return;
    const auto reply = answer_.reply ? host::Bytes(*answer_.reply) : host::Bytes();
    watcher_->request({id_, isSet_, answer_.result, reply, Clock::now() - begin_});
  }
  Timed(const Timed&) = delete;
  Timed& operator=(const Timed&) = delete;

 private:
  using Clock = std::chrono::steady_clock;
  host::Watcher* watcher_;
  u16 id_;
  bool isSet_;
  const host::Answer& answer_;
  Clock::time_point begin_;
};

std::optional<std::vector<u8>> takeReply(u16 id, const u8* reply, u32 length) {
  if (length == kNotSet) return std::nullopt;
  if (length > host::kReplyCapacity) {
    host::platformError("message %u: a reply of %u bytes, the buffer holds %u", id, length, host::kReplyCapacity);
    length = host::kReplyCapacity;
  }
  return std::vector<u8>(reply, reply + length);
}

}  // namespace

int installSnmpCommand(u16 id, const char* text, i32 c0, i32 c1, i32) {
  if (host::constantsDiffer(__func__, 1, {c0, c1})) return -1;
  const std::lock_guard lock(mutex);
  announced().push_back({id, text != nullptr ? text : ""});
  return 0;
}

int RegisterHookFunc(SnmpWrite* write, SnmpRead* read, i32) {
  if (write == nullptr || read == nullptr) return 0;
  const std::lock_guard lock(mutex);
  hooks = {write, read};
  return 1;
}

namespace host {

std::vector<Announced> announcedMessages() {
  const std::lock_guard lock(mutex);
  return announced();
}

std::string messageName(u16 id) {
  const std::lock_guard lock(mutex);
  const auto found =
      std::find_if(announced().begin(), announced().end(), [id](const Announced& one) { return one.id == id; });
  return found != announced().end() ? found->text : std::string();
}

Hooks agentHooks() {
  const std::lock_guard lock(mutex);
  return hooks;
}

Answer agentSet(u16 id, bool last, std::vector<u8>* bytes) {
  Answer answer;
  const Hooks current = agentHooks();
  if (current.write == nullptr) return answer;
  const Timed timed(id, true, answer);
  const Frame frame(bytes);
  u8* const reply = freshReply();
  u32 length = kNotSet;
  answer.result = current.write(id, last ? 1 : 0, frame.data, frame.length, reply, &length, nullptr, nullptr);
  answer.reply = takeReply(id, reply, length);
  return answer;
}

Answer agentGet(u16 id, std::vector<u8>* bytes) {
  Answer answer;
  const Hooks current = agentHooks();
  if (current.read == nullptr) return answer;
  const Timed timed(id, false, answer);
  const Frame frame(bytes);
  u8* const reply = freshReply();
  u32 length = kNotSet;
  answer.result = current.read(id, &answer.last, frame.data, frame.length, reply, &length, nullptr, nullptr);
  answer.reply = takeReply(id, reply, length);
  return answer;
}

void zeroReply() { replyBuffer().zero(); }

void forgetAgent() {
  const std::lock_guard lock(mutex);
  announced().clear();
  hooks = {};
}

}  // namespace host

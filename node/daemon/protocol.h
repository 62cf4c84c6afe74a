#pragma once
// What msand and its terminals say to each other over the operator's socket.
//
// A frame is a u32 length, big-endian, of what follows it; one byte, the kind; and the payload. The length is 1 to
// 65,536, from a terminal at most 16,384. A frame of another length or an unknown kind ends the connection.
//
//   from the terminal
//     L  a line to run. Lines may be sent ahead of their results.
//     ?  the line up to the cursor: what may stand next?
//     F  a piece of a file, for the line behind it: the name by which that line means it, a line feed, bytes. Pieces of
//        one name belong together; all files of a line have 16 MiB at most
//     W  the screen that lines are shown on: u16 columns, u8 what it can show (1 UTF-8, 2 colours). For the lines
//     behind
//        it; without one, 80 columns of ASCII
//   from the node
//     H  first of all: u8 version of this protocol
//     P  the prompt, after H and whenever it changes
//     T  text of the line under way, as the command printed it; as many frames as it takes
//     R  the end of a line, one for each L in the order of the lines: u8 outcome (the number of a LineResult, or
//        kAsks), i32 what the handler returned, u32 the byte of the line where it is not understood, and what was
//        expected there, as text; numbers are big-endian
//     S  the answer to ?: one row "word TAB help LF" per suggestion; "<cr>" where the line may end
//     M  a line of the live trace; comes at any time, between the other frames
//     B  the node ends the session, and why; with no text, in the place of R, when a line has asked for it
//
// Text is passed on as it is: any bytes, lines end in CR LF.

#include <optional>
#include <string>
#include <string_view>

#include "platform/types.h"

namespace wire {

inline constexpr u8 kVersion = 4;
inline constexpr u32 kMaxFrame = 65536;
inline constexpr u32 kMaxRequest = 16384;
inline constexpr std::size_t kMaxFiles = 16 << 20;  // bytes, of a line
inline constexpr u32 kAhead = 64;  // requests that a terminal may have under way; msand takes them off the socket

enum class Kind : char {
  line = 'L',
  ask = '?',
  screen = 'W',
  file = 'F',
  hello = 'H',
  prompt = 'P',
  text = 'T',
  result = 'R',
  suggestions = 'S',
  trace = 'M',
  bye = 'B',
};

struct Frame {
  Kind kind;
  std::string_view payload;
};

// Appends a frame. The payload must fit into one.
void appendFrame(std::string& to, Kind kind, std::string_view payload);

// Appends a payload of any length in as many frames as it takes, none for an empty one.
void appendFrames(std::string& to, Kind kind, std::string_view payload);

// An outcome beside those of a LineResult: the line has left a question open, which is the prompt now. The next line is
// the answer.
inline constexpr u8 kAsks = 100;

// The payload of R.
struct Result {
  u8 outcome = 0;
  i32 returned = 0;
  u32 at = 0;                 // of a line that is not understood
  std::string expected = {};  // there
  bool good() const { return outcome == 0 && returned == 0; }
};
void appendResult(std::string& to, const Result& result);
std::optional<Result> readResult(std::string_view payload);

// The payload of W.
struct Screen {
  u16 columns = 80;
  bool utf8 = false;
  bool colour = false;
  bool operator==(const Screen&) const = default;
};
std::string screenPayload(const Screen& screen);
std::optional<Screen> readScreen(std::string_view payload);

// Cuts a stream of bytes into frames.
class FrameReader {
 public:
  explicit FrameReader(u32 longest) : longest_(longest) {}

  void feed(std::string_view bytes);

  // The next whole frame; its payload is good until the next call of any kind. None: more bytes are needed, or the
  // stream is broken.
  std::optional<Frame> next();

  // A length out of its bounds was met; nothing more comes out of this stream.
  bool broken() const { return broken_; }

 private:
  u32 longest_;
  std::string bytes_;
  std::size_t taken_ = 0;
  bool broken_ = false;
};

}  // namespace wire

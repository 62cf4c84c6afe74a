#include "history.h"

#include <fmt/chrono.h>
#include <fmt/format.h>
#include <zlib.h>

#include <algorithm>
#include <charconv>
#include <chrono>
#include <filesystem>
#include <stdexcept>

#include "files.h"
#include "platform/types.h"

namespace msand {

static constexpr std::size_t kKept = 51;
static constexpr std::size_t kMaxFile = 32 << 20;
static constexpr std::size_t kHead = 1 << 15;  // longer than a line
static constexpr std::string_view kMark = "! written ";
static constexpr std::string_view kEnding = ".gz";
static constexpr int kGzip = MAX_WBITS + 16;

static std::string compressed(const std::string& path, std::string_view text) {
  z_stream stream{};
  if (deflateInit2(&stream, Z_DEFAULT_COMPRESSION, Z_DEFLATED, kGzip, 8, Z_DEFAULT_STRATEGY) != Z_OK)
    throw FileError(path, "can't be compressed");
  std::string bytes(deflateBound(&stream, text.size()), '\0');
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(text.data()));
  stream.avail_in = static_cast<uInt>(text.size());
  stream.next_out = reinterpret_cast<Bytef*>(bytes.data());
  stream.avail_out = static_cast<uInt>(bytes.size());
  const int result = deflate(&stream, Z_FINISH);
  bytes.resize(stream.total_out);
  deflateEnd(&stream);
  if (result != Z_STREAM_END) throw FileError(path, "can't be compressed");
  return bytes;
}

// All of it, or, for who wants its beginning, at least `enough` bytes.
static std::string expanded(const std::string& path, std::size_t enough = kMaxFile) {
  const std::string bytes = readFile(path, kMaxFile);
  z_stream stream{};
  if (inflateInit2(&stream, kGzip) != Z_OK) throw FileError(path, "can't be read");
  stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(bytes.data()));
  stream.avail_in = static_cast<uInt>(bytes.size());
  std::string text;
  int result = Z_OK;
  while (result == Z_OK && text.size() <= enough) {
    char piece[65536];
    stream.next_out = reinterpret_cast<Bytef*>(piece);
    stream.avail_out = sizeof piece;
    result = inflate(&stream, Z_NO_FLUSH);
    text.append(piece, sizeof piece - stream.avail_out);
  }
  inflateEnd(&stream);
  if (result != Z_STREAM_END && (result != Z_OK || enough == kMaxFile)) throw FileError(path, "is damaged");
  return text;
}

std::string timeNow() {
  const auto now = std::chrono::system_clock::to_time_t(std::chrono::system_clock::now());
  return fmt::format("{:%Y-%m-%d %H:%M:%S}", fmt::gmtime(now));
}

History::History(const std::string& startup) : folder_(startup + ".history") {}

std::vector<std::string> History::files() const {
  std::vector<std::string> all;
  std::error_code none;
  for (const auto& entry : std::filesystem::directory_iterator(folder_, none))
    if (entry.path().extension() == kEnding) all.push_back(entry.path().string());
  std::ranges::sort(all, std::greater());
  return all;
}

void History::keep(std::string_view text, const Written& written) {
  std::error_code failed;
  std::filesystem::create_directories(folder_, failed);
  const auto old = files();
  u32 number = 0;
  if (!old.empty()) {
    const std::string name = std::filesystem::path(old.front()).stem();
    std::from_chars(name.data(), name.data() + name.size(), number);
  }
  const std::string path = fmt::format("{}/{:08}{}", folder_, number + 1, kEnding);
  removeUnfinished(path);
  replaceFile(path, compressed(path, fmt::format("{}{}, {}: {}\n{}", kMark, written.time, written.door, written.comment,
                                                 text)));
  for (std::size_t i = kKept - 1; i < old.size(); ++i) std::filesystem::remove(old[i], failed);
}

// The head line's parts, and the text behind it.
static History::Written readHead(const std::string& path, std::string& text, std::size_t enough = kMaxFile) {
  text = expanded(path, enough);
  const std::size_t end = text.find('\n');
  const std::string head = text.substr(0, end);
  const std::size_t comma = head.find(", "), colon = head.find(": ", comma);
  if (!head.starts_with(kMark) || colon == head.npos) throw FileError(path, "is damaged");
  text.erase(0, end + 1);
  return {head.substr(kMark.size(), comma - kMark.size()), head.substr(comma + 2, colon - comma - 2),
          head.substr(colon + 2)};
}

bool History::endsWith(std::string_view text) const {
  const auto all = files();
  if (all.empty()) return false;
  try {
    std::string kept;
    readHead(all.front(), kept);
    return kept == text;
  } catch (const FileError&) {
    return false;
  }
}

std::vector<History::Written> History::list() const {
  std::vector<Written> all;
  for (const std::string& path : files()) {
    try {
      std::string text;
      all.push_back(readHead(path, text, kHead));
    } catch (const FileError& error) {
      all.push_back({"", "", error.what()});
    }
  }
  return all;
}

std::string History::text(std::string_view number) const {
  const auto all = files();
  std::size_t at = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), at);
  if (error != std::errc{} || end != number.data() + number.size() || at >= all.size())
    throw std::invalid_argument(fmt::format("there is no {} in the history", number));
  std::string text;
  readHead(all[at], text);
  return text;
}

}  // namespace msand

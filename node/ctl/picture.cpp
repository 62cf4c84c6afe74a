#include "picture.h"

#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <sstream>
#include <vector>

#include "display.h"

namespace ctl {

namespace {

struct Listing {
  std::string title, quantity, unit;
  std::vector<std::vector<std::string>> points;  // tone, MHz, up, down
};

constexpr const char* kOnlyCurves = "only curves can be drawn: plot bits, gain, snr, hlog or qln of a port";

// What a plot prints as a table; none if it failed, and then that is told.
std::optional<std::string> tableOf(Connection& connection, const std::string& line) {
  if (!line.starts_with("plot ")) throw PictureError(kOnlyCurves);
  connection.send(wire::Kind::line, line + " table");
  std::string text;
  while (const auto frame = connection.receive()) {
    if (frame->kind == wire::Kind::text) text += frame->payload;
    if (frame->kind != wire::Kind::result) continue;
    const auto result = wire::readResult(frame->payload);
    if (!result) throw ConnectionError("what answers is no msand");
    if (result->good()) return text;
    std::fprintf(stderr, "%scommand:1: %s: %s\n", forDisplay(text, true).c_str(), reasonOf(*result).c_str(),
                 forDisplay(line, true).c_str());
    return {};
  }
  throw ConnectionError("the node has ended the session: " + connection.farewell());
}

std::vector<std::string> cells(const std::string& line) {
  std::vector<std::string> all;
  std::istringstream in(line);
  for (std::string cell; std::getline(in, cell, '\t');) all.push_back(cell);
  return all;
}

// "# TITLE", "# tone TAB MHz TAB up, UNIT TAB down, UNIT", and the points.
Listing read(const std::string& text) {
  std::istringstream in(forDisplay(text, true));
  Listing listing;
  std::string heads;
  if (!std::getline(in, listing.title) || !std::getline(in, heads) || !listing.title.starts_with("# ") ||
      !heads.starts_with("# tone\t"))
    throw PictureError(kOnlyCurves);
  listing.title.erase(0, 2);
  listing.quantity = listing.title.substr(0, listing.title.find(" of "));
  const std::vector<std::string> names = cells(heads);
  listing.unit = names.size() < 3 ? "" : names[2].substr(std::min(names[2].size(), std::strlen("up, ")));
  for (std::string line; std::getline(in, line);)
    if (const auto point = cells(line); point.size() == 4) listing.points.push_back(point);
  return listing;
}

// In single quotes nothing works in a text.
std::string quoted(const std::string& text) {
  std::string made = "'";
  for (const char letter : text) made += letter == '\'' ? std::string("''") : std::string(1, letter);
  return made + "'";
}

// A way's points by MHz; where nothing was measured the line is broken.
std::string block(const Listing& listing, const char* name, std::size_t column) {
  std::string text = std::string("$") + name + " << END\n";
  bool broken = true, any = false;
  for (const auto& point : listing.points) {
    const bool none = point[column] == "-";
    if (!none)
      text += point[1] + " " + point[column] + "\n";
    else if (!broken)
      text += "\n";
    broken = none;
    any = any || !none;
  }
  if (!any) text += "0 NaN\n";  // gnuplot refuses a block of nothing
  return text + "END\n";
}

std::string script(const Listing& listing) {
  const auto& points = listing.points;
  const std::string lastTone = points.empty() ? "1" : points.back()[0];
  const std::string last = points.empty() ? "1" : points.back()[1];
  return block(listing, "up", 2) + block(listing, "down", 3) +
         "set terminal svg size 1000,500 font 'sans,14' background 'white'\n"
         "set title " +
         quoted(listing.title) +
         " noenhanced\n"
         "set xlabel 'MHz'\nset x2label 'tone'\n"
         "set xtics nomirror\nset x2tics\nset grid\nset key outside bottom center horizontal\n"
         "set xrange [0:" +
         last + "]\nset x2range [0:" + lastTone +
         "]\n"
         "set ylabel " +
         quoted(listing.quantity + ", " + listing.unit) +
         " noenhanced\n"
         "plot $down with lines linewidth 1.5 linecolor rgb '#0072b2' title 'downstream', "
         "$up with lines linewidth 1.5 linecolor rgb '#d55e00' title 'upstream'\n";
}

// Runs gnuplot from a script to a file; it reads no settings of the user's.
void runGnuplot(int from, int to) {
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, from, STDIN_FILENO);
  posix_spawn_file_actions_adddup2(&actions, to, STDOUT_FILENO);
  std::string name = "gnuplot", plain = "-d";
  char* const arguments[] = {name.data(), plain.data(), nullptr};
  pid_t process = 0;
  const int error = posix_spawnp(&process, "gnuplot", &actions, nullptr, arguments, environ);
  posix_spawn_file_actions_destroy(&actions);
  if (error == ENOENT)
    throw PictureError("pictures are drawn by gnuplot, which is not installed (Debian: gnuplot-nox)");
  if (error != 0) throw PictureError(std::string("gnuplot can't be run: ") + std::strerror(error));
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) throw PictureError("gnuplot failed");
}

struct CloseFile {
  void operator()(std::FILE* file) const { std::fclose(file); }
};

void draw(const std::string& commands, const std::string& path) {
  const std::unique_ptr<std::FILE, CloseFile> from(std::tmpfile());
  if (!from || std::fwrite(commands.data(), 1, commands.size(), from.get()) != commands.size() ||
      std::fflush(from.get()) != 0)
    throw PictureError(std::string("no temporary file: ") + std::strerror(errno));
  std::rewind(from.get());
  const std::string unfinished = path + ".new-" + std::to_string(getpid());
  const Descriptor to(open(unfinished.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0666));
  if (!to) throw PictureError(path + ": can't be written: " + std::strerror(errno));
  try {
    runGnuplot(fileno(from.get()), to.get());
    if (fsync(to.get()) != 0 || rename(unfinished.c_str(), path.c_str()) != 0)
      throw PictureError(path + ": can't be written: " + std::strerror(errno));
  } catch (...) {
    unlink(unfinished.c_str());
    throw;
  }
}

}  // namespace

bool drawPicture(Connection& connection, const std::string& command, const std::string& path) {
  const auto text = tableOf(connection, command);
  if (!text) return false;
  draw(script(read(*text)), path);
  return true;
}

}  // namespace ctl

#pragma once
// A curve that the node lists, as a picture. It is gnuplot that draws it.

#include <stdexcept>
#include <string>

#include "connection.h"

namespace ctl {

// Why there is no picture.
struct PictureError : std::runtime_error {
  using std::runtime_error::runtime_error;
};

// Has the node list the curve of a "plot" command and replaces `path` by an SVG picture of it. False if the command
// failed; that is told as for other commands. Throws PictureError, ConnectionError.
bool drawPicture(Connection& connection, const std::string& command, const std::string& path);

}  // namespace ctl

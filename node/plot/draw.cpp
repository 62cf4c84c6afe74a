#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <cmath>

#include "curve.h"

namespace plot {

namespace {

constexpr std::size_t kMargin = 8;  // columns of the labels and the axis
constexpr int kEighths = 8;
constexpr std::size_t kLeastWidth = 16;

// A row's share of a bar, in eighths, and of dots.
constexpr std::array<const char*, 9> kBars = {" ", "▁", "▂", "▃", "▄", "▅", "▆", "▇", "█"};
constexpr std::array<const char*, 9> kDots = {" ", "⣀", "⣀", "⣤", "⣤", "⣶", "⣶", "⣿", "⣿"};
constexpr const char* kUpColour = "\033[33m";
constexpr const char* kDownColour = "\033[36m";
constexpr const char* kNoColour = "\033[0m";

// The value of the lowest row's foot and a quarter of the height, which is a round number.
struct Scale {
  double low = 0, quarter = 1;
};

// None where there is no value.
std::optional<Scale> scaleOf(const std::vector<Point>& points) {
  double least = 0, most = 0;
  bool any = false;
  for (const Point& point : points)
    for (const auto& value : {point.up, point.down}) {
      if (!value) continue;
      least = any ? std::min(least, *value) : *value;
      most = any ? std::max(most, *value) : *value;
      any = true;
    }
  if (!any) return {};
  for (double ten = 0.1;; ten *= 10)
    for (const double digit : {1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0}) {
      const double quarter = ten * digit;
      // Each value stands above the foot, so that it is seen; what is never negative stands on 0.
      const double low = least >= 0 ? 0 : (std::ceil(least / quarter) - 1) * quarter;
      if (most <= low + 4 * quarter) return Scale{low, quarter};
    }
}

// A column of the drawing: which of the ways most of its points are of, and the value that is farthest from the middle
// one, so that neither a narrow notch nor a narrow peak is lost.
struct Column {
  bool up = false;
  std::optional<double> value;
};

std::optional<double> standsOut(std::vector<double> values) {
  if (values.empty()) return {};
  std::ranges::sort(values);
  const double middle = values[values.size() / 2];
  return middle - values.front() > values.back() - middle ? values.front() : values.back();
}

std::vector<Column> columnsOf(const std::vector<Point>& points, std::size_t width) {
  std::vector<Column> columns(width);
  for (std::size_t i = 0; i < width; ++i) {
    const std::size_t first = i * points.size() / width;
    const std::size_t end = std::max(first + 1, (i + 1) * points.size() / width);
    std::vector<double> up, down;
    for (std::size_t at = first; at < std::min(end, points.size()); ++at) {
      if (points[at].up) up.push_back(*points[at].up);
      if (points[at].down) down.push_back(*points[at].down);
    }
    columns[i].up = up.size() > down.size();
    columns[i].value = standsOut(columns[i].up ? std::move(up) : std::move(down));
  }
  return columns;
}

class Drawing {
 public:
  Drawing(const Curve& curve, const Style& style)
      : curve_(curve),
        style_(style),
        width_(std::max(style.columns, kMargin + kLeastWidth) - kMargin),
        scale_(scaleOf(curve.points)),
        columns_(columnsOf(curve.points, width_)) {}

  std::string run() {
    add(curve_.title.substr(0, width_ + kMargin));
    for (std::size_t row = style_.rows; row-- > 0;) add(label(row) + (scale_ ? rowOf(row) : nothing(row)));
    axis();
    add(fmt::format("{:>7} {}, {}    {} upstream  {} downstream", "", curve_.quantity, curve_.unit,
                    painted(style_.utf8 ? "⣿" : ":", true), painted(style_.utf8 ? "█" : "#", false)));
    return std::move(text_);
  }

 private:
  void add(std::string line) {
    line.erase(line.find_last_not_of(' ') + 1);
    text_ += line + "\r\n";
  }

  std::string painted(const char* glyph, bool up) const {
    if (!style_.colour) return glyph;
    return fmt::format("{}{}{}", up ? kUpColour : kDownColour, glyph, kNoColour);
  }

  // The value at the row's foot, beside each fourth of the height.
  std::string label(std::size_t row) const {
    const std::size_t quarter = style_.rows / 4;
    const char* const rule = style_.utf8 ? "│" : "|";
    if (row % quarter != 0 || !scale_) return fmt::format("{:>7}{}", "", rule);
    const double value = scale_->low + scale_->quarter * static_cast<double>(row / quarter);
    return fmt::format("{:>7.6g}{}", value, style_.utf8 ? "┤" : "+");
  }

  std::string nothing(std::size_t row) const { return row == style_.rows / 2 ? "  nothing was measured" : ""; }

  // Eighths of the row that the column fills.
  int filled(const Column& column, std::size_t row) const {
    if (!column.value || *column.value <= scale_->low) return 0;
    const double rows = (*column.value - scale_->low) / (4 * scale_->quarter) * static_cast<double>(style_.rows);
    const auto whole = std::max<long>(1, std::lround(rows * kEighths));
    return static_cast<int>(std::clamp<long>(whole - static_cast<long>(row) * kEighths, 0, kEighths));
  }

  std::string rowOf(std::size_t row) const {
    std::string text;
    const char* colour = kNoColour;
    for (const Column& column : columns_) {
      const int part = filled(column, row);
      const char* const wanted = part == 0 ? colour : column.up ? kUpColour : kDownColour;
      if (style_.colour && wanted != colour) text += colour = wanted;
      const auto eighths = static_cast<std::size_t>(part);
      if (style_.utf8)
        text += column.up ? kDots[eighths] : kBars[eighths];
      else
        text += part < kEighths / 2 ? ' ' : column.up ? ':' : '#';
    }
    text.erase(text.find_last_not_of(' ') + 1);
    return colour == kNoColour ? text : text + kNoColour;
  }

  // Tones and MHz below the axis, at steps that leave room for their numbers.
  void axis() {
    const std::size_t all = std::max<std::size_t>(1, curve_.points.size() * curve_.tones);
    std::size_t step = 1;
    while (step * width_ < 9 * all) step *= 2;
    std::string line, tones(width_ + kMargin, ' '), megahertz = tones;
    const auto put = [](std::string& row, std::size_t at, const std::string& number) {
      if (at + number.size() <= row.size()) row.replace(at, number.size(), number);
    };
    std::size_t next = 0;
    for (std::size_t i = 0; i < width_; ++i) {
      const bool tick = next * width_ / all == i && next < all;
      line += tick ? (style_.utf8 ? "┬" : "+") : (style_.utf8 ? "─" : "-");
      if (!tick) continue;
      put(tones, kMargin + i, fmt::format("{}", next));
      put(megahertz, kMargin + i, fmt::format("{:.2f}", static_cast<double>(next) * curve_.kilohertz / 1000));
      next += step;
    }
    put(tones, 0, "   tone");
    put(megahertz, 0, "    MHz");
    add(fmt::format("{:>7}{}{}", "", style_.utf8 ? "└" : "+", line));
    add(tones);
    add(megahertz);
  }

  const Curve& curve_;
  const Style& style_;
  const std::size_t width_;
  const std::optional<Scale> scale_;
  const std::vector<Column> columns_;
  std::string text_;
};

}  // namespace

std::string draw(const Curve& curve, const Style& style) { return Drawing(curve, style).run(); }

std::string table(const Curve& curve) {
  std::string text = fmt::format("# {}\r\n# tone\tMHz\tup, {}\tdown, {}\r\n", curve.title, curve.unit, curve.unit);
  const auto number = [](const std::optional<double>& value) { return value ? fmt::format("{:g}", *value) : "-"; };
  for (std::size_t i = 0; i < curve.points.size(); ++i) {
    const std::size_t tone = i * curve.tones;
    text += fmt::format("{}\t{:.6f}\t{}\t{}\r\n", tone, static_cast<double>(tone) * curve.kilohertz / 1000,
                        number(curve.points[i].up), number(curve.points[i].down));
  }
  return text;
}

}  // namespace plot

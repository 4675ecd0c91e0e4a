#include "tests/support/svg_picture.h"

#include <array>
#include <cstdio>

#include "core/unicode.h"

namespace brenlow::test {

namespace {

// Pixels.
constexpr double CELL_WIDTH = 8.4, CELL_HEIGHT = 18, FONT_SIZE = 14, BASELINE = 13.5, PADDING = 14;

constexpr std::string_view GROUND = "#161d24", INK = "#d6d9d0";
constexpr std::string_view BLUE_GROUND = "#2b5d98";  // as ink, blue has to be lighter than light text bears
constexpr std::array<std::string_view, 16> COLOURS = {"#161d24", "#e5736c", "#93bf75", "#e8b64c", "#5b95d6", "#c58fce",
                                                      "#5fbcc0", "#d6d9d0", "#5d6a75", "#f08d86", "#aed692", "#f4cd74",
                                                      "#82b3e8", "#d9aee0", "#85d3d6", "#ffffff"};

std::string number(double value) {
  std::array<char, 32> text;
  std::snprintf(text.data(), text.size(), "%.1f", value);
  std::string_view shown = text.data();
  return std::string(shown.ends_with(".0") ? shown.substr(0, shown.size() - 2) : shown);
}

std::string escaped(std::string_view text) {
  std::string out;
  for (char c : text) {
    if (c == '&')
      out += "&amp;";
    else if (c == '<')
      out += "&lt;";
    else
      out += c;
  }
  return out;
}

// One row's look: what a cell is painted with.
struct Look {
  std::string ink, ground;
  bool bold = false, italic = false, dim = false;
  friend bool operator==(const Look&, const Look&) = default;
};

std::string colour(const Frame& frame, int index, std::string_view standard) {
  if (auto own = frame.palette.find(index); own != frame.palette.end()) return "#" + own->second;
  return std::string(index >= 0 && index < 16 ? COLOURS[static_cast<std::size_t>(index)] : standard);
}

Look look_of(const Frame& frame, int y, int x) {
  const Cell& cell = frame.cells[static_cast<std::size_t>(y)][static_cast<std::size_t>(x)];
  Look look{colour(frame, cell.fg, INK), colour(frame, cell.bg, GROUND), cell.bold, cell.italic, cell.dim};
  if (look.ground == COLOURS[4]) look.ground = BLUE_GROUND;
  if (cell.reverse) std::swap(look.ink, look.ground);
  if (frame.cursor_visible && y == frame.cursor_row && x == frame.cursor_col) {
    look.ground = COLOURS[3];
    look.ink = GROUND;
  }
  return look;
}

std::string place(int y, double x, double dy) {
  return " x=\"" + number(PADDING + x * CELL_WIDTH) + "\" y=\"" + number(PADDING + y * CELL_HEIGHT + dy) + "\"";
}

void draw_ground(std::string& svg, int y, int begin, int end, const std::string& ground) {
  if (ground == GROUND) return;
  svg += "<rect" + place(y, begin, 0) + " width=\"" + number((end - begin) * CELL_WIDTH) + "\" height=\"" +
         number(CELL_HEIGHT) + "\" fill=\"" + ground + "\"/>\n";
}

void draw_text(std::string& svg, int y, int begin, int end, const std::string& text, const Look& look) {
  svg += "<text" + place(y, begin, BASELINE) + " textLength=\"" + number((end - begin) * CELL_WIDTH) + "\" fill=\"" +
         look.ink + "\"";
  if (look.bold) svg += " font-weight=\"bold\"";
  if (look.italic) svg += " font-style=\"italic\"";
  if (look.dim) svg += " opacity=\"0.5\"";
  svg += ">" + escaped(text) + "</text>\n";
}

// The grounds first, each in one piece, so that no seams show. A stretch of text is cut where the look changes, and at
// gaps, which a font of another width would pull apart.
void draw_row(std::string& svg, const Frame& frame, int y) {
  const auto& cells = frame.cells[static_cast<std::size_t>(y)];
  const int width = static_cast<int>(cells.size());
  for (int begin = 0, end = 0; begin < width; begin = end) {
    const std::string ground = look_of(frame, y, begin).ground;
    while (end < width && look_of(frame, y, end).ground == ground) ++end;
    draw_ground(svg, y, begin, end, ground);
  }
  auto blank = [&](int x) { return x >= width || cells[static_cast<std::size_t>(x)].text == " "; };
  for (int begin = 0, end = 0; begin < width; begin = end) {
    const Look look = look_of(frame, y, begin);
    const bool gap = blank(begin);
    std::string text;
    while (end < width && look_of(frame, y, end) == look && (gap ? blank(end) : !(blank(end) && blank(end + 1))))
      text += cells[static_cast<std::size_t>(end++)].text;
    const bool trailing = text.ends_with(' ');  // browsers drop it, and stretch the rest
    if (!gap) draw_text(svg, y, begin, end - trailing, trailing ? text.substr(0, text.size() - 1) : text, look);
  }
}

}  // namespace

Frame::Frame(const TerminalScreen& screen)
    : cursor_row(screen.cursor_row()),
      cursor_col(screen.cursor_col()),
      cursor_visible(screen.cursor_visible()),
      palette(screen.palette()) {
  for (int y = 0; y < screen.rows(); ++y) {
    cells.emplace_back();
    for (int x = 0; x < screen.cols(); ++x) cells.back().push_back(screen.cell(y, x));
  }
}

std::string Frame::row(int y) const {
  std::string text;
  for (const Cell& cell : cells[static_cast<std::size_t>(y)]) text += cell.text;
  return text;
}

void Frame::put(int y, int x, std::string_view text) {
  auto& line = cells[static_cast<std::size_t>(y)];
  for (char32_t character : decode_utf8(text)) {
    if (x >= static_cast<int>(line.size())) return;
    std::string& shown = line[static_cast<std::size_t>(x++)].text;
    shown.clear();
    append_utf8(shown, character);
  }
}

std::string svg_picture(const Frame& frame, std::string_view title) {
  const int rows = static_cast<int>(frame.cells.size());
  const std::string width = number(static_cast<double>(frame.cells[0].size()) * CELL_WIDTH + 2 * PADDING);
  const std::string height = number(rows * CELL_HEIGHT + 2 * PADDING);
  std::string svg = "<svg xmlns=\"http://www.w3.org/2000/svg\" width=\"" + width + "\" height=\"" + height +
                    "\" viewBox=\"0 0 " + width + " " + height + "\" role=\"img\">\n<title>" + escaped(title) +
                    "</title>\n<rect width=\"100%\" height=\"100%\" rx=\"8\" fill=\"" + std::string(GROUND) +
                    "\"/>\n<g font-family=\"'DejaVu Sans Mono', Menlo, Consolas, 'Liberation Mono', monospace\" "
                    "font-size=\"" +
                    number(FONT_SIZE) + "\" shape-rendering=\"crispEdges\">\n";
  for (int y = 0; y < rows; ++y) draw_row(svg, frame, y);
  return svg + "</g>\n</svg>\n";
}

}  // namespace brenlow::test

#include "settings/rtftext.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdint>
#include <vector>

namespace hollowmere {

namespace {

/// Windows-1252 from 0x80 to 0x9f; the rest of it is Latin-1.
constexpr std::array<char16_t, 32> upper = {0x20AC, 0xFFFD, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                            0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0xFFFD, 0x017D, 0xFFFD,
                                            0xFFFD, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                            0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0xFFFD, 0x017E, 0x0178};

/// Groups whose content is not text of the document.
constexpr std::array<std::string_view, 9> unseen = {"fonttbl", "colortbl", "stylesheet", "info",   "pict",
                                                    "object",  "header",   "footer",     "filetbl"};

std::uint32_t ansi(unsigned byte) { return byte >= 0x80 && byte < 0xA0 ? upper[byte - 0x80] : byte; }

bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }
bool isDigit(char c) { return c >= '0' && c <= '9'; }

class TRtfReader {
 public:
  explicit TRtfReader(std::string_view rtf) : rest_(rtf) {}

  std::string read() {
    while (!rest_.empty()) step();
    return std::move(out_);
  }

 private:
  struct TGroup {
    bool hidden = false;
    int fallback = 1;  ///< characters behind \u that stand for readers without Unicode
  };

  void step() {
    const char c = rest_.front();
    rest_.remove_prefix(1);
    if (c == '{' || c == '}') skip_ = 0;
    if (c == '{') {
      // Whoever nests deeper than this has no text to show there.
      if (groups_.size() < 1000) groups_.push_back(groups_.back());
    } else if (c == '}') {
      if (groups_.size() > 1) groups_.pop_back();
    } else if (c == '\\') {
      control();
    } else if (c != '\r' && c != '\n') {
      put(ansi(static_cast<unsigned char>(c)));
    }
  }

  void control() {
    if (rest_.empty()) return;
    if (isLetter(rest_.front())) return word();
    const char c = rest_.front();
    rest_.remove_prefix(1);
    if (c == '\'')
      hexByte();
    else if (c == '*')
      groups_.back().hidden = true;
    else if (c == '~')
      put(0xA0);
    else if (c == '_')
      put('-');
    else if (c == '\n' || c == '\r')
      put('\n');
    else if (c == '\\' || c == '{' || c == '}')
      put(static_cast<unsigned char>(c));
  }

  void hexByte() {
    unsigned byte = 0;
    const std::string_view digits = rest_.substr(0, 2);
    const auto [stop, error] = std::from_chars(digits.data(), digits.data() + digits.size(), byte, 16);
    rest_.remove_prefix(digits.size());
    if (error == std::errc() && stop == digits.data() + digits.size()) put(ansi(byte));
  }

  void word() {
    const auto length = std::ranges::find_if_not(rest_, isLetter) - rest_.begin();
    const std::string_view name = rest_.substr(0, static_cast<std::size_t>(length));
    rest_.remove_prefix(name.size());
    int number = 0;
    const auto [stop, error] = std::from_chars(rest_.data(), rest_.data() + rest_.size(), number);
    if (error == std::errc()) rest_.remove_prefix(static_cast<std::size_t>(stop - rest_.data()));
    while (error == std::errc::result_out_of_range && !rest_.empty() &&
           (isDigit(rest_.front()) || rest_.front() == '-'))
      rest_.remove_prefix(1);
    if (!rest_.empty() && rest_.front() == ' ') rest_.remove_prefix(1);
    obey(name, number);
  }

  void obey(std::string_view name, int number) {
    if (name == "par" || name == "line" || name == "sect" || name == "row") return put('\n');
    if (name == "tab" || name == "cell") return put('\t');
    if (name == "emdash") return put(0x2014);
    if (name == "endash") return put(0x2013);
    if (name == "bullet") return put(0x2022);
    if (name == "lquote") return put(0x2018);
    if (name == "rquote") return put(0x2019);
    if (name == "ldblquote") return put(0x201C);
    if (name == "rdblquote") return put(0x201D);
    if (name == "uc") groups_.back().fallback = std::clamp(number, 0, 16);
    if (name == "bin")
      rest_.remove_prefix(std::min(rest_.size(), static_cast<std::size_t>(std::max(number, 0))));
    if (name == "u") unicode(number);
    if (std::ranges::find(unseen, name) != unseen.end()) groups_.back().hidden = true;
  }

  /// The number is a signed 16-bit unit; characters beyond 16 bits come as two of them.
  void unicode(int number) {
    const auto unit = static_cast<std::uint32_t>(number & 0xFFFF);
    if (unit >= 0xD800 && unit < 0xDC00) {
      high_ = unit;
    } else if (unit >= 0xDC00 && unit < 0xE000) {
      put(high_ == 0 ? 0xFFFD : 0x10000 + ((high_ - 0xD800) << 10) + (unit - 0xDC00));
      high_ = 0;
    } else {
      put(unit);
    }
    skip_ = groups_.back().fallback;
  }

  void put(std::uint32_t code) {
    if (skip_ > 0) {
      --skip_;
      return;
    }
    if (!groups_.back().hidden && code != 0) append(code);
  }

  void append(std::uint32_t code) {
    const auto part = [this](std::uint32_t bits) { out_ += static_cast<char>(bits); };
    if (code < 0x80) return part(code);
    if (code < 0x800) {
      part(0xC0 | code >> 6);
    } else {
      if (code < 0x10000) {
        part(0xE0 | code >> 12);
      } else {
        part(0xF0 | code >> 18);
        part(0x80 | (code >> 12 & 0x3F));
      }
      part(0x80 | (code >> 6 & 0x3F));
    }
    part(0x80 | (code & 0x3F));
  }

  std::string_view rest_;
  std::vector<TGroup> groups_{TGroup{}};
  std::string out_;
  std::uint32_t high_ = 0;
  int skip_ = 0;
};

}  // namespace

std::string rtfText(std::string_view rtf) { return TRtfReader(rtf).read(); }

}  // namespace hollowmere

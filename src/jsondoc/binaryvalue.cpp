#include "jsondoc/binaryvalue.h"

#include <algorithm>
#include <array>

#include "connectors/markers.h"
#include "connectors/textpiece.h"
#include "json/encoding.h"
#include "json/json.h"

namespace hollowmere {

namespace {

/// The first bytes of a kind of file; "?" stands for any byte.
struct TSignature {
  std::string_view begin;
  TBytesForm form;
  std::string_view extension;
};

using namespace std::string_view_literals;

// Public magic numbers of the formats' own descriptions.
constexpr std::array signatures{
    TSignature{"\x89PNG\r\n\x1a\n"sv, TBytesForm::Picture, "png"},
    TSignature{"\xff\xd8\xff"sv, TBytesForm::Picture, "jpg"},
    TSignature{"GIF8"sv, TBytesForm::Picture, "gif"},
    TSignature{"BM????\0\0\0\0"sv, TBytesForm::Picture, "bmp"},
    TSignature{"\0\0\1\0"sv, TBytesForm::Picture, "ico"},
    TSignature{"RIFF????WEBP"sv, TBytesForm::Picture, "webp"},
    TSignature{"II*\0"sv, TBytesForm::Picture, "tif"},
    TSignature{"MM\0*"sv, TBytesForm::Picture, "tif"},
    TSignature{"%PDF-"sv, TBytesForm::Other, "pdf"},
    TSignature{"PK\3\4"sv, TBytesForm::Other, "zip"},
    TSignature{"\x1f\x8b"sv, TBytesForm::Other, "gz"},
    TSignature{"\xd0\xcf\x11\xe0\xa1\xb1\x1a\xe1"sv, TBytesForm::Other, "doc"},
    TSignature{"{\\rtf"sv, TBytesForm::Text, "rtf"},
    TSignature{"OggS"sv, TBytesForm::Other, "ogg"},
    TSignature{"ID3"sv, TBytesForm::Other, "mp3"},
    TSignature{"????ftyp"sv, TBytesForm::Other, "mp4"},
};

constexpr std::array extensions{"txt"sv, "json"sv, "xml"sv,  "html"sv, "png"sv, "jpg"sv, "gif"sv,
                                "bmp"sv, "ico"sv,  "webp"sv, "tif"sv,  "svg"sv, "pdf"sv, "zip"sv,
                                "gz"sv,  "doc"sv,  "rtf"sv,  "ogg"sv,  "mp3"sv, "mp4"sv, "bin"sv};

bool beginsAs(std::string_view bytes, std::string_view signature) {
  return bytes.size() >= signature.size() &&
         std::equal(signature.begin(), signature.end(), bytes.begin(),
                    [](char wanted, char byte) { return wanted == '?' || wanted == byte; });
}

/// UTF-8 without the control characters that no text has.
bool isReadable(std::string_view bytes) {
  const auto odd = [](unsigned char c) { return c < ' ' && (c < '\a' || c > '\r') && c != 0x1b; };
  return std::none_of(bytes.begin(), bytes.end(), odd) && isUtf8(bytes);
}

TBytesType typeOfText(std::string_view text) {
  constexpr std::size_t lookedAt = 300;
  std::string begin(trimmed(text.substr(0, lookedAt)));
  std::transform(begin.begin(), begin.end(), begin.begin(),
                 [](char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c + 32) : c; });
  const auto holds = [&](std::string_view piece) { return begin.find(piece) != std::string::npos; };
  if (begin.starts_with('<') && holds("<svg")) return {TBytesForm::Picture, "svg"};
  if (begin.starts_with("<!doctype html") || begin.starts_with("<html")) return {TBytesForm::Text, "html"};
  if (begin.starts_with("<?xml")) return {TBytesForm::Text, "xml"};
  if (begin.starts_with('{') || begin.starts_with('[')) return {TBytesForm::Text, "json"};
  return {TBytesForm::Text, "txt"};
}

void appendHex(std::string& out, std::size_t number, int digits) {
  for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4) out += "0123456789ABCDEF"[number >> shift & 15];
}

void appendHexLine(std::string& out, std::string_view line, std::size_t offset, std::size_t width) {
  appendHex(out, offset, 8);
  out += ' ';
  for (std::size_t i = 0; i < width; ++i) {
    out += i % 8 == 0 ? "  " : " ";
    if (i < line.size())
      appendHex(out, static_cast<unsigned char>(line[i]), 2);
    else
      out += "  ";
  }
  out += "  ";
  for (const char c : line) out += c >= ' ' && c <= '~' ? c : '.';
  out += '\n';
}

}  // namespace

std::optional<std::string> bytesOfText(std::string_view text) {
  if (!hasBinaryMarker(text)) return std::nullopt;
  return fromBase64(text.substr(binaryMarker.size()));
}

std::optional<std::string> bytesOfValue(const TValue& value) {
  if (value.is(TKind::Binary)) return value.asText();
  return value.is(TKind::Text) ? bytesOfText(value.asText()) : std::nullopt;
}

bool mayHoldBytes(const TValue& value) {
  return value.is(TKind::Binary) || (value.is(TKind::Text) && hasBinaryMarker(value.asText()));
}

std::string textOfBytes(std::string_view bytes) { return std::string(binaryMarker) + toBase64(bytes); }

TBytesType typeOfBytes(std::string_view bytes) {
  for (const TSignature& each : signatures)
    if (beginsAs(bytes, each.begin)) return {each.form, each.extension};
  return isReadable(bytes) ? typeOfText(bytes) : TBytesType{};
}

std::span<const std::string_view> knownExtensions() { return extensions; }

std::string hexDump(std::string_view bytes) {
  constexpr std::size_t width = 16, lineLength = 80;
  std::string out;
  out.reserve((bytes.size() / width + 1) * lineLength);
  for (std::size_t at = 0; at < bytes.size(); at += width)
    appendHexLine(out, bytes.substr(at, width), at, width);
  return out;
}

}  // namespace hollowmere

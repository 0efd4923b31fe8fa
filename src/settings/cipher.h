#pragma once

#include <array>
#include <cstdint>
#include <stdexcept>
#include <string>
#include <string_view>

namespace hollowmere {

/// What was handed in was not enciphered by this program, or is damaged. The message holds none of it.
class TCipherError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The program's one cipher, for project files and the connection list: DES in 8-bit cipher feedback under
/// a secret that is the same for every copy of the program. It keeps a glance from reading passwords; it
/// is no protection against somebody who has both the file and the program.
///
/// Enciphered bytes, fixed for good by the version byte:
///   'H' 'M' 1           mark and version, in the clear
///   8 bytes             initialisation vector, new for every text
///   the rest            DES-CFB8 of: 16 bytes check value, then the text
/// The DES key is the first 8 bytes of SHA-256("cipher" + secret). The check value is the first 16 bytes of
/// HMAC-SHA256 over mark, version, vector and text under the key SHA-256("check" + secret); a text that was
/// cut, changed or enciphered under another secret is told by it.
///
/// May be used from any thread.
class TCipher {
 public:
  /// The secret of the program.
  TCipher();
  /// Another secret, such as that of another build.
  explicit TCipher(std::string_view secret);

  /// The secret is derived from a pass phrase: PBKDF2 with HMAC-SHA-256, 600000 rounds, so that each guess at
  /// the phrase costs about a tenth of a second; the salt is not secret and keeps guesses from being made
  /// ready for all files at once. The DES key behind it still has 56 bits only: whoever can pay for trying
  /// all of them reads the text whatever the phrase. It keeps honest people out, not an expert with time.
  static TCipher underPassPhrase(std::string_view passPhrase, std::string_view salt);
  /// 16 bytes of the system's random numbers.
  static std::string newSalt();

  /// The enciphered bytes as one line of Base64, without a line break.
  [[nodiscard]] std::string encryptString(std::string_view text) const;
  /// Throws TCipherError; blanks and line breaks around the text are the caller's to remove.
  [[nodiscard]] std::string decryptString(std::string_view enciphered) const;

  /// The same with bare bytes instead of Base64.
  [[nodiscard]] std::string encryptStream(std::string_view bytes) const;
  [[nodiscard]] std::string decryptStream(std::string_view enciphered) const;

 private:
  [[nodiscard]] std::string checkValue(std::string_view header, std::string_view text) const;

  std::array<std::uint8_t, 8> key_{};
  std::array<std::uint8_t, 32> checkKey_{};
};

}  // namespace hollowmere

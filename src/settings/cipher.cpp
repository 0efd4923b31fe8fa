// Nettle rather than OpenSSL: OpenSSL 3 keeps single DES in its legacy provider, a module searched for at run
// time that a changed openssl.cnf, another OPENSSL_MODULES or a bundled libcrypto can take away.

#include "settings/cipher.h"

#include <nettle/cfb.h>
#include <nettle/des.h>
#include <nettle/hmac.h>
#include <nettle/memops.h>
#include <nettle/pbkdf2.h>
#include <nettle/sha2.h>

#include <QRandomGenerator>
#include <algorithm>

#include "json/encoding.h"

namespace hollowmere {

namespace {

constexpr std::string_view mark = "HM\x01";
constexpr std::size_t vectorBytes = DES_BLOCK_SIZE;
constexpr std::size_t headerBytes = mark.size() + vectorBytes;
constexpr std::size_t checkBytes = 16;
constexpr std::size_t saltBytes = 16;
constexpr unsigned phraseRounds = 600000;

/// Put together when it is needed, so that it does not stand in the program as one readable piece.
std::string programSecret() {
  constexpr std::array<std::uint8_t, 32> scrambled = {
      0xff, 0x66, 0xeb, 0xdc, 0x52, 0xe8, 0xa1, 0x2b, 0x14, 0xc8, 0xc8, 0xe7, 0x29, 0xd2, 0x90, 0x3f,
      0xdf, 0x65, 0xb9, 0x4c, 0x2f, 0xcd, 0x3b, 0xe4, 0xe5, 0xd9, 0x43, 0x4f, 0x9b, 0x2f, 0xa9, 0x70};
  std::string secret;
  unsigned mix = 0x5d;
  for (const std::uint8_t byte : scrambled) {
    mix = (mix * 73 + 41 + byte) & 0xff;
    secret += static_cast<char>(mix ^ (byte >> 3) ^ (byte << 5));
  }
  return secret;
}

const std::uint8_t* bytesOf(std::string_view text) {
  return reinterpret_cast<const std::uint8_t*>(text.data());
}
std::uint8_t* bytesOf(std::string& text) { return reinterpret_cast<std::uint8_t*>(text.data()); }

std::array<std::uint8_t, SHA256_DIGEST_SIZE> derive(std::string_view purpose, std::string_view secret) {
  sha256_ctx hash;
  sha256_init(&hash);
  sha256_update(&hash, purpose.size(), bytesOf(purpose));
  sha256_update(&hash, secret.size(), bytesOf(secret));
  std::array<std::uint8_t, SHA256_DIGEST_SIZE> digest{};
  sha256_digest(&hash, digest.size(), digest.data());
  return digest;
}

template <std::size_t count>
std::string randomBytes() {
  std::array<quint32, count / sizeof(quint32)> words{};
  QRandomGenerator::system()->fillRange(words.data(), words.size());
  return {reinterpret_cast<const char*>(words.data()), count};
}

using TFeedback = decltype(&cfb8_encrypt);

/// Both directions of cipher feedback encipher the vector, hence the one DES function.
std::string runFeedback(TFeedback feedback, const des_ctx& key, std::string vector, std::string_view in) {
  std::string out(in.size(), '\0');
  const auto encipher = reinterpret_cast<nettle_cipher_func*>(&des_encrypt);
  feedback(&key, encipher, DES_BLOCK_SIZE, bytesOf(vector), in.size(), bytesOf(out), bytesOf(in));
  return out;
}

des_ctx schedule(const std::array<std::uint8_t, 8>& key) {
  des_ctx context;
  // A weak key would only be weaker still; it cannot make the text unreadable, so the answer does not matter.
  static_cast<void>(des_set_key(&context, key.data()));
  return context;
}

}  // namespace

TCipher::TCipher() : TCipher(programSecret()) {}

TCipher::TCipher(std::string_view secret) : checkKey_(derive("check", secret)) {
  const auto digest = derive("cipher", secret);
  std::copy_n(digest.begin(), key_.size(), key_.begin());
}

TCipher TCipher::underPassPhrase(std::string_view passPhrase, std::string_view salt) {
  std::string secret(SHA256_DIGEST_SIZE, '\0');
  pbkdf2_hmac_sha256(passPhrase.size(), bytesOf(passPhrase), phraseRounds, salt.size(), bytesOf(salt),
                     secret.size(), bytesOf(secret));
  return TCipher(secret);
}

std::string TCipher::newSalt() { return randomBytes<saltBytes>(); }

std::string TCipher::checkValue(std::string_view header, std::string_view text) const {
  hmac_sha256_ctx hash;
  hmac_sha256_set_key(&hash, checkKey_.size(), checkKey_.data());
  hmac_sha256_update(&hash, header.size(), bytesOf(header));
  hmac_sha256_update(&hash, text.size(), bytesOf(text));
  std::string value(checkBytes, '\0');
  hmac_sha256_digest(&hash, value.size(), bytesOf(value));
  return value;
}

std::string TCipher::encryptStream(std::string_view bytes) const {
  const std::string vector = randomBytes<vectorBytes>();
  std::string out = std::string(mark) + vector;
  std::string plain = checkValue(out, bytes);
  plain += bytes;
  return out += runFeedback(&cfb8_encrypt, schedule(key_), vector, plain);
}

std::string TCipher::decryptStream(std::string_view enciphered) const {
  if (enciphered.size() < headerBytes + checkBytes || !enciphered.starts_with(mark))
    throw TCipherError("The content is not enciphered by this program.");
  const std::string_view header = enciphered.substr(0, headerBytes);
  const std::string vector(header.substr(mark.size()));
  std::string plain = runFeedback(&cfb8_decrypt, schedule(key_), vector, enciphered.substr(headerBytes));
  const std::string found = plain.substr(0, checkBytes);
  plain.erase(0, checkBytes);
  const std::string expected = checkValue(header, plain);
  if (!memeql_sec(found.data(), expected.data(), checkBytes))
    throw TCipherError("The enciphered content is damaged or was written by another build.");
  return plain;
}

std::string TCipher::encryptString(std::string_view text) const { return toBase64(encryptStream(text)); }

std::string TCipher::decryptString(std::string_view enciphered) const {
  const auto bytes = fromBase64(enciphered);
  // Base64 has several spellings of the same bytes; only the one that was written is taken.
  if (!bytes || toBase64(*bytes) != enciphered)
    throw TCipherError("The content is not enciphered by this program.");
  return decryptStream(*bytes);
}

}  // namespace hollowmere

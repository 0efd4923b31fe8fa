#include "settings/cipher.h"

#include <gtest/gtest.h>

#include "json/encoding.h"

namespace hollowmere {
namespace {

TEST(Cipher, TextsOfAnyLengthComeBack) {
  const TCipher cipher;
  for (const std::size_t length : {0, 1, 7, 8, 9, 1000, 300000}) {
    std::string text(length, '\0');
    for (std::size_t i = 0; i < length; ++i) text[i] = static_cast<char>(i * 31);
    EXPECT_EQ(cipher.decryptString(cipher.encryptString(text)), text) << length;
    EXPECT_EQ(TCipher().decryptStream(cipher.encryptStream(text)), text) << length;
  }
}

TEST(Cipher, TheSameTextNeverLooksTheSame) {
  const TCipher cipher;
  const std::string first = cipher.encryptStream("text");
  const std::string second = cipher.encryptStream("text");
  EXPECT_NE(first.substr(3, 8), second.substr(3, 8));
  EXPECT_NE(first.substr(11), second.substr(11));
}

TEST(Cipher, TextFormIsOneLineOfBase64) {
  const std::string text = TCipher().encryptString(std::string(500, 'x'));
  EXPECT_EQ(text.find_first_not_of("ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/="),
            std::string::npos);
  EXPECT_TRUE(text.starts_with("SE0B"));
}

TEST(Cipher, RefusesWhatWasCutChangedOrLengthened) {
  const TCipher cipher;
  const std::string bytes = cipher.encryptStream("{\"password\":\"secret\"}");
  for (std::size_t length = 0; length < bytes.size(); ++length)
    EXPECT_THROW((void)cipher.decryptStream(bytes.substr(0, length)), TCipherError) << length;
  EXPECT_THROW((void)cipher.decryptStream(bytes + "x"), TCipherError);
  // Of a length that leaves padding, whose unused bits a Base64 reader may pass over.
  const std::string text = cipher.encryptString("{\"password\":\"secrets\"}");
  for (std::size_t at = 0; at < text.size(); ++at) {
    EXPECT_THROW((void)cipher.decryptString(text.substr(0, at)), TCipherError) << at;
    for (int bit = 0; bit < 8; ++bit) {
      std::string flipped = text;
      flipped[at] = static_cast<char>(flipped[at] ^ (1 << bit));
      EXPECT_THROW((void)cipher.decryptString(flipped), TCipherError) << at << " bit " << bit;
    }
  }
}

TEST(Cipher, RefusesWhatAnotherBuildWroteWithoutTellingAnything) {
  const std::string foreign = TCipher("another secret").encryptString("hidden");
  try {
    (void)TCipher().decryptString(foreign);
    FAIL() << "was taken";
  } catch (const TCipherError& error) {
    EXPECT_STREQ(error.what(), "The enciphered content is damaged or was written by another build.");
  }
}

TEST(Cipher, FollowsItsDocumentedLayout) {
  // Made with "openssl enc -des-cfb8" and an HMAC of another library.
  const char* const enciphered = "SE0BAQIDBAUGBwgoqyZbq99pKOiufKizOVgkSSQfv3EdK9DvujsttM26dK8=";
  EXPECT_EQ(TCipher("another secret").decryptString(enciphered), "Hollowmere 2.0.72");
}

TEST(Cipher, APassPhraseAndItsSaltMakeTheSecret) {
  // The derived bytes are those of another library's PBKDF2.
  const std::string secret = "uQBI4lfrcigJan39lRw7V0YXVh6kUKMz17BSDMojzv8=";
  const std::string sealed =
      TCipher::underPassPhrase("long enough", "0123456789abcdef").encryptString("text");
  EXPECT_EQ(TCipher(*fromBase64(secret)).decryptString(sealed), "text");
  EXPECT_THROW((void)TCipher::underPassPhrase("long enough", "0123456789abcdeF").decryptString(sealed),
               TCipherError);
  EXPECT_EQ(TCipher::newSalt().size(), 16U);
  EXPECT_NE(TCipher::newSalt(), TCipher::newSalt());
}

TEST(Cipher, ReadsWhatEarlierBuildsWrote) {
  EXPECT_EQ(TCipher().decryptString("SE0BlVtJcPnFE/n8yFqmo/5ird7N/JERMsFvxel6AloIcgnJloWkZ6XJwZY="),
            "Hollowmere 2.0.72");
}

}  // namespace
}  // namespace hollowmere

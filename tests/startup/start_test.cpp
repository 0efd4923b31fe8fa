#include <gtest/gtest.h>

#include <QSettings>
#include <csignal>
#include <map>
#include <optional>

#include "startup/applicationfault.h"
#include "startup/startnotices.h"
#include "startup/updatecheck.h"
#include "startup/webaddresses.h"
#include "support/scriptedprompt.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

constexpr char page[] =
    "<html><head><title>Downloads: version 9.9</title></head><body>"
    "<a href='/about.html'>About</a> <a href=\"https://example.com/hollowmere-manual.html\">Manual, version "
    "1.1</a>"
    "<p><a class=\"big\" href=\"files/Hollowmere_Setup.exe?from=page\"><b>Download</b></a>\n"
    "Version <b>2.0.73</b>, released\n 5 March 2026 (32 and 64 bit)</p></body></html>";

TEST(DownloadPage, TheFilesVersionAndDateAreFound) {
  const auto release = parseDownloadPage(page);
  ASSERT_TRUE(release);
  EXPECT_EQ(release->link, "files/Hollowmere_Setup.exe?from=page");
  EXPECT_EQ(release->version, "2.0.73");
  EXPECT_EQ(release->released, "5 March 2026");
}

TEST(DownloadPage, WhateverElseIsThereGivesNothing) {
  const std::string whole = page;
  for (std::size_t size = 0; size < whole.size(); ++size) {
    if (const auto cut = parseDownloadPage(whole.substr(0, size))) {
      EXPECT_TRUE(std::string("2.0.73").starts_with(cut->version)) << size;
    }
  }
  for (const char* other : {"", "version 3.0 released today", "<a href=", "<a href=\"hollowmere.zip\">",
                            "<a href='other.zip'>version 3.0", "<a href=hollowmere.zip>version 3.0"})
    EXPECT_FALSE(parseDownloadPage(other)) << other;
}

TEST(DownloadPage, EachVersionIsAnnouncedOnce) {
  EXPECT_TRUE(announces("2.0.73", "2.0.72", "2.0.72"));
  EXPECT_TRUE(announces("2.0.8", "2.0.72", "2.0.72")) << "texts, not numbers";
  EXPECT_TRUE(announces("1.0", "2.0.72", "2.0.72")) << "differs, so it is told";
  EXPECT_FALSE(announces("2.0.73", "2.0.72", "2.0.73"));
  EXPECT_FALSE(announces("2.0.72", "2.0.72", "2.0.71"));
  EXPECT_FALSE(announces("soon", "2.0.72", "2.0.72"));
}

TEST(StartNotices, TheHintIsForThoseWhomItConcerns) {
  for (int each = 0; each < 8; ++each)
    EXPECT_EQ(warnsAbout64Bit((each & 1) != 0, (each & 2) != 0, (each & 4) != 0), each == 7) << each;
}

TEST(WebAddresses, OnlyWebAddressesCount) {
  const TTempFolder folder;
  QSettings store(QString::fromStdString(folder.file("s.ini")), QSettings::IniFormat);
  EXPECT_EQ(loadWebAddresses(store).support, "");
  store.setValue("Web/support", "https://example.com/support");
  store.setValue("Web/product", "file:///etc/passwd");
  EXPECT_EQ(loadWebAddresses(store).support, "https://example.com/support");
  EXPECT_EQ(loadWebAddresses(store).product, "");
}

TEST(ApplicationFault, EachKindIsToldInItsWay) {
  TScriptedPrompt prompt;
  int opened = 0;
  const auto report = [&](auto fault) {
    reportFault(std::make_exception_ptr(fault), prompt, [&] { ++opened; });
  };
  report(TInvalidOperation("the window is gone"));
  prompt.expect(TPromptKind::Error, "disk full");
  report(std::runtime_error("disk full"));
  EXPECT_EQ(opened, 0);
  prompt.expect(
      TPromptKind::Error,
      "The following application exception encountered: bad place Would you like to inform Tamsbury "
      "Software technical support about this issue? ",
      TAnswer::Yes);
  report(std::out_of_range("bad place"));
  EXPECT_EQ(opened, 1);
  prompt.expect(
      TPromptKind::Error,
      "The following application exception encountered: bad optional access Would you like to inform "
      "Tamsbury Software technical support about this issue? ",
      TAnswer::No);
  report(std::bad_optional_access());
  EXPECT_EQ(opened, 1);
}

TEST(ApplicationFaultDeathTest, AnAccessViolationIsToldAtTheNextStart) {
  const TTempFolder folder;
  const std::string note = folder.file("note.txt");
  EXPECT_FALSE(takeAccessViolation(note));
  EXPECT_EXIT(
      {
        noteAccessViolations(note);
        std::raise(SIGSEGV);
      },
      testing::KilledBySignal(SIGSEGV), "");
  const auto found = takeAccessViolation(note);
  ASSERT_TRUE(found);
  EXPECT_TRUE(found->starts_with("Access violation at address ")) << *found;
  EXPECT_FALSE(takeAccessViolation(note)) << "told once";
}

}  // namespace
}  // namespace hollowmere

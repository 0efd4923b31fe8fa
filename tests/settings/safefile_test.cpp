#include "settings/safefile.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include "support/failingfiles.h"
#include "support/tempfolder.h"

namespace hollowmere {
namespace {

std::string errorOf(const std::function<void()>& call) {
  try {
    call();
  } catch (const TFileError& error) {
    return error.what();
  }
  return "no error";
}

TEST(SafeFile, ReplacesAFileForItsOwnerOnly) {
  const TTempFolder folder;
  const std::string path = folder.file("a.dat");
  TDiskFiles files;
  std::string bytes(200000, '\0');
  bytes[70000] = '\n';
  const mode_t before = umask(0);
  writeWholeFile(files, path, bytes);
  umask(before);
  EXPECT_EQ(readWholeFile(path), bytes);
  EXPECT_EQ(permissionsOf(path), 0600U);

  std::filesystem::permissions(path, std::filesystem::perms(0666));
  writeWholeFile(files, path, "");
  EXPECT_EQ(readWholeFile(path), "");
  EXPECT_EQ(permissionsOf(path), 0600U) << "a file open to others before does not stay so";
}

TEST(SafeFile, AFailedWriteLeavesTheOldFileAndNothingElse) {
  const TTempFolder folder;
  const std::string path = folder.file("a.dat");
  writeBytes(path, "old");
  for (const std::size_t room : {0, 1, 65536, 99999}) {
    TFailingFiles files(room);
    EXPECT_EQ(errorOf([&] { writeWholeFile(files, path, std::string(100000, 'x')); }),
              "Unable to write file " + path + ": No space left on device");
    EXPECT_EQ(readBytes(path), "old");
    EXPECT_EQ(folder.entries(), 1);
  }
}

TEST(SafeFile, ErrorsNameFileAndReason) {
  const TTempFolder folder;
  const std::string path = folder.file("a.dat");
  TDiskFiles files;
  EXPECT_EQ(errorOf([&] { readWholeFile(path); }),
            "Unable to read file " + path + ": No such file or directory");
  writeBytes(path, "12345");
  EXPECT_EQ(errorOf([&] { readWholeFile(path, 4); }),
            "Unable to read file " + path + ": it is larger than 4 bytes");
  EXPECT_EQ(readWholeFile(path, 5), "12345");
  const std::string below = path + "/b.dat";
  EXPECT_TRUE(errorOf([&] {
                writeWholeFile(files, below, "x");
              }).starts_with("Unable to write file " + below + ": "));
  const std::string pipe = folder.file("pipe");
  ASSERT_EQ(mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(errorOf([&] { readWholeFile(pipe); }), "Unable to read file " + pipe + ": it is not a file");
}

TEST(SafeFile, MovesAsideWithoutReplacingWhatIsThere) {
  const TTempFolder folder;
  const std::string path = folder.file("a.dat");
  writeBytes(path + ".bad", "kept");
  writeBytes(path, "one");
  EXPECT_EQ(moveAside(path), path + ".bad2");
  EXPECT_EQ(readBytes(path + ".bad"), "kept");
  EXPECT_EQ(readBytes(path + ".bad2"), "one");
  EXPECT_FALSE(fileExists(path));
}

}  // namespace
}  // namespace hollowmere

#pragma once

#include <string>

#include "project/projectmodel.h"
#include "settings/cipher.h"
#include "settings/safefile.h"

namespace hollowmere {

/// Project files: the compact JSON text of the project's document, enciphered, and one line break; for
/// their owner only. Cipher and files outlive it.
class TProjectFile {
 public:
  TProjectFile(const TCipher& cipher, TSafeFiles& files) : cipher_(cipher), files_(files) {}

  /// Replaces the file whole, then notes its name in the project and clears its changed mark. A project
  /// that could not be opened again is refused, the file left as it was. Throws TProjectError.
  void save(TProject& project, const std::string& fileName) const;
  /// Throws TProjectError: "Unable to find file " + name, "Invalid project file.", or that with the place
  /// of the fault behind it.
  [[nodiscard]] TProject open(const std::string& fileName) const;

 private:
  const TCipher& cipher_;
  TSafeFiles& files_;
};

}  // namespace hollowmere

#include "project/projectfile.h"

#include "json/json.h"
#include "project/projectdocument.h"

namespace hollowmere {

namespace {

constexpr std::string_view blanks = " \t\r\n\v\f";

std::string_view trimmed(std::string_view text) {
  const std::size_t first = text.find_first_not_of(blanks);
  return first == std::string_view::npos ? std::string_view()
                                         : text.substr(first, text.find_last_not_of(blanks) - first + 1);
}

/// Better to refuse now than to replace a good file by one that cannot be opened.
void proveReadable(const std::string& text) {
  constexpr std::string_view cannot = "Unable to save the project: ";
  try {
    static_cast<void>(fromDocument(parseJson(text)));
  } catch (const TJsonError&) {
    throw TProjectError(std::string(cannot) + "a text in it is not UTF-8, or it is nested too deep.");
  } catch (const TProjectError& error) {
    // It is no file yet: only the place of the fault is told.
    throw TProjectError(std::string(cannot) + (error.what() + invalidProjectFile.size() + 1));
  }
}

}  // namespace

void TProjectFile::save(TProject& project, const std::string& fileName) const {
  const std::string text = toJson(toDocument(project));
  proveReadable(text);
  try {
    writeWholeFile(files_, fileName, cipher_.encryptString(text) + "\n");
  } catch (const TFileError& error) {
    throw TProjectError(error.what());
  }
  project.fileName = fileName;
  project.changed = false;
}

TProject TProjectFile::open(const std::string& fileName) const {
  if (!fileExists(fileName)) throw TProjectError("Unable to find file " + fileName);
  try {
    const std::string content = readWholeFile(fileName);
    TProject project = fromDocument(parseJson(cipher_.decryptString(trimmed(content))));
    project.fileName = fileName;
    return project;
  } catch (const TFileError&) {
    throw TProjectError(std::string(invalidProjectFile));
  } catch (const TCipherError&) {
    throw TProjectError(std::string(invalidProjectFile));
  } catch (const TJsonError&) {
    throw TProjectError(std::string(invalidProjectFile));
  }
}

}  // namespace hollowmere

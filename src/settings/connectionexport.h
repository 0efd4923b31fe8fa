#pragma once

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>

#include "settings/connectionlist.h"

namespace hollowmere {

/// A file of exported connections that cannot be taken. what() says why, with nothing of its content.
class TConnectionExportError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Connections to hand to another machine or person, without their passwords: the JSON text
/// {"connections":[record, ...]}, each password an empty text.
std::string exportConnections(const TConnectionList& list);
/// With their passwords, enciphered under a pass phrase, see TCipher::underPassPhrase(): the JSON text
/// {"sealed":1,"salt":Base64,"content":Base64 of the enciphered text above}. Slow by design, about a tenth of
/// a second.
std::string exportConnections(const TConnectionList& list, std::string_view passPhrase);

/// Whether the bytes want a pass phrase. Throws TConnectionExportError when they are no export at all.
bool isSealedExport(std::string_view bytes);
/// The exported connections; the pass phrase counts only when they are sealed. Throws TConnectionExportError:
/// no export of ours, a wrong pass phrase, a connection of a type that this program does not know.
TConnectionList importConnections(std::string_view bytes, std::string_view passPhrase = {});

/// Adds those connections that the list lacks, and tells how many. One without passwords is not added beside
/// the same connection with passwords.
std::size_t addMissing(TConnectionList& list, const TConnectionList& imported);
/// What an import did, for the user.
std::string importSummary(std::size_t added, std::size_t of);

/// Why a pass phrase, typed twice, cannot be taken for an export; empty when it can.
std::string checkPassPhrase(std::string_view phrase, std::string_view again);

}  // namespace hollowmere

#pragma once

#include <string>

class QSettings;

namespace hollowmere {

/// The maker's pages. Whoever hands out the program sets them, as texts in the group "Web" of the settings
/// store; without one nothing touches the network and the user is told so.
struct TWebAddresses {
  std::string downloadPage;  ///< looked at by the update check
  std::string site;          ///< where a new version is to be had
  std::string support;
  std::string product;
};

/// What is no http or https address counts as not set.
TWebAddresses loadWebAddresses(const QSettings& store);

/// What is said when an address is wanted that nobody has set; subject as in "technical support".
std::string noAddressText(const std::string& subject, const std::string& key);

}  // namespace hollowmere

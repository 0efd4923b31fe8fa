#pragma once

#include <optional>
#include <string>
#include <vector>

#include "connectors/mongodb/mongoadmin.h"

namespace hollowmere {

/// A role of a database.
struct TMongoRoleName {
  std::string role;
  std::string database;

  bool operator==(const TMongoRoleName&) const = default;
};

struct TMongoUser {
  std::string name;
  std::vector<TMongoRoleName> roles;
};

/// What may be done to a resource, as the server puts it: {"db": "shop", "collection": ""}, {"cluster":
/// true}.
struct TMongoPrivilege {
  TObject resource;
  std::vector<std::string> actions;
};

struct TMongoRole {
  std::string name;
  bool isBuiltin = false;
  std::vector<TMongoRoleName> roles;
  std::vector<TMongoPrivilege> privileges;
};

/// Users and roles of one database. The admin outlives it. Lists that cannot be read are thrown as
/// TStoreError with the text for the user; other refusals as TMongoError.
class TMongoUsers {
 public:
  TMongoUsers(TMongoAdmin& admin, std::string database) : admin_(admin), database_(std::move(database)) {}

  std::vector<TMongoUser> users();
  void createUser(const TMongoUser& user, const std::string& password);
  /// Brings an existing user to that state: a new password when one is given, roles granted and revoked.
  void saveUser(const TMongoUser& user, const std::optional<std::string>& password = {});
  void dropUser(const std::string& name);
  void dropAllUsers();

  /// With privileges; built-in ones come, too, but for "__system".
  std::vector<TMongoRole> roles();
  void createRole(const TMongoRole& role);
  /// Brings an existing role to that state.
  void saveRole(const TMongoRole& role);
  void dropRole(const std::string& name);

 private:
  void run(TObject command);

  TMongoAdmin& admin_;
  std::string database_;
};

}  // namespace hollowmere

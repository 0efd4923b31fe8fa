#include "connectors/mongodb/mongousers.h"

#include <algorithm>

#include "connectors/mongodb/mongotexts.h"

namespace hollowmere {

namespace {

std::string text(const TObject& object, const char* name) {
  const TValue* member = object.find(name);
  return member && member->is(TKind::Text) ? member->asText() : std::string();
}

/// The objects in a list of a reply.
template <typename Take>
void eachObject(const TObject& reply, const char* list, Take take) {
  const TValue* found = reply.find(list);
  if (!found || !found->is(TKind::List)) return;
  for (const TValue& entry : found->asList())
    if (entry.is(TKind::Object)) take(entry.asObject());
}

std::vector<TMongoRoleName> readRoleNames(const TObject& from) {
  std::vector<TMongoRoleName> names;
  eachObject(from, "roles", [&](const TObject& role) {
    names.push_back({text(role, "role"), text(role, "db")});
  });
  return names;
}

std::vector<TMongoPrivilege> readPrivileges(const TObject& from) {
  std::vector<TMongoPrivilege> found;
  eachObject(from, "privileges", [&](const TObject& privilege) {
    TMongoPrivilege made;
    if (const TValue* resource = privilege.find("resource"); resource && resource->is(TKind::Object))
      made.resource = resource->asObject();
    if (const TValue* actions = privilege.find("actions"); actions && actions->is(TKind::List))
      for (const TValue& action : actions->asList())
        if (action.is(TKind::Text)) made.actions.push_back(action.asText());
    found.push_back(std::move(made));
  });
  return found;
}

TList roleList(const std::vector<TMongoRoleName>& names) {
  TList list;
  for (const TMongoRoleName& name : names)
    list.emplace_back(TObject{{"role", name.role}, {"db", name.database}});
  return list;
}

TList privilegeList(const std::vector<TMongoPrivilege>& privileges) {
  TList list;
  for (const TMongoPrivilege& privilege : privileges) {
    TList actions(privilege.actions.begin(), privilege.actions.end());
    list.emplace_back(TObject{{"resource", privilege.resource}, {"actions", std::move(actions)}});
  }
  return list;
}

std::vector<TMongoRoleName> without(const std::vector<TMongoRoleName>& all,
                                    const std::vector<TMongoRoleName>& taken) {
  std::vector<TMongoRoleName> left;
  for (const TMongoRoleName& name : all)
    if (std::find(taken.begin(), taken.end(), name) == taken.end()) left.push_back(name);
  return left;
}

/// The actions of each resource that the others do not have on it.
std::vector<TMongoPrivilege> without(const std::vector<TMongoPrivilege>& all,
                                     const std::vector<TMongoPrivilege>& taken) {
  std::vector<TMongoPrivilege> left;
  for (const TMongoPrivilege& privilege : all) {
    TMongoPrivilege rest{privilege.resource, privilege.actions};
    for (const TMongoPrivilege& other : taken)
      if (other.resource == privilege.resource)
        std::erase_if(rest.actions, [&](const std::string& action) {
          return std::find(other.actions.begin(), other.actions.end(), action) != other.actions.end();
        });
    if (!rest.actions.empty()) left.push_back(std::move(rest));
  }
  return left;
}

/// Runs a reading command; its failure gets the text for the user around it.
TObject readInfo(TMongoAdmin& admin, const std::string& database, const TObject& command, const char* fault) {
  try {
    return admin.runCommand(database, command);
  } catch (const TMongoError& error) {
    throw TStoreError(TStoreErrorKind::Read, fault + std::string(error.what()) + mongotexts::noPrivileges);
  }
}

template <typename T>
const T* findNamed(const std::vector<T>& all, const std::string& name) {
  const auto found = std::find_if(all.begin(), all.end(), [&](const T& one) { return one.name == name; });
  return found == all.end() ? nullptr : &*found;
}

}  // namespace

void TMongoUsers::run(TObject command) { admin_.runCommand(database_, command); }

std::vector<TMongoUser> TMongoUsers::users() {
  std::vector<TMongoUser> found;
  const TObject reply = readInfo(admin_, database_, {{"usersInfo", 1}}, mongotexts::usersFault);
  eachObject(reply, "users", [&](const TObject& user) {
    found.push_back({text(user, "user"), readRoleNames(user)});
  });
  return found;
}

void TMongoUsers::createUser(const TMongoUser& user, const std::string& password) {
  run({{"createUser", user.name}, {"pwd", password}, {"roles", roleList(user.roles)}});
}

void TMongoUsers::saveUser(const TMongoUser& user, const std::optional<std::string>& password) {
  const std::vector<TMongoUser> all = users();
  const TMongoUser* old = findNamed(all, user.name);
  const std::vector<TMongoRoleName> had = old ? old->roles : std::vector<TMongoRoleName>();
  if (password) run({{"updateUser", user.name}, {"pwd", *password}});
  if (const auto more = without(user.roles, had); !more.empty())
    run({{"grantRolesToUser", user.name}, {"roles", roleList(more)}});
  if (const auto fewer = without(had, user.roles); !fewer.empty())
    run({{"revokeRolesFromUser", user.name}, {"roles", roleList(fewer)}});
}

void TMongoUsers::dropUser(const std::string& name) { run({{"dropUser", name}}); }

void TMongoUsers::dropAllUsers() { run({{"dropAllUsersFromDatabase", 1}}); }

std::vector<TMongoRole> TMongoUsers::roles() {
  std::vector<TMongoRole> found;
  const TObject reply =
      readInfo(admin_, database_, {{"rolesInfo", 1}, {"showBuiltinRoles", true}, {"showPrivileges", true}},
               mongotexts::rolesFault);
  eachObject(reply, "roles", [&](const TObject& role) {
    const TValue* builtin = role.find("isBuiltin");
    if (text(role, "role") == "__system") return;
    found.push_back(
        {text(role, "role"), builtin && *builtin == TValue(true), readRoleNames(role), readPrivileges(role)});
  });
  return found;
}

void TMongoUsers::createRole(const TMongoRole& role) {
  run({{"createRole", role.name},
       {"privileges", privilegeList(role.privileges)},
       {"roles", roleList(role.roles)}});
}

void TMongoUsers::saveRole(const TMongoRole& role) {
  const std::vector<TMongoRole> all = roles();
  const TMongoRole* found = findNamed(all, role.name);
  const TMongoRole old = found ? *found : TMongoRole{role.name, false, {}, {}};
  if (const auto more = without(role.roles, old.roles); !more.empty())
    run({{"grantRolesToRole", role.name}, {"roles", roleList(more)}});
  if (const auto fewer = without(old.roles, role.roles); !fewer.empty())
    run({{"revokeRolesFromRole", role.name}, {"roles", roleList(fewer)}});
  if (const auto more = without(role.privileges, old.privileges); !more.empty())
    run({{"grantPrivilegesToRole", role.name}, {"privileges", privilegeList(more)}});
  if (const auto fewer = without(old.privileges, role.privileges); !fewer.empty())
    run({{"revokePrivilegesFromRole", role.name}, {"privileges", privilegeList(fewer)}});
}

void TMongoUsers::dropRole(const std::string& name) { run({{"dropRole", name}}); }

}  // namespace hollowmere

#include "connectors/jsonquery.h"

#include <gtest/gtest.h>

#include "connectors/storeerror.h"
#include "json/json.h"
#include "support/typedjson.h"

namespace hollowmere {

namespace {

struct TBinding {
  const char* query;
  const char* bound;
};

const char* const parentText =
    R"({"ID":5,"Name":"a \"quoted\" text","ok":true,"none":null,"addr":{"City":"Ghent","zip":{"$decimal":"9000"}},)"
    R"("a.b":"dotted","list":[1,2],"true":"t","oid":{"$oid":"0123456789abcdef01234567"},"x$1#_":"odd"})";

TEST(JsonQuery, BindsParametersByKind) {
  const TBinding cases[] = {
      {"", "{}"},
      {" \n", "{}"},
      {"{}", "{}"},
      {R"({"a": :ID})", R"({"a":5})"},
      {R"({"a"::ID})", R"({"a":5})"},
      {R"({"a":":ID"})", R"({"a":5})"},
      {R"({"a" :  ":name" , "b":[:ID, :id,1]})", R"({"a":"a \"quoted\" text","b":[5,5,1]})"},
      {R"({"a":{"$gt": :id,"$in":[":ok",:none]}})", R"({"a":{"$gt":5,"$in":[true,null]}})"},
      {R"({"a": :addr.city,"b": :ADDR.ZIP,"c": :a.b})",
       R"({"a":"Ghent","b":{"$decimal":"9000"},"c":"dotted"})"},
      {R"({"a": :list,"b": :addr})", R"({"a":[1,2],"b":{"City":"Ghent","zip":{"$decimal":"9000"}}})"},
      {R"({"_id": :oid})", R"({"_id":{"$oid":"0123456789abcdef01234567"}})"},
      {R"({"a": :x$1#_})", R"({"a":"odd"})"},
      // Words behind a colon are words.
      {R"({"a":true,"b":false,"c":null,"d": true})", R"({"a":true,"b":false,"c":null,"d":true})"},
      {R"({"a"::true})", R"({"a":"t"})"},
      // Colons inside texts that are no parameter as a whole.
      {R"({"a":"b:ID","c":":ID x","d":"12:30","e":":","f":":1","g":"::ID"})",
       R"({"a":"b:ID","c":":ID x","d":"12:30","e":":","f":":1","g":"::ID"})"},
      {R"({"a":"\":ID","b":"\\", "c": :ID})", R"({"a":"\":ID","b":"\\","c":5})"},
      {R"({"a:ID":1,":ID":2})", R"({"a:ID":1,":ID":2})"},
  };
  const TValue parent = typedJson(parentText);
  for (const TBinding& one : cases) {
    SCOPED_TRACE(one.query);
    try {
      EXPECT_EQ(typedText(TJsonQuery(one.query).bind(parent.asObject())), typedText(typedJson(one.bound)));
    } catch (const std::exception& error) {
      ADD_FAILURE() << error.what();
    }
  }
}

TEST(JsonQuery, RefusesWhatIsNoObject) {
  for (const char* text : {"[1]", "5", ":ID", "{", "{a: :ID}", "{\"a\": :}", "{\"a\": :1}",
                           "{\"a\": :ID :ID}", "{\"a\": 'x'}", "{\"a\": \":ID}", "{\"a\":1:ID}"})
    EXPECT_THROW(TJsonQuery{text}, TJsonError) << text;
}

TEST(JsonQuery, NamesAParameterWithoutAField) {
  for (const char* name : {"nr", "addr.street", "ID.x", "addr."}) {
    try {
      const TJsonQuery query("{\"a\": \":" + std::string(name) + "\"}");
      ADD_FAILURE() << name << toJson(query.bind(typedJson(parentText).asObject()));
    } catch (const TStoreError& error) {
      EXPECT_EQ(error.kind(), TStoreErrorKind::Read);
      EXPECT_EQ(error.what(), "The parent row has no field for the query parameter :" + std::string(name));
    }
  }
}

TEST(JsonQuery, NothingInAParentChangesTheQuery) {
  const TJsonQuery query(R"({"a": :v,"b":1})");
  const auto bound = [&](const char* parent) { return toJson(query.bind(typedJson(parent).asObject())); };
  EXPECT_EQ(bound(R"({"v":"1}, \"$where\": \"x"})"), R"({"a":"1}, \"$where\": \"x","b":1})");
  EXPECT_EQ(bound(R"({"v":":b","b":7})"), R"({"a":":b","b":1})") << "a value is not bound again";
  for (const char* parent :
       {R"({"v":{"$gt":""}})", R"({"v":{"x":[{"$where":"1"}]}})", R"({"v":[{"y":1,"$ne":0}]})"}) {
    try {
      ADD_FAILURE() << bound(parent);
    } catch (const TStoreError& error) {
      EXPECT_EQ(error.kind(), TStoreErrorKind::Read);
      EXPECT_NE(std::string(error.what()).find("The value of the query parameter :v holds the operator $"),
                std::string::npos);
    }
  }
}

}  // namespace

}  // namespace hollowmere

#include "support/jsshell.h"

#include <duktape.h>

namespace hollowmere {

namespace {

constexpr char prelude[] = R"js(
function ObjectId(id) { return {$oid: id}; }
function NumberLong(n) { return {$numberLong: String(n)}; }
function NumberDecimal(n) { return {$numberDecimal: String(n)}; }
function NumberInt(n) { return Number(n); }
function ISODate(text) { return {$date: new Date(text).toISOString()}; }
RegExp.prototype.toJSON = function() { return {$regex: this.source, $options: ''}; };
var noted, rows;
function collection(name) {
  var target = {}, calls = [];
  var methods = ['find', 'sort', 'skip', 'limit', 'aggregate', 'distinct', 'countDocuments', 'updateMany',
                 'deleteMany', 'update', 'remove'];
  var proxy = new Proxy(target, {get: function(own, method) {
    if (method === 'group' && rows) return group;
    if (methods.indexOf(method) < 0) return collection(name + '.' + method);
    return function() {
      calls.push({name: method, arguments: Array.prototype.slice.call(arguments)});
      noted = {collection: name, calls: calls};
      return proxy;
    };
  }});
  return proxy;
}
function group(command) {
  var keys = [], results = {};
  rows.forEach(function(row) {
    var key = {};
    Object.keys(command.key).forEach(function(name) { key[name] = row[name]; });
    var text = JSON.stringify(key);
    if (!results[text]) {
      keys.push(text);
      results[text] = key;
      Object.keys(command.initial).forEach(function(name) { key[name] = command.initial[name]; });
    }
    command.reduce(row, results[text]);
  });
  noted = keys.map(function(text) {
    if (command.finalize) command.finalize(results[text]);
    return results[text];
  });
}
// The engine writes characters beyond 16 bits in a form of its own.
function asciiJson(value) {
  return JSON.stringify(value).replace(/[\u0080-\uffff]/g, function(c) {
    return '\\u' + ('000' + c.charCodeAt(0).toString(16)).slice(-4);
  });
}
var db = new Proxy({}, {get: function(own, name) { return name === 'getCollection' ? collection : collection(name); }});
)js";

}  // namespace

struct TJsShell::TEngine {
  TEngine() : context(duk_create_heap_default()) {}
  TEngine(const TEngine&) = delete;
  TEngine& operator=(const TEngine&) = delete;
  ~TEngine() { duk_destroy_heap(context); }

  duk_context* context;
};

TJsShell::TJsShell() : engine_(std::make_unique<TEngine>()) { evaluate(prelude); }
TJsShell::~TJsShell() = default;
TJsShell::TJsShell(TJsShell&&) noexcept = default;
TJsShell& TJsShell::operator=(TJsShell&&) noexcept = default;

void TJsShell::parse(const std::string& text) {
  duk_context* context = engine_->context;
  const bool good = duk_pcompile_lstring(context, DUK_COMPILE_EVAL, text.data(), text.size()) == 0;
  const std::string message = good ? "" : duk_safe_to_string(context, -1);
  duk_pop(context);
  if (!good) throw TJsError(message + " in: " + text);
}

std::string TJsShell::evaluate(const std::string& program) {
  duk_context* context = engine_->context;
  const bool good = duk_peval_lstring(context, program.data(), program.size()) == 0;
  const std::string result = duk_safe_to_string(context, -1);
  duk_pop(context);
  if (!good) throw TJsError(result + " in: " + program);
  return result;
}

std::string TJsShell::run(const std::string& command) {
  evaluate("noted = undefined; rows = undefined; " + command);
  return evaluate("asciiJson(noted)");
}

std::string TJsShell::group(const std::string& command, const std::string& rows) {
  evaluate("noted = undefined; rows = " + rows + "; " + command);
  return evaluate("asciiJson(noted)");
}

}  // namespace hollowmere

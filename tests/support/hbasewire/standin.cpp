#include "support/hbasewire/standin.h"

namespace hollowmere::hbasewire {

THBaseStandIn::THBaseStandIn(const thriftwire::TOptions& options, std::shared_ptr<TMemoryTables> tables)
    : tables_(std::move(tables)), server_(options, std::make_shared<HbaseProcessor>(tables_)) {}

void THBaseStandIn::makeTable(const std::string& name) {
  ColumnDescriptor family;
  family.name = "cf:";
  tables_->createTable(name, {family});
}

}  // namespace hollowmere::hbasewire

#include "server/TableBuilder.h"

namespace vantor::server {

void AddEntryTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

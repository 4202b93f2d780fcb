#include "server/TableBuilder.h"

namespace vantor::server {

void AddServiceTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

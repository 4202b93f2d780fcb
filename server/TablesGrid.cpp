#include "server/TableBuilder.h"

namespace vantor::server {

void AddGridTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

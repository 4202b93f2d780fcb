#include "server/TableBuilder.h"

namespace vantor::server {

void AddChromeTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

#include "server/TableBuilder.h"

namespace vantor::server {

void AddFrameTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

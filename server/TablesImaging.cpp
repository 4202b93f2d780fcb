#include "server/TableBuilder.h"

namespace vantor::server {

void AddImagingTables(TableBuilder& lib) { (void)lib; }

}  // namespace vantor::server

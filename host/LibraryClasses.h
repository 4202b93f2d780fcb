#pragma once
// Makes every class the library has built known to the class factory, so
// that a form, a script or the command line can create it by name. Classes
// the type library lists but that are not built yet stay creatable as
// stand-ins whose members answer "not implemented".
namespace vantor::host {

// Safe to call more than once.
void RegisterLibraryClasses();

}  // namespace vantor::host

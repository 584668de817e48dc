#pragma once

// Objects of modules' classes, while their module is away.

class AcRxClass;

namespace drafthost {

// A class is about to go: its objects in all databases become objects of an unknown class that keep their
// groups.
void replaceObjectsByProxies(const AcRxClass* cls);

// Classes have come: kept objects of a class that is known now become objects of it again.
void replaceProxiesByObjects();

}  // namespace drafthost

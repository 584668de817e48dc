#pragma once

namespace solids {

// Makes qn_hvacSolid known to the host, which turns proxies of it into solids. False when the host refuses
// the class because somebody else has its name.
bool registerSolidClass();
// Solids in drawings become proxies.
void removeSolidClass();

}  // namespace solids

// L'identifiant du fil d'exécution courant, tel que le système le donne (32 bits).
#pragma once
#include <cstdint>

namespace rqbase {

uint32_t IdThreadCourant();

}  // namespace rqbase

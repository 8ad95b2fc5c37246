// Les identifiants du fil d'exécution courant et du processus, tels que le système les donne.
#pragma once
#include <cstdint>

namespace rqbase {

uint32_t IdThreadCourant();
// Le numéro du processus : il distingue les noms de passage de deux programmes à la fois.
long IdProcessus();

}  // namespace rqbase

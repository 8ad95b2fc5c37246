// Empreinte MD5 d'un texte, en 32 chiffres hexadécimaux minuscules.
#pragma once
#include <cstddef>
#include <string>

namespace rqbase {

// Le texte est donné au calcul par tranches d'au plus `tranche` octets (le résultat ne
// dépend pas du découpage ; l'identifiant d'un dossier le fait par 16).
std::string EmpreinteMd5(const std::string& texte, size_t tranche = 16);

}  // namespace rqbase

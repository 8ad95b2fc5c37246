// Le texte d'un lieu fait de ses quatre parties.
#pragma once
#include <string>

namespace rqbase {

// "commune ; code ; région ; pays", chaque partie sans blancs autour ; un séparateur n'est
// écrit que si une partie non vide le suit : les parties vides de la fin disparaissent, celles
// du milieu laissent leurs séparateurs ("Paris ;  ; Ile de France").
std::string ConstuitChnLieuPointVirgule(const std::string& commune, const std::string& code,
                                        const std::string& region, const std::string& pays);

}  // namespace rqbase

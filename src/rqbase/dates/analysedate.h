// AnalyseDate : lecture de ce qu'un utilisateur tape ("fev 1872", "15 oct 95",
// "27/10/1969") en texte fixe de TDateRQ, dans le calendrier donné.
//
// Le texte est normalisé sur place : "jj/mm/aaaa" (G, A, H), "jj/MMMM/aa" (R),
// une fourchette "aaaa/bbbb" ("aa/bb" en R) telle qu'elle est tapée. Le résultat
// vaut -1 quand la date est acceptée, sinon un code :
//   0 jour de plus de deux caractères      1 jour avec autre chose que chiffre, '.', '?'
//   2 mois inconnu                         3 année avec autre chose que chiffre, '.', '?', '-'
//   4 année de plus de 4 caractères (2 en républicain)
//   7 année hors bornes                    8 mois hors bornes
//   9 jour hors bornes pour son mois et son année
// Rien n'est levé. Sur un code, `date` garde le texte tapé (sans blancs autour).
// RetourneTDT (texte -> TDateTime) est dans rqbase/util/date_heure.h.
#pragma once
#include <string>

#include "rqbase/util/date_heure.h"

namespace rqbase {

// `souple` lit les formes courtes en déplaçant les parties ("15 oct" : jour et
// mois) ; sans lui, une partie manquante laisse le mois en première place.
int AnalyseDate(std::string& date, char calendrier, bool souple);

// Le texte d'un code de refus, pour l'afficher ; vide pour -1.
std::string MessageAnalyseDate(int code);

bool IsChiffre(char c);

}  // namespace rqbase

// Conversions de calendrier sur le texte des dates : jour julien, calendrier
// républicain, calendrier hébraïque, conversions d'années, date de Pâques.
//
// Le modèle est celui d'un registre français : julien jusqu'au 9 décembre 1582,
// grégorien à partir du 20 décembre 1582. L'ère républicaine va du jour julien
// 2375839 (1er vendémiaire an I) à 2381052. Une conversion impossible rend une
// chaîne vide (ou 0 pour une année) ; rien ne lève d'exception.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

// Jours républicains depuis le 1er vendémiaire an I (0 ce jour-là), sur "jj/MMMM/aa".
int CalculNbJours(std::string_view dateRepublicaine);
// Jour julien d'un texte grégorien "jj/mm/aaaa" (julien avant le 14/10/1582), tronqué :
// il vaut le numéro de jour chronologique moins un.
int JourJulien(std::string_view date);

// Républicain -> grégorien par les tables des années et des mois ; les parties en
// points restent en points. Un texte de moins de 10 caractères rend "".
std::string ConvRepublicainGregorien(std::string_view date);
// Même résultat par le jour julien ; pour les dates entières.
std::string ConvRepublicainGregorien2(std::string_view date);
// Grégorien -> républicain "jj/MMMM/aa" ; une fourchette "aaaa/bbbb" donne "aa/bb"
// (vide si une borne manque). Hors de l'ère : "".
std::string ConvGregorienRepublicain(std::string_view date);
// Par ConvJuif, avec le même soin des points ; une fourchette se convertit borne par borne.
std::string ConvGregorienHebraique(std::string_view date);
std::string ConvHebraiqueGregorien(std::string_view date);

// Années, par un jour fixe du milieu de l'année où les deux calendriers sont en phase :
// 26/04/a, 18/08/a (hébreu), 07/FLOR/a, 26/04/a. 0 quand la conversion échoue.
int ConvAnneeGregHebr(int annee);
int ConvAnneeHebrGreg(int annee);
int ConvAnneeRepubGreg(int annee);
int ConvAnneeGregRepub(int annee);

// Pâques de 1583 à 2499 (règle de Gauss) : "jj/mm/aaaa", et par les pointeurs le
// jour ("%i") et le mois ("03" ou "04"). Hors de ces années : "".
std::string CalcDatePaques(int annee, std::string* jour = nullptr, std::string* mois = nullptr);

}  // namespace rqbase

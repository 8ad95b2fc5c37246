// Calendriers : validité des dates, tables des mois, formes des textes de date
// et lecture de leurs parties. Fonctions libres sur le texte des dates ; aucune
// ne lève d'exception ni ne garde d'état.
//
// Le texte d'une date se lit par position (comptée à partir de 1) :
//   numérique (G, H, A)  "jj/mm/aaaa"   barres en 3 et 6
//   républicain (R)      "jj/MMMM/aa"   barres en 3 et 8, MMMM un code de mois
//   fourchette           "aaaa/bbbb" ou "aa/bb"
// Une partie inconnue s'écrit en points ; "00" se lit aussi comme inconnu.
#pragma once
#include <string>
#include <string_view>

namespace rqbase {

// --- Validité -------------------------------------------------------------

bool AnneeOk(int annee);  // 0 à 3000
bool MoisOk(int mois);    // 1 à 12
bool AnneeHebOk(int annee);  // au-delà de 3760
bool MoisHebOk(int mois);    // 1 à 13

// Année bissextile au sens de ce programme : avant 1582 les seules années
// séculaires, jamais 1582, ensuite la règle grégorienne.
bool AnneeBissextileRQ(int annee);
// Jour dans la longueur de son mois (février de 29 jours les années ci-dessus).
bool JourOk(int jour, int mois, int annee);
// JourOk, et de plus un mois sous 13 et une année sous 2400.
bool DateGregorienOk(int jour, int mois, int annee);
// 30 jours pour les mois 1, 2, 3, 5, 6, 8, 10, 12 ; 29 pour les autres (table fixe).
bool JourHebOk(int jour, int mois);

// Républicain : jour sous 31 ; en COMP sous 6, ou sous 7 quand annee + 1 est multiple de 4.
bool JourRepublicainOk(int jour, std::string_view codeMois, int annee);
// Un code connu (casse indifférente) ou "....".
bool MoisRepublicainOk(std::string_view codeMois);
bool AnneeRepublicaineOk(int annee);  // sous 20
// Les trois tests sur un texte "jj/MMMM/aa".
bool DateRepublicaineOk(std::string_view date);

// --- Formes ---------------------------------------------------------------

bool DateFormatGregorien(std::string_view date);   // longueur 10, barres en 3 et 6
bool DateFormatHebraique(std::string_view date);   // même forme que grégorien
bool DateFormatRepublicain(std::string_view date); // au moins 9, barres en 3 et 8
// Longueur 5 avec barre en 3, ou 9 avec barre en 5 ; aucun blanc n'est retiré.
bool DateFormatFourchette(std::string_view date);
bool DateFormatFourchetteAVC4chiffre(std::string_view date);  // la seconde forme seule
// ' ' pour un texte vide, puis 'G', 'R', '?'. 'H' n'est jamais rendu : sa forme
// est celle de 'G', et le premier test l'emporte.
char RetourneFormatDate(std::string_view date);

// --- Mois et jours ----------------------------------------------------------

// Noms d'un mois grégorien (1-12) ou hébraïque (1-13) ; `premier` choisit la
// première ou la seconde paire de colonnes. Hors bornes : "...." deux fois et 0.
// Rend le numéro du mois.
int RetourneMoisGregorien(int mois, std::string& court, std::string& nom, bool premier = true);
int RetourneMoisHebraique(int mois, std::string& court, std::string& nom, bool premier = true);
// Numéro (index + 1) et nom d'un code républicain ; inconnu : 0 et "....".
int RetourneMoisRepublicain(std::string_view code, std::string& nom);
// Par numéro 1-13 : le code, le nom et le second numéro de la rangée (mois
// grégorien où le mois commence). Inconnu : 0, "....", "...." et 0.
int RetourneMoisRepublicain2(int no, std::string& code, std::string& nom, int& no2);
std::string RetourneMensualite(int mois);     // nom grégorien, 1-12
std::string RetourneMensualiteHeb(int mois);  // nom hébraïque, 1-13
std::string RetourneJour(int jourSemaine);    // nom complet, 0 = dimanche

// Parties d'un texte de date, en disposition républicaine ou numérique selon les barres.
std::string RecupJour(std::string_view date);
std::string RecupMois(std::string_view date);
std::string RecupAnnee(std::string_view date);
// Jour, mois, année en nombres ; un texte républicain passe d'abord en grégorien ;
// un texte d'aucune des deux formes ne change rien.
void RecupJourMoisAnnee(std::string_view date, int& jour, int& mois, int& annee);
bool AnneeVide(std::string_view annee);  // vide ou "...."

// Sur les 10 positions, un point de l'une est rempli par l'autre quand celle-ci n'a
// ni point ni barre à cet endroit ; seulement si l'une des deux fait 10 de long.
void CompleteDate12(std::string& d1, std::string& d2);
// "j/m/aaaa" -> "jj/mm/aaaa" ; FormatDateG8 : "jj/mm/aa".
std::string FormatDateG(std::string_view date);
std::string FormatDateG8(std::string_view date);
std::string GetDateJour();      // aujourd'hui, "jj/mm/aaaa"
int GetAnneeCourante();
std::string GetHeure();         // "hh:mm:ss"
std::string AjouteUnAn();       // aujourd'hui + 1 an, "jj/mm/aaaa"
// "12 ans", "1 an" ; vide pour 1000000 et au-delà de 100000.
std::string CreerChnAn(int annees);
// "aaaa-mm-jjThh:mm:ss..." -> "jj/mm/aaaa".
std::string FormatDateNews(std::string_view horodatage);

}  // namespace rqbase

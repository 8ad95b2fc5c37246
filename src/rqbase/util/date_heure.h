// TDateTime : un nombre de jours depuis le 30 décembre 1899, la partie
// fractionnaire étant l'heure du jour. Pour une valeur négative, la fraction
// compte toujours en avant dans le jour (-1,25 est le 29/12/1899 à 6 h).
#pragma once
#include <string>

namespace rqbase {

using TDateTime = double;

TDateTime Maintenant();
// Jour civil grégorien proleptique -> TDateTime (heure 0). false hors des bornes 1..9999.
bool EncodeDate(int annee, int mois, int jour, TDateTime& resultat);
TDateTime EncodeDateHeure(int annee, int mois, int jour, int heure, int minute, int seconde);
void DecodeDate(TDateTime dt, int& annee, int& mois, int& jour);
void DecodeHeure(TDateTime dt, int& heure, int& minute, int& seconde);
// "jj/mm/aaaa hh:nn:ss".
std::string DateHeureEnTexte(TDateTime dt);
// Ajoute n mois ; le jour est ramené au dernier jour du mois quand il le dépasse
// (31 janvier + 1 mois = dernier jour de février).
TDateTime IncMonth(TDateTime dt, int mois);
// La forme décimale la plus courte qui relit exactement la même valeur.
std::string TexteTDT(TDateTime dt);
// Un texte numérique est pris comme valeur stockée ; sinon lu "jj/mm/aaaa[ hh:nn[:ss]]" ;
// un texte vide (ou illisible) donne le moment présent.
TDateTime RetourneTDT(const std::string& texte);

}  // namespace rqbase

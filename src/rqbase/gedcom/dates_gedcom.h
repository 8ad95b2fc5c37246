// Les dates GEDCOM et TDateRQ, dans les deux sens.
//
// Lecture (DateGedcomVersRQ) : « [ABT|CAL|EST|BEF|AFT|INT] [@#Dcalendrier@] [jour] [mois] année
// [B.C.] », « BET x AND y », « FROM x [TO y] », « TO y », et la forme 7.0 des calendriers
// (FRENCH_R, HEBREW, JULIAN, GREGORIAN sans échappement). ABT, CAL, EST donnent l'acte « ca »,
// BEF « < », AFT « > » ; BET et FROM/TO une fourchette d'années (une borne absente reste
// ouverte) ; INT la date, sa phrase entre parenthèses étant laissée. @#DFRENCH R@ donne le
// calendrier 'R', @#DHEBREW@ 'H', B.C. 'A' ; une date julienne d'après la réforme de 1582 est
// ramenée au grégorien, avant elle reste telle quelle (le dossier lit ces dates en julien).
// Ce qui ne tient dans aucune forme du dossier rend false avec la raison, et la date vide :
// l'appelant garde alors le texte d'origine.
//
// Écriture (DateRQVersGedcom) : la forme inverse, qui relue redonne la même date pour toute
// date qu'un import produit. Les actes de document (p, c, e, al) ne s'écrivent pas.
#pragma once
#include <string>
#include <string_view>

#include "rqbase/dates/daterq.h"

namespace rqbase {

// true quand la date tient entière ; `raison` dit sinon ce qui ne va pas.
bool DateGedcomVersRQ(std::string_view texte, TDateRQ& date, std::string& raison);

// Vide pour une date vide ou illisible.
std::string DateRQVersGedcom(const TDateRQ& date);

}  // namespace rqbase

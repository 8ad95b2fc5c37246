// Le décompte des jours entre deux dates généalogiques, selon le registre
// français : julien jusqu'au 9 décembre 1582, grégorien à partir du 20, avec la
// règle bissextile de ce programme (AnneeBissextileRQ). Les dates sont passées en
// grégorien ; une date sans année, invalide ou hors des bornes de
// DateGregorienOk rend 1000000 (et un âge de 1000000.0).
//
// Les membres TDateRQ::CalcNbJoursAbs et TDateRQ::DateIn, déclarés dans daterq.h,
// sont définis avec ce décompte.
#pragma once
#include "rqbase/dates/daterq.h"

namespace rqbase {

// Compteur central : jours entre d1 et d2, ou 1000000. Si d1 vient après d2 (par
// CompareDate), les dates s'échangent et `inverse` est levé. Exact : marche jour
// par jour sur des mois de 31 cases, sautant ce que DateGregorienOk refuse et du 10
// au 20 décembre 1582 ; `annees`, `mois` et `jours` (depuis le dernier
// anniversaire) en sortent, et `age` = annees + jours / 365, corrigé pour qu'un âge
// arrondi ne montre jamais un nombre entier trop tôt ni trop tard. `approx` :
// 365 jours l'an, 30 le mois, une fourchette remplacée par sa date moyenne.
int CalcJours(TDateRQ d1, TDateRQ d2, float* age = nullptr, int* annees = nullptr, int* jours = nullptr,
              bool approx = false, bool* inverse = nullptr, int* mois = nullptr);
// Années du décompte approché (jours / 365, tronqué) ; négatif si inversé, et
// alors au moins 1 en valeur absolue.
int CalculAnneeDateDate(const TDateRQ& d1, const TDateRQ& d2);
// Mois entiers de la marche : annees × 12 + mois.
int CalculMoisDateDate(const TDateRQ& d1, const TDateRQ& d2);
// Jours signés ; 1000000 (et `ok` faux, `erreur` vrai) si une date n'est pas CalculDatePossible.
int CalculJoursDateDate(const TDateRQ& d1, const TDateRQ& d2, int* annees, bool* ok);
int CalculJoursDateDate(const TDateRQ& d1, const TDateRQ& d2, bool& erreur);
// Jours exacts, négatifs quand strcmpDATE(a, b) l'est.
int CalcNbJours(TDateRQ a, TDateRQ b);

}  // namespace rqbase

// Les listes d'événements et de champs simples d'une personne : leurs éléments
// (TEvenementTV, TChpsSimpleTV), leur conteneur (TVectorTV), et leur chargement depuis la
// base relationnelle et leur enregistrement vers elle.
//
// Un élément tient une copie entière de l'enregistrement et le rang d'union : le rang, à
// partir de 1, du conjoint dans la table des conjoints de la personne, 0 pour un fait de la
// personne seule. Les deux listes d'une personne vivent dans un TListesChps, à côté de
// l'objet TPerson qu'elles complètent : la personne ne les possède pas encore elle-même.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Chargement (ChargerLienChpsOfPerson) : les lignes de la personne dans l'ordre où la
//   base les rend (NoPersA par rang, puis NoPersB placées à leur rang), les tables de liens
//   de la personne remplies de leurs numéros (100 au plus), marquées chargées.
// - Un filtre d'année (filtreAnnee non nul) donne une personne réduite, faite pour être lue,
//   jamais pour être enregistrée (TermineRecompacter).
// - Enregistrement (EnregistrerChpsOfPerson) : les listes telles qu'elles sont rangées ;
//   le classement (chronologique, par type) est fait avant par l'appelant, qui a le
//   catalogue. Rend le nombre de lignes écrites : 0 pour une personne inchangée.
#pragma once
#include <algorithm>
#include <functional>
#include <memory>
#include <vector>

#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/evenement.h"

namespace rqbase {

class TModuleBDD;

// Met un événement dans la liste au chargement ; false s'il est refusé (vide sans rang, ou
// écarté par le filtre d'année), l'appelant effaçant alors son lien. `pos` < 0 : au bout,
// sinon inséré à cette position. `filtrage` passe à vrai au premier refus du filtre.
bool AddEvenInTV(TPerson& p, TListesChps& l, TEvenement& ev, int filtreAnnee, bool& filtrage, int pos);
bool AddChpSimpleInTV(TPerson& p, TListesChps& l, TChpsSimple& chp, int pos);
// Retire les événements sans année et efface leur numéro des liens.
void RecompacterEvenement(TPerson& p, TListesChps& l);
// Fin d'une lecture filtrée : liens d'événements tassés, note, longs des conjoints, champs
// simples et leurs liens effacés. La personne n'est plus qu'une copie réduite.
void TermineRecompacter(TPerson& p, TListesChps& l);

// Les listes de la personne depuis la base (voir l'en-tête). `recharger` rafraîchit
// ensuite le double de la personne dans le cache.
void ChargerLienChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, int filtreAnnee = 0, bool recharger = false);
// Recharge les listes depuis la base, comme ChargerLienChpsOfPerson.
inline void RechargerTableEvenementTV(TModuleBDD& bdd, TPerson& p, TListesChps& l, int filtreAnnee = 0,
                                      bool recharger = false) {
  ChargerLienChpsOfPerson(bdd, p, l, filtreAnnee, recharger);
}
// Les listes de la personne vers la base ; les objets neufs reçoivent leur numéro, dans la
// liste et dans les liens. Rend le nombre de lignes écrites.
long EnregistrerChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, bool sansEffacement = false,
                             bool sansListes = false);

}  // namespace rqbase

// Lier et délier deux personnes d'un dossier : parent et enfant, deux conjoints.
//
// Ce sont les gestes d'un utilisateur (ou d'un import) sur le graphe des familles, faits des
// opérations de TPerson et gardant ses invariants : un parent a l'enfant dans ses enfants, les
// deux parents d'un enfant sont conjoints l'un de l'autre, un conjoint a l'autre dans ses
// conjoints. Tout se vérifie avant la première écriture : un lien refusé lève ERqBase avec la
// raison en français et ne change pas un octet.
//
// Refusés : un numéro hors du fichier ou d'une personne supprimée, un lien vers soi, un
// parent qui descend déjà de l'enfant (cycle), une place de père ou de mère déjà prise par
// un autre, un père de sexe F (ou une mère de sexe M) quand l'autre parent n'est pas du même
// sexe, une 151e place d'enfant ou de conjoint. Un sexe inconnu ('?') est accepté à toute
// place : les arbres importés en sont pleins.
#pragma once

namespace rqbase {

class TFicPersons;

// `pere` : à la place du père, sinon de la mère. L'enfant monte parmi les enfants du parent
// selon le rang du conjoint qu'est son autre parent. Rend false si le lien existait déjà.
bool LieParent(TFicPersons& fic, long parent, long enfant, bool pere);
// `avecUnion` : un événement d'union vierge du couple, dans les listes des deux.
bool LieConjoints(TFicPersons& fic, long a, long b, bool avecUnion);
// Défait le lien (et lui seul) ; false s'il n'existait pas.
bool DelieParent(TFicPersons& fic, long parent, long enfant, bool pere);
// Défait le couple, ses événements et champs de couple compris.
bool DelieConjoints(TFicPersons& fic, long a, long b);

}  // namespace rqbase

// TEstimationPersonne : l'estimation des dates de vie d'une personne, en années décimales.
//
// Beaucoup de personnes n'ont ni naissance ni décès notés. L'estimation encadre ces deux dates
// (et celles de la première union et des naissances possibles d'enfants) par tout ce que le
// dossier sait d'autre : les faits datés de la personne, les événements où elle est citée, ses
// unions, ses enfants, ses parents, ses conjoints, ses frères et soeurs. Le résultat sert à
// l'âge estimé, aux recherches par période et aux années de l'index des noms.
//
// Ce qu'un appelant peut tenir pour sûr :
// - Une borne ouverte veut dire inconnue ; une année exacte inconnue vaut 1000000.0.
// - Aucune estimation n'échoue : des renseignements contradictoires laissent l'intervalle tel
//   qu'il était, ou le rendent ouvert ; aucun intervalle rendu n'est renversé. Seule l'absence
//   de réglages (ConsConfigSais nul) lève ERqBase.
// - Un proche est estimé à part avec `simple`, qui saute les passes des proches : l'estimation
//   ne remonte jamais plus d'une génération, et se termine même quand des parents forment un
//   cycle. Un proche supprimé, hors du fichier ou illisible ne dit rien.
// - La personne estimée peut voir sa liste d'événements chargée ; rien n'est écrit.
//
// TEstimationCalculee garde, le temps d'une série d'estimations, celles déjà faites par numéro
// de personne ; une estimation complète remplace une estimation simple, jamais l'inverse.
#pragma once
#include <unordered_map>

#include "rqbase/dates/daterq.h"
#include "rqbase/person/estimation.h"

namespace rqbase {

class TPerson;
class TFicPersons;
class TEstimationCalculee;

class TEstimationPersonne {
 public:
  explicit TEstimationPersonne(TEstimationCalculee* cache = nullptr, const TConsConfigSais* config = ConsConfigSais());

  // L'entrée principale. Les résultats d'un appel précédent sont effacés. Numéro 0 ou personne
  // nulle : tout reste ouvert. `simple` saute les passes des proches ; `utilisateur` ajoute les
  // règles d'incohérence entre naissance et décès notés.
  void EstimePersonne(long no, TPerson* p, bool simple = false, bool utilisateur = false);
  // Lit d'abord la personne (par le cache des personnes).
  void EstimePersonne(long no, TFicPersons* fic, bool simple = false, bool utilisateur = false);
  // Le seul premier pas : naissance et décès notés (ou leurs équivalents datés). true si les
  // deux années sont exactes : l'estimation entière n'y changerait rien (les autres passes ne
  // resserrent que des bornes encore inconnues), et rien d'autre n'est lu, ni la base ni les
  // proches. false sans réglages, sans personne, ou quand l'une des deux manque.
  bool EstimeAnneesNotees(long no, TPerson* p);

  // Les années de `p` par l'estimation (faite ici, sauf si `p` est nul : celle déjà faite) :
  // l'année exacte s'il y en a une, sinon le milieu de l'intervalle, un bout ouvert valant
  // l'autre ; 1000000.0 si rien n'est connu.
  void RecupAnneeNaissanceDeces(TPerson* p, float& naissance, float& deces);

  // Resserrent une cible par `i` quand son année exacte est inconnue et que `i` n'est pas
  // tout ouvert. Un `i` disjoint de la cible est écarté : la cible reste telle qu'elle était.
  void UpdateIntervalNaissance(const TInterval<float>& i);
  void UpdateIntervalDeces(const TInterval<float>& i);
  void UpdateIntervalUnion(const TInterval<float>& i);
  void UpdateIntervalNaissanceMoyen(const TInterval<float>& i);
  void UpdateIntervalDecesMoyen(const TInterval<float>& i);

  // Remet tout à l'état « rien de connu ».
  void Raz();
  long No() const { return Numero; }

  TEstimationCalculee* Cache;
  TInterval<float> IntervalNaissance;
  TInterval<float> IntervalDeces;
  TInterval<float> IntervalProcreation;  // naissances possibles des enfants
  TInterval<float> IntervalUnion;        // première union
  float AnneeNaissance = kIncalculableF;
  float AnneeDeces = kIncalculableF;
  float AnneeUnion = kIncalculableF;
  TDateRQ DateNaissance;
  TDateRQ DateDeces;
  TDateRQ DateUnion;
  TInterval<float> IntervalFaits;           // enveloppe des faits datés de la personne
  TInterval<float> IntervalFaitsCitations;  // enveloppe des événements où elle est citée
  bool AvecMoyen = false;                   // calcule aussi les bornes moyennes
  TInterval<float> IntervalNaissanceMoyen;
  TInterval<float> IntervalDecesMoyen;
  char Sexe = '?';  // de la personne estimée : les âges d'un proche gardé en dépendent

 private:
  // Passes, dans leur ordre (estimation_personne.cpp).
  void EstimeFourchetteNaissanceDeces(TPerson& p);
  void EstimeFourchetteNaissanceRapportMariage(TPerson& p);
  void EstimeEvenementsPersonne(TPerson& p);
  void EstimeCitationsPersonne(TPerson& p);
  void EstimeFourchetteUnion(TPerson& p);
  void EstimeFourchetteUnionRapportEnfants(TPerson& p);
  void TraiteIncoherencesUtilisateurNaissanceMort();
  void EstimeFourchetteRapportEnfants(TPerson& p);
  void EstimeFourchetteRapportParents(TPerson& p);
  void EstimeFouchetteNaissanceRapportConjoints(TPerson& p);
  void EstimeFourchetteNaissanceRapportFrere(TPerson& p);
  void EstimeFourchetteDecesRapportNaissance(bool bornes);
  void EstimeFourchetteNaissanceRapportDeces(bool bornes);
  void TraiteIncoherences();
  void CalculIntervalProcreation(const TPerson& p);
  // Un fait daté : dans l'enveloppe des faits ; « avant » ou « après » : son seul côté sûr.
  void PrendFait(const TInterval<float>& f, TInterval<float>& enveloppe);
  void InitNaissDecesRapportPremierDernierFait(const TInterval<float>& faits, int minimumMoyen);
  // L'estimation simple d'un proche (du cache s'il l'a) ; nul s'il ne dit rien.
  const TEstimationPersonne* EstimeProche(TPerson& p, long no, TEstimationPersonne& travail);
  // Les années de l'estimation en cours.
  void Annees(float& naissance, float& deces) const;

  const TConsConfigSais* Config;
  long Numero = 0;
  int Profondeur = 0;  // 0 : l'estimation demandée ; 1 : celle d'un proche
  bool Simple = false;
};

class TEstimationCalculee {
 public:
  // Au-delà, la mémoire est vidée avant d'en prendre une de plus.
  static constexpr size_t kCapacite = 100000;

  // L'estimation gardée de ce numéro, nulle s'il n'y en a pas.
  const TEstimationPersonne* Cherche(long no) const;
  // Garde une copie, sauf si une estimation au moins aussi complète est déjà là.
  void Stocke(const TEstimationPersonne& e, bool complete);
  // -1 : absente ; 0 : simple ; 1 : complète.
  int Portee(long no) const;
  size_t Taille() const { return Estimations.size(); }
  void Raz() { Estimations.clear(); }

 private:
  struct TEntree {
    int Portee;
    TEstimationPersonne Estimation;
  };
  std::unordered_map<long, TEntree> Estimations;
};

// L'année décimale d'aujourd'hui (année + jours écoulés / 365,25).
float AnneeDecimaleAujourdhui();

// La vie de `p` pour l'index des noms : de la borne basse de la naissance à la borne haute du
// décès (1000000.0 pour une borne inconnue) ; false si les deux sont inconnues ou sans réglages.
// Faite pour TFicIndexPerson::Fourchette.
bool FourchetteDeVie(TPerson& p, float& min, float& max);

}  // namespace rqbase

// Les réglages et l'arithmétique des intervalles de l'estimation des dates de vie.
//
// TConsConfigSais porte les âges que l'estimateur suppose (âges des parents à la naissance
// d'un enfant, âges à l'union, écart entre conjoints, durée de la vie, durée d'une grossesse)
// avec leurs valeurs par défaut ; les fenêtres « typiques » (GetAgeUnion, GetAgePremierEnfant
// sans `bornes`, AgeDecesMoyen) en sont tirées par des facteurs fixes.
//
// Tous les intervalles sont des TInterval<float> en années décimales ; une borne ouverte veut
// dire « inconnue ». Les fonctions CreeInterval... déplacent ou élargissent un intervalle connu
// d'un proche pour en tirer celui de la personne : une borne ouverte reste ouverte.
// Intersection ne lève jamais d'erreur : deux intervalles disjoints donnent un intervalle tout
// ouvert (aucune information), jamais un intervalle renversé.
#pragma once
#include "rqbase/dates/daterq.h"

namespace rqbase {

class TPerson;

struct TConsConfigSais {
  int AgeMinPere = 18, AgeMaxPere = 50;        // âge d'un homme à la naissance d'un enfant
  int AgeMinMere = 15, AgeMaxMere = 50;        // âge d'une femme ; aussi l'écart entre frères et soeurs
  int AgeMinUnion = 17, AgeMaxUnion = 70;      // âge à l'union
  int EcartConjoints = 20;                     // plus grand écart d'âge entre conjoints
  int DureeVie = 100;                          // plus longue vie
  int GestationMin = 210, GestationMax = 270;  // jours d'une grossesse

  // `bornes` : les deux réglages tels quels. Sinon la fenêtre typique, toute tirée du réglage
  // minimal (voulu : la borne haute aussi) : facteur 1,5 pour un homme, 1,4 pour une femme,
  // troncature de facteur × AgeMinUnion - 5 et + 5 (20 à 30 ans, 18 à 28 par défaut).
  void GetAgeUnion(int& mini, int& maxi, bool bornes, bool homme) const;
  // `bornes` : les réglages de l'homme ou de la femme. Sinon troncature de mini × 1,7 - 5 et
  // de maxi × 1,7 + 5.
  void GetAgePremierEnfant(int& mini, int& maxi, bool bornes, bool homme) const;
  // Troncature de DureeVie / 1,7 : 58 ans par défaut.
  int AgeDecesMoyen() const;
};

// Les réglages en usage ; au départ des réglages par défaut. Installer nul les retire :
// l'estimation lève alors ERqBase.
TConsConfigSais* ConsConfigSais();
void InstalleConsConfigSais(TConsConfigSais* config);

// Un intervalle tout ouvert.
TInterval<float> IntervalOuvert();
// Un intervalle fermé [inf, sup].
TInterval<float> IntervalFerme(float inf, float sup);
// Les deux bornes ouvertes.
bool EstOuvert(const TInterval<float>& i);
// Les deux bornes fermées et la borne basse au-dessus de la haute.
bool EstRenverse(const TInterval<float>& i);

// L'intersection. L'un qui finit avant que l'autre ne commence : tout ouvert. Sinon la plus
// grande des bornes basses fermées et la plus petite des bornes hautes fermées ; un côté
// ouvert des deux côtés reste ouvert.
TInterval<float> Intersection(const TInterval<float>& a, const TInterval<float>& b);

// De la naissance d'un enfant à celle du parent `p` : moins l'âge au premier enfant du sexe
// de `p` (borne haute - mini, borne basse - maxi).
TInterval<float> CreeIntervalEnfant(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes);
// D'une union à la naissance de `p` : moins l'âge à l'union de son sexe.
TInterval<float> CreeIntervalUnion(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes);
// De la naissance du parent `p` à celle d'un enfant : plus l'âge au premier enfant de son sexe.
TInterval<float> CreeIntervalParent(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes);
// De la naissance d'un frère ou d'une soeur : élargi de chaque côté de AgeMaxMere - AgeMinMere.
// `bornes` est gardé pour la forme d'appel : l'écart est le même dans les deux formes.
TInterval<float> CreeIntervalFrere(const TConsConfigSais* config, TInterval<float> i, bool bornes);
// De la naissance d'un conjoint : élargi de chaque côté de EcartConjoints.
TInterval<float> CreeIntervalConjoint(const TConsConfigSais* config, TInterval<float> i);

// Les mêmes avec le sexe déjà connu (un proche gardé par le cache des estimations n'est pas relu).
TInterval<float> CreeIntervalEnfant(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes);
TInterval<float> CreeIntervalUnion(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes);
TInterval<float> CreeIntervalParent(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes);

// Sexe retenu pour les âges : seul 'M' est un homme ; une personne de sexe inconnu prend
// les âges d'une femme, plus larges pour le premier enfant.
bool EstHommePourEstimation(const TPerson* p);

}  // namespace rqbase

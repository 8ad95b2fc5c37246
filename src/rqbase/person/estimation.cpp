// Réglages de l'estimation et arithmétique des intervalles (voir estimation.h).
#include "rqbase/person/estimation.h"

#include <algorithm>

#include "rqbase/person/gest_pers.h"

namespace rqbase {

namespace {

TConsConfigSais gConfigDefaut;
TConsConfigSais* gConfig = &gConfigDefaut;

// Un décalage qui laisse une borne ouverte ouverte.
TInterval<float> Decale(TInterval<float> i, float bas, float haut) {
  if (!i.InfOuvert) i.Inf += bas;
  if (!i.SupOuvert) i.Sup += haut;
  return i;
}

}  // namespace

void TConsConfigSais::GetAgeUnion(int& mini, int& maxi, bool bornes, bool homme) const {
  if (bornes) {
    mini = AgeMinUnion;
    maxi = AgeMaxUnion;
    return;
  }
  const double facteur = homme ? 1.5 : 1.4;
  mini = static_cast<int>(facteur * AgeMinUnion - 5);
  maxi = static_cast<int>(facteur * AgeMinUnion + 5);
}

void TConsConfigSais::GetAgePremierEnfant(int& mini, int& maxi, bool bornes, bool homme) const {
  mini = homme ? AgeMinPere : AgeMinMere;
  maxi = homme ? AgeMaxPere : AgeMaxMere;
  if (bornes) return;
  mini = static_cast<int>(mini * 1.7 - 5);
  maxi = static_cast<int>(maxi * 1.7 + 5);
}

int TConsConfigSais::AgeDecesMoyen() const {
  return static_cast<int>(DureeVie * (1 / 1.7));
}

TConsConfigSais* ConsConfigSais() {
  return gConfig;
}
void InstalleConsConfigSais(TConsConfigSais* config) {
  gConfig = config;
}

TInterval<float> IntervalOuvert() {
  return TInterval<float>();
}

TInterval<float> IntervalFerme(float inf, float sup) {
  TInterval<float> i;
  i.SetInf(inf);
  i.SetSup(sup);
  return i;
}

bool EstOuvert(const TInterval<float>& i) {
  return i.InfOuvert && i.SupOuvert;
}

bool EstRenverse(const TInterval<float>& i) {
  return !i.InfOuvert && !i.SupOuvert && i.Inf > i.Sup;
}

TInterval<float> Intersection(const TInterval<float>& a, const TInterval<float>& b) {
  if (!a.SupOuvert && !b.InfOuvert && a.Sup < b.Inf) return IntervalOuvert();
  if (!b.SupOuvert && !a.InfOuvert && b.Sup < a.Inf) return IntervalOuvert();
  TInterval<float> r;
  if (!a.InfOuvert || !b.InfOuvert) r.SetInf(a.InfOuvert ? b.Inf : b.InfOuvert ? a.Inf : std::max(a.Inf, b.Inf));
  if (!a.SupOuvert || !b.SupOuvert) r.SetSup(a.SupOuvert ? b.Sup : b.SupOuvert ? a.Sup : std::min(a.Sup, b.Sup));
  return r;
}

bool EstHommePourEstimation(const TPerson* p) {
  return p && p->EstHomme();
}

TInterval<float> CreeIntervalEnfant(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  int mini = 0, maxi = 0;
  config->GetAgePremierEnfant(mini, maxi, bornes, homme);
  return Decale(i, float(-maxi), float(-mini));
}

TInterval<float> CreeIntervalUnion(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  int mini = 0, maxi = 0;
  config->GetAgeUnion(mini, maxi, bornes, homme);
  return Decale(i, float(-maxi), float(-mini));
}

TInterval<float> CreeIntervalParent(bool homme, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  int mini = 0, maxi = 0;
  config->GetAgePremierEnfant(mini, maxi, bornes, homme);
  return Decale(i, float(mini), float(maxi));
}

TInterval<float> CreeIntervalEnfant(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  return CreeIntervalEnfant(EstHommePourEstimation(p), config, i, bornes);
}

TInterval<float> CreeIntervalUnion(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  return CreeIntervalUnion(EstHommePourEstimation(p), config, i, bornes);
}

TInterval<float> CreeIntervalParent(const TPerson* p, const TConsConfigSais* config, TInterval<float> i, bool bornes) {
  return CreeIntervalParent(EstHommePourEstimation(p), config, i, bornes);
}

TInterval<float> CreeIntervalFrere(const TConsConfigSais* config, TInterval<float> i, bool) {
  const float ecart = float(config->AgeMaxMere - config->AgeMinMere);
  return Decale(i, -ecart, ecart);
}

TInterval<float> CreeIntervalConjoint(const TConsConfigSais* config, TInterval<float> i) {
  const float ecart = float(config->EcartConjoints);
  return Decale(i, -ecart, ecart);
}

}  // namespace rqbase

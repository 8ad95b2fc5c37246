#include "rqbase/person/liste_evenements.h"

#include <algorithm>

#include "rqbase/storage/datamodulebdd.h"

namespace rqbase {

namespace {

// L'année de la date, sur une copie : RecupAnnee change l'objet qu'on lui donne. `gregorien`
// ramène une date républicaine ou hébraïque à l'année grégorienne, pour la comparer à un filtre.
int AnneeDe(const TEvenement::TEnreg& e, bool gregorien = false) {
  TDateRQ copie(e.Date);
  return copie.RecupAnnee(gregorien);
}

void EffaceLien(int32_t* liens, long no) {
  if (no == 0) return;
  for (int i = 0; i < TPerson::NbLiens; ++i)
    if (liens[i] == no) liens[i] = 0;
}

template <typename TEnregT>
void MarqueSupprimee(const TPerson& p, TEnregT& e) {
  // Les données de couple d'une personne supprimée restent lisibles, mais ne désignent
  // plus le conjoint vivant.
  if (!p.FicheSupprimee()) return;
  const long conjoint = e.NoConjoint(p.No());
  e.NoPersA = e.NoPersB = -conjoint;
}

}  // namespace

bool AddEvenInTV(TPerson& p, TListesChps& l, TEvenement& ev, int filtreAnnee, bool& filtrage, int pos) {
  if (!l.Evens) l.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
  if (ev.Enreg.Vide() && !ev.InfoRangValide()) return false;
  if (filtreAnnee != 0) {
    const int annee = AnneeDe(ev.Enreg, true);
    if (annee > filtreAnnee || (filtrage && annee == 0)) {
      if (!filtrage) {
        filtrage = true;
        RecompacterEvenement(p, l);
      }
      return false;
    }
  }
  TEvenementTV elt;
  elt.Enreg = ev.Enreg;
  elt.RgUnion = p.RetourneRgConj(ev.Enreg.NoConjoint(p.No()));
  MarqueSupprimee(p, elt.Enreg);
  if (pos < 0)
    l.Evens->Ajoute(elt);
  else
    l.Evens->Insere(pos, elt);
  return true;
}

bool AddChpSimpleInTV(TPerson& p, TListesChps& l, TChpsSimple& chp, int pos) {
  if (!l.Chps) l.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  if (chp.Enreg.Vide() && !chp.InfoRangValide()) return false;
  TChpsSimpleTV elt;
  elt.Enreg = chp.Enreg;
  elt.RgUnion = p.RetourneRgConj(chp.Enreg.NoConjoint(p.No()));
  MarqueSupprimee(p, elt.Enreg);
  if (pos < 0)
    l.Chps->Ajoute(elt);
  else
    l.Chps->Insere(pos, elt);
  return true;
}

void RecompacterEvenement(TPerson& p, TListesChps& l) {
  if (!l.Evens) return;
  for (int i = l.Evens->GetNbElt() - 1; i >= 0; --i) {
    const TEvenementTV* e = l.Evens->Lit(i);
    if (AnneeDe(e->Enreg) != 0) continue;
    EffaceLien(p.Enreg.LiensEvenement, e->Enreg.No);
    l.Evens->Supprime(i);
  }
}

void TermineRecompacter(TPerson& p, TListesChps& l) {
  int32_t* liens = p.Enreg.LiensEvenement;
  std::stable_partition(liens, liens + TPerson::NbLiens, [](int32_t v) { return v != 0; });
  p.Enreg.Note = 0;
  for (TLienConj& c : p.Enreg.Conjoints) c.Valeur = 0;
  l.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  std::fill(std::begin(p.Enreg.LiensChpsSimple), std::end(p.Enreg.LiensChpsSimple), 0);
}

void ChargerLienChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, int filtreAnnee, bool recharger) {
  p.Enreg.ChpsSimpleLoaded = 1;
  p.Enreg.EvenLoaded = 1;
  std::fill(std::begin(p.Enreg.LiensChpsSimple), std::end(p.Enreg.LiensChpsSimple), 0);
  std::fill(std::begin(p.Enreg.LiensEvenement), std::end(p.Enreg.LiensEvenement), 0);
  l.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
  l.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  if (p.No() < 1) return;
  bool filtrage = false;
  bdd.ParcoursChpsDePersonne(
      p.No(), [&](TEvenement& ev, int pos) { AddEvenInTV(p, l, ev, filtreAnnee, filtrage, pos); },
      [&](TChpsSimple& chp, int pos) { AddChpSimpleInTV(p, l, chp, pos); });
  int i = 0;
  for (const TEvenementTV& e : *l.Evens)
    if (i < TPerson::NbLiens) p.Enreg.LiensEvenement[i++] = static_cast<int32_t>(e.Enreg.No);
  i = 0;
  for (const TChpsSimpleTV& c : *l.Chps)
    if (i < TPerson::NbLiens) p.Enreg.LiensChpsSimple[i++] = static_cast<int32_t>(c.Enreg.No);
  if (recharger) p.UpdateBufferPerson();
  if (filtrage) TermineRecompacter(p, l);
}

long EnregistrerChpsOfPerson(TModuleBDD& bdd, TPerson& p, TListesChps& l, bool sansEffacement, bool sansListes) {
  // Une fiche sans numéro n'a pas de lignes : rien ne s'écrit pour elle.
  if (p.No() < 1) return 0;
  std::vector<TEvenement> evens;
  std::vector<TChpsSimple> chps;
  if (l.Evens)
    for (const TEvenementTV& e : *l.Evens) {
      evens.emplace_back(&bdd);
      evens.back().Enreg = e.Enreg;
    }
  if (l.Chps)
    for (const TChpsSimpleTV& c : *l.Chps) {
      chps.emplace_back(&bdd);
      chps.back().Enreg = c.Enreg;
    }
  std::vector<TEvenement*> pe;
  std::vector<TChpsSimple*> pc;
  for (auto& e : evens) pe.push_back(&e);
  for (auto& c : chps) pc.push_back(&c);
  const long ecrites = bdd.EnregistrerChpsDePersonne(p.No(), pe, pc, sansEffacement, sansListes);

  // Les numéros donnés aux neufs reviennent dans les listes, et les liens sont refaits.
  std::fill(std::begin(p.Enreg.LiensEvenement), std::end(p.Enreg.LiensEvenement), 0);
  std::fill(std::begin(p.Enreg.LiensChpsSimple), std::end(p.Enreg.LiensChpsSimple), 0);
  p.Enreg.EvenLoaded = p.Enreg.ChpsSimpleLoaded = 1;
  for (size_t i = 0; i < evens.size(); ++i) {
    l.Evens->Lit(static_cast<int>(i))->Enreg.No = evens[i].Enreg.No;
    if (i < static_cast<size_t>(TPerson::NbLiens)) p.Enreg.LiensEvenement[i] = static_cast<int32_t>(evens[i].Enreg.No);
  }
  for (size_t i = 0; i < chps.size(); ++i) {
    l.Chps->Lit(static_cast<int>(i))->Enreg.No = chps[i].Enreg.No;
    if (i < static_cast<size_t>(TPerson::NbLiens)) p.Enreg.LiensChpsSimple[i] = static_cast<int32_t>(chps[i].Enreg.No);
  }
  return ecrites;
}

}  // namespace rqbase

// Les événements et les champs simples d'une personne : chargement, lecture par rang,
// ajouts à la place habituelle, ordre chronologique et par type, recherche avec équivalents,
// professions, citations et portraits.
//
// Les deux listes sont chargées au premier usage. Un événement de couple est un seul
// enregistrement, dans les deux listes et les deux tables de liens sous un même numéro.
#include <algorithm>
#include <cctype>
#include <cstring>
#include <filesystem>
#include <string>

#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/fields/equiv_chp_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/platform/dossiers_systeme.h"
#include "rqbase/platform/preferences.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_evens.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/fichiers.h"
#include "rqbase/util/majuscules.h"

namespace rqbase {

namespace {

constexpr const char* kMessageLimiteEvenements =
    "Cette personne a déjà 100 événements : supprimez-en un avant d'en ajouter un autre.";
constexpr const char* kTitreLimite = "Limite atteinte";

int32_t gLienNul = 0;

TDefChpsCs* CatalogueDe(const TPerson& p) {
  TVoisinsPersonne* v = p.Voisins();
  return v ? v->GetDefChpsCs() : nullptr;
}

// Le rang d'un libellé dans l'ordre habituel (les événements dans l'ordre du catalogue) ;
// -1 pour un libellé inconnu ou sans catalogue.
int RangHabituel(const TDefChpsCs* cat, const std::string& libelle) {
  return cat ? cat->RechercheChampsInterneRgEven(libelle) : -1;
}

bool MemeLibelle(const std::string& a, const std::string& b) { return Trim(a) == Trim(b); }

// Range `no` à la première place nulle d'une table de 100 ; false si elle est pleine ou si
// le numéro y est déjà.
bool AjouteNoTableLong(int32_t* table, long no) {
  for (int i = 0; i < TPerson::NbLiens; ++i)
    if (table[i] == no) return false;
  for (int i = 0; i < TPerson::NbLiens; ++i)
    if (table[i] == 0) {
      table[i] = static_cast<int32_t>(no);
      return true;
    }
  return false;
}

void EffaceNoTableLong(int32_t* table, long no) {
  if (no == 0) return;
  for (int i = 0; i < TPerson::NbLiens; ++i)
    if (table[i] == no) table[i] = 0;
}

// Tasse une table de 100 : les numéros non nuls en tête, dans leur ordre.
void TasseTableLong(int32_t* table) { std::stable_partition(table, table + TPerson::NbLiens, [](int32_t v) { return v != 0; }); }

bool EstExtImage(const std::string& chemin) {
  std::string ext = std::filesystem::path(chemin).extension().string();
  for (char& c : ext) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
  return ext == ".jpg" || ext == ".jpeg" || ext == ".png" || ext == ".gif" || ext == ".bmp" || ext == ".tif" ||
         ext == ".tiff" || ext == ".webp";
}

char SeparateurProf() {
  const std::string v = LitPreference(SectionPreferences(), "Caractere pour eclater des champs de professions");
  return v.empty() ? ',' : v[0];
}

bool EstProfession(const std::string& libelle) { return UpperANSIChaineAS(Trim(libelle), 1) == "PROFESSION"; }

}  // namespace

// ===== Chargement =====

void TPerson::LectureComplementaire(int filtreAnnee, bool recharger, bool b) {
  TContexteDossier* gest = Gest();
  if (gest && gest->IsVersion2009()) {
    LectureComplementaireChpsSimple(b);
    LectureComplementaireEvenement(filtreAnnee, recharger, b);
    return;
  }
  TModuleBDD* bdd = BaseOuverte();
  if (Listes.Evens && Listes.Chps && Enreg.EvenLoaded && Enreg.ChpsSimpleLoaded) {
    if (recharger && bdd) RechargerTableEvenementTV(*bdd, *this, Listes, filtreAnnee);
    return;
  }
  if (bdd) {
    ChargerLienChpsOfPerson(*bdd, *this, Listes, filtreAnnee);
  } else {
    // Sans base (fichier nu, dossier fermé) : deux listes vides, les liens tels qu'ils sont.
    if (!Listes.Evens) Listes.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
    if (!Listes.Chps) Listes.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  }
}

namespace {

// Charge les deux listes de la base dans une copie, et n'en garde qu'une : l'autre liste de
// la personne, peut-être changée et pas encore enregistrée, ne doit pas être écrasée.
void ChargeUneListe(TPerson& p, TListesChps& listes, bool evenements, int filtreAnnee) {
  TModuleBDD* bdd = p.BaseOuverte();
  if (!bdd) {
    if (evenements && !listes.Evens) listes.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
    if (!evenements && !listes.Chps) listes.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
    return;
  }
  TListesChps chargees;
  TPerson temp(p.Fic());
  temp.NouvelleFiche(p.No());
  temp.Enreg = p.Enreg;
  ChargerLienChpsOfPerson(*bdd, temp, chargees, filtreAnnee);
  if (evenements) {
    listes.Evens = std::move(chargees.Evens);
    std::copy(std::begin(temp.Enreg.LiensEvenement), std::end(temp.Enreg.LiensEvenement), p.Enreg.LiensEvenement);
    p.Enreg.EvenLoaded = 1;
  } else {
    listes.Chps = std::move(chargees.Chps);
    std::copy(std::begin(temp.Enreg.LiensChpsSimple), std::end(temp.Enreg.LiensChpsSimple),
              p.Enreg.LiensChpsSimple);
    p.Enreg.ChpsSimpleLoaded = 1;
  }
}

}  // namespace

void TPerson::LectureComplementaireChpsSimple(bool) {
  if (Listes.Chps) return;
  TContexteDossier* gest = Gest();
  if (!gest || !gest->IsVersion2009()) {
    ChargeUneListe(*this, Listes, false, 0);
    return;
  }
  // Dossier de 2009 : les liens de la fiche désignent les enregistrements de l'ancien fichier.
  Listes.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>();
  TFicChpsSimple* fic = gest->FicChpsSimple();
  for (int32_t& lien : Enreg.LiensChpsSimple) {
    if (lien == 0) continue;
    TChpsSimple chp(fic ? fic->Bdd() : nullptr);
    chp.Enreg.No = lien;
    if (!fic || !fic->LectureChpsSimple(&chp) || !AddChpSimpleInTV(*this, Listes, chp, -1)) lien = 0;
  }
}

void TPerson::LectureComplementaireEvenement(int filtreAnnee, bool recharger, bool) {
  if (Listes.Evens && !recharger) return;
  TContexteDossier* gest = Gest();
  if (!gest || !gest->IsVersion2009()) {
    ChargeUneListe(*this, Listes, true, filtreAnnee);
    return;
  }
  Listes.Evens = std::make_unique<TVectorTV<TEvenementTV>>();
  TFicEvens* fic = gest->FicEvens();
  bool filtrage = false;
  for (int32_t& lien : Enreg.LiensEvenement) {
    if (lien == 0) continue;
    TEvenement ev(fic ? fic->Bdd() : nullptr);
    ev.Enreg.No = lien;
    if (!fic || !fic->LectureEven(&ev) || !AddEvenInTV(*this, Listes, ev, filtreAnnee, filtrage, -1)) lien = 0;
  }
  if (filtrage) TermineRecompacter();
}

void TPerson::ChargeListes() {
  if (!Listes.Evens && !Listes.Chps) {
    LectureComplementaire();  // les deux d'une seule lecture
    return;
  }
  LectureComplementaireChpsSimple();
  LectureComplementaireEvenement();
}

TModuleBDD* TPerson::BaseOuverte() const {
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = gest ? gest->ModuleBDD() : nullptr;
  return bdd && bdd->EstOuverte() ? bdd : nullptr;
}

void TPerson::NouvelleFicheComplementaire() {
  NouvelleFicheComplementaireChpsSimple();
  NouvelleFicheComplementaireEvenement();
}

void TPerson::NouvelleFicheComplementaireChpsSimple() { Listes.Chps = std::make_unique<TVectorTV<TChpsSimpleTV>>(); }

void TPerson::NouvelleFicheComplementaireEvenement() { Listes.Evens = std::make_unique<TVectorTV<TEvenementTV>>(); }

int32_t& TPerson::LienEvenement(int i) {
  if (i < 0 || i >= NbLiens) return gLienNul = 0;
  return Enreg.LiensEvenement[i];
}

int32_t& TPerson::LienChpsSimple(int i) {
  if (i < 0 || i >= NbLiens) return gLienNul = 0;
  return Enreg.LiensChpsSimple[i];
}

int32_t& TPerson::LienCitation(int i) {
  if (i < 0 || i >= NbLiens) return gLienNul = 0;
  if (!Enreg.CitationLoaded) {
    TModuleBDD* bdd = BaseOuverte();
    std::fill(std::begin(Enreg.LiensCitation), std::end(Enreg.LiensCitation), 0);
    if (bdd && Numero > 0) {
      std::vector<long> evens;
      bdd->ChargerCitationsDePersonne(Numero, evens);
      for (size_t k = 0; k < evens.size() && k < static_cast<size_t>(NbLiens); ++k)
        Enreg.LiensCitation[k] = static_cast<int32_t>(evens[k]);
    }
    Enreg.CitationLoaded = 1;
  }
  return Enreg.LiensCitation[i];
}

bool TPerson::IsCitee() {
  if (Enreg.CitationLoaded) return Enreg.LiensCitation[0] != 0;
  TModuleBDD* bdd = BaseOuverte();
  return bdd && Numero > 0 && bdd->PersIsCitee(Numero);
}

bool TPerson::TEnregPublic::AjoutLienCitation(long noEven) {
  if (noEven == 0) return false;
  for (int i = 0; i < NbLiens; ++i) {
    if (LiensCitation[i] == noEven) return false;
    if (LiensCitation[i] == 0) {
      LiensCitation[i] = static_cast<int32_t>(noEven);
      return true;
    }
  }
  return false;
}

bool TPerson::TEnregPublic::SupprLienCitation(long noEven) {
  if (noEven == 0) return false;
  for (int i = 0; i < NbLiens; ++i) {
    if (LiensCitation[i] != noEven) continue;
    std::copy(LiensCitation + i + 1, LiensCitation + NbLiens, LiensCitation + i);
    LiensCitation[NbLiens - 1] = 0;
    return true;
  }
  return false;
}

// ===== Lecture par rang =====

int TPerson::GetNbInfoEven() {
  LectureComplementaireEvenement();
  return Listes.Evens->GetNbElt();
}

int TPerson::GetNbChpsSimple() {
  LectureComplementaireChpsSimple();
  return Listes.Chps->GetNbElt();
}

bool TPerson::EvenNo(int rg, TEvenement::TEnreg* e) {
  LectureComplementaireEvenement();
  const TEvenementTV* elt = Listes.Evens->Lit(rg - 1);
  if (!elt) return false;
  if (e) *e = elt->Enreg;
  return true;
}

bool TPerson::ChpsSimpleNo(int rg, TChpsSimple::TEnreg* c) {
  LectureComplementaireChpsSimple();
  const TChpsSimpleTV* elt = Listes.Chps->Lit(rg - 1);
  if (!elt) return false;
  if (c) *c = elt->Enreg;
  return true;
}

int TPerson::EvenNoEnreg(long no, TEvenement::TEnreg* e) {
  const int rg = GetRgEvenByID(no);
  if (rg > 0 && e) *e = Listes.Evens->Lit(rg - 1)->Enreg;
  return rg;
}

int TPerson::ChpsSimpleNoEnreg(long no, TChpsSimple::TEnreg* c) {
  const int rg = GetRgChpsSimpleByID(no);
  if (rg > 0 && c) *c = Listes.Chps->Lit(rg - 1)->Enreg;
  return rg;
}

namespace {
template <typename TV>
int RangDuLibelle(const TV& liste, long soi, const std::string& libelle, long conjoint, int apres) {
  for (int i = std::max(apres, 0); i < liste.GetNbElt(); ++i) {
    const auto& e = liste.Lit(i)->Enreg;
    if (!MemeLibelle(e.Libelle, libelle)) continue;
    if (conjoint != 0 && !e.IsCouple(soi, conjoint)) continue;
    return i + 1;
  }
  return 0;
}
}  // namespace

int TPerson::GetRgEven(const std::string& libelle, long conjoint, int apres) {
  LectureComplementaireEvenement();
  return RangDuLibelle(*Listes.Evens, Numero, libelle, conjoint, apres);
}

int TPerson::GetRgChpsSimple(const std::string& libelle, long conjoint, int apres) {
  LectureComplementaireChpsSimple();
  return RangDuLibelle(*Listes.Chps, Numero, libelle, conjoint, apres);
}

int TPerson::GetRgEvenByID(long id) {
  LectureComplementaireEvenement();
  return Listes.Evens->Find(id) + 1;
}

int TPerson::GetRgChpsSimpleByID(long id) {
  LectureComplementaireChpsSimple();
  return Listes.Chps->Find(id) + 1;
}

int TPerson::CountEvents(const std::string& libelle) {
  LectureComplementaireEvenement();
  return static_cast<int>(std::count_if(Listes.Evens->begin(), Listes.Evens->end(),
                                        [&](const TEvenementTV& e) { return MemeLibelle(e.Enreg.Libelle, libelle); }));
}

bool TPerson::GetEvent(TEvenement& e, unsigned n, const std::string& libelle) {
  LectureComplementaireEvenement();
  unsigned vus = 0;
  for (const TEvenementTV& elt : *Listes.Evens) {
    if (!MemeLibelle(elt.Enreg.Libelle, libelle)) continue;
    if (vus++ == n) {
      e.Enreg = elt.Enreg;
      return true;
    }
  }
  return false;
}

bool TPerson::IsChpsExiste(const std::string& libelle) {
  return GetRgEven(libelle) > 0 || GetRgChpsSimple(libelle) > 0;
}

// ===== Place d'un événement =====

int TPerson::PositionEven(const std::string& libelle) {
  const TVectorTV<TEvenementTV>& evens = *Listes.Evens;
  // Après le dernier du même libellé.
  for (int i = evens.GetNbElt() - 1; i >= 0; --i)
    if (MemeLibelle(evens.Lit(i)->Enreg.Libelle, libelle)) return i + 1;
  // Sinon après le dernier du libellé le plus proche qui le précède dans l'ordre habituel.
  const TDefChpsCs* cat = CatalogueDe(*this);
  const int rang = RangHabituel(cat, libelle);
  for (int r = rang - 1; r >= 0; --r) {
    const TChpCs* precedent = cat->RetChpCsRgEven(r, false);
    if (!precedent) continue;
    for (int i = evens.GetNbElt() - 1; i >= 0; --i)
      if (MemeLibelle(evens.Lit(i)->Enreg.Libelle, precedent->LibelleInterne)) return i + 1;
  }
  return 0;
}

// ===== Modifications =====

bool TPerson::AjoutEven(TEvenement* e, bool nouveau, bool surConjoint, bool enregistrer) {
  if (!e) return false;
  if (!CanAddEvent()) {
    Dialogue().Information(kMessageLimiteEvenements, kTitreLimite);
    return false;
  }
  LectureComplementaireEvenement();
  // Les liens ne sont connus qu'une fois la liste chargée : la limite se juge aussi sur elle.
  if (nouveau && (Listes.Evens->GetNbElt() >= NbLiens || !CanAddEvent())) {
    Dialogue().Information(kMessageLimiteEvenements, kTitreLimite);
    return false;
  }
  TModuleBDD* bdd = BaseOuverte();
  if (nouveau) {
    if (e->Enreg.No <= 0) {
      TFicEvens* fic = Gest() ? Gest()->FicEvens() : nullptr;
      e->Enreg.No = fic ? fic->ReturnNewNum() : bdd ? bdd->ReturnNewNumEven() : 0;
    }
    if (e->Enreg.No > 0) AjouteNoTableLong(Enreg.LiensEvenement, e->Enreg.No);
    if (enregistrer && bdd) bdd->EnregistrementEven(e);
  }
  TEvenementTV elt;
  elt.Enreg = e->Enreg;
  elt.RgUnion = RetourneRgConj(e->Enreg.NoConjoint(Numero));
  Listes.Evens->Insere(PositionEven(elt.Enreg.Libelle), elt);
  if (nouveau) {
    if (enregistrer) Enregistrement(-3, nullptr, false, false, true, true);
    const long conjoint = e->Enreg.NoConjoint(Numero);
    if (conjoint > 0 && surConjoint && Fichier && conjoint <= Fichier->NbPersEffective()) {
      TPerson conj(Fichier, conjoint, true);
      TEvenementTV eltConj;
      eltConj.Enreg = e->Enreg;
      eltConj.RgUnion = conj.RetourneRgConj(Numero);
      conj.InsertEvenTV(eltConj);
      AjouteNoTableLong(conj.Enreg.LiensEvenement, e->Enreg.No);
      conj.Enregistrement(-3, nullptr, false, false, true, true);
    }
  }
  return true;
}

long TPerson::AjoutEvenVierge(const std::string& libelle, long conjoint, TPerson* conj) {
  TEvenement e(BaseOuverte());
  e.Enreg.SetLibelle(libelle);
  e.Enreg.NoPersA = Numero;
  e.Enreg.NoPersB = conjoint;
  if (!AjoutEven(&e, true, conj == nullptr, true)) return 0;
  if (conj && e.Enreg.No > 0) conj->AjoutEven(&e, false, false, true);
  return e.Enreg.No;
}

namespace {

// Les trois changements par rang, les mêmes pour les deux listes (rang à partir de 1).
template <typename TV, typename TEnregT>
bool MajElt(const TPerson& p, TV& liste, int rg, const TEnregT* rec) {
  auto* elt = liste.Lit(rg - 1);
  if (!elt || !rec) return false;
  elt->Enreg = *rec;
  elt->RgUnion = p.RetourneRgConj(rec->NoConjoint(p.No()));
  return true;
}

template <typename TV>
bool SupprElt(TV& liste, int32_t* liens, int rg) {
  const auto* elt = liste.Lit(rg - 1);
  if (!elt) return false;
  EffaceNoTableLong(liens, elt->Enreg.No);
  TasseTableLong(liens);
  liste.Supprime(rg - 1);
  return true;
}

template <typename TV, typename TElt>
bool ChangeElt(TV& liste, int rg, const TElt& e) {
  if (!liste.Lit(rg - 1)) return false;
  liste.Change(rg - 1, e);
  return true;
}

}  // namespace

bool TPerson::MajEvenNo(int rg, const TEvenement::TEnreg* e) {
  LectureComplementaireEvenement();
  return MajElt(*this, *Listes.Evens, rg, e);
}

bool TPerson::SupprEvenNo(int rg, bool enregistrer) {
  LectureComplementaireEvenement();
  if (!SupprElt(*Listes.Evens, Enreg.LiensEvenement, rg)) return false;
  if (enregistrer) Enregistrement(-3, nullptr, false, false, true, true);
  return true;
}

bool TPerson::ChangeEvenTV(int rg, const TEvenementTV& e) {
  LectureComplementaireEvenement();
  return ChangeElt(*Listes.Evens, rg, e);
}

void TPerson::InsertEvenTV(const TEvenementTV& e) {
  LectureComplementaireEvenement();
  if (Listes.Evens->Find(e.Enreg.No) >= 0) return;
  Listes.Evens->Insere(PositionEven(e.Enreg.Libelle), e);
}

void TPerson::SupprimeEvenement(long no, bool surConjoint) {
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || no <= 0 || !gest->PeutEcrire()) return;
  TEvenement ev(bdd);
  ev.Enreg.No = no;
  if (!bdd->LectureEven(&ev)) return;
  ev.ChargerTableauxBDD();
  const long conjoint = ev.Enreg.NoConjoint(Numero);
  if (conjoint > 0 && surConjoint && Fichier && conjoint <= Fichier->NbPersEffective()) {
    TPerson conj(Fichier, conjoint, true);
    const int rg = conj.GetRgEvenByID(no);
    if (rg > 0) conj.SupprEvenNo(rg, false);
    EffaceNoTableLong(conj.Enreg.LiensEvenement, no);
    TasseTableLong(conj.Enreg.LiensEvenement);
    conj.Enregistrement(-3, nullptr, false, false, true, true);
    ev.Enreg.NoPersA = ev.Enreg.NoPersB = 0;
  }
  for (const TPersAssociee& pa : ev.Enreg.PersAssociees) {
    if (pa.Lien.No <= 0 || !Fichier || pa.Lien.No > Fichier->NbPersEffective()) continue;
    TPerson citee(Fichier, pa.Lien.No);
    (void)citee.LienCitation(0);
    if (citee.Enreg.SupprLienCitation(no)) citee.Enregistrement(-3, nullptr, false, false, true, true);
  }
  for (int32_t id : ev.Enreg.Sources) {
    if (id <= 0) continue;
    TSource s(bdd, id);
    if (!bdd->LectureSource(&s)) continue;
    s.NoEven = 0;
    bdd->EnregistrementSource(&s);
  }
  for (int32_t id : ev.Enreg.Illustrations) {
    if (id <= 0) continue;
    TIllustration ill(bdd, id);
    if (!bdd->LectureIllustration(&ill)) continue;
    ill.NoEven = 0;
    bdd->EnregistrementIllustration(&ill);
  }
  bdd->EnregistrementEven(&ev);
}

bool TPerson::AjoutChpsSimple(const TChpsSimple::TEnreg* rec, long conjoint) {
  (void)conjoint;
  if (!rec) return false;
  LectureComplementaireChpsSimple();
  TVectorTV<TChpsSimpleTV>& chps = *Listes.Chps;
  if (chps.GetNbElt() >= NbLiens) return false;
  if (MemeLibelle(rec->Libelle, "DCF") && GetRgChpsSimple("DCF") > 0) return false;
  int pos = chps.GetNbElt();
  for (int i = chps.GetNbElt() - 1; i >= 0; --i)
    if (MemeLibelle(chps.Lit(i)->Enreg.Libelle, rec->Libelle)) {
      pos = i + 1;
      break;
    }
  TChpsSimpleTV elt;
  elt.Enreg = *rec;
  elt.RgUnion = RetourneRgConj(rec->NoConjoint(Numero));
  chps.Insere(pos, elt);
  if (rec->No > 0) AjouteNoTableLong(Enreg.LiensChpsSimple, rec->No);
  return true;
}

bool TPerson::AjoutChpsSimpleVierge(const std::string& libelle, long conjoint) {
  TChpsSimple::TEnreg rec;
  rec.SetLibelle(libelle);
  rec.NoPersA = Numero;
  rec.NoPersB = conjoint;
  return AjoutChpsSimple(&rec, conjoint);
}

long TPerson::AjoutChpsSimpleViergeImmediatDisque(const std::string& libelle, long conjoint, TPerson* conj) {
  TChpsSimple::TEnreg rec;
  rec.SetLibelle(libelle);
  rec.NoPersA = Numero;
  rec.NoPersB = conjoint;
  return AjoutChpsSimpleImmediatDisque(rec, conj, true);
}

long TPerson::AjoutChpsSimpleImmediatDisque(TChpsSimple::TEnreg& rec, TPerson* conj, bool ecrire) {
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd) return 0;
  LectureComplementaireChpsSimple();
  if (Listes.Chps->GetNbElt() >= NbLiens) return 0;
  if (rec.No <= 0) {
    TFicChpsSimple* fic = Gest() ? Gest()->FicChpsSimple() : nullptr;
    rec.No = fic ? fic->ReturnNewNum() : bdd->ReturnNewNumChpsSimple();
  }
  if (ecrire) {
    TChpsSimple chp(bdd);
    chp.Enreg = rec;
    bdd->EnregistrementChpsSimple(&chp);
    rec.No = chp.Enreg.No;
  }
  AjoutChpsSimple(&rec, rec.NoConjoint(Numero));
  const long conjoint = rec.NoConjoint(Numero);
  if (conjoint > 0 && Fichier && conjoint <= Fichier->NbPersEffective()) {
    if (conj) {
      conj->AjoutChpsSimple(&rec, Numero);
    } else {
      TPerson autre(Fichier, conjoint, true);
      autre.AjoutChpsSimple(&rec, Numero);
      if (ecrire) autre.Enregistrement(-3, nullptr, false, false, true, true);
    }
  }
  if (ecrire) Enregistrement(-3, nullptr, false, false, true, true);
  return rec.No;
}

bool TPerson::MajChpsSimpleNo(int rg, const TChpsSimple::TEnreg* c) {
  LectureComplementaireChpsSimple();
  return MajElt(*this, *Listes.Chps, rg, c);
}

bool TPerson::SupprChpsSimpleNo(int rg, bool enregistrer) {
  LectureComplementaireChpsSimple();
  if (!SupprElt(*Listes.Chps, Enreg.LiensChpsSimple, rg)) return false;
  if (enregistrer) Enregistrement(-3, nullptr, false, false, true, true);
  return true;
}

bool TPerson::ChangeChpsSimpleTV(int rg, const TChpsSimpleTV& c) {
  LectureComplementaireChpsSimple();
  return ChangeElt(*Listes.Chps, rg, c);
}

void TPerson::SupprChampsMatchLibelle(const std::string& libelle) {
  for (int rg = GetNbChpsSimple(); rg >= 1; --rg)
    if (MemeLibelle(Listes.Chps->Lit(rg - 1)->Enreg.Libelle, libelle)) SupprChpsSimpleNo(rg, false);
  for (int rg = GetNbInfoEven(); rg >= 1; --rg)
    if (MemeLibelle(Listes.Evens->Lit(rg - 1)->Enreg.Libelle, libelle)) SupprEvenNo(rg, false);
}

namespace {

// Remet un élément ôté : lien et élément à `pos` (au bout au-delà), sur la personne et,
// si un conjoint existe, sur lui au rang que ce conjoint donne.
template <typename TV, typename TEnregT>
void Restitue(TPerson& p, TV& liste, int32_t* liens, const TEnregT& rec, int pos) {
  using TElt = std::remove_reference_t<decltype(*liste.Lit(0))>;
  if (liste.Find(rec.No) >= 0) return;
  TElt elt;
  elt.Enreg = rec;
  // Ôté, l'enregistrement a été détaché de la personne (numéro remis à 0) : il la nomme de nouveau.
  if (elt.Enreg.NoPersA != p.No() && elt.Enreg.NoPersB != p.No()) {
    if (elt.Enreg.NoPersA == 0)
      elt.Enreg.NoPersA = p.No();
    else
      elt.Enreg.NoPersB = p.No();
  }
  elt.RgUnion = p.RetourneRgConj(rec.NoConjoint(p.No()));
  liste.Insere(pos < 0 || pos > liste.GetNbElt() ? liste.GetNbElt() : pos, elt);
  AjouteNoTableLong(liens, rec.No);
}

}  // namespace

void TPerson::RestituerEvenNoEnreg(long no, long conjoint, int pos) {
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || no <= 0) return;
  TEvenement ev(bdd);
  ev.Enreg.No = no;
  if (!bdd->LectureEven(&ev)) return;
  LectureComplementaireEvenement();
  Restitue(*this, *Listes.Evens, Enreg.LiensEvenement, ev.Enreg, pos);
  const long autre = conjoint != 0 ? conjoint : ev.Enreg.NoConjoint(Numero);
  if (autre > 0 && Fichier && autre <= Fichier->NbPersEffective()) {
    TPerson conj(Fichier, autre, true);
    Restitue(conj, *conj.Evens(), conj.Enreg.LiensEvenement, ev.Enreg, RetourneRgConj(autre) - 1);
    conj.Enregistrement(-3, nullptr, false, false, true, true);
  }
}

void TPerson::RestituerChpsSimpleNoEnreg(long no, long conjoint, int pos) {
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || no <= 0) return;
  TChpsSimple chp(bdd);
  chp.Enreg.No = no;
  if (!bdd->LectureChpsSimple(&chp)) return;
  LectureComplementaireChpsSimple();
  Restitue(*this, *Listes.Chps, Enreg.LiensChpsSimple, chp.Enreg, pos);
  const long autre = conjoint != 0 ? conjoint : chp.Enreg.NoConjoint(Numero);
  if (autre > 0 && Fichier && autre <= Fichier->NbPersEffective()) {
    TPerson conj(Fichier, autre, true);
    Restitue(conj, *conj.Chps(), conj.Enreg.LiensChpsSimple, chp.Enreg, RetourneRgConj(autre) - 1);
    conj.Enregistrement(-3, nullptr, false, false, true, true);
  }
}

// ===== Ordre =====

void TPerson::ClassementChronoEven(bool, bool) {
  if (!Listes.Evens) return;
  TVectorTV<TEvenementTV>& evens = *Listes.Evens;
  const TDefChpsCs* cat = CatalogueDe(*this);
  std::vector<int> places;
  std::vector<TEvenementTV> pris;
  for (int i = 0; i < evens.GetNbElt(); ++i) {
    const TEvenementTV* e = evens.Lit(i);
    if (e->Enreg.No == 0 || e->Enreg.Date.DateVide()) continue;
    places.push_back(i);
    pris.push_back(*e);
  }
  auto avant = [cat](const TEvenementTV& a, const TEvenementTV& b) {
    const int c = TDateRQ::CompareDate(a.Enreg.Date, b.Enreg.Date, 0);
    if (c != 0) return c < 0;
    if (!cat) return false;
    return RangHabituel(cat, a.Enreg.Libelle) < RangHabituel(cat, b.Enreg.Libelle);
  };
  // Tri par insertion : l'ordre des dates floues n'est pas toujours transitif, et ce tri
  // reste dans ses bornes quoi que dise la comparaison (au plus 100 événements).
  for (size_t i = 1; i < pris.size(); ++i)
    for (size_t j = i; j > 0 && avant(pris[j], pris[j - 1]); --j) std::swap(pris[j], pris[j - 1]);
  for (size_t k = 0; k < places.size(); ++k) evens.Change(places[k], pris[k]);
}

void TPerson::ClassementTypeEven() {
  if (!Listes.Evens) return;
  const TDefChpsCs* cat = CatalogueDe(*this);
  if (!cat) return;
  std::vector<TEvenementTV> restants(Listes.Evens->begin(), Listes.Evens->end());
  std::vector<TEvenementTV> ranges;
  for (int r = 0;; ++r) {
    const TChpCs* chp = cat->RetChpCsRgEven(r, false);
    if (!chp) break;
    if (!chp->IsEvenement()) continue;
    auto fin = std::stable_partition(restants.begin(), restants.end(), [&](const TEvenementTV& e) {
      return MemeLibelle(e.Enreg.Libelle, chp->LibelleInterne);
    });
    ranges.insert(ranges.end(), restants.begin(), fin);
    restants.erase(restants.begin(), fin);
  }
  ranges.insert(ranges.end(), restants.begin(), restants.end());
  Listes.Evens->Raz();
  for (const TEvenementTV& e : ranges) Listes.Evens->Ajoute(e);
}

void TPerson::MajEvenRgUnion() {
  if (!Listes.Evens) {
    LectureComplementaireEvenement();
    return;
  }
  bool change = false;
  for (TEvenementTV& e : *Listes.Evens) {
    const int rg = RetourneRgConj(e.Enreg.NoConjoint(Numero));
    if (rg != e.RgUnion) {
      e.RgUnion = rg;
      change = true;
    }
  }
  if (change) Listes.Evens->Classement();
}

void TPerson::MajChpsSimpleRgUnion() {
  if (!Listes.Chps) {
    LectureComplementaireChpsSimple();
    return;
  }
  for (TChpsSimpleTV& c : *Listes.Chps) c.RgUnion = RetourneRgConj(c.Enreg.NoConjoint(Numero));
}

void TPerson::RecompacterEvenement() { rqbase::RecompacterEvenement(*this, Listes); }

void TPerson::TermineRecompacter() { rqbase::TermineRecompacter(*this, Listes); }

// ===== Recherche avec équivalents =====

int TPerson::InfoPremEven(const std::string& libelle, TEvenement::TEnreg* e, long conjoint, TChpCs** chp) {
  const int rg = GetRgEven(libelle, conjoint);
  if (rg > 0) {
    if (e) *e = Listes.Evens->Lit(rg - 1)->Enreg;
    if (chp) {
      const TDefChpsCs* cat = CatalogueDe(*this);
      *chp = cat ? cat->RechercheChampsInternePtr(libelle) : nullptr;
    }
  }
  return rg;
}

namespace {
// Le premier des équivalents qui donne un événement daté ; `rg` et `e` inchangés sinon.
int ChercheEquivalent(TPerson& p, const std::vector<std::string>& equivalents, TEvenement::TEnreg* e, long conjoint,
                      TChpCs** chp, int rg) {
  for (const std::string& libelle : equivalents) {
    TEvenement::TEnreg trouve;
    TChpCs* c = nullptr;
    const int r = p.InfoPremEven(libelle, &trouve, conjoint, &c);
    if (r > 0 && !trouve.Date.DateVide()) {
      if (e) *e = trouve;
      if (chp) *chp = c;
      return r;
    }
  }
  return rg;
}
}  // namespace

int TPerson::RetEvenEquiv(const std::string& libelle, TEvenement::TEnreg* e, long conjoint, TChpCs** chp,
                          bool exact) {
  TEvenement::TEnreg trouve;
  const int rg = InfoPremEven(libelle, &trouve, conjoint, chp);
  if (rg > 0 && e) *e = trouve;
  if (exact || (rg > 0 && !trouve.Date.DateVide())) return rg;
  const TDefChpsCs* cat = CatalogueDe(*this);
  const TChpCs* c = cat ? cat->RechercheChampsInternePtr(libelle) : nullptr;
  if (!c) return rg;
  return ChercheEquivalent(*this, c->GetEquivalences(cat, false), e, conjoint, chp, rg);
}

int TPerson::RetEvenEquiv(const TEquivChpCs& equiv, TEvenement::TEnreg* e, long conjoint, TChpCs** chp, bool exact) {
  TEvenement::TEnreg trouve;
  const int rg = InfoPremEven(equiv.LibelleChamp1, &trouve, conjoint, chp);
  if (rg > 0 && e) *e = trouve;
  if (exact || (rg > 0 && !trouve.Date.DateVide()) || equiv.LibelleChamp2.empty()) return rg;
  return ChercheEquivalent(*this, {equiv.LibelleChamp2}, e, conjoint, chp, rg);
}

namespace {
TEquivChpCs EquivDe(const TDefChpsCs* cat, TEquivChpCs TDefChpsCs::* membre, const char* l1, const char* l2) {
  return cat ? cat->*membre : TEquivChpCs(l1, l2);
}
}  // namespace

int TPerson::RetEvenNaissance(TEvenement::TEnreg* e, TChpCs** chp, bool exact) {
  return RetEvenEquiv(EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivNaissance, "NAISSANCE", "BAPTEME"), e, 0, chp,
                      exact);
}

int TPerson::RetEvenBapteme(TEvenement::TEnreg* e, TChpCs** chp, bool exact) {
  const TEquivChpCs eq = EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivNaissance, "NAISSANCE", "BAPTEME");
  return RetEvenEquiv(eq.LibelleChamp2, e, 0, chp, exact);
}

int TPerson::RetEvenDeces(TEvenement::TEnreg* e, TChpCs** chp, bool exact) {
  return RetEvenEquiv(EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivDeces, "DECES", "INHUMATION"), e, 0, chp, exact);
}

int TPerson::RetEvenInhumation(TEvenement::TEnreg* e, TChpCs** chp, bool exact) {
  const TEquivChpCs eq = EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivDeces, "DECES", "INHUMATION");
  return RetEvenEquiv(eq.LibelleChamp2, e, 0, chp, exact);
}

int TPerson::RetEvenUnion(TEvenement::TEnreg* e, long conjoint, TChpCs** chp, bool exact) {
  return RetEvenEquiv(EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivUnion, "UNION", "CTR-MARIAGE"), e, conjoint, chp,
                      exact);
}

bool TPerson::GetEvenOuEquivalent(const TEquivChpCs& equiv, TEvenement* e, bool exact) {
  if (!e) return false;
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || Numero <= 0) return false;
  if (bdd->LectureEven(equiv.LibelleChamp1, e, Numero)) return true;
  return !exact && !equiv.LibelleChamp2.empty() && bdd->LectureEven(equiv.LibelleChamp2, e, Numero);
}

bool TPerson::GetEvenNaissance(TEvenement* e, bool exact) {
  if (!e) return false;
  const TEquivChpCs eq = EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivNaissance, "NAISSANCE", "BAPTEME");
  if (Listes.Evens) return RetEvenEquiv(eq, &e->Enreg, 0, nullptr, exact) > 0;
  return GetEvenOuEquivalent(eq, e, exact);
}

bool TPerson::GetEvenDeces(TEvenement* e) {
  if (!e) return false;
  const TEquivChpCs eq = EquivDe(CatalogueDe(*this), &TDefChpsCs::EquivDeces, "DECES", "INHUMATION");
  if (Listes.Evens) return RetEvenEquiv(eq, &e->Enreg) > 0;
  return GetEvenOuEquivalent(eq, e, false);
}

bool TPerson::GetEvenUnionOuEquivalent(TEvenement* e, long conjoint, bool exact) {
  if (!e) return false;
  return RetEvenUnion(&e->Enreg, conjoint, nullptr, exact) > 0;
}

// ===== Professions =====

namespace {
// Les professions de la personne dans l'ordre de leur liste : (événement ?, rang à partir de 1).
std::vector<std::pair<bool, int>> Professions(TPerson& p) {
  std::vector<std::pair<bool, int>> r;
  const int nbE = p.GetNbInfoEven();
  for (int i = 0; i < nbE; ++i)
    if (EstProfession(p.Evens()->Lit(i)->Enreg.Libelle)) r.emplace_back(true, i + 1);
  const int nbC = p.GetNbChpsSimple();
  for (int i = 0; i < nbC; ++i)
    if (EstProfession(p.Chps()->Lit(i)->Enreg.Libelle)) r.emplace_back(false, i + 1);
  return r;
}
}  // namespace

std::string TPerson::GetToutesProfession() {
  const char sep = SeparateurProf();
  std::string r;
  bool premier = true;
  for (const auto& [even, rg] : Professions(*this)) {
    const std::string& v = even ? Listes.Evens->Lit(rg - 1)->Enreg.Donnee : Listes.Chps->Lit(rg - 1)->Enreg.Donnee;
    if (!premier) r += sep;
    r += v;
    premier = false;
  }
  return r;
}

void TPerson::AjouteProfession(TChpCs* chp, const std::string& texte) {
  std::string valeur;
  if (chp)
    chp->SetMorceauNo(0, texte, valeur, 2000);
  else
    valeur = texte;
  valeur = Trim(valeur);
  if (valeur.empty()) return;
  if (chp && chp->IsEvenement()) {
    TEvenement e(BaseOuverte());
    e.Enreg.SetLibelle("PROFESSION");
    e.Enreg.SetDonnee(valeur);
    e.Enreg.NoPersA = Numero;
    AjoutEven(&e, true, false, false);
  } else {
    TChpsSimple::TEnreg rec;
    rec.SetLibelle("PROFESSION");
    rec.SetDonnee(valeur);
    rec.NoPersA = Numero;
    AjoutChpsSimple(&rec, 0);
  }
}

void TPerson::SuppressionProfession(int rg) {
  const auto profs = Professions(*this);
  if (rg < 1 || rg > static_cast<int>(profs.size())) return;
  const auto [even, r] = profs[static_cast<size_t>(rg - 1)];
  if (even)
    SupprEvenNo(r, false);
  else
    SupprChpsSimpleNo(r, false);
}

void TPerson::AjusteChampsProf(const std::string& texte) {
  const char sep = SeparateurProf();
  std::vector<std::string> items;
  for (std::string_view s : DecoupeElts(texte, sep)) items.emplace_back(s);
  if (items.empty()) items.emplace_back();
  auto profs = Professions(*this);
  const size_t communs = std::min(items.size(), profs.size());
  for (size_t n = 0; n < communs; ++n) {
    const auto [even, rg] = profs[n];
    if (even)
      Listes.Evens->Lit(rg - 1)->Enreg.SetDonnee(items[n]);
    else
      Listes.Chps->Lit(rg - 1)->Enreg.SetDonnee(items[n]);
  }
  const TDefChpsCs* cat = CatalogueDe(*this);
  TChpCs* chp = cat ? cat->RechercheChampsInternePtr("PROFESSION") : nullptr;
  for (size_t n = communs; n < items.size(); ++n) AjouteProfession(chp, items[n]);
  // Les professions en trop, de la dernière à la première pour que les rangs tiennent.
  for (size_t n = profs.size(); n > communs; --n) SuppressionProfession(static_cast<int>(n));
}

// ===== Citations =====

bool TPerson::IsInPersAssociee(const TPersAssociee* tab, long no) {
  if (!tab || no == 0) return false;
  for (int i = 0; i < kNbPersAssocieesEven; ++i)
    if (tab[i].Lien.No == no) return true;
  return false;
}

namespace {
void MajCitation(TFicPersons* fic, long noPers, long noEven, bool ajout) {
  if (!fic || noPers <= 0 || noPers > fic->NbPersEffective()) return;
  TPerson p(fic, noPers);
  (void)p.LienCitation(0);  // la table vient de la base avant d'être changée
  const bool change = ajout ? p.Enreg.AjoutLienCitation(noEven) : p.Enreg.SupprLienCitation(noEven);
  if (change) p.Enregistrement(-3, nullptr, false, false, true, true);
}
}  // namespace

void TPerson::MajLiensPersCitees(long noEven, const TPersAssociee* anciens, const TPersAssociee* nouveaux) {
  for (int i = 0; anciens && i < kNbPersAssocieesEven; ++i) {
    const long no = anciens[i].Lien.No;
    if (no != 0 && !IsInPersAssociee(nouveaux, no)) MajCitation(Fichier, no, noEven, false);
  }
  for (int i = 0; nouveaux && i < kNbPersAssocieesEven; ++i) {
    const long no = nouveaux[i].Lien.No;
    if (no != 0 && !IsInPersAssociee(anciens, no)) MajCitation(Fichier, no, noEven, true);
  }
}

void TPerson::AjoutLiensPersCitees(long noEven, const TPersAssociee* tab) {
  for (int i = 0; tab && i < kNbPersAssocieesEven; ++i)
    if (tab[i].Lien.No != 0) MajCitation(Fichier, tab[i].Lien.No, noEven, true);
}

// ===== Portraits =====

namespace {
std::string CheminRelatifImages(const TContexteDossier* gest, const std::string& chemin) {
  if (!gest) return chemin;
  const std::filesystem::path base = std::filesystem::path(gest->DossierFichiers()) / "Images";
  const std::filesystem::path p(chemin);
  if (!p.is_absolute()) return chemin;
  std::error_code ec;
  const std::filesystem::path rel = std::filesystem::relative(p, base, ec);
  return ec || rel.empty() ? chemin : rel.generic_string();
}
}  // namespace

bool TPerson::AddImage(const std::string& chemin) {
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || !gest->PeutEcrire() || Numero < 1) return false;
  if (!CanAddEvent()) {
    Dialogue().Information(kMessageLimiteEvenements, kTitreLimite);
    return false;
  }
  TIllustration ill(bdd);
  ill.SetChemin(chemin);
  if (!bdd->EnregistrementIllustration(&ill)) return false;
  TEvenement e(bdd);
  e.Enreg.SetLibelle("IMAGE");
  e.Enreg.NoPersA = Numero;
  e.Enreg.IllustrationsChargees = true;
  e.Enreg.AjoutIllustration(ill.No);
  bdd->EnregistrementEven(&e);
  return AjoutEven(&e, true, true, true);
}

bool TPerson::PortraitExists(const std::string& chemin) {
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd) return false;
  const std::string rel = CheminRelatifImages(gest, chemin);
  const int nb = GetNbInfoEven();
  for (int i = 0; i < nb; ++i) {
    TEvenementTV* e = Listes.Evens->Lit(i);
    if (!MemeLibelle(e->Enreg.Libelle, "IMAGE")) continue;
    if (!e->Enreg.IllustrationsChargees) bdd->ChargerIllustrationOfEven(&e->Enreg);
    for (int32_t id : e->Enreg.Illustrations) {
      if (id <= 0) continue;
      TIllustration ill(bdd, id);
      if (bdd->LectureIllustration(&ill) && (ill.Enreg.Chemin == rel || ill.Enreg.Chemin == chemin)) return true;
    }
  }
  return false;
}

int TPerson::NoPortrait(const std::string& chemin) {
  (void)chemin;
  return GetRgEven("IMAGE");
}

bool TPerson::AddPortrait(const std::string& chemin, bool siAbsent) {
  if (Numero < 1) return false;
  if (siAbsent && PortraitExists(chemin)) return false;
  const int rg = NoPortrait(chemin);
  if (rg <= 0) return AddImage(chemin);
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd || !gest->PeutEcrire()) return false;
  TEvenementTV* elt = Listes.Evens->Lit(rg - 1);
  if (!elt->Enreg.IllustrationsChargees) bdd->ChargerIllustrationOfEven(&elt->Enreg);
  TIllustration ill(bdd);
  ill.SetChemin(chemin);
  ill.NoEven = elt->Enreg.No;
  if (!bdd->EnregistrementIllustration(&ill)) return false;
  if (elt->Enreg.AjoutIllustration(ill.No) < 0) return false;
  TEvenement e(bdd);
  e.Enreg = elt->Enreg;
  bdd->UpdaterIllustrationOfEven(&e);
  return true;
}

std::string TPerson::CheminImagePrioritaire(const std::string& libelle, const TEvenement::TEnreg* rec) {
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd) return "";
  const std::string defaut = AjouteSlashSiNecessaire(DossierDonneesPartagees()) + "defaultTXT.png";
  // Le chemin à montrer pour un fichier présent : lui-même pour une image, l'image fixe sinon.
  auto montre = [&](const std::string& absolu) { return EstExtImage(absolu) ? absolu : defaut; };
  auto cheminDe = [&](long id, std::string& absolu) {
    if (id <= 0) return false;
    TIllustration ill(bdd, id);
    if (!bdd->LectureIllustration(&ill)) return false;
    absolu = ill.GetExpandFilename();
    return FichierExiste(absolu);
  };
  std::string dernier;
  // `premier` : le candidat donné ; une illustration trouvée au balayage n'y finit la recherche
  // que pour lui, pour les autres la dernière trouvée reste.
  auto examine = [&](TEvenement::TEnreg e, bool premier, std::string& resultat) {
    if (!MemeLibelle(e.Libelle, libelle)) return false;
    if (!e.IllustrationsChargees) bdd->ChargerIllustrationOfEven(&e);
    std::string absolu;
    if (cheminDe(e.NoIllustrationParDefaut, absolu)) {
      resultat = montre(absolu);
      return true;
    }
    for (int32_t id : e.Illustrations)
      if (cheminDe(id, absolu)) {
        dernier = montre(absolu);
        if (premier) {
          resultat = dernier;
          return true;
        }
      }
    return false;
  };
  std::string resultat;
  if (rec && examine(*rec, true, resultat)) return resultat;
  const int nb = GetNbInfoEven();
  for (int i = 0; i < nb; ++i)
    if (examine(Listes.Evens->Lit(i)->Enreg, false, resultat)) return resultat;
  return dernier;
}

int TPerson::RangEvenDefaut(const std::string& libelle) {
  int n = 0;
  const int nb = GetNbInfoEven();
  for (int i = 0; i < nb; ++i) {
    const TEvenementTV* e = Listes.Evens->Lit(i);
    if (!MemeLibelle(e->Enreg.Libelle, libelle)) continue;
    ++n;
    if (e->Enreg.NoIllustrationParDefaut > 0) return n;
  }
  return 1;
}

bool TPerson::SetImageAsDefault(int rang, const std::string& fichier, const std::string& libelle) {
  TContexteDossier* gest = Gest();
  TModuleBDD* bdd = BaseOuverte();
  if (!bdd) return false;
  int n = 0;
  const int nb = GetNbInfoEven();
  for (int i = 0; i < nb; ++i) {
    TEvenementTV* e = Listes.Evens->Lit(i);
    if (!MemeLibelle(e->Enreg.Libelle, libelle) || ++n != rang) continue;
    if (!e->Enreg.IllustrationsChargees) bdd->ChargerIllustrationOfEven(&e->Enreg);
    const std::string rel = CheminRelatifImages(gest, fichier);
    for (int32_t id : e->Enreg.Illustrations) {
      if (id <= 0) continue;
      TIllustration ill(bdd, id);
      if (bdd->LectureIllustration(&ill) && (ill.Enreg.Chemin == rel || ill.Enreg.Chemin == fichier)) {
        bdd->SetIllustrationDefault(Numero, e->Enreg.No, id);
        e->Enreg.NoIllustrationParDefaut = id;
        return true;
      }
    }
    return false;
  }
  return false;
}

}  // namespace rqbase

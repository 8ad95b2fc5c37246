// Les passes de l'estimation des dates de vie (voir estimation_personne.h), dans leur ordre :
// naissance et décès notés, unions, faits de la personne, citations, première union,
// incohérences de l'utilisateur, proches (enfants, parents, conjoints, frères et soeurs),
// décès et naissance l'un par l'autre, incohérences, années exactes, procréation.
//
// Aussi TPerson::EstPresumeVivante et TPerson::IsDeadToday, qui s'en servent.
#include "rqbase/person/estimation_personne.h"

#include <algorithm>
#include <cmath>
#include <string>
#include <vector>

#include "rqbase/fields/chp_cs.h"
#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/date_heure.h"
#include "rqbase/util/erreur.h"

namespace rqbase {

namespace {

constexpr const char* kSansReglages =
    "Estimation des dates de vie impossible : aucun réglage de saisie n'est installé.";

// Les passes des proches ne vont pas plus loin qu'une génération : un proche est toujours
// estimé `simple`, et cette borne le garantit encore si un appelant en demandait plus.
constexpr int kProfondeurMax = 1;

// La date d'un fait en intervalle et en année exacte (1000000.0 si elle n'est pas exacte).
// Une date vide, sans année, ou une fourchette écrite à l'envers ne dit rien.
void IntervalDeDate(const TDateRQ& date, float& annee, TInterval<float>& i) {
  annee = kIncalculableF;
  i = IntervalOuvert();
  if (date.DateVide()) return;
  date.CalculAnneeFloatOuFourchette(annee, i);
  const bool fini = (i.InfOuvert || std::isfinite(i.Inf)) && (i.SupOuvert || std::isfinite(i.Sup));
  if (EstRenverse(i) || !fini || !std::isfinite(annee)) {
    annee = kIncalculableF;
    i = IntervalOuvert();
  }
}

TInterval<float> DemiOuvertBas(float sup) {
  TInterval<float> i;
  i.SetSup(sup);
  return i;
}

TInterval<float> DemiOuvertHaut(float inf) {
  TInterval<float> i;
  i.SetInf(inf);
  return i;
}

// Une cible resserrée par `i` : la double intersection écarte un `i` disjoint (la première
// donne alors un intervalle ouvert, qui ne change rien à la cible).
void Resserre(TInterval<float>& cible, const TInterval<float>& i) {
  cible = Intersection(cible, Intersection(i, cible));
}

// L'enveloppe des faits : la plus petite borne basse, la plus grande borne haute.
void Joint(TInterval<float>& enveloppe, const TInterval<float>& fait) {
  if (EstOuvert(enveloppe)) {
    enveloppe = fait;
    return;
  }
  enveloppe.SetInf(std::min(enveloppe.Inf, fait.Inf));
  enveloppe.SetSup(std::max(enveloppe.Sup, fait.Sup));
}

// Le milieu d'un intervalle, un bout ouvert valant l'autre ; 1000000.0 tout ouvert.
float Milieu(const TInterval<float>& i) {
  if (i.InfOuvert && i.SupOuvert) return kIncalculableF;
  if (i.InfOuvert) return i.Sup;
  if (i.SupOuvert) return i.Inf;
  return (i.Inf + i.Sup) * 0.5f;
}

// Les libellés de naissance et de décès (et leurs équivalents) et le drapeau « après le
// décès » d'un libellé, par le catalogue du dossier ; sans catalogue, ceux d'un dossier neuf.
struct TLibellesVie {
  explicit TLibellesVie(const TPerson& p) {
    TVoisinsPersonne* v = p.Voisins();
    Catalogue = v ? v->GetDefChpsCs() : nullptr;
    if (Catalogue) {
      Vie = {Catalogue->EquivNaissance.LibelleChamp1, Catalogue->EquivNaissance.LibelleChamp2,
             Catalogue->EquivDeces.LibelleChamp1, Catalogue->EquivDeces.LibelleChamp2};
    } else {
      Vie = {"NAISSANCE", "BAPTEME", "DECES", "INHUMATION"};
    }
  }
  bool NaissanceOuDeces(const std::string& libelle) const {
    return !libelle.empty() && std::find(Vie.begin(), Vie.end(), libelle) != Vie.end();
  }
  bool ApresDeces(const std::string& libelle) const {
    if (Catalogue) {
      const TChpCs* c = Catalogue->RechercheChampsInternePtr(libelle);
      if (c) return c->ApresDeces;
    }
    return libelle == "INHUMATION" || libelle == "INVENTAIRE_DECES" || libelle == "CREMATION";
  }
  const TDefChpsCs* Catalogue;
  std::vector<std::string> Vie;
};

}  // namespace

TEstimationPersonne::TEstimationPersonne(TEstimationCalculee* cache, const TConsConfigSais* config)
    : Cache(cache), Config(config) {}

void TEstimationPersonne::Raz() {
  IntervalNaissance = IntervalDeces = IntervalProcreation = IntervalUnion = IntervalOuvert();
  IntervalFaits = IntervalFaitsCitations = IntervalOuvert();
  IntervalNaissanceMoyen = IntervalDecesMoyen = IntervalOuvert();
  AnneeNaissance = AnneeDeces = AnneeUnion = kIncalculableF;
  DateNaissance = DateDeces = DateUnion = TDateRQ();
  Numero = 0;
  Sexe = '?';
}

// ===== Entrées =====

void TEstimationPersonne::EstimePersonne(long no, TFicPersons* fic, bool simple, bool utilisateur) {
  if (!Config) throw ERqBase(kSansReglages);
  if (!fic || no <= 0 || no > fic->NbPersEffective()) {
    Raz();
    Numero = no;
    return;
  }
  TPerson p(fic, no, false, 0, true);
  EstimePersonne(no, &p, simple, utilisateur);
}

void TEstimationPersonne::EstimePersonne(long no, TPerson* p, bool simple, bool utilisateur) {
  if (!Config) throw ERqBase(kSansReglages);
  // 1. Rien de connu.
  Raz();
  Numero = no;
  Simple = simple;
  if (no == 0 || !p) return;
  Sexe = p->Enreg.Sexe;

  // 2. Naissance et décès notés.
  EstimeFourchetteNaissanceDeces(*p);

  // 3. Ce que la personne et ses proches disent d'autre.
  if (AnneeNaissance == kIncalculableF || AnneeDeces == kIncalculableF || AnneeUnion == kIncalculableF) {
    EstimeFourchetteNaissanceRapportMariage(*p);
    EstimeEvenementsPersonne(*p);
    EstimeCitationsPersonne(*p);
    EstimeFourchetteUnion(*p);
    EstimeFourchetteUnionRapportEnfants(*p);
    if (utilisateur) TraiteIncoherencesUtilisateurNaissanceMort();
    // Les proches ne bornent que la naissance et le décès : deux années notées les rendent muets.
    const bool vieInconnue = AnneeNaissance == kIncalculableF || AnneeDeces == kIncalculableF;
    if (!simple && Profondeur < kProfondeurMax && vieInconnue) {
      EstimeFourchetteRapportEnfants(*p);
      EstimeFourchetteRapportParents(*p);
      EstimeFouchetteNaissanceRapportConjoints(*p);
      EstimeFourchetteNaissanceRapportFrere(*p);
    }
  }

  // 4. Le décès par la naissance, puis la naissance par le décès ; les bornes moyennes de même.
  EstimeFourchetteDecesRapportNaissance(true);
  EstimeFourchetteNaissanceRapportDeces(true);
  if (AvecMoyen) {
    EstimeFourchetteDecesRapportNaissance(false);
    EstimeFourchetteNaissanceRapportDeces(false);
  }

  // 5. Incohérences.
  TraiteIncoherences();

  // 6. Une année exacte ramène son intervalle à elle seule.
  if (AnneeNaissance != kIncalculableF) IntervalNaissance = IntervalFerme(AnneeNaissance, AnneeNaissance);
  if (AnneeDeces != kIncalculableF) IntervalDeces = IntervalFerme(AnneeDeces, AnneeDeces);
  if (AvecMoyen) {
    // Les bornes moyennes restent dans les bornes sûres.
    Resserre(IntervalNaissanceMoyen, IntervalNaissance);
    Resserre(IntervalDecesMoyen, IntervalDeces);
    if (AnneeNaissance != kIncalculableF) IntervalNaissanceMoyen = IntervalNaissance;
    if (AnneeDeces != kIncalculableF) IntervalDecesMoyen = IntervalDeces;
  }

  // 7. Naissances possibles des enfants.
  CalculIntervalProcreation(*p);

  // 8. Gardée pour la suite de la série.
  if (Cache) Cache->Stocke(*this, !simple);
}

bool TEstimationPersonne::EstimeAnneesNotees(long no, TPerson* p) {
  Raz();
  Numero = no;
  Simple = true;
  if (!Config || no == 0 || !p) return false;
  Sexe = p->Enreg.Sexe;
  EstimeFourchetteNaissanceDeces(*p);
  if (AnneeNaissance == kIncalculableF || AnneeDeces == kIncalculableF) return false;
  // Ce que l'estimation entière rendrait : chaque année exacte ramène son intervalle à elle.
  IntervalNaissance = IntervalFerme(AnneeNaissance, AnneeNaissance);
  IntervalDeces = IntervalFerme(AnneeDeces, AnneeDeces);
  return true;
}

void TEstimationPersonne::RecupAnneeNaissanceDeces(TPerson* p, float& naissance, float& deces) {
  if (p) EstimePersonne(p->No(), p);
  Annees(naissance, deces);
}

void TEstimationPersonne::Annees(float& naissance, float& deces) const {
  naissance = AnneeNaissance != kIncalculableF ? AnneeNaissance : Milieu(IntervalNaissance);
  deces = AnneeDeces != kIncalculableF ? AnneeDeces : Milieu(IntervalDeces);
}

// ===== Cibles =====

void TEstimationPersonne::UpdateIntervalNaissance(const TInterval<float>& i) {
  if (AnneeNaissance == kIncalculableF && !EstOuvert(i)) Resserre(IntervalNaissance, i);
}

void TEstimationPersonne::UpdateIntervalDeces(const TInterval<float>& i) {
  if (AnneeDeces == kIncalculableF && !EstOuvert(i)) Resserre(IntervalDeces, i);
}

void TEstimationPersonne::UpdateIntervalUnion(const TInterval<float>& i) {
  if (AnneeUnion == kIncalculableF && !EstOuvert(i)) Resserre(IntervalUnion, i);
}

void TEstimationPersonne::UpdateIntervalNaissanceMoyen(const TInterval<float>& i) {
  if (AnneeNaissance == kIncalculableF && !EstOuvert(i)) Resserre(IntervalNaissanceMoyen, i);
}

void TEstimationPersonne::UpdateIntervalDecesMoyen(const TInterval<float>& i) {
  if (AnneeDeces == kIncalculableF && !EstOuvert(i)) Resserre(IntervalDecesMoyen, i);
}

// ===== Passes de la personne =====

void TEstimationPersonne::EstimeFourchetteNaissanceDeces(TPerson& p) {
  TEvenement::TEnreg e;
  if (p.RetEvenNaissance(&e) > 0 && !e.Date.DateVide()) {
    DateNaissance = e.Date;
    IntervalDeDate(DateNaissance, AnneeNaissance, IntervalNaissance);
  }
  if (p.RetEvenDeces(&e) > 0 && !e.Date.DateVide()) {
    DateDeces = e.Date;
    IntervalDeDate(DateDeces, AnneeDeces, IntervalDeces);
  }
  if (!IntervalNaissance.SupOuvert) {
    TInterval<float> d = DemiOuvertBas(IntervalNaissance.Sup + float(Config->DureeVie));
    if (!IntervalNaissance.InfOuvert) d.SetInf(IntervalNaissance.Inf);
    UpdateIntervalDeces(d);
  }
  if (AnneeDeces != kIncalculableF)
    UpdateIntervalNaissance(IntervalFerme(AnneeDeces - float(Config->DureeVie), AnneeDeces));
}

void TEstimationPersonne::EstimeFourchetteNaissanceRapportMariage(TPerson& p) {
  if (AnneeNaissance != kIncalculableF) return;
  for (const TLienConj& c : p.Enreg.Conjoints) {
    if (c.No <= 0 || c.No == Numero) continue;
    TEvenement::TEnreg e;
    if (p.RetEvenUnion(&e, c.No) <= 0) continue;
    float annee = kIncalculableF;
    TInterval<float> u;
    IntervalDeDate(e.Date, annee, u);
    if (EstOuvert(u)) continue;
    UpdateIntervalNaissance(CreeIntervalUnion(&p, Config, u, true));
    // Vivant le jour de l'union.
    UpdateIntervalDeces(DemiOuvertHaut(u.SupOuvert ? u.Inf : u.Sup));
  }
}

void TEstimationPersonne::EstimeEvenementsPersonne(TPerson& p) {
  p.LectureComplementaireEvenement();
  const TVectorTV<TEvenementTV>* evens = p.Evens();
  if (!evens) return;
  const TLibellesVie libelles(p);
  IntervalFaits = IntervalOuvert();
  for (const TEvenementTV& elt : *evens) {
    const TEvenement::TEnreg& e = elt.Enreg;
    if (e.Date.DateVide()) continue;
    float annee = kIncalculableF;
    TInterval<float> f;
    IntervalDeDate(e.Date, annee, f);
    if (EstOuvert(f)) continue;
    if (libelles.ApresDeces(e.Libelle)) {
      // Un fait d'après le décès (inhumation, inventaire) : le décès vient avant son milieu.
      const float milieu = f.Milieu();
      if (milieu != kIncalculableF) UpdateIntervalDeces(DemiOuvertBas(milieu));
      continue;
    }
    if (libelles.NaissanceOuDeces(e.Libelle)) continue;
    PrendFait(f, IntervalFaits);
  }
  if (!EstOuvert(IntervalFaits)) InitNaissDecesRapportPremierDernierFait(IntervalFaits, 5);
}

void TEstimationPersonne::EstimeCitationsPersonne(TPerson& p) {
  TModuleBDD* bdd = p.BaseOuverte();
  if (!bdd || p.No() <= 0) return;
  IntervalFaitsCitations = IntervalOuvert();
  for (int i = 0; i < TPerson::NbLiens; ++i) {
    const long noEven = p.LienCitation(i);
    if (noEven <= 0) continue;
    TEvenement ev(bdd);
    ev.Enreg.No = noEven;
    if (!bdd->LectureEven(&ev) || ev.Enreg.NoPersA < 0) continue;  // ligne cachée : personne supprimée
    TDateRQ date = ev.Enreg.Date;
    if (date.DateVide()) {
      // Sans date : le premier fait daté de la personne principale de l'événement.
      const long principal = ev.Enreg.NoPersA;
      if (principal <= 0 || !p.Fic() || principal > p.Fic()->NbPersEffective()) continue;
      TPerson pp(p.Fic(), principal, false, 0, true);
      if (pp.FicheSupprimee()) continue;
      pp.LectureComplementaireEvenement();
      if (!pp.Evens()) continue;
      for (const TEvenementTV& elt : *pp.Evens())
        if (!elt.Enreg.Date.DateVide()) {
          date = elt.Enreg.Date;
          break;
        }
    }
    float annee = kIncalculableF;
    TInterval<float> f;
    IntervalDeDate(date, annee, f);
    if (EstOuvert(f)) continue;
    PrendFait(f, IntervalFaitsCitations);
  }
  if (!EstOuvert(IntervalFaitsCitations)) InitNaissDecesRapportPremierDernierFait(IntervalFaitsCitations, 0);
}

void TEstimationPersonne::PrendFait(const TInterval<float>& f, TInterval<float>& enveloppe) {
  if (f.IsInfini()) {
    // « avant » ou « après » une date : seul le côté sûr sert (vivant au plus tard à cette
    // date, ou encore vivant après elle), l'enveloppe ne saurait où placer le fait.
    if (f.InfOuvert)
      UpdateIntervalNaissance(DemiOuvertBas(f.Sup));
    else
      UpdateIntervalDeces(DemiOuvertHaut(f.Inf));
    return;
  }
  Joint(enveloppe, f);
}

void TEstimationPersonne::InitNaissDecesRapportPremierDernierFait(const TInterval<float>& faits, int minimumMoyen) {
  // Une vie entière contient tous les faits : elle commence au plus tard au premier, finit au
  // plus tôt au dernier, et ne dure pas plus que DureeVie.
  const int s = static_cast<int>(faits.Sup - faits.Inf);
  const float r = float(std::max(0, Config->DureeVie - s));
  UpdateIntervalNaissance(IntervalFerme(faits.Inf - r, faits.Inf));
  UpdateIntervalDeces(IntervalFerme(faits.Sup, faits.Sup + r));
  if (!AvecMoyen) return;
  const float rm = float(std::max(minimumMoyen, Config->AgeDecesMoyen() - s));
  UpdateIntervalNaissanceMoyen(IntervalFerme(faits.Inf - rm, faits.Inf));
  UpdateIntervalDecesMoyen(IntervalFerme(faits.Sup, faits.Sup + rm));
}

void TEstimationPersonne::EstimeFourchetteUnion(TPerson& p) {
  // La première union datée, dans l'ordre des conjoints.
  TInterval<float> u;
  for (const TLienConj& c : p.Enreg.Conjoints) {
    if (c.No <= 0 || c.No == Numero) continue;
    TEvenement::TEnreg e;
    if (p.RetEvenUnion(&e, c.No) <= 0 || e.Date.DateVide()) continue;
    float annee = kIncalculableF;
    IntervalDeDate(e.Date, annee, u);
    if (EstOuvert(u)) continue;
    DateUnion = e.Date;
    AnneeUnion = annee;
    break;
  }
  // L'union par la naissance : entre les âges extrêmes de l'union.
  IntervalUnion = IntervalOuvert();
  if (!EstOuvert(IntervalNaissance)) {
    int mini = 0, maxi = 0;
    Config->GetAgeUnion(mini, maxi, true, EstHommePourEstimation(&p));
    IntervalUnion = IntervalNaissance;
    IntervalUnion.Gonfle(float(maxi), float(mini));
  }
  if (AnneeUnion != kIncalculableF)
    IntervalUnion = IntervalFerme(AnneeUnion, AnneeUnion);
  else
    UpdateIntervalUnion(u);
}

// Vide : l'union n'est pas resserrée par les enfants.
void TEstimationPersonne::EstimeFourchetteUnionRapportEnfants(TPerson&) {}

void TEstimationPersonne::TraiteIncoherencesUtilisateurNaissanceMort() {
  if (AnneeNaissance != kIncalculableF && AnneeDeces != kIncalculableF && AnneeDeces < AnneeNaissance)
    AnneeDeces = kIncalculableF;
  if (AnneeNaissance != kIncalculableF) {
    if (!IntervalDeces.InfOuvert && IntervalDeces.Inf < AnneeNaissance) IntervalDeces.SetInfOuvert();
    if (!IntervalDeces.SupOuvert && IntervalDeces.Sup < AnneeNaissance) IntervalDeces.SetSupOuvert();
  } else if (AnneeDeces != kIncalculableF) {
    if (!IntervalNaissance.InfOuvert && IntervalNaissance.Inf > AnneeDeces) IntervalNaissance.SetInfOuvert();
    if (!IntervalNaissance.SupOuvert && IntervalNaissance.Sup > AnneeDeces) IntervalNaissance.SetSupOuvert();
  }
}

// ===== Proches =====

const TEstimationPersonne* TEstimationPersonne::EstimeProche(TPerson& p, long no, TEstimationPersonne& travail) {
  if (no <= 0 || no == Numero || !p.Fic() || no > p.Fic()->NbPersEffective()) return nullptr;
  if (Cache)
    if (const TEstimationPersonne* e = Cache->Cherche(no)) return e;
  TPerson proche(p.Fic(), no, false, 0, true);
  if (proche.FicheSupprimee()) return nullptr;
  travail.Cache = Cache;
  travail.Config = Config;
  travail.Profondeur = Profondeur + 1;
  travail.AvecMoyen = false;
  travail.EstimePersonne(no, &proche, true, false);
  return &travail;
}

void TEstimationPersonne::EstimeFourchetteRapportEnfants(TPerson& p) {
  const bool homme = EstHommePourEstimation(&p);
  TEstimationPersonne travail(Cache, Config);
  for (const TLienPers& enfant : p.Enreg.Enfants) {
    const TEstimationPersonne* e = EstimeProche(p, enfant.No, travail);
    if (!e) continue;
    const TInterval<float> n = e->IntervalNaissance;
    if (EstOuvert(n)) continue;
    UpdateIntervalNaissance(CreeIntervalEnfant(homme, Config, n, true));
    if (!n.InfOuvert) UpdateIntervalDeces(DemiOuvertHaut(n.Inf));
  }
}

void TEstimationPersonne::EstimeFourchetteRapportParents(TPerson& p) {
  if (AnneeNaissance != kIncalculableF) return;
  TEstimationPersonne travail(Cache, Config);
  for (const long parent : {long(p.Enreg.Pere.No), long(p.Enreg.Mere.No)}) {
    const TEstimationPersonne* e = EstimeProche(p, parent, travail);
    if (!e || EstOuvert(e->IntervalNaissance)) continue;
    UpdateIntervalNaissance(CreeIntervalParent(e->Sexe == 'M', Config, e->IntervalNaissance, true));
  }
}

void TEstimationPersonne::EstimeFouchetteNaissanceRapportConjoints(TPerson& p) {
  if (AnneeNaissance != kIncalculableF) return;
  TEstimationPersonne travail(Cache, Config);
  for (const TLienConj& c : p.Enreg.Conjoints) {
    const TEstimationPersonne* e = EstimeProche(p, c.No, travail);
    if (!e || EstOuvert(e->IntervalNaissance)) continue;
    const TInterval<float> n = e->IntervalNaissance;
    UpdateIntervalNaissance(CreeIntervalConjoint(Config, n));
    // Vivant à l'union, au plus tôt à l'âge minimal d'union du conjoint.
    int mini = 0, maxi = 0;
    Config->GetAgeUnion(mini, maxi, true, !EstHommePourEstimation(&p));
    if (!n.InfOuvert) UpdateIntervalDeces(DemiOuvertHaut(n.Inf + float(mini)));
  }
}

void TEstimationPersonne::EstimeFourchetteNaissanceRapportFrere(TPerson& p) {
  if (AnneeNaissance != kIncalculableF || !p.Fic()) return;
  // Les enfants du père, puis ceux de la mère qui n'y sont pas encore, la personne à sa place.
  std::vector<long> fratrie;
  for (const long parent : {long(p.Enreg.Pere.No), long(p.Enreg.Mere.No)}) {
    if (parent <= 0 || parent == Numero || parent > p.Fic()->NbPersEffective()) continue;
    TPerson pp(p.Fic(), parent, false, 0, true);
    if (pp.FicheSupprimee()) continue;
    for (const TLienPers& enfant : pp.Enreg.Enfants)
      if (enfant.No > 0 && std::find(fratrie.begin(), fratrie.end(), long(enfant.No)) == fratrie.end())
        fratrie.push_back(enfant.No);
  }
  const auto soi = std::find(fratrie.begin(), fratrie.end(), Numero);
  const bool place = soi != fratrie.end();
  TEstimationPersonne travail(Cache, Config);
  for (auto it = fratrie.begin(); it != fratrie.end(); ++it) {
    const TEstimationPersonne* e = EstimeProche(p, *it, travail);
    if (!e || EstOuvert(e->IntervalNaissance)) continue;
    TInterval<float> i = CreeIntervalFrere(Config, e->IntervalNaissance, true);
    // L'ordre des rangs : un aîné ne borne que par le haut, un cadet que par le bas. Une
    // personne absente des enfants de ses parents (lien d'un seul côté) n'a pas de rang.
    if (place) {
      if (it < soi)
        i.SetInfOuvert();
      else
        i.SetSupOuvert();
    }
    UpdateIntervalNaissance(i);
  }
}

// ===== Décès et naissance l'un par l'autre =====

void TEstimationPersonne::EstimeFourchetteDecesRapportNaissance(bool bornes) {
  if (AnneeDeces != kIncalculableF) return;
  const float d = float(bornes ? Config->DureeVie : Config->AgeDecesMoyen());
  TInterval<float> i;
  if (AnneeNaissance != kIncalculableF) {
    i = IntervalFerme(AnneeNaissance, AnneeNaissance + d);
  } else if (!IntervalNaissance.SupOuvert) {
    i = DemiOuvertBas(IntervalNaissance.Sup + d);
    if (!IntervalNaissance.InfOuvert) i.SetInf(IntervalNaissance.Inf);
  } else {
    return;
  }
  if (bornes)
    UpdateIntervalDeces(i);
  else
    UpdateIntervalDecesMoyen(i);
}

void TEstimationPersonne::EstimeFourchetteNaissanceRapportDeces(bool bornes) {
  if (AnneeNaissance != kIncalculableF) return;
  const float d = float(bornes ? Config->DureeVie : Config->AgeDecesMoyen());
  TInterval<float> i;
  if (AnneeDeces != kIncalculableF) {
    i = IntervalFerme(AnneeDeces - d, AnneeDeces);
  } else if (!IntervalDeces.InfOuvert) {
    i = DemiOuvertHaut(IntervalDeces.Inf - d);
    if (!IntervalDeces.SupOuvert) i.SetSup(IntervalDeces.Sup);
  } else {
    return;
  }
  if (bornes)
    UpdateIntervalNaissance(i);
  else
    UpdateIntervalNaissanceMoyen(i);
}

// ===== Incohérences et procréation =====

void TEstimationPersonne::TraiteIncoherences() {
  if (EstRenverse(IntervalDeces)) {
    float naissance = kIncalculableF, deces = kIncalculableF;
    Annees(naissance, deces);
    if (naissance != kIncalculableF) IntervalDeces.Inf = naissance;
  }
  if (AnneeNaissance == kIncalculableF && AnneeDeces == kIncalculableF && !IntervalDeces.InfOuvert &&
      !IntervalNaissance.InfOuvert && IntervalDeces.Inf < IntervalNaissance.Inf)
    IntervalDeces.SetSup(IntervalDeces.Inf);
  if (IntervalNaissance.InfOuvert && !IntervalNaissance.SupOuvert && !IntervalDeces.InfOuvert &&
      IntervalDeces.SupOuvert) {
    IntervalNaissance.SetInf(IntervalDeces.Inf);
    IntervalDeces.SetSup(IntervalDeces.Inf);
  }
  // Ce qui reste renversé ne dit plus rien.
  for (TInterval<float>* i :
       {&IntervalNaissance, &IntervalDeces, &IntervalUnion, &IntervalNaissanceMoyen, &IntervalDecesMoyen})
    if (EstRenverse(*i)) *i = IntervalOuvert();
}

void TEstimationPersonne::CalculIntervalProcreation(const TPerson& p) {
  const bool homme = EstHommePourEstimation(&p);
  int mini = 0, maxi = 0;
  Config->GetAgePremierEnfant(mini, maxi, true, homme);
  TInterval<float> vie;
  if (!IntervalNaissance.InfOuvert) vie.SetInf(IntervalNaissance.Inf);
  if (!IntervalDeces.SupOuvert) vie.SetSup(IntervalDeces.Sup);
  TInterval<float> ages = IntervalNaissance;
  ages.Gonfle(float(maxi), float(mini));
  IntervalProcreation = Intersection(vie, ages);
  // Un enfant peut naître jusqu'à 270 jours après la mort de son père, 2 jours après celle de
  // sa mère.
  if (!IntervalProcreation.SupOuvert)
    IntervalProcreation.Sup += homme ? float(Config->GestationMax) / 365.0f : 0.00548f;
  if (EstRenverse(IntervalProcreation)) IntervalProcreation = IntervalOuvert();
}

// ===== Cache des estimations =====

const TEstimationPersonne* TEstimationCalculee::Cherche(long no) const {
  const auto it = Estimations.find(no);
  return it == Estimations.end() ? nullptr : &it->second.Estimation;
}

int TEstimationCalculee::Portee(long no) const {
  const auto it = Estimations.find(no);
  return it == Estimations.end() ? -1 : it->second.Portee;
}

void TEstimationCalculee::Stocke(const TEstimationPersonne& e, bool complete) {
  const int portee = complete ? 1 : 0;
  auto it = Estimations.find(e.No());
  if (it != Estimations.end()) {
    if (it->second.Portee >= portee) return;
    it->second.Portee = portee;
    it->second.Estimation = e;
  } else {
    if (Estimations.size() >= kCapacite) Estimations.clear();
    it = Estimations.emplace(e.No(), TEntree{portee, e}).first;
  }
  // La copie ne garde pas le lien au cache : elle n'estime plus rien.
  it->second.Estimation.Cache = nullptr;
}

float AnneeDecimaleAujourdhui() {
  const TDateTime maintenant = Maintenant();
  int annee = 0, mois = 0, jour = 0;
  DecodeDate(maintenant, annee, mois, jour);
  TDateTime debut = 0;
  if (!EncodeDate(annee, 1, 1, debut)) return float(annee);
  return float(annee) + float((maintenant - debut) / 365.25);
}

bool FourchetteDeVie(TPerson& p, float& min, float& max) {
  min = max = kIncalculableF;
  if (!ConsConfigSais()) return false;
  TEstimationPersonne e;
  // Deux années notées exactement suffisent : les proches et les citations ne sont pas lus.
  if (!e.EstimeAnneesNotees(p.No(), &p)) e.EstimePersonne(p.No(), &p);
  if (!e.IntervalNaissance.InfOuvert) min = e.IntervalNaissance.Inf;
  if (!e.IntervalDeces.SupOuvert) max = e.IntervalDeces.Sup;
  return min != kIncalculableF || max != kIncalculableF;
}

// ===== TPerson =====

bool TPerson::EstPresumeVivante(float date) {
  const bool aujourdhui = date == -1.0f;
  if (aujourdhui) {
    date = AnneeDecimaleAujourdhui();
    // Un décès noté, même sans date, suffit aujourd'hui.
    TEvenement::TEnreg e;
    if (RetEvenDeces(&e) > 0) return false;
  }
  TEstimationPersonne estimation;
  estimation.EstimePersonne(Numero, this);
  const TInterval<float>& n = estimation.IntervalNaissance;
  const TInterval<float>& d = estimation.IntervalDeces;
  if (!d.SupOuvert && d.Sup < date) return false;  // morte à coup sûr avant la date
  if (!n.InfOuvert && n.Inf > date) return false;  // pas encore née
  return true;
}

bool TPerson::IsDeadToday() {
  TEvenement::TEnreg e;
  if (RetEvenDeces(&e) > 0) return true;
  TEstimationPersonne estimation;
  estimation.EstimePersonne(Numero, this);
  return !estimation.IntervalDeces.SupOuvert && estimation.IntervalDeces.Sup < AnneeDecimaleAujourdhui();
}

}  // namespace rqbase

// TPerson : les opérations qui lisent, changent et enregistrent d'autres personnes (liens
// défaits des deux côtés, suppression, ordre des conjoints et des enfants, couples de même
// sexe) et les réparations des liens.
//
// Chaque parent, conjoint ou enfant touché est lu dans une personne temporaire, par le
// cache, changé puis enregistré. Les trois briques SupprimeLienEnfant, SupprimeLienPereMere
// et SupprimeLienConjoint n'enregistrent pas la personne sur laquelle elles tournent :
// SupprimeLien et SupprimeLienParent le font, une fois, à la fin.
#include <algorithm>
#include <set>
#include <type_traits>
#include <vector>

#include "rqbase/notes/fic_notes.h"
#include "rqbase/person/gest_pers.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/platform/dialogue.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/storage/fic_ext_pers.h"
#include "rqbase/storage/fic_pers_suppr.h"
#include "rqbase/util/erreur.h"

namespace rqbase {

namespace {

// Clé d'une date absente ou incalculable dans les classements.
constexpr int kSansDate = 1000000;

// Lien refusé par SupprimeLien : un conjoint qui reste le parent d'enfants communs.
constexpr const char* kTexteConjointParent =
    "Ce conjoint est l'autre parent d'enfants de cette personne : retirez d'abord ces enfants, "
    "ou retirez-les en même temps que lui.";

long NbPers(const TPerson& p) {
  return p.Fic() ? p.Fic()->NbPersEffective() : 0;
}

// Un numéro qui désigne une autre fiche du fichier.
bool AutreFiche(const TPerson& p, long no) {
  return no > 0 && no != p.No() && no <= NbPers(p);
}

// La personne `no`, lue par le cache, sans ses listes.
TPerson Lit(const TPerson& p, long no) {
  return TPerson(p.Fic(), no, false, 0, true);
}

// Le nombre de jours d'une date depuis le 1er janvier de l'an 1, kSansDate si elle n'en a pas.
int CleDate(const TDateRQ& date) {
  if (date.DateVide()) return kSansDate;
  // Comme DateIn : le décompte exact ; une date en fourchette n'en a pas.
  return date.CalcNbJoursAbs(true);
}

}  // namespace

// ===== Liens défaits des deux côtés =====

void TPerson::SupprimeLienEnfant(long& no) {
  if (no == 0) return;
  const long parent = no;
  if (AutreFiche(*this, parent)) {
    TPerson p = Lit(*this, parent);
    bool change = false;
    p.SupprimeEnfant(Numero, &change);
    p.RecompacteEnfant();
    if (change) {
      p.MajDateJourDDMF_DCF(false, "");
      p.Enregistrement(-3, nullptr, false, false, true, true);
      // Place du Sosa : un parent numéroté perd son numéro (TFicSosas::DenumeroterPersNo), et
      // l'écran en est prévenu (MsgSpecNumeroterPersNo).
    }
  }
  // Le champ de cette personne, quand l'appelant ne l'a pas passé lui-même.
  if (Enreg.Pere.No == parent) Enreg.Pere = TLienPers();
  if (Enreg.Mere.No == parent) Enreg.Mere = TLienPers();
  no = 0;
}

void TPerson::SupprimeLienPereMere(long& no, bool inutilise) {
  (void)inutilise;
  if (no == 0 || no > NbPers(*this)) return;
  const long enfant = no;
  if (AutreFiche(*this, enfant)) {
    TPerson e = Lit(*this, enfant);
    bool change = false;
    if (e.Enreg.Pere.No == Numero) {
      e.Enreg.Pere = TLienPers();
      change = true;
    }
    if (e.Enreg.Mere.No == Numero) {
      e.Enreg.Mere = TLienPers();
      change = true;
    }
    if (change) {
      e.MajDateJourDDMF_DCF(false, "");
      e.Enregistrement(-3, nullptr, false, false, true, true);
      // Place du Sosa : l'enfant numéroté perd son numéro (TFicSosas::DenumeroterPersNo).
    }
  }
  SupprimeEnfant(enfant, nullptr);
  no = 0;
}

void TPerson::SupprimeLienConjoint(long& no, bool garderChamps) {
  if (no == 0) return;
  const long conjoint = no;
  // Les champs simples du couple, pris dans la liste chargée de la personne.
  ChargeListes();
  std::set<long> chpsCouple;
  if (!garderChamps && Chps())
    for (const TChpsSimpleTV& c : *Chps())
      if (c.Enreg.No != 0 && c.Enreg.IsCouple(Numero, conjoint)) chpsCouple.insert(c.Enreg.No);

  bool change = false;
  TPerson s(Fic());
  const bool lu = AutreFiche(*this, conjoint);
  if (lu) {
    s = Lit(*this, conjoint);
    s.SupprimeConjoint(Numero, &change);
    s.RecompacteConjoint();
  }

  if (Chps())
    for (int rg = Chps()->GetNbElt(); rg >= 1; --rg)
      if (chpsCouple.count(Chps()->Lit(rg - 1)->Enreg.No)) SupprChpsSimpleNo(rg, false);
  if (Evens())
    for (int rg = Evens()->GetNbElt(); rg >= 1; --rg)
      if (Evens()->Lit(rg - 1)->Enreg.IsCouple(Numero, conjoint)) {
        if (OnSupprEvenCouple) OnSupprEvenCouple(*this);
        SupprEvenNo(rg, false);
      }

  if (lu && change) {
    // Les rangs d'union des faits du conjoint suivent sa table tassée.
    if (s.Evens()) s.MajEvenRgUnion();
    if (s.Chps()) s.MajChpsSimpleRgUnion();
    s.MajDateJourDDMF_DCF(false, "");
    s.Enregistrement(-3, nullptr, false, false, true, true);
  }
  SupprimeConjoint(conjoint, nullptr);
  no = 0;
}

void TPerson::SupprimeLienParent(bool pere) {
  TLienPers& champ = pere ? Enreg.Pere : Enreg.Mere;
  if (champ.No != 0) {
    const TRappel& rappel = pere ? OnSupprPere : OnSupprMere;
    if (rappel) rappel(*this);
    long no = champ.No;
    SupprimeLienEnfant(no);
    champ.No = static_cast<int32_t>(no);
  }
  Enregistrement(-3, nullptr, false, false, true, true);
}

void TPerson::SupprimeLien(bool* choix, bool inutilise1, bool inutilise2) {
  (void)inutilise1;
  (void)inutilise2;
  // Les places des conjoints et des enfants, dans l'ordre des tables : choix[2 + k] est le
  // k-ième conjoint, choix[2 + nbConjoints + k] le k-ième enfant.
  std::vector<int> placesConj, placesEnf;
  for (int i = 0; i < NbConjoints; ++i)
    if (Enreg.Conjoints[i].No != 0) placesConj.push_back(i);
  for (int i = 0; i < NbEnfants; ++i)
    if (Enreg.Enfants[i].No != 0) placesEnf.push_back(i);
  const int nbConj = static_cast<int>(placesConj.size());
  auto choisiConj = [&](int k) { return !choix || choix[2 + k]; };
  auto choisiEnf = [&](int k) { return !choix || choix[2 + nbConj + k]; };

  // Un conjoint retiré doit partir avec ses enfants communs : deux parents d'un même enfant
  // restent conjoints. Vérifié avant tout changement.
  if (choix) {
    for (int k = 0; k < nbConj; ++k) {
      if (!choisiConj(k)) continue;
      const long conj = Enreg.Conjoints[placesConj[static_cast<size_t>(k)]].No;
      for (size_t m = 0; m < placesEnf.size(); ++m) {
        if (choisiEnf(static_cast<int>(m))) continue;
        const long enf = Enreg.Enfants[placesEnf[m]].No;
        if (!AutreFiche(*this, enf)) continue;
        const TPerson e = Lit(*this, enf);
        if ((e.Enreg.Pere.No == Numero && e.Enreg.Mere.No == conj) ||
            (e.Enreg.Mere.No == Numero && e.Enreg.Pere.No == conj))
          throw ERqBase(kTexteConjointParent);
      }
    }
  }

  // Place du Sosa : un numéro existant est retenu et retiré (TFicSosas::DenumeroterPersNo).
  const TLienPers pere = Enreg.Pere, mere = Enreg.Mere;
  TLienConj conjoints[NbConjoints];
  std::copy(std::begin(Enreg.Conjoints), std::end(Enreg.Conjoints), conjoints);
  TLienPers enfants[NbEnfants];
  std::copy(std::begin(Enreg.Enfants), std::end(Enreg.Enfants), enfants);

  // Père et mère.
  for (int parent = 0; parent < 2; ++parent) {
    TLienPers& champ = parent == 0 ? Enreg.Pere : Enreg.Mere;
    if (champ.No == 0 || (choix && !choix[parent])) continue;
    if (choix) {
      const TRappel& rappel = parent == 0 ? OnSupprPere : OnSupprMere;
      if (rappel) rappel(*this);
    }
    long no = champ.No;
    SupprimeLienEnfant(no);
    champ.No = static_cast<int32_t>(no);
  }
  if (!choix) {
    // Voulu : la personne supprimée garde ses propres liens dans sa fiche.
    Enreg.Pere = pere;
    Enreg.Mere = mere;
  }

  // Conjoints, du dernier au premier.
  for (int k = nbConj - 1; k >= 0; --k) {
    if (!choisiConj(k)) continue;
    TLienConj& place = Enreg.Conjoints[placesConj[static_cast<size_t>(k)]];
    if (choix && OnSupprConjoint) OnSupprConjoint(*this);
    long no = place.No;
    SupprimeLienConjoint(no, false);
    place.No = static_cast<int32_t>(no);
  }
  if (!choix) std::copy(std::begin(conjoints), std::end(conjoints), Enreg.Conjoints);
  if (RecompacteConjoint()) {
    // Les rangs des conjoints ont bougé : ceux des faits de couple suivent.
    if (Evens()) MajEvenRgUnion();
    if (Chps()) MajChpsSimpleRgUnion();
  }

  // Enfants, du dernier au premier.
  for (int k = static_cast<int>(placesEnf.size()) - 1; k >= 0; --k) {
    if (!choisiEnf(k)) continue;
    TLienPers& place = Enreg.Enfants[placesEnf[static_cast<size_t>(k)]];
    if (choix && OnSupprEnfant) OnSupprEnfant(*this);
    long no = place.No;
    SupprimeLienPereMere(no, false);
    place.No = static_cast<int32_t>(no);
  }
  if (!choix) std::copy(std::begin(enfants), std::end(enfants), Enreg.Enfants);
  RecompacteEnfant();

  if (!choix) {
    if (TModuleBDD* bdd = BaseOuverte()) {
      // Les événements des autres où la personne est citée.
      for (int i = 0; i < NbLiens; ++i) {
        const long noEven = LienCitation(i);
        // Un numéro négatif est une citation déjà cachée avec les lignes de la personne :
        // RestaurationData la rendra, elle n'est pas retirée.
        if (noEven <= 0) {
          LienCitation(i) = 0;
          continue;
        }
        TEvenement ev(bdd, noEven);
        ev.GetPersAssociee();
        const int rg = ev.Enreg.ChercheRgNoPersAssociee(Numero);
        if (rg >= 0) {
          ev.Enreg.SupprPersAssociee(rg);
          ev.Enregistrement();
          if (OnSupprCitation) OnSupprCitation(*this);
        }
        LienCitation(i) = 0;
      }
      // Les personnes citées sur ses propres événements. Voulu : les places 0 à 48, la
      // cinquantième n'est pas parcourue.
      for (int i = 0; i < NbLiens; ++i) {
        const long noEven = LienEvenement(i);
        if (noEven <= 0) continue;
        TEvenement ev(bdd, noEven);
        const TPersAssociee* cites = ev.GetPersAssociee();
        for (int k = 0; k < kNbPersAssocieesEven - 1; ++k) {
          const long cite = cites[k].Lien.No;
          if (!AutreFiche(*this, cite)) continue;
          TPerson q = Lit(*this, cite);
          (void)q.LienCitation(0);  // la table vient de la base avant d'être changée
          if (q.Enreg.SupprLienCitation(noEven)) q.Enregistrement(-3, nullptr, false, false, true, true);
        }
      }
    }
  }

  Enregistrement(-3, nullptr, false, false, true, true);
  if (!FicheSupprimee()) {
    for (const TLienConj& c : conjoints) {
      if (!AutreFiche(*this, c.No)) continue;
      TPerson s = Lit(*this, c.No);
      s.EnregClassementEnfConj(false);
    }
    // Place du Sosa : l'écran est prévenu du numéro retiré (MsgSpecNumeroterPersNo).
  }
}

// ===== Suppression et restauration =====

void TPerson::Suppression(bool anonymiser) {
  // Une fiche déjà supprimée ne l'est pas une seconde fois : la liste des supprimés ne doit
  // pas la compter deux fois.
  if (FicheSupprimee()) return;
  if (anonymiser) {
    SetNom("XXX");
    SetPrenoms("");
  }
  Enreg.Supprime = 'O';
  if (Numero <= 0 || Numero > NbPers(*this)) return;
  TContexteDossier* gest = Gest();
  if (gest && gest->PeutEcrire()) {
    // Les liens vers ses événements sont pris avant que ses lignes soient cachées : les
    // personnes citées sur eux en sont détachées plus loin.
    ChargeListes();
    if (TModuleBDD* bdd = BaseOuverte()) bdd->MasquerChpsOfPerson(Numero, false);
    // Les lignes cachées ne sont plus celles de la personne : ses listes sont vides.
    NouvelleFicheComplementaire();
  }
  SupprimeLien(nullptr);
  // Place du Sosa : le numéro de la personne est mis à zéro (TFicSosas::EcritureNoStradoZero).
  if (gest && gest->PeutEcrire())
    if (TFicPersSuppr* psu = gest->FicPersSuppr()) psu->AjouteNo(Numero);
}

void TPerson::RestaurationData() {
  TContexteDossier* gest = Gest();
  if (!gest || !gest->PeutEcrire() || Numero <= 0) return;
  if (TModuleBDD* bdd = BaseOuverte()) bdd->MasquerChpsOfPerson(Numero, true);
}

// ===== Ordre des conjoints et des enfants =====

namespace {

// Les enfants communs avec `s` prennent ici l'ordre qu'ils ont chez lui. Le rang de chaque
// enfant chez `s` est cherché une fois et suit l'enfant dans les échanges.
void ClassementEnfantIdentiqueConjoint(TPerson& p, const TPerson& s, int nbEnfants) {
  std::vector<int> rangs(static_cast<size_t>(nbEnfants));
  bool commun = false;
  for (int i = 0; i < nbEnfants; ++i) {
    rangs[static_cast<size_t>(i)] = s.RetourneRgEnf(p.Enreg.Enfants[i].No);
    commun = commun || rangs[static_cast<size_t>(i)] != 0;
  }
  if (!commun) return;
  for (size_t i = 0; i < rangs.size(); ++i)
    for (size_t j = i + 1; j < rangs.size(); ++j)
      if (rangs[i] != 0 && rangs[j] != 0 && rangs[j] < rangs[i]) {
        std::swap(p.Enreg.Enfants[i], p.Enreg.Enfants[j]);
        std::swap(rangs[i], rangs[j]);
      }
}

// Tri par échanges sur les clés : seules deux clés datées s'échangent, les places sans
// date ne bougent pas et les datées se rangent autour d'elles.
template <typename TLien>
void TriParEchanges(TLien* liens, std::vector<int>& cles, std::vector<int>* rangs) {
  const size_t n = cles.size();
  for (size_t i = 0; i < n; ++i)
    for (size_t j = i + 1; j < n; ++j)
      if (cles[i] > cles[j] && cles[i] != kSansDate && cles[j] != kSansDate) {
        std::swap(liens[i], liens[j]);
        std::swap(cles[i], cles[j]);
        if (rangs) std::swap((*rangs)[i], (*rangs)[j]);
      }
}

// Passes sur les paires voisines : un enfant sans date et un enfant daté s'échangent quand
// leurs rangs de conjoint sont dans le mauvais ordre, jusqu'à une passe sans échange. Les
// enfants sans date glissent ainsi parmi ceux de leur conjoint.
void ClasseEnfantsSansDatesParConjoints(TLienPers* enfants, std::vector<int>& cles, std::vector<int>& rangs) {
  const size_t n = cles.size();
  for (bool echange = true; echange;) {
    echange = false;
    for (size_t i = 0; i + 1 < n; ++i)
      if (rangs[i] > rangs[i + 1] && ((cles[i] == kSansDate) != (cles[i + 1] == kSansDate))) {
        std::swap(enfants[i], enfants[i + 1]);
        std::swap(cles[i], cles[i + 1]);
        std::swap(rangs[i], rangs[i + 1]);
        echange = true;
      }
  }
}

}  // namespace

void TPerson::EnregClassementEnfConj(bool avecChamps) {
  if (Numero <= 0) return;
  // Les dates d'union sont dans les événements de la personne.
  ChargeListes();
  // Les enfants tassés en tête : les classements ne parcourent que ceux-là.
  const int nbEnfants = FirstNullChild();

  for (const TLienConj& c : Enreg.Conjoints) {
    if (!AutreFiche(*this, c.No)) continue;
    const TPerson s = Lit(*this, c.No);
    ClassementEnfantIdentiqueConjoint(*this, s, nbEnfants);
  }

  std::vector<int> clesConj(NbConjoints, kSansDate);
  for (int i = 0; i < NbConjoints; ++i) {
    if (Enreg.Conjoints[i].No == 0) continue;
    TEvenement::TEnreg u;
    if (RetEvenUnion(&u, Enreg.Conjoints[i].No) > 0) clesConj[static_cast<size_t>(i)] = CleDate(u.Date);
  }
  TriParEchanges(Enreg.Conjoints, clesConj, nullptr);
  MajChpsSimpleRgUnion();
  MajEvenRgUnion();

  std::vector<int> clesEnf(static_cast<size_t>(nbEnfants), kSansDate), rangs(static_cast<size_t>(nbEnfants), 0);
  for (int i = 0; i < nbEnfants; ++i) {
    const long no = Enreg.Enfants[i].No;
    if (!AutreFiche(*this, no)) continue;
    TPerson e = Lit(*this, no);
    TEvenement naissance(nullptr);
    if (e.GetEvenNaissance(&naissance)) clesEnf[static_cast<size_t>(i)] = CleDate(naissance.Enreg.Date);
    rangs[static_cast<size_t>(i)] = RetourneRgConj(EstHomme() ? e.Enreg.Mere.No : e.Enreg.Pere.No);
  }
  TriParEchanges(Enreg.Enfants, clesEnf, &rangs);
  ClasseEnfantsSansDatesParConjoints(Enreg.Enfants, clesEnf, rangs);

  Enregistrement(-3, nullptr, !avecChamps, false, true, true);
}

// ===== Couples de même sexe =====

bool TPerson::IsCouplesHomosexuel() const {
  if (!EstHomme() && !EstFemme()) return false;
  for (const TLienConj& c : Enreg.Conjoints) {
    if (!AutreFiche(*this, c.No)) continue;
    if (Lit(*this, c.No).Enreg.Sexe == Enreg.Sexe) return true;
  }
  return false;
}

bool TPerson::GestionCoupleHomoSexuel(char ancienSexe, int* reponse) {
  if (!IsCouplesHomosexuel()) {
    Enregistrement(-3, nullptr, false, false, true, true);
    std::set<long> faits;
    return InverserPereEtMereDesEnfants(&faits);
  }
  const int r = Dialogue().Question("Souhaitez-vous inverser le sexe de tous les conjoints ?", "Confirmation",
                                    TBoutons::OuiNonAnnuler);
  if (r == ReponseOui || r == ReponseNon)
    GestionCoupleHomoSexuel(r);
  else
    SetSexe(ancienSexe);
  Enregistrement(-3, nullptr, false, false, true, true);
  if (reponse) *reponse = r;
  return r == ReponseOui || r == ReponseNon;
}

void TPerson::GestionCoupleHomoSexuel(int reponse) {
  if (reponse != ReponseOui && reponse != ReponseNon) return;
  std::set<long> faits{Numero}, enfants;
  Enregistrement(-3, nullptr, false, false, true, true);
  InverserPereEtMereDesEnfants(&enfants);
  if (reponse == ReponseOui) InverserSexeConjoints(&faits, &enfants);
}

bool TPerson::InverserPereEtMereDesEnfants(std::set<long>* faits) {
  std::set<long> local;
  if (!faits) faits = &local;
  bool change = false;
  for (const TLienPers& lien : Enreg.Enfants) {
    const long no = lien.No;
    if (!AutreFiche(*this, no) || faits->count(no)) continue;
    TPerson e = Lit(*this, no);
    const char sexePere = e.Enreg.Pere.No > 0 ? Lit(*this, e.Enreg.Pere.No).Enreg.Sexe : '?';
    const char sexeMere = e.Enreg.Mere.No > 0 ? Lit(*this, e.Enreg.Mere.No).Enreg.Sexe : '?';
    if ((sexeMere == 'M' && sexePere != 'M') || (sexePere == 'F' && sexeMere != 'F')) {
      std::swap(e.Enreg.Pere, e.Enreg.Mere);
      faits->insert(no);
      e.Enregistrement(-3, nullptr, false, false, true, true);
      change = true;
    }
  }
  return change;
}

void TPerson::InverserSexeConjoints(std::set<long>* faits, std::set<long>* enfants) {
  std::set<long> faitsLocaux, enfantsLocaux;
  if (!faits) faits = &faitsLocaux;
  if (!enfants) enfants = &enfantsLocaux;
  faits->insert(Numero);
  for (const TLienConj& c : Enreg.Conjoints) {
    if (!AutreFiche(*this, c.No) || faits->count(c.No)) continue;
    TPerson s = Lit(*this, c.No);
    if (s.EstHomme())
      s.SetSexe('F');
    else if (s.EstFemme())
      s.SetSexe('M');
    faits->insert(c.No);
    s.Enregistrement(-3, nullptr, false, false, true, true);
    // Une chaîne de remariages bascule tout entière.
    s.InverserSexeConjoints(faits, enfants);
    s.InverserPereEtMereDesEnfants(enfants);
  }
}

// ===== Réparations =====

bool TPerson::VerifLienHorsFichier() {
  const long nb = NbPers(*this);
  int horsFichier = 0;
  // Un lien hors du fichier (compté si `compte`) ou vers soi : à effacer. Les liens sont
  // des champs serrés, pris par valeur.
  auto juge = [&](int32_t no, bool compte) {
    if (no < 0 || no > nb) {
      if (compte) ++horsFichier;
      return true;
    }
    return no != 0 && no == Numero;
  };
  bool enfants = false, conjoints = false;
  for (TLienPers& e : Enreg.Enfants)
    if (juge(e.No, true)) {
      e = TLienPers();
      enfants = true;
    }
  if (enfants) RecompacteEnfant();
  for (TLienConj& c : Enreg.Conjoints)
    if (juge(c.No, true)) {
      c = TLienConj();
      conjoints = true;
    }
  if (conjoints) RecompacteConjoint();
  bool change = enfants || conjoints;
  for (TLienPers* parent : {&Enreg.Pere, &Enreg.Mere})
    if (juge(parent->No, false)) {
      *parent = TLienPers();
      change = true;
    }

  if (TVoisinsPersonne* v = Voisins())
    if (TFicNotes* notes = v->FicNotes())
      if (Enreg.Note < 0 || Enreg.Note > notes->NbBlocs()) {
        Enreg.Note = 0;
        change = true;
      }
  if (TContexteDossier* gest = Gest())
    if (TFicExtPersons* ext = gest->FicExtPersons())
      if (Enreg.Extension < 0 || Enreg.Extension > ext->NbEnreg()) {
        Enreg.Extension = 0;
        change = true;
      }

  // Plus de cinq liens hors du fichier : la fiche est tenue pour perdue.
  if (horsFichier > 5) {
    Enreg.Raz();
    Enreg.Supprime = 'O';
    change = true;
  }
  return change;
}

bool TPerson::VerifLienSysmetrique() {
  // Une fiche supprimée garde ses liens pour être restaurable, et personne ne doit plus la
  // nommer : la rendre symétrique la ferait revenir chez ses proches.
  if (FicheSupprimee()) return false;
  bool change = false;
  auto enregistre = [&](TPerson& q) { q.Enregistrement(-3, nullptr, true, false, true, q.No() > Numero); };
  // Un lien vers soi n'a pas d'autre côté à réparer : il est effacé.
  auto versSoi = [&](auto& lien) {
    if (lien.No != 0 && lien.No == Numero) {
      lien = std::remove_reference_t<decltype(lien)>();
      change = true;
    }
  };

  // Père puis mère.
  for (int parent = 0; parent < 2; ++parent) {
    TLienPers& champ = parent == 0 ? Enreg.Pere : Enreg.Mere;
    versSoi(champ);
    if (!AutreFiche(*this, champ.No)) continue;
    const long autre = parent == 0 ? Enreg.Mere.No : Enreg.Pere.No;
    TPerson q = Lit(*this, champ.No);
    bool qChange = false;
    if (q.FicheSupprimee()) {
      if (q.RetourneRgEnf(Numero) == 0 && (autre == 0 || q.RetourneRgConj(autre) == 0)) {
        champ = TLienPers();
        change = true;
        continue;
      }
      q.Enreg.Supprime = ' ';
      qChange = true;
    }
    if (q.RetourneRgEnf(Numero) == 0) {
      if (q.AjouteEnf(Numero, -1) < 0) {
        // Le parent a ses 150 enfants : le lien d'un seul côté est coupé ici.
        champ = TLienPers();
        change = true;
        if (qChange) enregistre(q);
        continue;
      }
      qChange = true;
    }
    if (AutreFiche(*this, autre) && autre != q.No() && q.RetourneRgConj(autre) == 0 && q.AjouteConj(autre) >= 0)
      qChange = true;
    if (qChange) enregistre(q);
  }

  // Conjoints.
  bool tasser = false;
  for (TLienConj& place : Enreg.Conjoints) {
    versSoi(place);
    if (place.No == 0) continue;
    if (!AutreFiche(*this, place.No)) continue;
    TPerson q = Lit(*this, place.No);
    bool qChange = false;
    if (q.FicheSupprimee()) {
      if (q.RetourneRgConj(Numero) == 0) {
        place = TLienConj();
        tasser = change = true;
        continue;
      }
      q.Enreg.Supprime = ' ';
      qChange = true;
    }
    if (q.RetourneRgConj(Numero) == 0) {
      if (q.AjouteConj(Numero) < 0) {
        // Le conjoint a ses 150 conjoints : le lien d'un seul côté est coupé ici.
        place = TLienConj();
        tasser = change = true;
        if (qChange) enregistre(q);
        continue;
      }
      qChange = true;
    }
    if (qChange) enregistre(q);
  }
  if (tasser) RecompacteConjoint();

  // Enfants.
  tasser = false;
  for (TLienPers& place : Enreg.Enfants) {
    versSoi(place);
    if (place.No == 0) continue;
    if (!AutreFiche(*this, place.No)) continue;
    TPerson q = Lit(*this, place.No);
    bool qChange = false;
    const bool parent = q.Enreg.Pere.No == Numero || q.Enreg.Mere.No == Numero;
    if (q.FicheSupprimee() && parent) {
      if (q.NomEtPrenomVides() && q.CompteNbEnfant() == 0) {
        place = TLienPers();
        tasser = change = true;
        continue;
      }
      q.Enreg.Supprime = ' ';
      qChange = true;
    }
    if (!parent) {
      TLienPers& slot = EstHomme() ? q.Enreg.Pere : q.Enreg.Mere;
      bool retire = false;
      if (slot.No != 0 && AutreFiche(*this, slot.No)) {
        const TPerson r = Lit(*this, slot.No);
        retire = r.RetourneRgEnf(q.No()) != 0;
      }
      if (retire) {
        place = TLienPers();
        tasser = change = true;
      } else {
        slot = TLienPers(Numero);
        qChange = true;
      }
    }
    if (qChange) enregistre(q);
  }
  if (tasser) RecompacteEnfant();
  return change;
}

void TPerson::AddPersGhost(int n) {
  TContexteDossier* gest = Gest();
  if (n <= 0 || !Fichier || !gest || !gest->PeutEcrire()) return;
  TEnreg fantome{};
  TransfertDepuisPublic(fantome);
  fantome.Supprime = 'O';
  // Le débordement et les entrées d'index sont ceux de la personne : une copie ne les
  // partage pas, sans quoi son écriture écraserait les siens.
  fantome.Extension = 0;
  std::fill(std::begin(fantome.Index), std::end(fantome.Index), 0);
  for (int i = 0; i < n; ++i) {
    const long no = Fichier->ReturnNewNum();
    // L'en-tête suit chaque enregistrement : une panne ne laisse jamais un compte qui
    // couvre une fiche absente.
    if (!Fichier->EcritEnreg(no, fantome)) return;
  }
}

}  // namespace rqbase

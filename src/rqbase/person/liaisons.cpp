#include "rqbase/person/liaisons.h"

#include <set>
#include <string>
#include <vector>

#include "rqbase/person/gest_pers.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/gest_fic_pers.h"
#include "rqbase/util/erreur.h"

namespace rqbase {

namespace {

std::string Num(long no) { return std::to_string(no); }

void VerifieEcriture(TFicPersons& fic) {
  TContexteDossier* gest = fic.Gest();
  if (!gest || !gest->PeutEcrire()) throw ERqBase("Le dossier ne peut pas être écrit : rien n'a changé.");
}

// La personne, lue par le cache, si elle existe et n'est pas supprimée.
TPerson PersonneVivante(TFicPersons& fic, long no) {
  if (no < 1 || no > fic.NbPersEffective()) throw ERqBase("La personne " + Num(no) + " n'existe pas dans ce dossier.");
  TPerson p(&fic, no, false, 0, true);
  if (p.FicheSupprimee()) throw ERqBase("La personne " + Num(no) + " est supprimée : restaurez-la d'abord.");
  return p;
}

// `ancetre` est-il un ascendant de `no` ? Parcours des parents, chaque personne une fois.
bool EstAscendant(TFicPersons& fic, long ancetre, long no) {
  std::vector<long> aVoir{no};
  std::set<long> vus{no};
  TPerson p(&fic);
  while (!aVoir.empty()) {
    const long n = aVoir.back();
    aVoir.pop_back();
    p.Lecture(n, false, 0, true);
    for (const long parent : {static_cast<long>(p.Enreg.Pere.No), static_cast<long>(p.Enreg.Mere.No)}) {
      if (parent <= 0 || parent > fic.NbPersEffective()) continue;
      if (parent == ancetre) return true;
      if (vus.insert(parent).second) aVoir.push_back(parent);
    }
  }
  return false;
}

bool ConjointsPossibles(const TPerson& a, long b) {
  return a.RetourneRgConj(b) != 0 || a.CompteNbConjoint() < TPerson::NbConjoints;
}

}  // namespace

bool LieParent(TFicPersons& fic, long parent, long enfant, bool pere) {
  VerifieEcriture(fic);
  if (parent == enfant) throw ERqBase("Une personne ne peut pas être son propre parent.");
  TPerson p = PersonneVivante(fic, parent);
  TPerson e = PersonneVivante(fic, enfant);
  const long place = pere ? e.Enreg.Pere.No : e.Enreg.Mere.No;
  const long autre = pere ? e.Enreg.Mere.No : e.Enreg.Pere.No;
  const char* role = pere ? "un père" : "une mère";
  if (place == parent && p.RetourneRgEnf(enfant) != 0) return false;
  if (place != 0 && place != parent)
    throw ERqBase("La personne " + Num(enfant) + " a déjà " + role + " (" + Num(place) + ") : déliez-le d'abord.");
  const char interdit = pere ? 'F' : 'M';
  if (p.Enreg.Sexe == interdit) {
    // Un couple de même sexe peut tenir les deux places ; sinon la place suit le sexe.
    const bool memeSexe = autre > 0 && TPerson(&fic, autre, false, 0, true).Enreg.Sexe == interdit;
    if (!memeSexe)
      throw ERqBase("La personne " + Num(parent) + " est de sexe " + std::string(1, interdit) + " : elle ne peut être " +
                    (pere ? "le père" : "la mère") + " que dans un couple de même sexe.");
  }
  if (p.RetourneRgEnf(enfant) == 0 && p.FirstNullChild() == TPerson::NbEnfants)
    throw ERqBase("La personne " + Num(parent) + " a déjà 150 enfants : aucun autre ne peut être ajouté.");
  TPerson o(&fic);
  if (autre > 0 && autre <= fic.NbPersEffective()) {
    o.Lecture(autre, false, 0, true);
    if (!ConjointsPossibles(p, autre) || !ConjointsPossibles(o, parent))
      throw ERqBase("Les personnes " + Num(parent) + " et " + Num(autre) +
                    " ne peuvent plus recevoir de conjoint (150 au plus).");
  }
  if (EstAscendant(fic, enfant, parent))
    throw ERqBase("La personne " + Num(enfant) + " est un ascendant de " + Num(parent) +
                  " : ce lien ferait une boucle dans l'arbre.");

  // Les deux parents d'un enfant sont conjoints l'un de l'autre ; le conjoint vient avant
  // l'enfant, dont la place parmi ses frères et sœurs dépend du rang de ce conjoint.
  if (autre > 0 && autre <= fic.NbPersEffective()) {
    p.AjouteConj(autre);
    if (o.RetourneRgConj(parent) == 0) {
      o.AjouteConj(parent);
      o.Enregistrement();
    }
  }
  if (pere)
    e.Enreg.Pere = TLienPers(parent);
  else
    e.Enreg.Mere = TLienPers(parent);
  p.AjouteEnf(enfant, autre);
  e.MajDateJourDDMF_DCF(false);
  e.Enregistrement();
  p.MajDateJourDDMF_DCF(false);
  p.Enregistrement();
  return true;
}

bool LieConjoints(TFicPersons& fic, long a, long b, bool avecUnion) {
  VerifieEcriture(fic);
  if (a == b) throw ERqBase("Une personne ne peut pas être son propre conjoint.");
  TPerson pa = PersonneVivante(fic, a);
  TPerson pb = PersonneVivante(fic, b);
  if (pa.RetourneRgConj(b) != 0 && pb.RetourneRgConj(a) != 0) return false;
  if (!ConjointsPossibles(pa, b) || !ConjointsPossibles(pb, a))
    throw ERqBase("Les personnes " + Num(a) + " et " + Num(b) + " ne peuvent plus recevoir de conjoint (150 au plus).");
  if (avecUnion && !pa.CanAddEvent())
    throw ERqBase("La personne " + Num(a) + " a déjà 100 événements : l'union ne peut pas être ajoutée.");
  pb.AjouteConj(a);
  // L'événement d'union, s'il est demandé, entre dans les deux listes sous un seul numéro ;
  // AjouteConj enregistre alors la première personne, la seconde l'est ici.
  pa.AjouteConj(b, avecUnion, avecUnion ? &pb : nullptr);
  pa.MajDateJourDDMF_DCF(false);
  pa.Enregistrement();
  pb.MajDateJourDDMF_DCF(false);
  pb.Enregistrement();
  return true;
}

bool DelieParent(TFicPersons& fic, long parent, long enfant, bool pere) {
  VerifieEcriture(fic);
  if (parent < 1 || parent > fic.NbPersEffective() || enfant < 1 || enfant > fic.NbPersEffective())
    throw ERqBase("La personne " + Num(parent < 1 || parent > fic.NbPersEffective() ? parent : enfant) +
                  " n'existe pas dans ce dossier.");
  TPerson e(&fic, enfant, false, 0, true);
  TPerson p(&fic, parent, false, 0, true);
  const long place = pere ? e.Enreg.Pere.No : e.Enreg.Mere.No;
  if (place != parent) {
    if (p.RetourneRgEnf(enfant) == 0) return false;
    // Lien à moitié (le parent seul connaît l'enfant) : on retire ce qui reste.
    long no = parent;
    e.SupprimeLienEnfant(no);
    return true;
  }
  e.SupprimeLienParent(pere);
  e.MajDateJourDDMF_DCF(false);
  e.Enregistrement();
  return true;
}

bool DelieConjoints(TFicPersons& fic, long a, long b) {
  VerifieEcriture(fic);
  for (const long no : {a, b})
    if (no < 1 || no > fic.NbPersEffective()) throw ERqBase("La personne " + Num(no) + " n'existe pas dans ce dossier.");
  TPerson pa(&fic, a, false, 0, true);
  TPerson pb(&fic, b, false, 0, true);
  if (pa.RetourneRgConj(b) == 0 && pb.RetourneRgConj(a) == 0) return false;
  // Les parents d'un même enfant restent conjoints : l'enfant doit d'abord perdre l'un d'eux.
  for (const TLienPers& enf : pa.Enreg.Enfants) {
    if (enf.No <= 0 || enf.No > fic.NbPersEffective()) continue;
    const TPerson e(&fic, enf.No, false, 0, true);
    if ((e.Enreg.Pere.No == a && e.Enreg.Mere.No == b) || (e.Enreg.Pere.No == b && e.Enreg.Mere.No == a))
      throw ERqBase("Les personnes " + Num(a) + " et " + Num(b) + " sont les parents de " + Num(enf.No) +
                    " : déliez d'abord l'enfant de l'un d'eux.");
  }
  pa.LectureComplementaire();
  long no = b;
  pa.SupprimeLienConjoint(no);
  pa.SupprimeConjoint(b, nullptr);
  pa.RecompacteConjoint();
  pa.MajEvenRgUnion();
  pa.MajChpsSimpleRgUnion();
  pa.MajDateJourDDMF_DCF(false);
  pa.Enregistrement();
  return true;
}

}  // namespace rqbase

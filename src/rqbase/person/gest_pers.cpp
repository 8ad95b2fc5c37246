// TPerson : lecture, écriture, transferts entre enregistrement et forme publique, liens.
#include "rqbase/person/gest_pers.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <type_traits>
#include <utility>

#include "rqbase/fields/def_chps_cs.h"
#include "rqbase/person/buffer_arb_chrono.h"
#include "rqbase/person/liste_evenements.h"
#include "rqbase/person/voisins_personne.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"

namespace rqbase {

namespace {

// Longueur d'un texte lu tel qu'il est sur le disque : sans zéro dans son champ, il
// déborde sur les champs suivants de l'enregistrement, comme le lirait strlen.
size_t LongueurBrute(const TPerson::TEnreg& enreg, const char* champ) {
  const char* fin = reinterpret_cast<const char*>(&enreg) + sizeof enreg;
  return strnlen(champ, static_cast<size_t>(fin - champ));
}

void CopieTexte(char* cible, size_t tailleCible, const char* source, size_t tailleSource) {
  const size_t n = std::min(tailleCible - 1, strnlen(source, tailleSource));
  std::memcpy(cible, source, n);
  std::memset(cible + n, 0, tailleCible - n);
}

TLienConj gConjVide;
TLienPers gEnfVide;

}  // namespace

void TPerson::TEnregPublic::Raz() {
  // La partie de données simples (de ChpsSimpleLoaded à NoGeneration, dans l'ordre de la
  // déclaration) se vide d'un coup : chaque lecture d'une personne commence par là.
  char* debut = reinterpret_cast<char*>(&ChpsSimpleLoaded);
  char* fin = reinterpret_cast<char*>(&NoGeneration + 1);
  std::memset(debut, 0, static_cast<size_t>(fin - debut));
  Type = 'P';
  Supprime = ' ';
  Sexe = '?';
  Relation.clear();
  if (!IsZero(Sosa)) clear(Sosa);
  NoDescendance = "!!--!!";
  RangConjParent.clear();
}

// --- Construction et copie ---

TPerson::TPerson(TFicPersons* fic, long no, bool complement, int typeLecture, bool viaBuffer) : Fichier(fic) {
  if (no > 0 || no == -2)
    Lecture(no, complement, typeLecture, viaBuffer);
  else
    NouvelleFiche(0);
}

TPerson::TPerson(const TPerson& autre) : Fichier(autre.Fichier) { CopyPerson(autre); }

TPerson::~TPerson() = default;

void TPerson::CopieRappels(const TPerson& autre) {
  OnMajDateModif = autre.OnMajDateModif;
  OnSupprPere = autre.OnSupprPere;
  OnSupprMere = autre.OnSupprMere;
  OnSupprConjoint = autre.OnSupprConjoint;
  OnSupprEnfant = autre.OnSupprEnfant;
  OnSupprCitation = autre.OnSupprCitation;
  OnRappel7 = autre.OnRappel7;
  OnSupprEvenCouple = autre.OnSupprEvenCouple;
}

void TPerson::CopyPerson(const TPerson& autre) {
  if (this == &autre) return;
  Fichier = autre.Fichier;
  Numero = autre.Numero;
  Enreg = autre.Enreg;
  MajBuffer = autre.MajBuffer;
  Numeros = autre.Numeros;
  CopyChamps(autre);
  CopieRappels(autre);
}

void TPerson::CopyChamps(const TPerson& autre) {
  if (this == &autre) return;
  // Copie profonde : chaque personne possède ses listes, une copie n'en partage aucune.
  auto copie = [](const auto& source, auto& cible) {
    if (!source)
      cible.reset();
    else if (cible)
      *cible = *source;
    else
      cible = std::make_unique<std::remove_reference_t<decltype(*source)>>(*source);
  };
  copie(autre.Listes.Evens, Listes.Evens);
  copie(autre.Listes.Chps, Listes.Chps);
}

void TPerson::LibereMemoire() {
  Listes.Evens.reset();
  Listes.Chps.reset();
}

void TPerson::NouvelleFiche(long no) {
  LibereMemoire();
  Enreg.Raz();
  Enreg.Type = 'P';
  if (no == -3) {
    Numero = Fichier ? Fichier->ReturnNewNum() : 0;
    Enreg.ChpsSimpleLoaded = Enreg.EvenLoaded = Enreg.CitationLoaded = 1;
  } else {
    Numero = no;
  }
}

// --- Lecture ---

void TPerson::Lecture(long no, bool complement, int typeLecture, bool viaBuffer) {
  if (no != -3) Numero = no;
  if (viaBuffer && Numero != 0 && Numero != -2 && Fichier) {
    // Le drapeau de rafraîchissement est celui de l'appelant : seule la fiche vient du cache.
    const bool majBuffer = MajBuffer;
    TBufferisationArbChrono::De(*Fichier).LitPersonne(Numero, complement && typeLecture == 0, *this);
    MajBuffer = majBuffer;
    if (complement && typeLecture != 0) LectureComplementaireEvenement(1);
  } else {
    LectureDisque(complement);
  }
  if (TContexteDossier* gest = Gest()) gest->NoteLecture();
  Numeros.clear();
}

bool TPerson::LitBrut(TFicPersons* fic, long no, TEnreg& brut, std::unique_ptr<TExtPerson::TEnreg>& ext) {
  ext.reset();
  if (!PeutLireBrut(fic, no)) return false;
  return SuiteLitBrut(fic->Gest(), fic->LitEnreg(no, brut), brut, ext);
}

bool TPerson::LitBrutDeja(TFicPersons* fic, long no, const TEnreg& lu, TEnreg& brut,
                          std::unique_ptr<TExtPerson::TEnreg>& ext) {
  ext.reset();
  if (!PeutLireBrut(fic, no)) return false;
  // Ce que LitEnreg ferait d'une fiche venue entière.
  brut = lu;
  fic->Gest()->FixeErreur(false);
  return SuiteLitBrut(fic->Gest(), true, brut, ext);
}

bool TPerson::PeutLireBrut(TFicPersons* fic, long no) {
  TContexteDossier* gest = fic ? fic->Gest() : nullptr;
  return gest && no != 0 && no <= fic->NbPersEffective() && !gest->EnErreur();
}

bool TPerson::SuiteLitBrut(TContexteDossier* gest, bool venu, const TEnreg& brut,
                           std::unique_ptr<TExtPerson::TEnreg>& ext) {
  if (!venu) {
    if (gest->EnErreur()) gest->FixeGenreErreur(1);
    return false;
  }
  TFicExtPersons* ficExt = gest->FicExtPersons();
  // Un numéro de débordement hors du fichier .exp est une donnée abîmée : on ne le suit pas.
  if (brut.Extension >= 1 && ficExt && brut.Extension <= ficExt->NbEnreg()) {
    TExtPerson e(ficExt, brut.Extension);
    ext = std::make_unique<TExtPerson::TEnreg>(e.Enreg);
  }
  return true;
}

bool TPerson::AppliqueBrut(long no, const TEnreg& brut, const TExtPerson::TEnreg* ext) {
  Numero = no;
  LibereMemoire();
  Enreg.Raz();
  if (no != -2 && no != -3 && EnregFoireux(brut)) {
    Enreg.Supprime = 'O';
    return false;
  }
  TransfertVersPublic(brut, false);
  if (ext) TransfertVersPublic(*ext, false);
  return true;
}

void TPerson::FicheIllisible(long no) {
  Numero = no;
  LibereMemoire();
  Enreg.Raz();
  Numeros.clear();
  OublieRappels();
}

void TPerson::OublieRappels() {
  for (TRappel* r : {&OnMajDateModif, &OnSupprPere, &OnSupprMere, &OnSupprConjoint, &OnSupprEnfant, &OnSupprCitation,
                     &OnRappel7, &OnSupprEvenCouple})
    if (*r) *r = nullptr;
}

void TPerson::LectureDisque(bool complement) {
  // Vide la fiche sans toucher au numéro (un -3 ne doit pas en prendre un neuf ici).
  TEnreg brut;
  std::unique_ptr<TExtPerson::TEnreg> ext;
  if (!LitBrut(Fichier, Numero, brut, ext)) {
    LibereMemoire();
    Enreg.Raz();
    return;
  }
  if (AppliqueBrut(Numero, brut, ext.get()) && complement) LectureComplementaire();
}

bool TPerson::EnregFoireux(const TEnreg& enreg) const {
  const long nb = Fichier ? Fichier->NbPersEffective() : 0;
  if (enreg.Pere.No < 0 || enreg.Pere.No > nb) return true;
  if (enreg.Mere.No < 0 || enreg.Mere.No > nb) return true;
  if (LongueurBrute(enreg, enreg.Nom) >= 102) return true;
  if (LongueurBrute(enreg, enreg.Prenoms) > 71) return true;
  return false;
}

void TPerson::TransfertVersPublic(const TEnreg& e, bool force) {
  Enreg.Type = e.Type;
  Enreg.Supprime = e.Supprime;
  Enreg.Sexe = (e.Sexe == 'M' || e.Sexe == 'F') ? e.Sexe : '?';
  Enreg.Pere = e.Pere;
  Enreg.Mere = e.Mere;
  std::copy(std::begin(e.Conjoints), std::end(e.Conjoints), Enreg.Conjoints);
  std::copy(std::begin(e.Enfants), std::end(e.Enfants), Enreg.Enfants);
  CopieTexte(Enreg.Nom, sizeof Enreg.Nom, e.Nom, 100);
  CopieTexte(Enreg.Prenoms, sizeof Enreg.Prenoms, e.Prenoms, 70);
  Enreg.PrenomUsuel = e.PrenomUsuel;
  std::copy(std::begin(e.Index), std::end(e.Index), Enreg.Index);
  Enreg.Note = e.Note;
  Enreg.Extension = e.Extension;
  Enreg.Long1 = e.Reserve2;
  Enreg.Long2 = e.Reserve3;
  // Dans un dossier courant, les tables de liens viennent de la base, pas du fichier.
  if (force || (Gest() && Gest()->IsVersion2009())) {
    std::copy(std::begin(e.LiensChpsSimple), std::end(e.LiensChpsSimple), Enreg.LiensChpsSimple);
    std::copy(std::begin(e.LiensEvenement), std::end(e.LiensEvenement), Enreg.LiensEvenement);
    std::copy(std::begin(e.LiensCitation), std::end(e.LiensCitation), Enreg.LiensCitation);
    Enreg.ChpsSimpleLoaded = Enreg.EvenLoaded = Enreg.CitationLoaded = 1;
  }
}

void TPerson::TransfertVersPublic(const TExtPerson::TEnreg& e, bool force) {
  std::copy(std::begin(e.Conjoints), std::end(e.Conjoints), Enreg.Conjoints + 10);
  std::copy(std::begin(e.Enfants), std::end(e.Enfants), Enreg.Enfants + 30);
  if (force || (Gest() && Gest()->IsVersion2009())) {
    std::copy(std::begin(e.LiensChpsSimple), std::end(e.LiensChpsSimple), Enreg.LiensChpsSimple + 15);
    std::copy(std::begin(e.LiensEvenement), std::end(e.LiensEvenement), Enreg.LiensEvenement + 15);
    std::copy(std::begin(e.LiensCitation), std::end(e.LiensCitation), Enreg.LiensCitation + 10);
  }
}

void TPerson::TransfertDepuisPublic(TEnreg& e) const {
  e.Type = Enreg.Type;
  e.Supprime = Enreg.Supprime;
  e.Sexe = Enreg.Sexe;
  e.Pere = Enreg.Pere;
  e.Mere = Enreg.Mere;
  std::copy(Enreg.Conjoints, Enreg.Conjoints + 10, e.Conjoints);
  std::copy(Enreg.Enfants, Enreg.Enfants + 30, e.Enfants);
  CopieTexte(e.Nom, sizeof e.Nom, Enreg.Nom, sizeof Enreg.Nom);
  CopieTexte(e.Prenoms, sizeof e.Prenoms, Enreg.Prenoms, sizeof Enreg.Prenoms);
  e.PrenomUsuel = Enreg.PrenomUsuel;
  std::memset(e.Reserve1, 0, sizeof e.Reserve1);
  std::fill(std::begin(e.LiensChpsSimple), std::end(e.LiensChpsSimple), 0);
  std::fill(std::begin(e.LiensEvenement), std::end(e.LiensEvenement), 0);
  std::fill(std::begin(e.LiensCitation), std::end(e.LiensCitation), 0);
  std::copy(std::begin(Enreg.Index), std::end(Enreg.Index), e.Index);
  e.Note = Enreg.Note;
  e.Extension = Enreg.Extension;
  e.Reserve2 = Enreg.Long1;
  e.Reserve3 = Enreg.Long2;
}

void TPerson::TransfertDepuisPublic(TExtPerson::TEnreg& e) const {
  e.NoPersonne = static_cast<int32_t>(Numero);
  std::copy(Enreg.Conjoints + 10, Enreg.Conjoints + NbConjoints, e.Conjoints);
  std::copy(Enreg.Enfants + 30, Enreg.Enfants + NbEnfants, e.Enfants);
  std::fill(std::begin(e.LiensChpsSimple), std::end(e.LiensChpsSimple), 0);
  std::fill(std::begin(e.LiensEvenement), std::end(e.LiensEvenement), 0);
  std::fill(std::begin(e.LiensCitation), std::end(e.LiensCitation), 0);
}

// --- Écriture ---

void TPerson::Enregistrement(long no, TFicPersons* fic, bool sansChamps, bool sansIndex, bool inutilise,
                             bool majIndex) {
  (void)inutilise;
  TFicPersons* garde = Fichier;
  if (fic) Fichier = fic;
  if (no != -3) Numero = no;
  TContexteDossier* gest = Gest();
  if (!gest || Numero == 0 || gest->IsReadOnly() || gest->EnErreur()) {
    Fichier = garde;
    return;
  }
  TVoisinsPersonne* voisins = VoisinsDe(gest);
  if (!sansChamps && Listes.Evens && Listes.Chps) {
    if (TModuleBDD* bdd = gest->ModuleBDD()) {
      if (voisins && voisins->ClassementParType()) ClassementTypeEven();
      ClassementChronoEven();
      EnregistrerChpsOfPerson(*bdd, *this, Listes);
    }
  }

  if (!AucunLien() && IsTemoin()) SetPersonne();

  if (TFicExtPersons* ficExt = gest->FicExtPersons()) {
    TExtPerson ext(ficExt, 0);
    TransfertDepuisPublic(ext.Enreg);
    if (!ext.Enreg.Vide() || Enreg.Extension != 0) {
      if (Enreg.Extension < 1 || Enreg.Extension > ficExt->NbEnreg()) Enreg.Extension = ficExt->ReturnNewNum();
      ext.Enregistrement(Enreg.Extension);
    }
  }

  // L'index des noms d'abord : ses entrées sont dans la fiche, et le double du cache les
  // reçoit ainsi avec le reste, en une seule recopie.
  if (!sansIndex && majIndex && Numero != -2 && Numero != -3 && voisins) voisins->ModifClef(*this, true);
  UpdateBufferPerson();

  TEnreg enreg{};
  TransfertDepuisPublic(enreg);
  Fichier->EcritEnreg(Numero, enreg);

  Fichier = garde;
  if (Numero != -2) gest->NoteEcriture();
}

void TPerson::UpdateBufferPerson(bool forcer) {
  if (!Fichier || !Fichier->Cache() || Numero <= 0) return;
  Fichier->Cache()->Update(*this, forcer);
}

TVoisinsPersonne* TPerson::Voisins() const { return VoisinsDe(Gest()); }

void TPerson::ViderCachesChps() {
  if (Fichier && Fichier->Cache()) Fichier->Cache()->Delete(Numero);
  std::fill(std::begin(Enreg.LiensChpsSimple), std::end(Enreg.LiensChpsSimple), 0);
  std::fill(std::begin(Enreg.LiensEvenement), std::end(Enreg.LiensEvenement), 0);
  std::fill(std::begin(Enreg.LiensCitation), std::end(Enreg.LiensCitation), 0);
  LibereMemoire();
}

// --- Questions sur les liens ---

bool TPerson::IsParentOf(long& no, int& rang) const {
  for (; rang < NbEnfants; ++rang) {
    if (Enreg.Enfants[rang].No == 0) return false;
    if (Enreg.Enfants[rang].No == no) return true;
  }
  return false;
}

bool TPerson::IsParentOf(long& no) const {
  int rang = 0;
  return IsParentOf(no, rang);
}

int TPerson::FirstNullChild() const {
  for (int i = 0; i < NbEnfants; ++i)
    if (Enreg.Enfants[i].No == 0) return i;
  return NbEnfants;
}

int TPerson::CompteNbConjoint() const {
  return static_cast<int>(std::count_if(std::begin(Enreg.Conjoints), std::end(Enreg.Conjoints),
                                        [](const TLienConj& c) { return c.No != 0; }));
}

int TPerson::CompteNbConjointHors(long no) const {
  return static_cast<int>(std::count_if(std::begin(Enreg.Conjoints), std::end(Enreg.Conjoints),
                                        [no](const TLienConj& c) { return c.No != 0 && c.No != no; }));
}

int TPerson::GetFirstNoConj() const {
  for (int i = 0; i < NbConjoints; ++i)
    if (Enreg.Conjoints[i].No != 0) return i;
  return 0;
}

int TPerson::CompteNbEnfant(long autreParent) const {
  if (autreParent == 0 || !Fichier) {
    return static_cast<int>(std::count_if(std::begin(Enreg.Enfants), std::end(Enreg.Enfants),
                                          [](const TLienPers& e) { return e.No != 0; }));
  }
  const TPerson autre(Fichier, autreParent, false, 0, true);
  int n = 0;
  for (const TLienPers& e : Enreg.Enfants)
    if (e.No != 0 && autre.RetourneRgEnf(e.No) != 0) ++n;
  return n;
}

int TPerson::RetourneRgConj(long no) const {
  if (no == 0) return 0;
  for (int i = 0; i < NbConjoints; ++i)
    if (Enreg.Conjoints[i].No == no) return i + 1;
  return 0;
}

int TPerson::RetourneRgEnf(long no) const {
  if (no == 0) return 0;
  for (int i = 0; i < NbEnfants; ++i)
    if (Enreg.Enfants[i].No == no) return i + 1;
  return 0;
}

int TPerson::RetourneRgChpsSimple(long no) const {
  if (no == 0) return 0;
  for (int i = 0; i < NbLiens; ++i)
    if (Enreg.LiensChpsSimple[i] == no) return i + 1;
  return 0;
}

int TPerson::RetourneRgEven(long no) const {
  if (no == 0) return 0;
  for (int i = 0; i < NbLiens; ++i)
    if (Enreg.LiensEvenement[i] == no) return i + 1;
  return 0;
}

TLienConj& TPerson::RechRefConj(long no) {
  const int rg = RetourneRgConj(no);
  if (rg == 0) {
    gConjVide = TLienConj();
    return gConjVide;
  }
  return Enreg.Conjoints[rg - 1];
}

TLienPers& TPerson::RechRefEnf(long no) {
  const int rg = RetourneRgEnf(no);
  if (rg == 0) {
    gEnfVide = TLienPers();
    return gEnfVide;
  }
  return Enreg.Enfants[rg - 1];
}

long TPerson::NoAutreParent(long no) const {
  // Voulu : 0 n'est pas écarté ; sans père, NoAutreParent(0) rend la mère.
  if (Enreg.Pere.No == no) return Enreg.Mere.No;
  if (Enreg.Mere.No == no) return Enreg.Pere.No;
  return 0;
}

bool TPerson::AucunLien() const {
  return Enreg.Pere.No == 0 && Enreg.Mere.No == 0 && CompteNbConjoint() == 0 && CompteNbEnfant() == 0;
}

bool TPerson::NomEtPrenomVides() const {
  return Enreg.Prenoms[0] == 0 && (Enreg.Nom[0] == 0 || std::strcmp(Enreg.Nom, "XXX") == 0);
}

bool TPerson::FicheVide() const {
  return NomEtPrenomVides() && Enreg.Pere.No <= 0 && Enreg.Mere.No <= 0 && CompteNbConjoint() == 0 &&
         CompteNbEnfant() == 0 && Enreg.LiensEvenement[0] == 0;
}

bool TPerson::FicheCassee() const {
  const long nb = Fichier ? Fichier->NbPersEffective() : 0;
  if (Enreg.Pere.No > nb || Enreg.Mere.No > nb) return true;
  for (const TLienConj& c : Enreg.Conjoints)
    if (c.No > nb) return true;
  for (const TLienPers& e : Enreg.Enfants)
    if (e.No > nb) return true;
  return false;
}

int TPerson::RgSexe() const { return Enreg.Sexe == 'M' ? 1 : Enreg.Sexe == 'F' ? 2 : 0; }

char TPerson::NotSex() const { return Enreg.Sexe == 'M' ? 'F' : Enreg.Sexe == 'F' ? 'M' : '?'; }

void TPerson::GetVectorEnfants(std::vector<long>& enfants) const {
  enfants.clear();
  for (const TLienPers& e : Enreg.Enfants)
    if (e.No != 0) enfants.push_back(e.No);
}

void TPerson::SetVectorEnfants(const std::vector<long>& enfants) {
  for (int i = 0; i < NbEnfants; ++i)
    Enreg.Enfants[i] = TLienPers(i < static_cast<int>(enfants.size()) ? enfants[i] : 0);
}

// --- Modifications de la fiche seule ---

void TPerson::SetNom(const std::string& nom) { CopieTexte(Enreg.Nom, sizeof Enreg.Nom, nom.c_str(), nom.size()); }

void TPerson::SetPrenoms(const std::string& prenoms) {
  CopieTexte(Enreg.Prenoms, sizeof Enreg.Prenoms, prenoms.c_str(), prenoms.size());
}

int TPerson::AjouteConj(long no, bool avecEvenement, TPerson* conjoint) {
  if (no == 0) return -1;
  for (int i = 0; i < NbConjoints; ++i) {
    if (Enreg.Conjoints[i].No == no) return i;
    if (Enreg.Conjoints[i].No == 0) {
      Enreg.Conjoints[i] = TLienConj(no, 0, 0);
      if (avecEvenement) {
        const TVoisinsPersonne* v = Voisins();
        const TDefChpsCs* cat = v ? v->GetDefChpsCs() : nullptr;
        AjoutEvenVierge(cat ? cat->EquivUnion.LibelleChamp1 : std::string("UNION"), no, conjoint);
      }
      return i;
    }
  }
  return -1;
}

void TPerson::SetLienConj(const TLienConj& lien) {
  for (TLienConj& c : Enreg.Conjoints)
    if (c.No == lien.No) c = lien;
}

int TPerson::AjouteEnf(long no, long conjoint) {
  if (no == 0) return 0;
  const int deja = RetourneRgEnf(no);
  // Voulu : un enfant déjà là rend son index moins un.
  if (deja != 0) return deja - 2;
  int i = FirstNullChild();
  if (i == NbEnfants) return -1;
  Enreg.Enfants[i] = TLienPers(no);
  if (conjoint == -1) return i;
  const int rg = RetourneRgConj(conjoint);
  if (rg == 0 && conjoint != 0) return i;
  // Remontée : un enfant sans autre parent passe au-dessus des enfants d'un conjoint
  // connu jusqu'à rencontrer un autre enfant sans autre parent ; l'asymétrie est voulue.
  while (i > 0) {
    const TPerson dessus(Fichier, Enreg.Enfants[i - 1].No, false, 0, true);
    const int r = RetourneRgConj(dessus.NoAutreParent(Numero));
    if ((r != 0 && r <= rg) || r == rg) break;
    std::swap(Enreg.Enfants[i - 1], Enreg.Enfants[i]);
    --i;
  }
  return i;
}

void TPerson::SupprimeConjoint(long no, bool* change) {
  for (TLienConj& c : Enreg.Conjoints)
    if (c.No == no) {
      c = TLienConj();
      if (change) *change = true;
    }
}

void TPerson::SupprimeEnfant(long no, bool* change) {
  for (TLienPers& e : Enreg.Enfants)
    if (e.No == no) {
      e = TLienPers();
      if (change) *change = true;
    }
}

namespace {
template <typename T, size_t N>
bool Recompacte(T (&table)[N]) {
  bool bouge = false;
  size_t j = 0;
  for (size_t i = 0; i < N; ++i) {
    if (table[i].No == 0) continue;
    if (i != j) {
      table[j] = table[i];
      bouge = true;
    }
    ++j;
  }
  for (; j < N; ++j) table[j] = T();
  return bouge;
}
}  // namespace

bool TPerson::RecompacteConjoint() { return Recompacte(Enreg.Conjoints); }
bool TPerson::RecompacteEnfant() { return Recompacte(Enreg.Enfants); }

bool TPerson::DeplaceEnfantVersBenjamin(long no) {
  const int rg = RetourneRgEnf(no);
  if (rg == 0 || rg >= NbEnfants || Enreg.Enfants[rg].No == 0) return false;
  std::swap(Enreg.Enfants[rg - 1], Enreg.Enfants[rg]);
  return true;
}

bool TPerson::DeplaceEnfantVersAine(long no) {
  if (CompteNbEnfant() < 2) return false;
  const int rg = RetourneRgEnf(no);
  if (rg <= 1) return false;
  std::swap(Enreg.Enfants[rg - 2], Enreg.Enfants[rg - 1]);
  return true;
}

namespace {
// Déplace `no` dans la table des conjoints jusqu'à l'index pos-1, `nb` bornant la
// position et les boucles.
bool DeplaceDansConjoints(TLienConj* conj, long no, int pos, int nb) {
  if (pos > nb) pos = 1;
  const int cible = pos - 1;
  if (cible < 0) return false;
  int i = -1;
  for (int k = 0; k < nb && k < TPerson::NbConjoints; ++k)
    if (conj[k].No == no) {
      i = k;
      break;
    }
  if (i < 0) return false;
  if (i == cible) return false;
  if (i < cible) {
    for (; i < cible; ++i) std::swap(conj[i], conj[i + 1]);
  } else {
    for (int k = std::min(nb, TPerson::NbConjoints) - 1; k >= 0; --k)
      if (conj[k].No == no) {
        i = k;
        break;
      }
    for (; i > cible; --i) std::swap(conj[i], conj[i - 1]);
  }
  return true;
}
}  // namespace

bool TPerson::DeplacerConjVersPos(long no, int pos) {
  return DeplaceDansConjoints(Enreg.Conjoints, no, pos, CompteNbConjoint());
}

bool TPerson::DeplacerEnfantVersPos(long no, int pos) {
  return DeplaceDansConjoints(Enreg.Conjoints, no, pos, CompteNbEnfant());
}

void TPerson::RepareFiche() {
  const long nb = Fichier ? Fichier->NbPersEffective() : 0;
  if (Enreg.Pere.No > nb) Enreg.Pere = TLienPers();
  if (Enreg.Mere.No > nb) Enreg.Mere = TLienPers();
  for (TLienConj& c : Enreg.Conjoints)
    if (c.No > nb) c = TLienConj();
  for (TLienPers& e : Enreg.Enfants)
    if (e.No > nb) e = TLienPers();
}

}  // namespace rqbase

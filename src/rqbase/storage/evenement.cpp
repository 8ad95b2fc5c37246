#include "rqbase/storage/evenement.h"

#include <algorithm>
#include <cstring>
#include <type_traits>

#include "rqbase/platform/cp1252.h"
#include "rqbase/storage/contexte_dossier.h"
#include "rqbase/storage/datamodulebdd.h"
#include "rqbase/util/chaines.h"
#include "rqbase/util/fichiers.h"

namespace rqbase {

namespace {

std::string Coupe(std::string_view texte, size_t taille) {
  return std::string(texte.substr(0, std::min(texte.size(), taille)));
}

// Retire la place i d'une table de longs, en remontant les suivantes ; la dernière devient 0.
template <typename T>
void RetireEtRemonte(T* table, int taille, int i) {
  if (i < 0 || i >= taille) return;
  for (int k = i; k < taille - 1; ++k) table[k] = table[k + 1];
  table[taille - 1] = T();
}

bool IsCoupleDe(long pa, long pb, long a, long b) {
  return (pa == a && pb == b) || (pa == b && pb == a);
}
bool IsPersCoupleDe(long pa, long pb, long a) {
  return pa == a || pb == a || (pb < 1 && a < 1);
}
long NoConjointDe(long pa, long pb, long a) {
  if (pa == a) return pb;
  if (pb == a) return pa;
  return 0;
}

// Une écriture n'a lieu que dans une base ouverte en écriture, d'un dossier qui peut écrire.
bool PeutEcrire(TModuleBDD* bdd) {
  if (!bdd || !bdd->EstOuverte() || bdd->EstEnLectureSeule()) return false;
  return !bdd->Contexte || bdd->Contexte->PeutEcrire();
}

std::string DossierDe(const TModuleBDD& bdd) {
  const std::string& adb = bdd.GetCheminAdb();
  const size_t slash = adb.find_last_of('/');
  return slash == std::string::npos ? std::string(".") : adb.substr(0, slash);
}

}  // namespace

// --- TEvenement::TEnreg ---

void TEvenement::TEnreg::Raz() {
  // Une personne citée vide est faite de zéros : les 50 places se vident d'un coup.
  static_assert(std::is_trivially_copyable_v<TPersAssociee>);
  std::memset(static_cast<void*>(PersAssociees), 0, sizeof PersAssociees);
  std::fill(std::begin(Illustrations), std::end(Illustrations), 0);
  std::fill(std::begin(Sources), std::end(Sources), 0);
  PersAssocieesChargees = IllustrationsChargees = SourcesChargees = false;
  No = 0;
  Libelle.clear();
  Donnee.clear();
  NoPersA = NoPersB = 0;
  Date = TDateRQ();
  Lieu = 0;
  LieuDit.clear();
  Note = NoIllustrationParDefaut = LienExtEven = 0;
}

bool TEvenement::TEnreg::Vide() const {
  return Trim(Libelle).empty() && Trim(Donnee).empty() && Date.Vide() && Lieu == 0 && Trim(LieuDit).empty() &&
         Note == 0 && CountSource() == 0 && CountIllustration() == 0 && CountPersAssociee() == 0;
}

void TEvenement::TEnreg::SetLibelle(std::string_view libelle) {
  Libelle = Coupe(Trim(libelle), kLgLibelle);
}
void TEvenement::TEnreg::SetDonnee(std::string_view donnee) {
  Donnee = Coupe(donnee, kLgDonnee);
}
void TEvenement::TEnreg::SetLieuDit(std::string_view lieuDit) {
  LieuDit = Coupe(lieuDit, kLgLieuDit);
}

bool TEvenement::TEnreg::IsCouple(long a, long b) const {
  return IsCoupleDe(NoPersA, NoPersB, a, b);
}
bool TEvenement::TEnreg::IsPersCouple(long a) const {
  return IsPersCoupleDe(NoPersA, NoPersB, a);
}
long TEvenement::TEnreg::NoConjoint(long a) const {
  return NoConjointDe(NoPersA, NoPersB, a);
}

int TEvenement::TEnreg::AjoutSource(long id) {
  // Voulu : pas de recherche de doublon, la même source peut être citée deux fois.
  for (int i = 0; i < kNbSourcesEven; ++i)
    if (Sources[i] == 0) {
      Sources[i] = static_cast<int32_t>(id);
      return i;
    }
  return -1;
}

void TEvenement::TEnreg::SupprSource(int i) {
  RetireEtRemonte(Sources, kNbSourcesEven, i);
}

int TEvenement::TEnreg::AjoutIllustration(long id) {
  const int deja = ChercheRgNoIllustration(id);
  if (deja >= 0) return deja;
  for (int i = 0; i < kNbIllustrationsEven; ++i)
    if (Illustrations[i] == 0) {
      Illustrations[i] = static_cast<int32_t>(id);
      return i;
    }
  return -1;
}

void TEvenement::TEnreg::SupprIllustration(int i) {
  RetireEtRemonte(Illustrations, kNbIllustrationsEven, i);
}

void TEvenement::TEnreg::SetIllustration(int i, long id) {
  if (i >= 0 && i < kNbIllustrationsEven) Illustrations[i] = static_cast<int32_t>(id);
}

int TEvenement::TEnreg::AjoutPersAssociee(const TPersAssociee& p) {
  if (p.Vide()) return -1;
  for (int i = 0; i < kNbPersAssocieesEven; ++i) {
    if (PersAssociees[i].Lien.No == p.Lien.No) return i;
    if (PersAssociees[i].Vide()) {
      PersAssociees[i] = p;
      return i;
    }
  }
  return -1;
}

void TEvenement::TEnreg::ModifPersAssociee(int i, const TPersAssociee& p) {
  if (i >= 0 && i < kNbPersAssocieesEven) PersAssociees[i] = p;
}

void TEvenement::TEnreg::SupprPersAssociee(int i, TPersAssociee* supp) {
  if (i < 0 || i >= kNbPersAssocieesEven) return;
  if (supp) *supp = PersAssociees[i];
  RetireEtRemonte(PersAssociees, kNbPersAssocieesEven, i);
}

void TEvenement::TEnreg::SupprPersAssocieeNo(long no, TPersAssociee* supp) {
  SupprPersAssociee(ChercheRgNoPersAssociee(no), supp);
}

int TEvenement::TEnreg::ChercheRgNoSource(long id) const {
  for (int i = 0; i < kNbSourcesEven; ++i)
    if (id != 0 && Sources[i] == id) return i;
  return -1;
}

int TEvenement::TEnreg::ChercheRgNoIllustration(long id) const {
  for (int i = 0; i < kNbIllustrationsEven; ++i)
    if (id != 0 && Illustrations[i] == id) return i;
  return -1;
}

int TEvenement::TEnreg::ChercheRgNoPersAssociee(long no) const {
  for (int i = 0; i < kNbPersAssocieesEven; ++i)
    if (no != 0 && PersAssociees[i].Lien.No == no) return i;
  return -1;
}

int TEvenement::TEnreg::CountSource() const {
  return static_cast<int>(std::count_if(std::begin(Sources), std::end(Sources), [](int32_t v) { return v != 0; }));
}
int TEvenement::TEnreg::CountIllustration() const {
  return static_cast<int>(
      std::count_if(std::begin(Illustrations), std::end(Illustrations), [](int32_t v) { return v != 0; }));
}
int TEvenement::TEnreg::CountPersAssociee() const {
  return static_cast<int>(std::count_if(std::begin(PersAssociees), std::end(PersAssociees),
                                        [](const TPersAssociee& p) { return !p.Vide(); }));
}

// --- TEvenement ---

TEvenement::TEvenement(TModuleBDD* bdd, long no) : Bdd(bdd) {
  if (no > 0 && Bdd) {
    Enreg.No = no;
    Bdd->LectureEven(this);
  }
}

bool TEvenement::Enregistrement() {
  if (!PeutEcrire(Bdd)) return false;
  Bdd->EnregistrementEven(this);
  return true;
}

int32_t* TEvenement::Illustration() {
  if (!Enreg.IllustrationsChargees && Bdd) Bdd->ChargerIllustrationOfEven(&Enreg);
  return Enreg.Illustrations;
}

int32_t* TEvenement::GetSource() {
  if (!Enreg.SourcesChargees && Bdd) Bdd->ChargerSourceOfEven(&Enreg);
  return Enreg.Sources;
}

TPersAssociee* TEvenement::GetPersAssociee() {
  if (!Enreg.PersAssocieesChargees && Bdd) Bdd->ChargerPersAssocieeOfEven(&Enreg);
  return Enreg.PersAssociees;
}

void TEvenement::ChargerTableauxBDD() {
  if (!Bdd) return;
  Bdd->ChargerSourceOfEven(&Enreg);
  Bdd->ChargerIllustrationOfEven(&Enreg);
  Bdd->ChargerPersAssocieeOfEven(&Enreg);
}

// --- TChpsSimple ---

bool TChpsSimple::TEnreg::Vide() const {
  return Trim(Libelle).empty() && Trim(Donnee).empty();
}
void TChpsSimple::TEnreg::SetLibelle(std::string_view libelle) {
  Libelle = Coupe(Trim(libelle), kLgLibelle);
}
void TChpsSimple::TEnreg::SetDonnee(std::string_view donnee) {
  Donnee = Coupe(donnee, kLgDonnee);
}
bool TChpsSimple::TEnreg::IsCouple(long a, long b) const {
  return IsCoupleDe(NoPersA, NoPersB, a, b);
}
bool TChpsSimple::TEnreg::IsPersCouple(long a) const {
  return IsPersCoupleDe(NoPersA, NoPersB, a);
}
long TChpsSimple::TEnreg::NoConjoint(long a) const {
  return NoConjointDe(NoPersA, NoPersB, a);
}

TChpsSimple::TChpsSimple(TModuleBDD* bdd, long no) : Bdd(bdd) {
  if (no > 0 && Bdd) {
    Enreg.No = no;
    Bdd->LectureChpsSimple(this);
  }
}

bool TChpsSimple::Enregistrement() {
  if (!PeutEcrire(Bdd)) return false;
  Bdd->EnregistrementChpsSimple(this);
  return true;
}

// --- TSource, TIllustration ---

bool TSource::Enregistrement() {
  if (!PeutEcrire(Bdd)) return false;
  Bdd->EnregistrementSource(this);
  return true;
}

bool TIllustration::Enregistrement() {
  if (!PeutEcrire(Bdd)) return false;
  const std::string dossier = DossierDe(*Bdd) + "/";
  if (Enreg.Chemin.compare(0, dossier.size(), dossier) == 0) SetChemin(Enreg.Chemin.substr(dossier.size()));
  Bdd->EnregistrementIllustration(this);
  return true;
}

TSource::TSource(TModuleBDD* bdd, long no) : Bdd(bdd) {
  if (no > 0 && Bdd) {
    No = no;
    Bdd->LectureSource(this);
  }
}
void TSource::SetType(std::string_view t) {
  Enreg.Type = Coupe(t, kLgTypeSource);
}
void TSource::SetDescriptif(std::string_view d) {
  Enreg.Descriptif = Coupe(d, kLgDescriptifSource);
}

TIllustration::TIllustration(TModuleBDD* bdd, long no) : Bdd(bdd) {
  if (no > 0 && Bdd) {
    No = no;
    Bdd->LectureIllustration(this);
  }
}
void TIllustration::SetChemin(std::string_view c) {
  Enreg.Chemin = Coupe(c, kLgChemin);
}

std::string TIllustration::GetExpandFilename() const {
  std::string chemin = Enreg.Chemin;
  std::replace(chemin.begin(), chemin.end(), '\\', '/');
  if (!Bdd || chemin.empty()) return chemin;
  const std::string absolu = chemin[0] == '/' ? chemin : DossierDe(*Bdd) + "/" + chemin;
  if (Bdd->DossierExport && !FichierExiste(absolu)) {
    const std::string exporte = TransformPathToPathExport(chemin, DossierDe(*Bdd));
    if (FichierExiste(exporte)) return exporte;
  }
  return absolu;
}

std::string TransformPathToPathExport(std::string_view chemin, std::string_view dossier) {
  std::string c(chemin);
  std::replace(c.begin(), c.end(), '\\', '/');
  // Le dernier dossier « Images » du chemin, à quelque profondeur et en quelque casse qu'il
  // soit : ce qui le suit est le chemin de l'image dans tout dossier copié avec ses images.
  const std::string maj = MajusculesCp1252(c);
  size_t debut = std::string::npos;
  for (size_t p = maj.find("IMAGES/"); p != std::string::npos; p = maj.find("IMAGES/", p + 1))
    if (p == 0 || maj[p - 1] == '/') debut = p + 7;
  std::string suite;
  if (debut != std::string::npos) {
    suite = c.substr(debut);
  } else {
    const size_t slash = c.find_last_of('/');
    suite = slash == std::string::npos ? c : c.substr(slash + 1);
  }
  std::string d(dossier);
  if (!d.empty() && d.back() != '/') d += '/';
  return d + "Images/" + suite;
}

}  // namespace rqbase

// Les façades des événements et de leurs listes : la base dans un dossier actuel, les
// anciens fichiers d'enregistrements (lecture seule) dans un dossier de 2009.
#include "rqbase/storage/fic_evens.h"

#include <SQLiteCpp/SQLiteCpp.h>
#include <sqlite3.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include "rqbase/util/chaines.h"

namespace rqbase {

namespace {

// Un texte de champ fixe : jusqu'au premier zéro, jamais au-delà du champ.
std::string Champ(const char* p, size_t taille) {
  return std::string(p, strnlen(p, taille));
}

// Ouvre l'ancien fichier seulement dans un dossier de 2009.
std::unique_ptr<TFicAncien> OuvreSi2009(TContexteDossier* gest, TTypeFichier type, size_t taille, size_t decalage,
                                        bool texte = false) {
  if (!gest || !gest->IsVersion2009()) return nullptr;
  return std::make_unique<TFicAncien>(gest, type, taille, decalage, texte);
}

TPersAssociee PersAssociee(const TPersCiteeAncienne& c) {
  TPersAssociee p;
  p.Lien = TLienPers(c.No, c.Octet);
  p.LienQualite = c.LienQualite;
  p.LienParente = c.LienParente;
  return p;
}

// Le libellé d'un enregistrement ancien comparé comme la base le compare : sans blancs
// autour, 21 caractères au plus.
bool MemeLibelle(const std::string& lu, const std::string& cherche) {
  return Trim(lu) == Trim(cherche).substr(0, kLgLibelle);
}

}  // namespace

// --- TFicAncien ---

TFicAncien::TFicAncien(TContexteDossier* gest, TTypeFichier type, size_t taille, size_t decalage, bool texte)
    : TFicEnregBase(nullptr, type, taille, false), DecalageCompte(decalage), CompteTexte(texte) {
  // Le motif commun ouvrirait le fichier en lecture-écriture et le créerait s'il manque :
  // un ancien fichier ne s'ouvre qu'en lecture, et seulement s'il est là.
  Gestion = gest;
  if (gest)
    Handle = TFichierBrut::Ouvre(gest->FabriqueNomFichier(type), TFichierBrut::TAcces::Lecture,
                                 TFichierBrut::TDisposition::Ouvre, false);
  Demarre(false);
}

void TFicAncien::LectureEntete() {
  Nombre = NombreSurDisque = 0;
  if (!Handle || Handle->Taille() == 0 || !Gestion) return;
  std::vector<char> enreg(Taille, 0);
  if (!LitEnregistrement(Gestion, Handle.get(), -2, enreg.data(), Taille)) return;
  long compte = 0;
  if (CompteTexte) {
    compte = std::atol(EltNo(1, Champ(enreg.data() + DecalageCompte, Taille - DecalageCompte), '\n').c_str());
  } else {
    int32_t n = 0;
    std::memcpy(&n, enreg.data() + DecalageCompte, sizeof n);
    compte = n;
  }
  // Un compte que le fichier ne peut tenir est lu aussi loin que le fichier va.
  Nombre = NombreSurDisque = std::clamp<long>(compte, 0, CompteMaxSelonTaille());
}

bool TFicAncien::Lit(long no, void* tampon) {
  std::memset(tampon, 0, Taille);
  if (no < 1 || no > Nombre || !Gestion || Gestion->EnErreur()) return false;
  return LitEnreg(no, tampon);
}

// --- Objets lus des anciens fichiers ---

void TEvenement::TransfertVersPublic(const TEnregPrive& p) {
  TEnreg& e = Enreg;
  e.SetLibelle(Champ(p.Libelle, sizeof p.Libelle));
  e.NoPersA = p.NoPersA;
  e.NoPersB = p.NoPersB;
  // TDateRQ : acte (3), calendrier (1), texte (11) ; l'acte n'en garde que 2 caractères.
  e.Date = TDateRQ(p.Date[3] ? p.Date[3] : '?', Champ(p.Date + 4, 11));
  e.Date.SetActe(Champ(p.Date, 3));
  e.Lieu = p.Lieu;
  e.SetLieuDit(Champ(p.LieuDit, sizeof p.LieuDit));
  e.Note = p.Note;
  e.NoIllustrationParDefaut = p.IllustrationParDefaut;
  e.LienExtEven = p.NoExt;
  for (int i = 0; i < 4; ++i) e.PersAssociees[i] = PersAssociee(p.PersCitees[i]);
  for (int i = 0; i < 2; ++i) e.Illustrations[i] = p.Illustrations[i];
  for (int i = 0; i < 4; ++i) e.Sources[i] = p.Sources[i];
  e.PersAssocieesChargees = e.IllustrationsChargees = e.SourcesChargees = true;
}

void TEvenement::TransfertVersPublic(const TExtEvenement::TEnreg& x) {
  TEnreg& e = Enreg;
  e.SetDonnee(Champ(x.Donnee, sizeof x.Donnee));
  for (int i = 0; i < 16; ++i) e.PersAssociees[4 + i] = PersAssociee(x.PersCitees[i]);
  for (int i = 0; i < 8; ++i) e.Illustrations[2 + i] = x.Illustrations[i];
  for (int i = 0; i < 6; ++i) e.Sources[4 + i] = x.Sources[i];
}

bool TEvenement::LectureAncien(TFicEvens* fic) {
  const long no = Enreg.No;
  Enreg.Raz();
  TFicAncien* f = fic ? fic->Fichier() : nullptr;
  TEnregPrive p;
  if (!f || !f->Lit(no, &p)) return false;
  Enreg.No = no;
  TransfertVersPublic(p);
  TExtEvenement::TEnreg x;
  if (p.NoExt != 0 && fic->Ext && fic->Ext->Lecture(p.NoExt, x)) TransfertVersPublic(x);
  return true;
}

bool TChpsSimple::LectureAncien(TFicChpsSimple* fic, long no) {
  Enreg.Raz();
  TFicAncien* f = fic ? fic->Fichier() : nullptr;
  TEnregRq r;
  if (!f || !f->Lit(no, &r)) return false;
  Enreg.No = no;
  Enreg.SetLibelle(Champ(r.Libelle, sizeof r.Libelle));
  // Une donnée de plus de 101 caractères est tenue pour abîmée : lue vide, voulu.
  const std::string donnee = Champ(r.Donnee, sizeof r.Donnee);
  Enreg.SetDonnee(donnee.size() > 101 ? std::string() : donnee);
  Enreg.NoPersA = r.NoPersA;
  Enreg.NoPersB = r.NoPersB;
  return true;
}

bool TSource::LectureAncien(TFicSources* fic, long no) {
  No = NoEven = 0;
  Enreg = TEnreg();
  TFicAncien* f = fic ? fic->Fichier() : nullptr;
  TEnregSourceAncien s;
  if (!f || !f->Lit(no, &s)) return false;
  No = no;
  NoEven = s.NoEven;
  SetType(Champ(s.Type, sizeof s.Type));
  SetDescriptif(Champ(s.Descriptif, sizeof s.Descriptif));
  return true;
}

bool TIllustration::LectureAncien(TFicIllustrations* fic) {
  const long no = No;
  No = NoEven = 0;
  Enreg = TEnreg();
  TFicAncien* f = fic ? fic->Fichier() : nullptr;
  TEnregIllustrationAncien i;
  if (!f || !f->Lit(no, &i)) return false;
  No = no;
  NoEven = i.NoEven;
  SetChemin(Champ(i.Chemin, sizeof i.Chemin));
  return true;
}

// --- TFacade ---

TFacade::TFacade(TContexteDossier* gest, TModuleBDD* bdd, TTypeFichier type, size_t taille, size_t decalageCompte,
                 bool compteTexte)
    : Gestion(gest), Base(bdd), Ancien(OuvreSi2009(gest, type, taille, decalageCompte, compteTexte)) {}

bool TFacade::BaseEcrivable() const {
  return Base && Base->EstOuverte() && !Base->EstEnLectureSeule();
}

void TFacade::DebutParcoursAncien(const std::string& libelle, long noPers) {
  Curseur = 0;
  LibelleParcours = libelle;
  PersParcours = noPers;
}

long TFacade::SuivantAncien(long deplacement, const TLitAncien& lit) {
  // Dans l'ordre des numéros, comme la table ; un enregistrement sans libellé n'est pas un
  // objet, et les filtres sont ceux de la base (libellé, personne en A ou en B).
  std::string libelle;
  long a = 0, b = 0;
  for (long pris = -1; Ancien && Curseur >= 0 && Curseur < Ancien->NbEnreg();) {
    if (!lit(++Curseur, libelle, a, b) || libelle.empty()) continue;
    if (!LibelleParcours.empty() && !MemeLibelle(libelle, LibelleParcours)) continue;
    if (PersParcours != 0 && a != PersParcours && b != PersParcours) continue;
    if (++pris == deplacement) return Curseur;
  }
  return 0;
}

long TFacade::ChercheAncien(long no, const std::string& libelle, const TLitAncien& lit) {
  std::string lu;
  long a = 0, b = 0;
  for (long i = 1; no > 0 && Ancien && i <= Ancien->NbEnreg(); ++i)
    if (lit(i, lu, a, b) && (a == no || b == no) && MemeLibelle(lu, libelle)) return i;
  return 0;
}

// --- TFicEvens ---

namespace {

// Ce que parcours et recherches lisent d'un événement ou d'un champ ancien.
TFacade::TLitAncien LitEven(TFicEvens* fic, TEvenement& ev) {
  return [fic, &ev](long no, std::string& libelle, long& a, long& b) {
    ev.Enreg.No = no;
    if (!ev.LectureAncien(fic)) return false;
    libelle = ev.Enreg.Libelle;
    a = ev.Enreg.NoPersA;
    b = ev.Enreg.NoPersB;
    return true;
  };
}

TFacade::TLitAncien LitChps(TFicChpsSimple* fic, TChpsSimple& chp) {
  return [fic, &chp](long no, std::string& libelle, long& a, long& b) {
    if (!chp.LectureAncien(fic, no)) return false;
    libelle = chp.Enreg.Libelle;
    a = chp.Enreg.NoPersA;
    b = chp.Enreg.NoPersB;
    return true;
  };
}

}  // namespace

TFicEvens::TFicEvens(TContexteDossier* gest, TModuleBDD* bdd)
    : TFacade(gest, bdd, tfEvn, sizeof(TEvenement::TEnregPrive), offsetof(TEvenement::TEnregPrive, NoPersA)) {}

long TFicEvens::ReturnNewNum() {
  return BaseEcrivable() ? Base->ReturnNewNumEven() : 0;
}

long TFicEvens::GetNbEnreg() {
  return Borne([&] { return Base->GetIDEventMax(); });
}

bool TFicEvens::NoEvenValide(long no) {
  return Valide(no, [&] { return Base->NoEvenExists(no); });
}

long TFicEvens::AnnuleSiInconnu(long no) {
  return NoEvenValide(no) ? no : 0;
}

void TFicEvens::PreProcessSearch(const std::string& libelle, long noPers) {
  if (Ancien)
    DebutParcoursAncien(libelle, noPers);
  else if (Base)
    Base->BeginParcoursEvens(libelle, noPers);
}

bool TFicEvens::GetEvenParcours(TEvenement* ev, long deplacement) {
  if (!Ancien) {
    ev->Enreg.Raz();
    return Base && Base->GetEvenParcours(ev, deplacement);
  }
  if (SuivantAncien(deplacement, LitEven(this, *ev)) != 0) return true;
  ev->Enreg.Raz();
  return false;
}

void TFicEvens::PostProcessSearch() {
  FinParcoursAncien();
  if (!Ancien && Base) Base->EndParcoursEvens();
}

long TFicEvens::FindEvenOfPerson(long no, const std::string& libelle) {
  if (!Ancien) return Base ? Base->FindEvenOfPerson(no, libelle) : 0;
  TEvenement ev;
  return ChercheAncien(no, libelle, LitEven(this, ev));
}

bool TFicEvens::EvenExistsForPerson(long no, const std::string& libelle) {
  return FindEvenOfPerson(no, libelle) != 0;
}

long TFicEvens::FindEvenNaissOfPerson(long no, const std::vector<std::string>& libelles) {
  for (const std::string& l : libelles)
    if (const long id = FindEvenOfPerson(no, l)) return id;
  return 0;
}

bool TFicEvens::LectureEven(TEvenement* ev) {
  if (Ancien) return ev->LectureAncien(this);
  if (Base) return Base->LectureEven(ev);
  ev->Enreg.Raz();
  return false;
}

// --- TFicChpsSimple ---

TFicChpsSimple::TFicChpsSimple(TContexteDossier* gest, TModuleBDD* bdd)
    : TFacade(gest, bdd, tfChs, sizeof(TEnregRq), offsetof(TEnregRq, NoPersA)) {}

long TFicChpsSimple::ReturnNewNum() {
  return BaseEcrivable() ? Base->ReturnNewNumChpsSimple() : 0;
}

long TFicChpsSimple::GetNbEnreg() {
  return Borne([&] { return Base->GetIDEventMax(); });
}

bool TFicChpsSimple::NoChpsSimpleValide(long no) {
  return Valide(no, [&] { return Base->NoChpsSimpleExists(no); });
}

long TFicChpsSimple::AnnuleSiInconnu(long no) {
  return NoChpsSimpleValide(no) ? no : 0;
}

void TFicChpsSimple::PreProcessSearch(const std::string& libelle, long noPers) {
  if (Ancien)
    DebutParcoursAncien(libelle, noPers);
  else if (Base)
    Base->BeginParcoursChpsSimple(libelle, noPers);
}

bool TFicChpsSimple::GetChpsSimpleParcours(TChpsSimple* chp, long deplacement) {
  if (!Ancien) {
    chp->Enreg.Raz();
    return Base && Base->GetChpsSimpleParcours(chp, deplacement);
  }
  if (SuivantAncien(deplacement, LitChps(this, *chp)) != 0) return true;
  chp->Enreg.Raz();
  return false;
}

void TFicChpsSimple::PostProcessSearch() {
  FinParcoursAncien();
  if (!Ancien && Base) Base->EndParcoursChpsSimple();
}

long TFicChpsSimple::FindChpsSimpleOfPerson(long no, const std::string& libelle) {
  if (!Ancien) return Base ? Base->FindChpsSimpleOfPerson(no, libelle) : 0;
  TChpsSimple chp;
  return ChercheAncien(no, libelle, LitChps(this, chp));
}

bool TFicChpsSimple::ChpsSimpleExistsForPerson(long no, const std::string& libelle) {
  return FindChpsSimpleOfPerson(no, libelle) != 0;
}

bool TFicChpsSimple::LectureChpsSimple(TChpsSimple* chp) {
  if (Ancien) return chp->LectureAncien(this, chp->Enreg.No);
  if (Base) return Base->LectureChpsSimple(chp);
  chp->Enreg.Raz();
  return false;
}

// --- TFicSources, TFicIllustrations ---

TFicSources::TFicSources(TContexteDossier* gest, TModuleBDD* bdd)
    : TFacade(gest, bdd, tfSrc, sizeof(TEnregSourceAncien), offsetof(TEnregSourceAncien, NoEven)) {}

long TFicSources::ReturnNewNum() {
  return BaseEcrivable() ? Base->ReturnNewNumSource() : 0;
}

long TFicSources::GetNbEnreg() {
  return Borne([&] { return Base->GetIDSourceMax(); });
}

bool TFicSources::NoSourceValide(long no) {
  return Valide(no, [&] { return Base->NoSourceExists(no); });
}

bool TFicSources::LectureSource(TSource* s) {
  if (Ancien) return s->LectureAncien(this, s->No);
  if (Base) return Base->LectureSource(s);
  s->No = s->NoEven = 0;
  s->Enreg = TSource::TEnreg();
  return false;
}

TFicIllustrations::TFicIllustrations(TContexteDossier* gest, TModuleBDD* bdd)
    : TFacade(gest, bdd, tfIll, sizeof(TEnregIllustrationAncien), offsetof(TEnregIllustrationAncien, Chemin), true) {}

long TFicIllustrations::ReturnNewNum() {
  return BaseEcrivable() ? Base->ReturnNewNumIllustration() : 0;
}

long TFicIllustrations::GetNbEnreg() {
  return Borne([&] { return Base->GetIDIllustrationMax(); });
}

bool TFicIllustrations::NoIllustrationValide(long no) {
  return Valide(no, [&] { return Base->NoIllustrationExists(no); });
}

bool TFicIllustrations::LectureIllustration(TIllustration* i) {
  if (Ancien) return i->LectureAncien(this);
  if (Base) return Base->LectureIllustration(i);
  i->No = i->NoEven = 0;
  i->Enreg = TIllustration::TEnreg();
  return false;
}

// --- TFicExtEvens ---

TFicExtEvens::TFicExtEvens(TContexteDossier* gest)
    : TFacade(gest, nullptr, tfEvx, sizeof(TExtEvenement::TEnreg), offsetof(TExtEvenement::TEnreg, NoEven)) {}

bool TFicExtEvens::Lecture(long no, TExtEvenement::TEnreg& enreg) {
  if (Ancien) return Ancien->Lit(no, &enreg);
  std::memset(&enreg, 0, sizeof enreg);
  return false;
}

// ===== TListesDesEvens =====

namespace {

// Un entier de colonne comme les lectures par événement le prennent : nul ou hors des 32 bits, 0.
long EntierListe(SQLite::Statement& q, int col) {
  const SQLite::Column c = q.getColumn(col);
  if (c.isNull()) return 0;
  const int64_t v = c.getInt64();
  return v < INT32_MIN || v > INT32_MAX ? 0 : static_cast<long>(v);
}

}  // namespace

template <typename T>
bool TListesDesEvens::TParEven<T>::Place(int64_t even, size_t plafond) {
  if (Evens.empty() || Evens.back() != even) {
    Evens.push_back(even);
    Debuts.push_back(Objets.size());
  }
  if (Objets.size() - Debuts.back() >= plafond) return false;
  Objets.emplace_back();
  return true;
}

template <typename T>
TListesDesEvens::TTranche<T> TListesDesEvens::TParEven<T>::De(long noEven) const {
  if (noEven == 0) return {};
  const auto it = std::lower_bound(Evens.begin(), Evens.end(), int64_t(noEven));
  if (it == Evens.end() || *it != noEven) return {};
  const size_t i = size_t(it - Evens.begin());
  return {Objets.data() + Debuts[i], Debuts[i + 1] - Debuts[i]};
}

TListesDesEvens::TTranche<TSource> TListesDesEvens::Sources(long noEven) const {
  return Sources_.De(noEven);
}
TListesDesEvens::TTranche<TIllustration> TListesDesEvens::Illustrations(long noEven) const {
  return Illustrations_.De(noEven);
}
TListesDesEvens::TTranche<TPersAssociee> TListesDesEvens::PersAssociees(long noEven) const {
  return Citees_.De(noEven);
}

TListesDesEvens::TListesDesEvens(TModuleBDD* bdd) {
  if (bdd && bdd->EstOuverte()) {
    bdd->Protege([&] {
      // Le même ordre que la liste d'un seul événement (rang, puis numéro), événement par
      // événement ; une ligne détachée (événement 0) n'est la liste de personne.
      SQLite::Statement s(bdd->Base(),
                          "SELECT \"ID_SOURCE\", \"ID_EVEN\", \"TYPE\", \"DESCRIPTIF\" FROM \"Sources\" "
                          "WHERE \"ID_EVEN\" <> 0 ORDER BY \"ID_EVEN\", \"RANG\", \"ID_SOURCE\"");
      while (s.executeStep()) {
        if (!Sources_.Place(s.getColumn(1).getInt64(), kNbSourcesEven)) continue;
        TSource& source = Sources_.Objets.back();
        source = TSource(bdd);
        bdd->GetSource(&source, s);
      }
      SQLite::Statement i(bdd->Base(),
                          "SELECT \"ID_ILLUSTRATION\", \"ID_EVEN\", \"CHEMIN\" FROM \"Illustrations\" "
                          "WHERE \"ID_EVEN\" <> 0 ORDER BY \"ID_EVEN\", \"RANG\", \"ID_ILLUSTRATION\"");
      while (i.executeStep()) {
        if (!Illustrations_.Place(i.getColumn(1).getInt64(), kNbIllustrationsEven)) continue;
        TIllustration& ill = Illustrations_.Objets.back();
        ill = TIllustration(bdd);
        bdd->GetIllustration(&ill, i);
      }
      SQLite::Statement c(bdd->Base(),
                          "SELECT \"ID_EVEN\", \"LienPers_No\", \"LienPers_NivNo\", \"LienQualite\", \"LienParente\" "
                          "FROM \"PersAssociees\" WHERE \"ID_EVEN\" <> 0 ORDER BY \"ID_EVEN\", \"ID_PERSASSOC\"");
      while (c.executeStep()) {
        if (!Citees_.Place(c.getColumn(0).getInt64(), kNbPersAssocieesEven)) continue;
        const std::string niv = TModuleBDD::TexteColonne(c, 2);
        TPersAssociee& p = Citees_.Objets.back();
        p.Lien = TLienPers(EntierListe(c, 1), niv.empty() ? 0 : static_cast<uint8_t>(niv[0]));
        p.LienQualite = static_cast<int32_t>(EntierListe(c, 3));
        p.LienParente = static_cast<int32_t>(EntierListe(c, 4));
      }
    });
  }
  Sources_.Ferme();
  Illustrations_.Ferme();
  Citees_.Ferme();
}

// ===== TLectureSuivie =====

TLectureSuivie::TLectureSuivie(TModuleBDD* bdd) {
  if (!bdd || !bdd->EstOuverte() || sqlite3_get_autocommit(bdd->Base().getHandle()) == 0) return;
  bdd->Protege([&] { bdd->Requete("BEGIN").exec(); });
  Bdd = bdd;
}

TLectureSuivie::~TLectureSuivie() {
  if (!Bdd) return;
  try {
    if (Bdd->EstOuverte() && sqlite3_get_autocommit(Bdd->Base().getHandle()) == 0) Bdd->Requete("COMMIT").exec();
  } catch (...) {
    // Un destructeur ne lève pas ; une lecture n'a rien à perdre.
  }
}

}  // namespace rqbase
